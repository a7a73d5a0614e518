#include "core/common/run_register.h"
#include "tests/support/file_faults.h"
#include "tests/support/rounds.h"
#include "tests/support/temporary_directory.h"
#include "tests/windows/textview/text_state.h"
#include "tests/windows/toolkit/application.h"
#include "tests/windows/toolkit/robot.h"
#include "tests/windows/toolkit/scripted_answers.h"
#include "windows/controls/controls.h"
#include "windows/controls/shell_hooks.h"
#include "windows/controls/window_places.h"
#include "windows/editor/editor_settings.h"
#include "windows/editor/open_editors.h"
#include "windows/editor/parentheses.h"
#include "windows/toolkit/window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include <csignal>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pellux {
namespace {

namespace fs = std::filesystem;
using test::FileFaults;

Source_options options;

/// Editors, and the user in front of them. They belong to a project that `options` stands for.
class Editors : public testing::Test {
protected:
    Editors() {
        register_controls();
        options = Source_options();
    }

    void run(const std::function<void()>& script) {
        in_application([&] {
            EditorHooks hooks;
            hooks.options = [](Window) -> const Source_options* { return &options; };
            register_editors(hooks);
            install_shell({.insert_tools_menu = [](void*, Window) {}});
            script();
        });
    }
    static EditorWindow& opened(const std::string& path) {
        EditorWindow* editor = open_editor(xvt_win_get_task(), path);
        process_events();
        return *editor;
    }
    static void choose(EditorWindow& editor, EditorCommand command) {
        editor.run(command);
        process_events();
    }
    /// That of copies apart from their files.
    [[nodiscard]] std::vector<std::string> directory_of_copies() const {
        std::vector<std::string> paths;
        if (fs::exists(settings_.path("pellux/copies")))
            for (const auto& entry : fs::directory_iterator(settings_.path("pellux/copies")))
                if (entry.path().extension() != ".base")
                    paths.push_back(entry.path());
        return paths;
    }
    static std::string state(EditorWindow& editor) { return text_state(editor.view().editing); }
    static std::string status(EditorWindow& editor) {
        return xvt_vobj_get_title(xvt_win_get_ctl(editor.window(), 2)).c_str();
    }

