#include "tests/support/run_program.h"
#include "tests/windows/workspace/project_files.h"
#include "windows/editor/open_editors.h"
#include "windows/toolkit/control.h"
#include "windows/toolkit/window.h"
#include "windows/workspace/project_menus.h"
#include "windows/workspace/project_view.h"

#include <map>
#include <sstream>

namespace pellux {
namespace {

using Fields = std::map<std::string, std::string>;

class Options : public test::Projects {
protected:
    /// As its key or menu item would; a key waits for the window to be in front.
    static void command(ProjectCommand tag) {
        xvt_win_dispatch_event(window(), Event{CommandEvent{static_cast<int>(tag)}});
        process_events();
    }
    /// What `bpr show` tells of the saved project, by name; those of sources with their number.
    static Fields saved() {
        command(ProjectCommand::save);
        std::istringstream lines(run_program("bpr", {"show", "a.bpr"}).text);
        int source = 0;
        bool is_source = false;
        Fields fields;
        for (std::string line; std::getline(lines, line);) {
            source += line == "      {" ? 1 : 0;
            is_source = source > 0 && (is_source || line == "      {") && line != "    ],";
            const std::size_t name = line.find('"') + 1;
            const std::size_t end = line.find("\": ", name);
            if (name == 0 || end == line.npos)
                continue;
            const std::string key = line.substr(name, end - name);
            std::string value = line.substr(end + 3);
            if (value.ends_with(','))
                value.pop_back();
            fields[is_source ? key + std::to_string(source) : key] = value;
        }
        return fields;
    }
    /// "name value" of each field that is another one, of `flags` "bits" and the bits.
    static std::string changes(const Fields& before, const Fields& after) {
        std::string told;
        for (const auto& [name, value] : after) {
            const auto old = before.find(name);
            if (old != before.end() && old->second == value)
                continue;
            told += (told.empty() ? "" : " ") + (name == "flags" ? "bits" : name);
            if (name != "flags") {
                told += " " + value;
                continue;
            }
            const long bits = std::stol(value) ^ std::stol(old->second);
            for (int bit = 0; bit < 32; ++bit)
                told += (bits >> bit & 1) != 0 ? " " + std::to_string(bit) : "";
        }
        return told;
    }
    /// Keys by name, and texts to type in quotes.
    static void press_all(const std::string& keys) {
        std::istringstream words(keys);
        for (std::string word; words >> word;) {
            if (word.starts_with('\''))
                type_text(word.substr(1, word.size() - 2));
            else
                press_key(word);
            process_events();
        }
    }
    void set(const char* title, ProjectCommand dialog, const std::string& keys) {
        user_.expect_on_screen(title, [keys] { press_all(keys); });
        command(dialog);
    }
};

struct OptionRow {
    const char* keys; ///< behind the keys that lead to the page
    const char* changes;
};
constexpr OptionRow k_compiler[] = {
    {"Alt+V Down Down Down Down", "vhdl_standard 8"},
    {"Alt+R", "bits 24"},
    {"Alt+P", "bits 18"},
    {"Alt+E Ctrl+A '7'", "error_limit 7"},
    {"Alt+W Ctrl+A '12'", "warning_limit 12"},
    {"Alt+E Ctrl+A Del", "error_limit 0"},
    {"Alt+Q", "bits 2"},
    {"Alt+U", "bits 15"},
    {"Alt+U Tab Space Alt+U", "bits 0"},
    {"Alt+U Tab Tab Space Alt+U", "bits 1"},
    {"Alt+U Tab Tab Tab Space Alt+U", "bits 10"},
    {"Alt+U Tab Tab Tab Tab Space Alt+U", "bits 25"},
    {"Alt+U Tab Tab Tab Tab Tab Space Alt+U", "bits 13"},
    {"Alt+U Tab Tab Tab Tab Tab Tab Space Alt+U", "bits 17"},
    {"Alt+G Up", "bits 16"},
    {"Alt+L Up Up", "optimise_level 1"},
    {"Alt+X", "bits 3"},
    {"Alt+D", "bits 4"},
    {"Alt+T", "bits 5"},
    {"Alt+O", "bits 6"},
    {"Alt+Y Down", "bits 7"},
    {"Alt+F", "bits 8"},
    {"Alt+C Tab '3'", "factor_limit 3 bits 9"},
    {"Alt+N Tab Ctrl+A '32767'", "bits 11 node_limit 32767"},
    {"Alt+S Down Down", "unused_outputs 1"},
};
constexpr OptionRow k_editor[] = {
    {"Alt+H", "bits 19"},
    {"Alt+K Down", "keyword_colour 33488896"},
    {"Alt+B", "bits 26"},
    {"Alt+I", "bits 27"},
    {"Alt+U", "bits 20"},
    {"Alt+C Home", "comment_colour 117440512"},
    {"Alt+D", "bits 28"},
    {"Alt+T", "bits 29"},
    {"Alt+P", "bits 21"},
    {"Alt+R End", ""}, // goes past what asks for another colour
    {"Alt+R Down", "text_colour 50331903"},
    {"Alt+W Ctrl+A '4'", "tab_width 4"},
    {"Alt+N Ctrl+A '32767'", "undo_limit 32767"},
    {"Alt+L", "bits 22"},
    {"Alt+S", "bits 14"},
    {"Alt+E", "bits 23"},
};
constexpr OptionRow k_simulation[] = {
    {"Alt+S 'none'", "simulator \"none\""},
    {"Alt+S Ctrl+A Del", "simulator null"},
    {"Alt+W", "bits 12"},
    {"Alt+T 'tb'", "text_12 \"tb\""},
    {"Alt+T Ctrl+A Down", "text_12 \"first\""},
};

TEST_F(Options, EachFieldIsSetByKeysAndSavedAlone) {
    directory_.write("a.vhd", "entity second is end; entity first is end;");
    run([&] {
        ASSERT_EQ(add_source(project(), "a.vhd").status, AddStatus::added);
        ASSERT_NE(open_editor(window(), directory_.path("a.vhd")), nullptr);
        std::string page;
        for (const std::span<const OptionRow> rows :
             {std::span<const OptionRow>(k_compiler), std::span<const OptionRow>(k_editor),
              std::span<const OptionRow>(k_simulation)}) {
            for (const OptionRow& row : rows) {
                const Fields before = saved();
                set("Options", ProjectCommand::options, page + row.keys + " Return");
                EXPECT_EQ(changes(before, saved()), row.changes) << row.keys;
            }
            page += "Ctrl+PgDown ";
        }
        EXPECT_EQ(front_editor(window())->view().editing.undo_limit, 32767);
        // What the buttons do: the keys until one is pressed, and those behind it.
        const std::pair<std::vector<const char*>, const char*> ends[] = {
            {{"Alt+R Alt+A", "Esc"}, "bits 24"},
            {{"Alt+R Esc"}, ""},
            {{"Alt+L Ctrl+A '32768' Alt+A Return Ctrl+PgDown Alt+W Ctrl+A Del Return Esc"}, ""},
        };
        for (const auto& [keys, what] : ends) {
            const Fields before = saved();
            for (const char* part : keys)
                user_.expect_on_screen("Options", [part] { press_all(part); });
            command(ProjectCommand::options);
            EXPECT_EQ(changes(before, saved()), what) << keys.front();
        }
        user_.expect_dialog("Options", "Restore defaults");
        user_.expect_dialog("Options", "OK");
        const Fields set_by_hand = saved();
        command(ProjectCommand::options);
        EXPECT_EQ(changes(set_by_hand, saved()),
                  "factor_limit 0 bits 0 1 2 3 4 5 6 7 8 9 10 11 13 15 16 17 18 25 node_limit 0 "
                  "optimise_level -1 unused_outputs -1 vhdl_standard -1 warning_limit 0");
        // All of it is taken back and made again, step by step.
        const Fields last = saved();
        const std::size_t steps = open().history.past.size();
        while (!open().history.past.empty())
            command(ProjectCommand::undo);
        EXPECT_EQ(project().options.flags, k_new_project_flags);
        EXPECT_EQ(front_editor(window())->view().editing.undo_limit, k_undo_limit);
        for (std::size_t i = 0; i < steps; ++i)
            command(ProjectCommand::redo);
        EXPECT_EQ(changes(last, saved()), "");
    });
}

TEST_F(Options, FilesKeepWhatIsNotTouched) {
    struct Row {
        Vector<int> selected;
        const char* keys;
        const char* changes;
    };
    const Row rows[] = {
        {{0}, "Alt+L Ctrl+A 'dsp' Alt+T", "library1 \"dsp\" top_design 0"},
        {{1}, "Alt+N 'for_the_board'", "note2 \"for_the_board\""},
        {{0, 1, 2}, "", ""},
        {{0, 1, 2}, "Alt+N 'x'", "note1 \"x\" note2 \"x\" note3 \"x\""},
        {{1, 2},
         "Alt+L Ctrl+A 'std' Return Ctrl+A 'a-b' Return Ctrl+A 'mine'",
         "library2 \"mine\" library3 \"mine\""},
        {{0, 1, 2}, "Alt+L Ctrl+A 'work'", "library1 null library2 null library3 null"},
        {{0}, "Alt+T Alt+N Ctrl+A Del", "note1 null top_design null"},
    };
    run([&] {
        for (const char* name : {"a.vhd", "b.vhd", "c.vhd"})
            ASSERT_EQ(add_source(project(), name).status, AddStatus::added);
        show_sources(window(), {});
        const Fields first = saved();
        for (const Row& row : rows) {
            const Fields before = saved();
            xvt_list_set_selected(project_list(window()), row.selected);
            xvt_win_dispatch_event(window(), Event{ClipboardEvent{}});
            set("File Options", ProjectCommand::file_options, std::string(row.keys) + " Return");
            EXPECT_EQ(changes(before, saved()), row.changes) << row.keys;
        }
        for (int i = 0; i < 6; ++i)
            command(ProjectCommand::undo);
        EXPECT_EQ(changes(first, saved()), "");
    });
}

} // namespace
} // namespace pellux
