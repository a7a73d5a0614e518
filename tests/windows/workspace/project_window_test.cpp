#include "core/os/clock.h"
#include "tests/windows/workspace/project_files.h"
#include "windows/controls/window_places.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/clipboard.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/menu.h"
#include "windows/toolkit/print_record.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/project_copies.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_view.h"
#include "windows/workspace/recovery_window.h"
#include "windows/workspace/search_window.h"

#include <sys/stat.h>

#include <filesystem>
#include <functional>
#include <limits>
#include <set>
#include <string>

namespace pellux {
namespace {

namespace fs = std::filesystem;
using test::make_project_file;
using test::window_of_project;

constexpr const char* k_choose = "Choose VHDL files to add.";
constexpr const char* k_choose_pla = "Choose one PLA file to add.";

class ProjectWindow : public test::Projects {
protected:
    /// "x.vhd *y.vhd [z.vhd]": the top design has a star, what is selected stands in brackets.
    static std::string files() {
        const Window list = project_list(window());
        const Vector<int> selected = xvt_list_get_selected(list);
        std::string text;
        for (int i = 0; i < xvt_list_count(list); ++i) {
            const auto& source = project().sources.at(static_cast<std::size_t>(i));
            EXPECT_EQ(xvt_list_get_item(list, i), source->file_name.view());
            std::string name(source->file_name.view());
            if (source.get() == project().top_design)
                name = "*" + name;
            if (std::find(selected.begin(), selected.end(), i) != selected.end())
                name = "[" + name + "]";
            text += (text.empty() ? "" : " ") + name;
        }
        return text;
    }
    static void select(const Vector<int>& indices) {
        xvt_list_set_selected(project_list(window()), indices);
        process_events();
        xvt_win_dispatch_event(window(), Event{ClipboardEvent{}});
    }
    static std::string status(Window of = window()) {
        return xvt_vobj_get_title(xvt_win_get_ctl(of, k_project_status)).c_str();
    }
    static void command(int tag) {
        xvt_win_dispatch_event(window(), Event{CommandEvent{tag}});
        process_events();
    }
    static bool can(int tag) {
        for (const MenuItem& menu : xvt_menu_get_tree(window()))
            for (const MenuItem& item : menu.items)
                if (item.tag == tag)
                    return item.is_enabled;
        return false;
    }
    /// `pattern`: words that stand in this order, with '*' between them.
    static bool menus_have(std::string_view pattern) {
        const std::string menus = shown_menus();
        std::size_t from = 0;
        for (std::string_view word; from != menus.npos && next_list_entry(pattern, word, '*');)
            from = menus.find(word, from);
        EXPECT_NE(from, menus.npos) << menus;
        return from != menus.npos;
    }
    /// Steps, each with the list after it: a key, '#' and a menu's tag, '=' and what to select.
    static void walk(std::initializer_list<std::pair<std::string, std::string>> steps) {
        for (const auto& [act, list] : steps) {
            if (act.starts_with('#')) {
                command(std::stoi(act.substr(1)));
            } else if (act.starts_with('=')) {
                Vector<int> indices;
                for (const char digit : act.substr(1))
                    indices.push_back(digit - '0');
                select(indices);
            } else if (!act.empty()) {
                press_key(act);
            }
            EXPECT_EQ(files(), list) << act;
        }
    }
    /// The lists of a dialog, what is selected in brackets; without any, its texts.
    static std::string shown_lists(const Question& dialog) {
        std::string lists;
        std::string texts;
        for (const DialogRow& row : dialog.rows) {
            int index = 0;
            std::string_view text = view(row.value);
            if (!row.value.empty())
                (texts += texts.empty() ? "" : ",") += view(row.value);
            for (std::string_view line; next_list_entry(text, line, '\n'); ++index)
                if (row.kind == DialogRowKind::list) {
                    const std::string name(line.substr(0, line.find('\t')));
                    lists += index == row.selected ? "[" + name + "] " : name + " ";
                }
            lists += row.kind == DialogRowKind::list ? "| " : "";
        }
        return lists.empty() ? texts : lists;
    }
    void drop(const std::vector<std::string>& names) {
        std::vector<std::string> paths;
        for (const std::string& name : names)
            paths.push_back(directory_.path(name));
        EXPECT_TRUE(drop_files(project_list(window()), {5, 5}, paths));
    }
};

TEST_F(ProjectWindow, TakesFilesByItsRules) {
    const std::string odd[] = {"it's\"q\".vhd", "100%s%n.vhd", "a\nb.vhd", "\xff\xe9.vhd",
                               "empty.bpr",     "cut.bpr",     "good.BPR"};
    for (const char* name : {"A.VHD", "b.vhd", "c.vhdl", "d e.vhd", "p.pla", "Q.PLA", "sub/x.vhd"})
        directory_.write(name, "");
    run([&] {
        user_.expect_error("'*/d e.vhd' can't be added: with a blank *");
        walk({{"#1106", "[A.VHD] [b.vhd]"}});
        drop({"c.vhdl", "sub", "b.vhd"});
        user_.expect_error("PLA must be the only file in the project.");
        walk({{"", "A.VHD [b.vhd] [c.vhdl] [sub/x.vhd]"}, {"#1107", files()}});
        // One that is there is selected, and nothing else happens.
        user_.expect_files(QuestionKind::files_open, k_choose, top_,
                           {"A.VHD", "d e.vhd", std::string(125, 'f')});
        user_.expect_error("'*/d e.vhd' can't be added: with a blank *");
        user_.expect_error("'*/f*' can't be added: its path * 119 bytes.");
        walk({{"#1060", "[A.VHD] b.vhd c.vhdl sub/x.vhd"},
              {"#1058", "[A.VHD] [b.vhd] [c.vhdl] [sub/x.vhd]"},
              {"Del", ""}});
        user_.expect_files(QuestionKind::files_open, k_choose_pla, top_, {"p.pla", "Q.PLA"});
        user_.expect_note("You may only choose one PLA file.");
        user_.expect_files(QuestionKind::files_open, k_choose_pla, top_, {"Q.PLA"});
        walk({{"#1107", "[Q.PLA]"}});
        for (const char* tag : {"#1060", "#1106"}) {
            user_.expect_error("Project contains a PLA file.");
            walk({{tag, "[Q.PLA]"}});
        }
        user_.expect_error("Project contains a PLA file.");
        user_.expect_error("PLA must be the only file in the project.");
        drop({"b.vhd", "A.VHD", "p.pla"});
        walk({{"", "[Q.PLA]"}, {"Del", ""}});

        for (const std::string& name : odd)
            directory_.write(name, "");
        make_project_file(top_, "good.BPR");
        directory_.write("cut.bpr", directory_.read("good.BPR").substr(0, 90));
        user_.expect_error("Error reading '*/empty.bpr'.");
        user_.expect_error("Error reading '*/cut.bpr'.");
        user_.expect_error("'*/a\nb.vhd' can't be added: with a blank *");
        drop({odd, std::end(odd)});
        EXPECT_EQ(test::open_names(), "a.bpr good.BPR ");
        EXPECT_EQ(files(), "[it's\"q\".vhd] [100%s%n.vhd] [\xff\xe9.vhd]");
        EXPECT_TRUE(save_project(window()));
        EXPECT_EQ(read_project("a.bpr")->sources.at(2)->file_name.view(), "\xff\xe9.vhd");
    });
}

TEST_F(ProjectWindow, ChangesItsListAndTakesThatBack) {
    for (const char* name : {"a.vhd", "b.vhd", "c.vhd", "d.vhd"})
        directory_.write(name, "");
    run([&] {
        EXPECT_FALSE(choose_item(1057) || choose_item(1056) || choose_item(1052));
        const std::string none = "Top design: <none>\tDevice: ";
        EXPECT_EQ(status(), none);
        walk({{"Ctrl+Z", ""},
              {"#1106", "[a.vhd] [b.vhd] [c.vhd] [d.vhd]"},
              {"=12", "a.vhd [b.vhd] [c.vhd] d.vhd"},
              {"#1052", "[b.vhd] [c.vhd] a.vhd d.vhd"},
              {"#1052", "[b.vhd] [c.vhd] a.vhd d.vhd"},
              {"#1050", "a.vhd [b.vhd] [c.vhd] d.vhd"},
              {"Alt+Down", "a.vhd d.vhd [b.vhd] [c.vhd]"},
              {"=1", "a.vhd [d.vhd] b.vhd c.vhd"}});
        right_click(project_list(window()), {20, 25});
        press_key("D");
        EXPECT_EQ(status(), "Top design: d.vhd\tDevice: ");
        project().sources[1]->note.assign("kept");
        project().sources[2]->options.library.assign("work");
        EXPECT_EQ(spoken_entry(project_list(window()), 1), "d.vhd");
        walk({{"Alt+Up", "[*d.vhd] a.vhd b.vhd c.vhd"}});
        EXPECT_EQ(spoken_entry(project_list(window()), 0), "d.vhd, Note: kept");
        EXPECT_EQ(spoken_entry(project_list(window()), 2), "b.vhd, Library: work");
        walk({{"Ctrl+Z", "a.vhd [*d.vhd] b.vhd c.vhd"},
              {"=01", "[a.vhd] [*d.vhd] b.vhd c.vhd"},
              {"Del", "[b.vhd] c.vhd"}});
        EXPECT_EQ(status(), none);
        EXPECT_TRUE(menus_have("&Undo removing 2 files\tCtrl+Z\n  (Red&o\tCtrl+Y)\n  -\n  &Add"));
        walk({{"Ctrl+Z", "[a.vhd] [*d.vhd] b.vhd c.vhd"}});
        EXPECT_TRUE(menus_have("&Undo setting the top design\t*&o removing 2 files\t"));
        EXPECT_EQ(project().sources[1]->note.view(), "kept");
        walk({{"Ctrl+Shift+Z", "b.vhd c.vhd"}, {"Ctrl+Z", "[a.vhd] [*d.vhd] b.vhd c.vhd"}});
        for (int i = 0; i < 6; ++i)
            press_key("Ctrl+Z");
        EXPECT_EQ(files(), "");
        EXPECT_FALSE(has_changed(open()));
        EXPECT_TRUE(menus_have("(&Undo\t*Red&o adding 4 files\t"));
        right_click(project_list(window()), {20, 25});
        press_key("O");
        EXPECT_EQ(files(), "[a.vhd] [b.vhd] [c.vhd] [d.vhd]");
    });
}

TEST_F(ProjectWindow, AsksForItsDevice) {
    const test::ScopedVariable install("VELMORA_DIR", directory_.path().c_str());
    const std::string body = "begin attributes\nkind small one\nend attributes\nbegin packages\n"
                             "p20 20 18\np44\nend packages\nbegin packages\np44\nend packages\n";
    directory_.write("bin/devices.dat", "seek: c1:0,84 c22:84,37\n" + body);
    directory_.write("a.vhd",
                     "#$ DEVICE c1\n#$ PACKAGE p9\n#$ GROUP SOFT ALL\n#$ GROUP KEEPPOL ALL\n");
    directory_.write("b.vhd", "");
    directory_.write("c.vhd", "#$ DEVICE c22\n");
    /// Keys, and what the dialog then shows: devices and packages, the selected one in brackets.
    using Steps = std::vector<std::pair<const char*, const char*>>;
    const auto use = [this](const Steps& steps, const char* said, const char* end = "Return") {
        user_.expect_on_screen("Device", [this, steps, said, end] {
            for (const auto& [key, lists] : steps) {
                key[1] == '\0' ? type_text(key) : press_key(key);
                EXPECT_EQ(shown_lists(user_.on_screen()), lists) << key;
            }
            const auto& rows = user_.on_screen().rows;
            EXPECT_EQ(rows.at(rows.size() - 2).label, said);
            press_key(end);
        });
    };
    const auto set = [] {
        const Source_options& options = project().options;
        return std::string(options.device.c_str()) + "," + options.package.c_str();
    };
    run([&] {
        command(1106);
        EXPECT_TRUE(set_top_design(project(), 0));
        project().options.device.assign("old\n");
        project().options.package.assign("x");
        show_project_status(window(), project());
        const Window bar = xvt_win_get_ctl(window(), k_project_status);
        const Rect room = xvt_vobj_get_client_rect(bar);
        const char* unknown = "(none) [old  (not in the catalogue)] c1 c22 | "
                              "(none) [x (not in the catalogue)] | ";
        const char* c22 = "(none) old  (not in the catalogue) c1 [c22] | [(none)] p44 | ";
        const char* top = "Top design 'a.vhd' says: DEVICE c1, PACKAGE p9, GROUP -fs -fk.";
        use({{"Down", unknown}, {"2", "[c22] | [(none)] p44 | "}, {"Backspace", unknown}}, top);
        EXPECT_TRUE(choose_item(1160));
        EXPECT_EQ(set(), "old\n,x");
        EXPECT_TRUE(menus_have("&Undo adding 3 files")) << "nothing was touched";

        use({{"Alt+D", unknown},
             {"Up", "[(none)] old  (not in the catalogue) c1 c22 | [(none)] | "},
             {"Down", unknown},
             {"End", c22},
             {"Alt+F", c22},
             {"S", "[c1] | [(none)] p20 p44 | "},
             {"Alt+P", "[c1] | [(none)] p20 p44 | "},
             {"End", "[c1] | (none) p20 [p44] | "},
             {"Alt+F", "[c1] | (none) p20 [p44] | "},
             {"9", "| (none) p20 [p44] | "},
             {"Backspace", "(none) old  (not in the catalogue) [c1] c22 | (none) p20 [p44] | "}},
            top);
        click(bar, {room.right - 12, room.bottom / 2});
        EXPECT_EQ(set(), "c1,p44");
        EXPECT_EQ(status(), "Top design: a.vhd\tDevice: c1");
        EXPECT_TRUE(has_changed(open()));
        press_key("Ctrl+Z");
        EXPECT_EQ(set(), "old\n,x");
        EXPECT_EQ(status(), "Top design: a.vhd\tDevice: old\n");
        press_key("Ctrl+Y");

        use({{"Up", "(none) [c1] c22 | (none) p20 [p44] | "}}, top, "Alt+T");
        use({{"Up", "(none) [c1] c22 | (none) [p9 (not in the catalogue)] p20 p44 | "}}, top);
        xvt_vobj_set_focus(bar);
        press_key("Return");
        EXPECT_EQ(set(), "c1,p9");
        EXPECT_TRUE(project().options.has(OptionFlag::keep_polarity));
        use({{"Alt+D", "(none) [c1] c22 | (none) [p9 (not in the catalogue)] p20 p44 | "},
             {"Home", "[(none)] c1 c22 | [(none)] | "}},
            "Top design 'b.vhd' says nothing of a device.\n'a.vhd' says: DEVICE c1, PACKAGE p9, "
            "GROUP -fs -fk.");
        EXPECT_TRUE(set_top_design(project(), 1));
        EXPECT_TRUE(choose_item(1160));
        EXPECT_FALSE(project().options.device.present() || project().options.package.present());

        fs::remove("bin/devices.dat");
        fs::remove("a.vhd");
        fs::remove("c.vhd");
        user_.expect_on_screen("Device", [&] {
            EXPECT_EQ(user_.on_screen().rows.at(0).label, "Could not find 'devices.dat'.");
            press_key("Esc");
        });
        EXPECT_TRUE(choose_item(1160));
        use({{"z", "z"}, {"Alt+P", "z"}, {"y", "z,y"}},
            "Top design 'b.vhd' says nothing of a device.\nNo other file names a device.");
        EXPECT_TRUE(choose_item(1160));
        EXPECT_EQ(set(), "z,y");
        directory_.write("bin/devices.dat", "damaged");
        user_.expect_closed(QuestionKind::dialog, "Options");
        command(1156);
    });
}

TEST_F(ProjectWindow, KeepsItsPlaceInALongList) {
    for (int i = 100; i < 400; ++i)
        directory_.write("f" + std::to_string(i) + ".vhd", "");
    run([&] {
        command(1106);
        const Window list = project_list(window());
        xvt_list_set_focus_index(list, 150);
        select({150, 151});
        const int top = first_shown_entry(list);
        ASSERT_TRUE(top > 100 && top <= 150);
        press_key("Alt+Down");
        EXPECT_EQ(first_shown_entry(list), top);
        EXPECT_EQ(xvt_list_get_focus_index(list), 151);
        EXPECT_EQ(project().sources[151]->file_name.view(), "f250.vhd");
        select({152});
        EXPECT_TRUE(choose_item(1057));
        EXPECT_EQ(first_shown_entry(list), top);

        // Files that go and come while another program has the focus.
        for (const bool gone : {false, true, false}) {
            gone ? std::filesystem::remove("f103.vhd") : !directory_.write("f103.vhd", "").empty();
            xvt_win_dispatch_event(window(), Event{FocusEvent{true}});
            process_events();
            EXPECT_EQ(entries_of(open().looks, project()).at(3).is_faint, gone);
        }
    });
}

TEST_F(ProjectWindow, CarriesFilesToAnotherProject) {
    make_project_file(directory_.path("other"), "b.bpr");
    directory_.write("x.vhd", "x");
    directory_.write("y.vhd", "y");
    run([&] {
        command(1106);
        select({0, 1});
        EXPECT_TRUE(choose_item(1054));
        EXPECT_EQ(files(), "");
        std::filesystem::remove("y.vhd");
        ASSERT_TRUE(open_project_in(directory_.path("other"), "b.bpr"));
        process_events();
        const Window other = window_of_project(1);
        user_.expect(QuestionKind::error, "Error copying '*/y.vhd' to '*/other/y.vhd'.",
                     [&](const Question& question) {
                         EXPECT_EQ(status(other), "Copying '" + directory_.path("y.vhd") + "'");
                         return closed_answer(question);
                     });
        EXPECT_TRUE(choose_item(1056));
        EXPECT_EQ(status(other), "Top design: <none>\tDevice: ");
        EXPECT_EQ(xvt_list_count(project_list(other)), 2);
        EXPECT_EQ(directory_.read("other/x.vhd"), "x");
        // Another program's data under the format's name.
        const std::string hostile(40, '\xff');
        const ClipboardPart part{"VESF", std::as_bytes(std::span(hostile))};
        ASSERT_TRUE(xvt_cb_put({&part, 1}));
        process_events();
        user_.expect_error("The clipboard holds no files of a project.");
        EXPECT_TRUE(choose_item(1056));
        EXPECT_EQ(xvt_list_count(project_list(other)), 2);
    });
}

TEST_F(ProjectWindow, OpensItsFilesInEditorsAndClosesWithAllOrNone) {
    for (const char* name : {"a.vhd", "b.vhd", "c.vhd"})
        directory_.write(name, name);
    run([&] {
        const auto path = [&](const char* name) { return directory_.path(name); };
        const auto type = [&](const char* name) {
            EditorWindow* editor = find_editor(path(name));
            ASSERT_NE(editor, nullptr) << name;
            xvt_vobj_raise(editor->window());
            process_events();
            press_key("x");
        };
        walk({{"#1106", "[a.vhd] [b.vhd] [c.vhd]"}, {"=01", "[a.vhd] [b.vhd] c.vhd"}});
        press_key("Return");
        process_events();
        select({2});
        command(static_cast<int>(ProjectCommand::source_file));
        for (const char* name : {"a.vhd", "b.vhd", "c.vhd"})
            type(name);
        const Rect place{40, 50, 400, 600};
        move_frame(find_editor(path("c.vhd"))->window(), place);
        {
            ManualClock clock;
            clock.advance(300'000);
            process_events();
        }
        EXPECT_EQ(directory_.names("peltmp"),
                  (std::set<std::string>{"a.bpr", "a.bpr.base", "a.vhd", "a.vhd.base", "b.vhd",
                                         "b.vhd.base", "c.vhd", "c.vhd.base"}));
        // One refusal keeps all.
        user_.expect_ask("Quit Pellux?", "OK");
        user_.expect_ask("Save changes to '*/a.vhd'?", "Yes");
        user_.expect_ask("Save changes to '*/b.vhd'?", "No");
        user_.expect_closed(QuestionKind::ask, "Save changes to '*/c.vhd'?");
        EXPECT_FALSE(close_project(window()));
        EXPECT_EQ(directory_.read("a.vhd"), "xa.vhd");
        EXPECT_TRUE(find_editor(path("b.vhd"))->document().is_modified);
        // A text that gets another name is listed under it, as far as the list takes it.
        const auto choose_name = [&](const char* name) {
            user_.expect_files(QuestionKind::file_save, "Save VHDL text as...", path(""), {name});
        };
        select({0});
        command(static_cast<int>(ProjectCommand::toggle_top));
        type("a.vhd");
        choose_name("d.vhd");
        press_key("Ctrl+Shift+S");
        EXPECT_EQ(files(), "[*d.vhd] b.vhd c.vhd");
        choose_name("d e.vhd");
        user_.expect_error("'*/d e.vhd' can't be added: with a blank*");
        press_key("Ctrl+Shift+S");
        EXPECT_EQ(directory_.read("d e.vhd"), "xxa.vhd");
        command(static_cast<int>(ProjectCommand::undo));
        EXPECT_EQ(files(), "[*a.vhd] b.vhd c.vhd");
        user_.expect_ask("Quit Pellux?", "OK");
        user_.expect_ask("Save changes to '*/b.vhd'?", "No");
        user_.expect_ask("Save changes to '*/c.vhd'?", "Yes");
        EXPECT_TRUE(close_project(window()));
    });
    EXPECT_EQ(directory_.read("b.vhd"), "b.vhd");
    EXPECT_EQ(directory_.read("c.vhd"), "xc.vhd");
    EXPECT_TRUE(directory_.names("peltmp").empty());
    run([&] {
        select({2});
        press_key("Return");
        process_events();
        EXPECT_EQ(xvt_vobj_get_outer_rect(find_editor(directory_.path("c.vhd"))->window()),
                  (Rect{40, 50, 400, 600}));
        user_.expect_ask("Quit Pellux?", "OK");
        EXPECT_TRUE(close_project(window()));
    });
}

/// The program is cut off twice: what it left is offered when the project is opened, and in one
/// list.
TEST_F(ProjectWindow, OffersWhatACrashHasLeft) {
    constexpr int k_restore = 2;
    constexpr int k_compare = 3;
    constexpr int k_delete = 4;
    Window left = Window::none;
    const auto left_works = [&] {
        left = offer_left_work();
        process_events();
        std::string works;
        const Window list = xvt_win_get_ctl(left, 1);
        for (int i = 0; left != Window::none && i < xvt_list_count(list); ++i) {
            const std::string item = xvt_list_get_item(list, i).c_str();
            works += fs::path(item.substr(0, item.find("  (backup of 2"))).filename().string();
            works += "\n";
        }
        return works;
    };
    const auto press = [&](int button) { click(xvt_win_get_ctl(left, button), {9, 9}); };
    const std::string path = directory_.write("b.vhd", "b");
    begin_register();
    run([&] {
        command(static_cast<int>(ProjectCommand::add_all));
        open_editor(window(), path);
        type_text("x");
        open_new_editor(window());
        type_text("new");
        save_all_work();
    });
    begin_register();
    in_application([&] {
        start_workspace({.insert_tools_menu = [](void*, Window) {}});
        EXPECT_EQ(left_works(), "b.vhd\nuntitled\na.bpr\n");
        press(k_compare);
        EXPECT_EQ(shown_text(), "@ 1\n- b\n+ xb\n");
        user_.expect_ask("Delete the backup of '" + path + "'?", "OK");
        press(k_delete);
        EXPECT_FALSE(fs::exists(directory_.path("peltmp/b.vhd")));
        press(k_restore);
        EXPECT_EQ(shown_text(), "new");
        type_text("er ");
        save_all_work();
    });
    begin_register();
    user_.expect_ask("Backup of 'a.bpr' is newer.  Restore from it?", "Yes");
    run([&] {
        EXPECT_EQ(files(), "b.vhd");
        EXPECT_TRUE(has_changed(open()));
        EXPECT_EQ(left_works(), "untitled\n");
        press(k_restore);
        EXPECT_EQ(shown_text(), "er new");
        EXPECT_EQ(left_works(), "");
        user_.expect_ask("Quit Pellux?", "OK");
        user_.expect_ask("Save new file?", "No");
        EXPECT_TRUE(close_project(window()));
    });
    end_register();
    EXPECT_FALSE(fs::exists(directory_.path("peltmp")));
    EXPECT_TRUE(fs::is_empty(settings_.path("pellux/copies")));
}

TEST_F(ProjectWindow, SearchesItsFiles) {
    const int all = static_cast<int>(ProjectCommand::search_project);
    const auto search = [&]() -> SearchWindow& { return *find_search_window(window(), all); };
    const auto searched = [&] {
        while (search().is_running())
            process_events();
        return std::string(xvt_vobj_get_title(xvt_win_get_ctl(search().window(), 2)));
    };
    const auto found = [&] { return std::string(view(copy_text(search().document(), 0, 300))); };
    run([&] {
        const int in_directory = static_cast<int>(ProjectCommand::search_vhdl);
        const std::string title = "Search project 'a.bpr'";
        user_.expect_error("Project 'a.bpr' is empty.");
        command(all);
        user_.expect_error("No VHDL files in '*'.");
        command(in_directory);
        EXPECT_FALSE(can(static_cast<int>(ProjectCommand::search_selected)));

        directory_.write("a.vhd", "  signal Count\n\tcount + count\n");
        directory_.write("b.vhd", std::string(500, '-') + "R\xC9"
                                                          "count\xE9 counter\r\n\r\nCOUNT\r\n");
        for (const char* name : {"c.vhd", "pipe.vhd", "sub.vhd"})
            directory_.write(name, "");
        command(1106);
        for (const char* name : {"c.vhd", "pipe.vhd", "sub.vhd"})
            std::filesystem::remove(name);
        std::filesystem::create_directory("sub.vhd");
        ASSERT_EQ(mkfifo("pipe.vhd", 0600), 0);
        EditorWindow* editor = open_editor(window(), directory_.path("a.vhd"));
        const auto chosen = [&](std::int64_t line, std::string_view text) {
            const TextEditing& editing = editor->view().editing;
            return caret_line(editing) == line && view(selected_text(editing)) == text;
        };
        type_text("count");
        press_key("Shift+Home");
        user_.expect(QuestionKind::dialog, title, [](const Question& question) {
            EXPECT_EQ(question.rows.at(0).value, "count");
            Answer answer = closed_answer(question);
            answer.button = 0;
            answer.rows = question.rows;
            return answer;
        });
        command(all);
        EXPECT_EQ(searched(), "5 matches in 2 of 5 files, 3 can't be read\t'count'");
        user_.expect_dialog(title, "Search", {{1, ""}});
        user_.expect_note("No search text given.");
        user_.expect_dialog(title, "Search", {{1, "count"}, {2, "", 1}, {3, "", 1}});
        command(all);
        EXPECT_EQ(searched(), "5 matches in 2 of 5 files, 3 can't be read\t'count'"
                              "\tIgnore case\tWhole word");
        EXPECT_EQ(found(), "a.vhd\n     1\tcount  signal Count\n     2\tcount + count\n"
                           "b.vhd\n     3\tCOUNT\n"
                           "Can't read 'c.vhd': No such file or directory.\n"
                           "Can't read 'pipe.vhd': Operation not supported.\n"
                           "Can't read 'sub.vhd': Is a directory.\n");
        const Window list = search().window();
        press_key("Ctrl+Home");
        press_key("Return");
        EXPECT_TRUE(chosen(0, "count")) << "from the name of the file";
        xvt_vobj_raise(list);
        process_events();
        const int row = search().view().line_height;
        double_click(xvt_win_get_ctl(list, 9001), {9 * row, 5 * row / 2});
        EXPECT_TRUE(chosen(1, "count"));
        press_key("Ctrl+Home");
        press_key("Return");
        press_key("Shift+F4");
        press_key("F4");
        EXPECT_TRUE(chosen(2, "count")) << "its line has moved";
        xvt_vobj_raise(list);
        press_key("F5");
        searched();
        EXPECT_EQ(found().substr(0, 20), "a.vhd\n     2\tcount  ");

        press_key("Escape");
        EXPECT_FALSE(xvt_vobj_is_valid(list));

        // Many files, and a large text that changes while it is searched.
        for (int i = 0; i < 3000; ++i)
            directory_.write("f" + std::to_string(i) + ".vhd", "count\n");
        command(1106);
        insert_bytes(editor->document(), 0, std::string(20'000'000, '-'));
        static int stats = 0;
        set_file_fault_hook(
            [](void*, FileOperation operation, std::string_view path, std::size_t&) {
                stats += operation == FileOperation::stat && path.ends_with("/a.vhd") ? 1 : 0;
                return SystemError::none;
            },
            nullptr);
        user_.expect_dialog(title, "Search");
        xvt_win_dispatch_event(window(), Event{CommandEvent{all}});
        for (int i = 0; i < 3; ++i) {
            run_turn(TurnWait::none);
            insert_bytes(editor->document(), 0, "count\n");
        }
        EXPECT_EQ(searched().substr(0, 28), "3008 matches in 3002 of 3005");
        set_file_fault_hook(nullptr, nullptr);
        EXPECT_LT(stats, 300);
        EXPECT_EQ(found().substr(0, 20), "a.vhd\n     1\tcount\n ");
        // One that is stopped, and one whose editor and project go meanwhile.
        std::filesystem::resize_file("f0.vhd", 10'000'000'000);
        const auto press = [pane = xvt_win_get_ctl(search().window(), 9001)](int code) {
            xvt_win_dispatch_event(pane, Event{CharacterEvent{.code = code}});
            run_turn(TurnWait::none);
        };
        press(405);
        press(27);
        EXPECT_EQ(searched().substr(0, 8), "Stopped:");
        press(405);
        editor->close_now();
        run_turn(TurnWait::none);
        xvt_vobj_destroy(window());
    });
}

TEST_F(ProjectWindow, KeepsItsFontAndItsPage) {
    constexpr const char* k_setup = "Print setup";
    run([&] {
        Font_spec& font = project().list_font;
        font.face.assign("\xff%s\n");
        font.size = font.style = std::numeric_limits<int>::min();
        EXPECT_TRUE(choose_item(1046));
        xvt_vobj_destroy(window());
        ASSERT_TRUE(open_project_here("a.bpr"));
        process_events();
        EXPECT_EQ(project().list_font.size, std::numeric_limits<int>::min());
        Font chosen = xvt_font_get_fixed();
        chosen.size = 14;
        chosen.style = static_cast<std::uint16_t>(FontStyle::bold);
        user_.expect_font("*", chosen);
        user_.expect_closed(QuestionKind::font, "*");
        user_.expect_dialog(k_setup, "Cancel", {{1, "", 0}});
        EXPECT_TRUE(choose_item(32051) && choose_item(32051) && choose_item(1048));
        Vector<std::byte>& kept = project().print_record;
        EXPECT_TRUE(kept.empty());
        kept.assign(3, std::byte{7});
        user_.expect_dialog(k_setup, "OK", {{1, "", 2}, {3, "", 1}});
        EXPECT_TRUE(choose_item(1048) && choose_item(1046));
        const Owned<Project> read = read_project("a.bpr");
        EXPECT_EQ(read->list_font.face.view(), view(xvt_font_get_family(chosen)));
        EXPECT_TRUE(read->list_font.size == 14 && read->list_font.style == 1);
        PrintRecord record;
        ASSERT_TRUE(read_print_record(read->print_record, record));
        EXPECT_EQ(record, (PrintRecord{Paper::a5, Orientation::landscape}));
        // What a later version says besides stays, as long as nothing else is chosen.
        for (const char c : std::string_view("PRINTER=lp\n"))
            kept.push_back(static_cast<std::byte>(c));
        const Vector<std::byte> longer = kept;
        user_.expect_dialog(k_setup, "OK");
        EXPECT_TRUE(choose_item(1048));
        EXPECT_EQ(kept, longer);
    });
}

TEST_F(ProjectWindow, ShowsTheFilesAboutItsTopDesign) {
    directory_.write("x.vhd", "x");
    directory_.write("x.rpt", "a report");
    run([&] {
        walk({{"#1106", "[x.vhd]"}});
        EXPECT_FALSE(can(1104));
        walk({{"#1150", "[*x.vhd]"}});
        EXPECT_FALSE(can(1043));
        for (const char* text : {"a report", "anew"}) {
            directory_.write("x.rpt", text);
            EXPECT_TRUE(choose_item(1104));
            EXPECT_EQ(shown_text(), text);
            xvt_vobj_raise(window());
        }
        EXPECT_TRUE(choose_item(1104));
        directory_.write("x.ctl", "first\n" + std::string(300'000, '\n'));
        press_key("Esc");
        EXPECT_EQ(shown_text(), "") << "there was a second viewer";
        EXPECT_TRUE(can(1043)) << "the window has the focus again";
        EXPECT_TRUE(choose_item(1043));
        EXPECT_EQ(shown_text(), directory_.read("x.ctl"));
        xvt_vobj_raise(window());
        std::filesystem::remove("x.rpt");
        user_.expect_error("Can't read '*/x.rpt': No such file or directory.");
        EXPECT_TRUE(choose_item(1104));
        xvt_vobj_destroy(window());
        process_events();
        EXPECT_EQ(shown_text(), "") << "the viewers go with their project";
    });
}

TEST_F(ProjectWindow, TellsWhichToolsRun) {
    const std::string own = "Pellux " PELLUX_VERSION ", " PELLUX_BINARY_DIR "\n";
    directory_.write("bin/BRIX.EXE", "");
    run([&] {
        EXPECT_TRUE(choose_item(1102) && wait_for_text("/ghdl"));
        EXPECT_TRUE(shown_text().starts_with(own));
        xvt_vobj_raise(window());
        const test::ScopedVariable other("VELMORA_DIR", top_.c_str());
        EXPECT_TRUE(choose_item(1102));
        EXPECT_EQ(shown_text(), own + "Can't run '" + top_ + "/bin/BRIX.EXE'.\n");
        press_key("Esc");
        EXPECT_EQ(shown_text(), "");
    });
}

} // namespace
} // namespace pellux