    test::TemporaryDirectory directory_;
    test::TemporaryDirectory settings_;
    test::ScopedVariable configuration_{"XDG_CONFIG_HOME", settings_.path().c_str()};
    test::ScopedVariable state_{"XDG_STATE_HOME", settings_.path().c_str()};
    test::ScopedVariable locale_{"LC_ALL", "C.UTF-8"};
    ScriptedAnswers user_;
};

constexpr auto k_both = static_cast<KeyScheme>(2);
constexpr auto k_prefixes = static_cast<KeyScheme>(3);

/// A text, keys and commands ('#' and the number), and what they make of it.
TEST_F(Editors, DoWhatTheirKeysSay) {
    using enum KeyScheme;
    struct Row {
        KeyScheme scheme;
        const char* before;
        std::vector<const char*> keys;
        const char* after;
    };
    const Row rows[] = {
        {standard, "one\ntw|o", {"Ctrl+A", "Ctrl+F", "Escape"}, "one\ntw|o"},
        {standard, "one\ntw|o", {"Ctrl+P", "Ctrl+E", "Ctrl+B"}, "on|e\ntwo"},
        {standard, "o|ne\ntwo", {"Ctrl+N", "Ctrl+Shift+E"}, "one\nt^wo|"},
        {standard, "one\nt^wo|", {"Ctrl+Shift+P"}, "one|\nt^wo"},
        {standard, "one |two", {"x", "Ctrl+Backspace"}, "one |two"},
        {standard, "one| two", {"Ctrl+Delete"}, "one|two"},
        {desktop, "one\ntw|o", {"Ctrl+A"}, "^one\ntwo|"},
        {desktop, "o^ne t|wo", {"Escape"}, "one t|wo"},
        {desktop, "one t|wo", {"Ctrl+Backspace"}, "one |wo"},
        {desktop, "o|ne two", {"Ctrl+Delete"}, "o|two"},
        {desktop, "one\nt|wo", {"Ctrl+D"}, "one\ntwo\nt|wo"},
        {desktop, "o^ne\ntw|o\nend", {"Ctrl+D"}, "one\ntwo\no^ne\ntw|o\nend"},
        {k_both, "one t|wo", {"Ctrl+Left", "Ctrl+Shift+Right"}, "one ^two|"},
        {k_both, "o|ne\ntwo", {"Ctrl+K", "Ctrl+K"}, "o|\ntwo"},
        {k_both, "a\n  b|c", {"Enter", "x", "Ctrl+Z", "Ctrl+Z"}, "a\n  b|c"},
        {k_both, "a\n \tb|c", {"Enter"}, "a\n \tb\n \t|c"},
        {k_both, " |  b", {"Enter"}, " \n |  b"},
        {k_both, "o^ne\ntw|o\nend", {"Tab"}, "|\tone\n\ttwo\n^end"},
        {k_both, "\to^ne\n  tw|o", {"Shift+Tab"}, "|one\n  two^"},
        {k_both, "on^e |two", {"Tab"}, "on\t|two"},
        {k_both, "\ton|e", {"Shift+Tab", "Shift+Tab"}, "on|e"},
        {k_both, "one\nt|wo\nend", {"Alt+Up"}, "t|wo\none\nend"},
        {k_both, "one\nt|wo\nend", {"Alt+Down", "Alt+Down"}, "one\nend\nt|wo"},
        {k_both, "one\ntw|o", {"Alt+Up"}, "tw|o\none"},
        {k_both, "o^ne\nt|wo\n", {"Alt+Down"}, "\no^ne\nt|wo"},
        {k_both, "o|ne\n  -- two", {"Ctrl+/"}, "--o|ne\n  -- two"},
        {k_both, "-- o^ne\n\n\t--tw|o", {"Ctrl+/"}, "| one\n\n\ttwo^"},
        {k_both, "o^n|e", {"Ctrl+C", "End", "Ctrl+V", "Shift+Insert"}, "onenn|"},
        {k_both, "o^n|e", {"Shift+Delete", "Ctrl+Z", "Ctrl+Y"}, "o|e"},
        {k_both, "one|", {"x", "Ctrl+Z", "Ctrl+Shift+Z"}, "onex|"},
        {k_both, "a^b\xC3\xA9\xC3\xBF\xC3\x9F|c", {"#211"}, "a|B\xC3\x89\xC3\xBF\xC3\x9F^c"},
        {k_both, "|A\xC3\x89\xC3\x97^", {"#212"}, "|a\xC3\xA9\xC3\x97^"},
        {k_both, "o^ne\ntwo\n|three", {"#213"}, "o|--ne\n--two\n^three"},
        {k_both, "^one\n\nt|wo", {"#213"}, "|--one\n--\n--t^wo"},
        {k_both, "^-- --one\n \t-- two\na --b|", {"#214"}, "| --one\n \t two\na --b^"},
        {k_both, "^one\n\ttwo\n|", {"#215"}, "|\tone\n\t\ttwo\n^"},
        {k_both, "^\t\tone\n  two\n\tthree|", {"#216"}, "|\tone\n  two\nthree^"},
        {k_both, "^  one|", {"#216"}, "^  one|"},
        {k_both, "^one|", {"#213", "#211", "#214", "Ctrl+Z", "Ctrl+Z", "Ctrl+Z"}, "one|"},
        {k_both, "one|", {"#213", "#211"}, "one|"},
        {k_prefixes, "one|", {"x", "Ctrl+X", "u"}, "one|"},
        {k_prefixes, "o|ne\ntwo", {"Escape", ">"}, "one\ntwo|"},
        {k_prefixes, "one\ntwo|", {"Escape", "<"}, "|one\ntwo"},
        {k_prefixes, "one\ntw|o", {"Escape", "V"}, "|one\ntwo"},
        {k_prefixes, "o^n|e", {"Ctrl+X", "Ctrl+X", "Escape", "q"}, "o^n|e"},
    };
    run([&] {
        EditorWindow& editor = opened(directory_.write("keys.vhd", ""));
        for (const Row& row : rows) {
            options.set(OptionFlag::emacs_keys, row.scheme == k_prefixes);
            for (const KeyScheme scheme : {standard, desktop}) {
                if (row.scheme != k_both && (row.scheme == desktop) != (scheme == desktop))
                    continue;
                choose(editor, scheme == desktop ? EditorCommand::desktop_keys
                                                 : EditorCommand::standard_keys);
                set_text_state(editor.view().editing, row.before);
                for (const char* key : row.keys)
                    if (*key == '#')
                        choose(editor, static_cast<EditorCommand>(std::atoi(key + 1)));
                    else
                        press_key(key);
                EXPECT_EQ(state(editor), row.after) << row.before << " " << row.keys.front();
            }
        }
    });
}

/// Changed at random, a text and the numbers beside it show what they would show if all were drawn
/// anew; the pointer selects lines there.
TEST_F(Editors, ShowTheirTextAndItsLines) {
    const test::Rounds rounds(300); // steps
    options.set(OptionFlag::line_numbers, true);
    options.set(OptionFlag::highlight_keywords, true);
    run([&] {
        EditorWindow& editor = opened(directory_.write("lines.vhd", std::string(99'970, '\n')));
        TextView& view = editor.view();
        const Window numbers = xvt_win_get_ctl(editor.window(), 3);
        std::mt19937 random(rounds.seed);
        const auto below = [&](unsigned limit) { return static_cast<int>(random() % limit); };
        set_top_line(view, 99'940);
        for (int step = 0; step < rounds.count; ++step) {
            const std::function<void()> steps[] = {
                [&] { insert_text(view.editing, std::string(random() % 20, '\n')); },
                [&] {
                    constexpr const char* k_pieces[] = {"end /* is", " */ end", "-- end\n", "\"/*",
                                                        "x"};
                    insert_text(view.editing, k_pieces[below(5)]);
                },
                [&] { delete_forward(view.editing); },
                [&] { step % 2 == 0 ? undo(view.editing) : redo(view.editing); },
                [&] { set_top_line(view, top_line(view) + below(60) - 30); },
                [&] { editor.zoom(below(3) - 1); },
                [&] {
                    editor.shown_search().keep_showing(compile_search(
                        {.pattern = step % 2 == 0 ? "end" : "x"}, TextEncoding::utf_8));
                },
                [&] {
                    go_to(view.editing, {99'930 + below(90), 0});
                },
                [&] {
                    move_frame(editor.window(), {0, 0, 200 + below(300), 500});
                }};
            steps[random() % std::size(steps)]();
            if (below(2) == 0)
                show_caret(view);
            else
                refresh(view);
            editor.hook();
            process_events();
            const auto shown = shown_pixels(editor.window());
            xvt_win_dispatch_event(numbers, Event{ThemeEvent()});
            redraw_all(view);
            process_events();
            ASSERT_TRUE(shown == shown_pixels(editor.window()))
                << "seed " << rounds.seed << " " << step;
            const char* widest = line_count(editor.document()) > 99'999 ? "999999 " : "99999 ";
            const Rect place = xvt_vobj_get_client_rect(numbers);
            ASSERT_EQ(place.right, xvt_dwin_get_text_width(view.target, widest));
        }
        set_top_line(view, 7);
        press_pointer(numbers, {5, view.line_height + 1});
        move_pointer(view.target, {-5, 2 * view.line_height + 1});
        release_pointer(view.target, {-5, 2 * view.line_height + 1});
        const TextDocument& document = editor.document();
        EXPECT_EQ(selection(view.editing),
                  (TextRange{line_start(document, 8), line_start(document, 10)}));
        turn_wheel(numbers, {.at = {5, 5}, .down = 120});
        EXPECT_EQ(top_line(view), 10);
    });
}

TEST_F(Editors, KnowWhichParenthesesBelongTogether) {
    TextDocument document;
    insert_bytes(document, 0, "f(a[1], ')', \")\") -- )");
    constexpr std::pair<int, int> k_rows[] = {{1, 16}, {17, 1}, {6, 3}, {9, -1}, {22, -1}};
    for (const auto& [at, partner] : k_rows) {
        const auto pair = find_parentheses(document, at);
        EXPECT_EQ(pair ? pair->second : -1, partner) << at;
    }
}

/// Whatever operation on files fails, once or from then on, the old text or the new one is there; a
/// text that was not saved says so, and what its writing left is not offered in its place.
TEST_F(Editors, LoseNothingWhenSavingFails) {
    run([&] {
        const std::string plain = directory_.write("plain/text.vhd", "old");
        fs::permissions(plain, fs::perms::owner_read | fs::perms::owner_write);
        const std::string hard = directory_.write("hard/text.vhd", "old");
        fs::create_hard_link(hard, directory_.path("hard/other.vhd"));
        const std::string linked = directory_.path("link.vhd");
        fs::create_symlink(directory_.write("linked/text.vhd", "old"), linked);
        for (const auto& [path, place] :
             {std::pair{plain, "plain"}, std::pair{hard, "hard"}, std::pair{linked, "linked"}}) {
            EditorWindow& editor = opened(path);
            for (const bool goes_on : {false, true}) {
                bool has_failed = true;
                for (int n = 1; has_failed; ++n) {
                    ASSERT_LT(n, 200);
                    set_text_state(editor.view().editing, "new|");
                    // A file of another time and the same contents is nobody's change.
                    for (const auto& [name, bytes] : directory_.files(place))
                        if (!name.ends_with(".vhd"))
                            fs::remove(directory_.path(name));
                    std::ofstream(path, std::ios::binary | std::ios::trunc) << "old";
                    int count = 0;
                    {
                        const AskSeam before =
                            install_ask({.ask = [](void*, const Question& question) {
                                // Where nobody could look, the user knows best.
                                Answer answer;
                                answer.button = static_cast<int>(question.buttons.size()) - 1;
                                return answer;
                            }});
                        const FileFaults faults([&](FileOperation, std::string_view) {
                            ++count;
                            return count == n || (goes_on && count > n) ? SystemError{ENOSPC}
                                                                        : SystemError::none;
                        });
                        has_failed = !editor.save();
                        install_ask(before);
                    }
                    const auto left = directory_.files(place);
                    const bool has_old = std::ranges::any_of(
                        left, [](const auto& file) { return file.second == "old"; });
                    EXPECT_TRUE(directory_.read(path) == "new" || (has_failed && has_old)) << n;
                    EXPECT_EQ(editor.document().is_modified, has_failed) << n;
                    editor.look_at_disk();
                }
                EXPECT_EQ(directory_.read(path), "new");
            }
        }
        EXPECT_TRUE(fs::is_symlink(linked));
        EXPECT_EQ(fs::hard_link_count(hard), 2u);
        EXPECT_EQ(fs::status(plain).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    });
}

/// Files of all kinds are opened and saved as they are, or refused in words with their name.
TEST_F(Editors, OpenWhatIsATextAndRefuseTheRest) {
    run([&] {
        const std::string texts[] = {
            std::string("\0\xFF\n\r", 4), "a\r\nb\r\n", "a\nb", "", "a\r\nb\n", "\xC3\xA9\n"};
        for (const std::string& text : texts) {
            const std::string path = directory_.write("text.vhd", text);
            EditorWindow& editor = opened(path);
            EXPECT_EQ(&opened(path), &editor) << "a text has one editor";
            press_key("x");
            press_key("Ctrl+S");
            EXPECT_EQ(directory_.read("text.vhd"), "x" + text);
            press_key("Ctrl+Z");
            press_key("Ctrl+S");
            EXPECT_EQ(directory_.read("text.vhd"), text);
            press_key("Ctrl+W");
            EXPECT_EQ(find_editor(path), nullptr);
        }
        const test::Rounds rounds(20);
        int count = 0;
        for (const auto& entry : fs::recursive_directory_iterator("/usr/lib/ghdl/src")) {
            if (!entry.is_regular_file() || ++count > rounds.count)
                continue;
            const std::string source = directory_.read(entry.path().string());
            EditorWindow& editor = opened(entry.path().string());
            while (caret_line(editor.view().editing) + 1 < line_count(editor.document()))
                press_key("PgDown");
            const String held = copy_text(editor.document(), 0, text_size(editor.document()));
            EXPECT_TRUE(source == std::string_view(held)) << entry.path();
            EXPECT_TRUE(editor.close_query());
            xvt_vobj_destroy(editor.window());
            EXPECT_TRUE(directory_.read(entry.path().string()) == source) << entry.path();
        }
        EXPECT_GT(count, 0);
        ::mkfifo(directory_.path("pipe").c_str(), 0600);
        for (const std::string& path : {directory_.path(), directory_.path("pipe"),
                                        directory_.path("none"), std::string("/dev/zero")}) {
            user_.expect_error("Can't read '" + path + "': *");
            EXPECT_EQ(open_editor(Window::none, path), nullptr);
        }
        // Another program writes meanwhile, or takes the file away.
        for (const bool goes : {false, true}) {
            const std::string path = directory_.write("busy.vhd", "text");
            int reads = 0;
            const FileFaults faults([&](FileOperation operation, std::string_view) {
                if (operation == FileOperation::read && ++reads % 2 != 0)
                    goes ? void(fs::remove(path))
                         : fs::resize_file(path, static_cast<unsigned>(100 + reads));
                return SystemError::none;
            });
            user_.expect_error("Can't read '" + path +
                               (goes ? "': *" : "': another program is writing it."));
            EXPECT_EQ(open_editor(Window::none, path), nullptr);
        }
        EditorWindow& editor = opened(directory_.write("text.vhd", "text"));
        fs::permissions(directory_.path("text.vhd"), fs::perms::owner_read);
        user_.expect_error("'*/text.vhd' is write-protected.");
        press_key("y");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("text.vhd"), "text");
        choose(editor, EditorCommand::undo);
        xvt_vobj_destroy(editor.window());
        EditorWindow& protected_one = opened(directory_.path("text.vhd"));
        press_key("y");
        EXPECT_EQ(state(protected_one), "|text");
        EXPECT_EQ(status(protected_one),
                  "Line 1 of 1\tUndos:  0\tWrite-protected\tCol 1\tUTF-8\tLF");
        // It is searched all the same.
        EXPECT_FALSE(choose_item(static_cast<int>(EditorCommand::replace)));
        EXPECT_TRUE(choose_item(static_cast<int>(EditorCommand::find)));
        user_.edit_standing("Find", {1, "t"});
        choose(protected_one, EditorCommand::find_next);
        choose(protected_one, EditorCommand::find_next);
        EXPECT_EQ(status(protected_one),
                  "Line 1 of 1\t2 of 2\tUndos:  0\tWrite-protected\tCol 4\tUTF-8\tLF");
        user_.close_standing("Find");
        const std::string dropped = directory_.write("dropped.vhd", "\xE9\r\n");
        EXPECT_TRUE(drop_files(protected_one.view().target, {9, 9}, std::vector{dropped}));
        ASSERT_NE(find_editor(dropped), nullptr);
        options.set(OptionFlag::emacs_keys, true);
        press_key("Escape");
        EXPECT_EQ(status(*find_editor(dropped)),
                  "ESC-\tUndos:  0\tUnchanged\tCol 1\tLatin-1\tCR LF");
    });
}

TEST_F(Editors, OfferWhatWasNotSavedBeforeACrash) {
    run([&] {
        const std::string path = directory_.write("text.vhd", "old");
        const std::string copy = directory_.path("peltmp/text.vhd");
        EditorWindow* editor = &opened(path);
        editor->auto_save();
        EXPECT_FALSE(fs::exists(copy)) << "nothing to lose";
        directory_.write("peltmp", "in the way");
        press_key("x");
        user_.expect_error("Can't create auto-save directory '" + directory_.path("peltmp") + "'.");
        editor->auto_save();
        editor->auto_save();
        fs::remove(directory_.path("peltmp"));
        editor->auto_save();
        EXPECT_EQ(directory_.read("peltmp/text.vhd"), "xold");
        EXPECT_EQ(directory_.read("text.vhd"), "old");
        EXPECT_TRUE(editor->document().is_modified);
        // Nobody has closed it.
        xvt_vobj_destroy(editor->window());
        const char* question = "Backup of 'text.vhd' is newer.  Restore from it?";
        user_.expect_ask(question, "Yes");
        editor = &opened(path);
        EXPECT_EQ(status(*editor), "Line 1 of 1\tUndos:  0\tRecovered\tCol 1\tUTF-8\tLF");
        user_.expect_ask("Save changes to '*'?", "Cancel");
        press_key("Ctrl+W");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("text.vhd"), "xold");
        EXPECT_TRUE(fs::exists(copy)) << "a plain save leaves it";
        press_key("Ctrl+W");
        EXPECT_FALSE(fs::exists(copy));
        // A file that went, and one of the same time.
        directory_.write("peltmp/text.vhd", "copy");
        fs::remove(path);
        user_.expect_closed(QuestionKind::ask, question);
        user_.expect_error("Can't read '" + path + "': *");
        EXPECT_EQ(open_editor(xvt_win_get_task(), path), nullptr);
        user_.expect_ask(question, "Yes");
        EXPECT_EQ(state(opened(path)), "|copy");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("text.vhd"), "copy");
        xvt_vobj_destroy(find_editor(path)->window());
        fs::last_write_time(copy, fs::last_write_time(path));
        EXPECT_EQ(state(opened(path)), "|copy");
    });
}

TEST_F(Editors, KeepBothWhereACopyAndItsFileDiffer) {
    run([&] {
        const std::string path = directory_.write("text.vhd", "one\ntwo\n");
        const auto age = [&](int seconds) {
            fs::last_write_time(path, fs::last_write_time(path) + std::chrono::seconds(seconds));
        };
        opened(path);
        press_key("x");
        find_editor(path)->auto_save();
        xvt_vobj_destroy(find_editor(path)->window());
        // The clock was set back since the file was written.
        age(60);
        user_.expect_ask("Backup of 'text.vhd' is newer.  Restore from it?", "No");
        opened(path);
        xvt_vobj_destroy(find_editor(path)->window());
        directory_.write("text.vhd", "one\nTWO\n");
        age(60);
        user_.expect_ask("'text.vhd' has changed since its backup was made.  Restore from the "
                         "backup?",
                         "Differences");
        EditorWindow& editor = opened(path);
        EXPECT_EQ(state(editor), "|one\nTWO\n");
        EXPECT_EQ(shown_text(), "@ 1\n- one\n- TWO\n+ xone\n+ two\n  \n");
        editor.view().editing.is_read_only = false;
        insert_text(editor.view().editing, "y");
        editor.auto_save();
        EXPECT_EQ(directory_.read("peltmp/text.vhd"), "xone\ntwo\n") << "it is still the other's";
        click(xvt_win_get_ctl(shown_text_window(), 1), {9, 9});
        EXPECT_EQ(state(editor), "x|one\ntwo\n");
        choose(editor, EditorCommand::undo);
        EXPECT_EQ(state(editor), "yone\nTWO|\n");
        choose(editor, EditorCommand::redo);
        press_key("Ctrl+S");
        age(60);
        EXPECT_EQ(directory_.read("text.vhd"), "xone\ntwo\n");
        EXPECT_FALSE(find_copies(path).size() > 0) << "all of it is saved";
        editor.close_now();
        EXPECT_FALSE(fs::exists(directory_.path("peltmp")));
        // A writing in place that was cut off, after the copy was made.
        directory_.write("peltmp/text.vhd", "copy");
        directory_.write(".text.vhd.pellux-copy", "before");
        fs::last_write_time(directory_.path("peltmp/text.vhd"),
                            fs::last_write_time(path) + std::chrono::seconds(1));
        fs::last_write_time(directory_.path(".text.vhd.pellux-copy"),
                            fs::last_write_time(path) + std::chrono::seconds(2));
        user_.expect_ask("The writing of 'text.vhd' was cut off.  Its old contents are in *", "No");
        user_.expect_ask("Backup of 'text.vhd' is newer.  Restore from it?", "No");
        EditorWindow& damaged = opened(path);
        user_.expect_error("The old contents of '" + path + "' lie in '*");
        choose(damaged, EditorCommand::revert);
        damaged.close_now();
        user_.expect_ask("The writing of 'text.vhd' was cut off.  Its old contents are in *",
                         "Yes");
        EXPECT_EQ(state(opened(path)), "|before");
        press_key("Ctrl+S");
        EXPECT_FALSE(fs::exists(directory_.path(".text.vhd.pellux-copy")));
        // A disk that is full beside the file.
        press_key("z");
        {
            const FileFaults faults([&](FileOperation operation, std::string_view place) {
                const bool is_full = operation == FileOperation::open &&
                                     place.find("peltmp") != std::string_view::npos;
                return is_full ? SystemError{ENOSPC} : SystemError::none;
            });
            find_editor(path)->auto_save();
        }
        ASSERT_EQ(directory_of_copies().size(), 1);
        EXPECT_EQ(directory_.read(directory_of_copies()[0]), "zbefore");
        find_editor(path)->auto_save();
        EXPECT_TRUE(directory_of_copies().empty());
        EXPECT_EQ(directory_.read("peltmp/text.vhd"), "zbefore");
        // A text that has no file, and none that has no project.
        EditorWindow* fresh = open_new_editor(Window::none);
        type_text("new");
        begin_register();
        save_all_copies();
        xvt_vobj_destroy(fresh->window());
        const auto copies = directory_of_copies();
        ASSERT_EQ(copies.size(), 1);
        restore_text(Window::none, {}, copies[0].c_str());
        EXPECT_EQ(shown_text(), "new");
        user_.expect_ask("Save new file?", "No");
        press_key("Ctrl+W");
        EXPECT_TRUE(directory_of_copies().empty());
        end_register();
    });
}

/// The other one is a copy of this program.
TEST_F(Editors, TellOfAnotherProgramWithTheirFile) {
    const std::string path = directory_.write("text.vhd", "old");
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t other = ::fork();
    if (other == 0) {
        begin_register();
        note_opened(path);
        static_cast<void>(!::write(ready[1], "r", 1));
        ::pause();
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    run([&] {
        const std::string told = "'" + path + "' is open in another Pellux too (process " +
                                 std::to_string(other) + ").  ";
        directory_.write("peltmp/text.vhd", "the other's");
        user_.expect_note(told + "*");
        EditorWindow& editor = opened(path);
        press_key("x");
        editor.auto_save();
        EXPECT_EQ(directory_.read("peltmp/text.vhd." + std::to_string(::getpid())), "xold");
        user_.expect_ask(told + "Save it all the same?", "Cancel");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("text.vhd"), "old");
        user_.expect_ask(told + "Save it all the same?", "Save");
        press_key("Ctrl+S");
        press_key("y");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("text.vhd"), "xyold");
        editor.close_now();
        EXPECT_EQ(directory_.read("peltmp/text.vhd"), "the other's");
        EXPECT_EQ(directory_.files("peltmp").size(), 1);
    });
    ::kill(other, SIGKILL);
    ::waitpid(other, nullptr, 0);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST_F(Editors, AskBeforeAnythingIsLost) {
    run([&] {
        const std::string path = directory_.write("Text.vhd", "one\ntwo\n");
        EditorWindow& editor = opened(path);
        std::string lower = path;
        std::ranges::transform(lower, lower.begin(),
                               [](char c) { return static_cast<char>(std::tolower(c)); });
        EXPECT_EQ(xvt_vobj_get_title(editor.window()), lower.c_str());
        EXPECT_EQ(status(editor), "Line 1 of 3\tUndos:  0\tUnchanged\tCol 1\tUTF-8\tLF");
        const auto answer_line = [](const Question&) {
            Answer answer{
                .button = 0, .value = " 2x", .directory = {}, .files = {}, .font = {}, .rows = {}};
            return answer;
        };
        user_.expect(QuestionKind::string, "Go to line:", answer_line);
        press_key("Ctrl+G");
        press_key("x");
        EXPECT_EQ(status(editor), "Line 2 of 3\tUndos:  1\tModified\tCol 2\tUTF-8\tLF");
        press_key("Ctrl+F");
        EXPECT_TRUE(
            status(editor).starts_with("Ctrl+F moves right. Keys > Desktop keys: finds.\t"));
        press_key("Ctrl+B");
        press_key("Ctrl+F");
        EXPECT_TRUE(status(editor).starts_with("Line 2 of 3\t")) << "told once in a run";
        press_key("Ctrl+B");
        // Another program writes the same bytes, then others.
        directory_.write("Text.vhd", "one\ntwo\n");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("Text.vhd"), "one\nxtwo\n");
        directory_.write("Text.vhd", "zero\none\nxtwo\n");
        user_.expect_ask("File '*' has changed on disk.\nRead new version from disk?", "No");
        editor.look_at_disk();
        editor.look_at_disk();
        press_key("y");
        user_.expect_closed(QuestionKind::ask, "File '*' has changed on disk and memory.*");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("Text.vhd"), "zero\none\nxtwo\n");
        EXPECT_EQ(state(editor), "one\nxy|two\n");
        user_.expect_ask("File '*' has changed on disk and memory.*", "Yes");
        press_key("Ctrl+S");
        EXPECT_EQ(state(editor), "zero\non|e\nxtwo\n");
        EXPECT_FALSE(editor.document().is_modified);
        press_key("Ctrl+Z");
        EXPECT_EQ(state(editor).erase(6, 1), "one\nxytwo\n");
        directory_.write("Text.vhd", "three");
        user_.expect_ask("File '*' has changed on disk and memory.*", "No");
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("Text.vhd"), "one\nxytwo\n");
        // Throwing away, and a name for a new text; the first button is the default.
        const auto asked = [&](const std::string& text, const char* buttons, int answer) {
            user_.expect(QuestionKind::ask, text, [=](const Question& question) {
                std::string all;
                for (const String& button : question.buttons)
                    (all += button) += ' ';
                EXPECT_EQ(all, buttons);
                Answer given;
                given.button = answer;
                return given;
            });
        };
        press_key("z");
        asked("Do you really wish to throw away your changes to '" + path + "'?", "Cancel OK ", 0);
        choose(editor, EditorCommand::new_text);
        user_.expect_ask("Do you really wish to throw away*", "OK");
        choose(editor, EditorCommand::new_text);
        EXPECT_EQ(state(editor), "|");
        EXPECT_EQ(xvt_vobj_get_title(editor.window()), "VHDL Editor - New");
        type_text("new");
        asked("Save new file?", "Yes No Cancel ", 2);
        EXPECT_FALSE(editor.close_query());
        user_.expect_files(QuestionKind::file_save, "Save VHDL text as...", directory_.path(),
                           {"Text.vhd"});
        asked("'" + path + "' exists.  Overwrite it?", "Cancel OK ", 0);
        press_key("Ctrl+S");
        EXPECT_EQ(directory_.read("Text.vhd"), "one\nxytwo\n");
        user_.expect_ask("Save new file?", "Yes");
        user_.expect_files(QuestionKind::file_save, "Save VHDL text as...", directory_.path(),
                           {"new.vhd"});
        EXPECT_TRUE(editor.close_query());
        EXPECT_EQ(directory_.read("new.vhd"), "new");
        press_key("z");
        asked("Save changes to '*/new.vhd'?", "Yes No Cancel ", 1);
        press_key("Ctrl+W");
        EXPECT_EQ(directory_.read("new.vhd"), "new");
        EXPECT_EQ(editor_settings().recent.front(), directory_.path("new.vhd").c_str());
        EXPECT_EQ(user_.left(), 0u);
    });
}

} // namespace
} // namespace pellux
