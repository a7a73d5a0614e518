#include "core/project/source_list.h"

#include "core/project/project_file.h"
#include "core/project/project_state.h"
#include "core/project/source_clipboard.h"
#include "core/project/source_history.h"
#include "tests/support/file_faults.h"
#include "tests/support/rounds.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace pellux {
namespace {

namespace fs = std::filesystem;
using test::TemporaryDirectory;

struct Row {
    std::string name;
    bool selected = false;
    bool top = false;
    std::string note = {}; ///< no two of them are alike, so that it tells which source it is
    std::string library = {};
    int tab_width = k_tab_width;
    int flags = k_new_project_flags;
    bool operator==(const Row&) const = default;
};
using Rows = std::vector<Row>;

Rows rows_of(const Project& project, Selection selection) {
    Rows rows;
    for (const auto& source : project.sources)
        rows.push_back({source->file_name.c_str(), false, source.get() == project.top_design,
                        source->note.c_str(), source->options.library.c_str(),
                        source->options.tab_width, source->options.flags});
    for (const std::size_t index : selection)
        rows.at(index).selected = true;
    return rows;
}

/// The selected rows step towards the front of the range.
template <typename Iterator>
void move_model(Iterator begin, Iterator end) {
    for (Iterator row = begin; row != end; ++row)
        if (row != begin && row->selected && !std::prev(row)->selected)
            std::iter_swap(row, std::prev(row));
}

TEST(SourceList, RandomCommandsAgreeWithAPlainList) {
    const test::Rounds rounds(100000);
    SCOPED_TRACE("PELLUX_SEED=" + std::to_string(rounds.seed));
    std::mt19937 random(rounds.seed);
    const auto draw = [&](std::size_t below) { return random() % below; };
    auto project = make_owned<Project>();
    project->directory = "/p/q";
    Vector<std::size_t> selection;
    Rows model;
    SourceHistory history;
    std::vector<Rows> past, future;
    for (int round = 0; round < rounds.count; ++round) {
        SourceOrder before = order_of(*project);
        Rows rows_before = model;
        Vector<Owned<VHDL_source>> removed;
        bool is_step = false; // of the history itself
        switch (draw(10)) {
        case 0: {
            SourceIndex index = index_sources(*project);
            for (std::size_t count = draw(4); count > 0; --count) {
                const std::string name = "f" + std::to_string(draw(30)) + ".vhd";
                constexpr const char* k_inside[] = {"", "./", "s//../", "/p/q/", "../q/./"};
                constexpr const char* k_outside[] = {"../x/", "/p/x/", "../../p/x/"};
                const bool inside = draw(2) == 0;
                const std::string path = (inside ? k_inside[draw(5)] : k_outside[draw(3)]) + name;
                const std::string entry = (inside ? "" : "../x/") + name;
                const auto at = std::find_if(model.begin(), model.end(),
                                             [&](const Row& row) { return row.name == entry; });
                const AddResult result = add_source(*project, index, path);
                ASSERT_EQ(result.index, static_cast<std::size_t>(at - model.begin())) << path;
                ASSERT_EQ(result.status,
                          at == model.end() ? AddStatus::added : AddStatus::already_listed);
                if (at != model.end())
                    continue;
                const std::string note = std::to_string(round) + "," + std::to_string(count);
                model.push_back({entry, false, false, note});
                project->sources.back()->note.assign(note);
            }
            break;
        }
        case 1:
            if (draw(3) == 0) {
                removed = remove_sources(*project, selection);
                selection.clear();
                std::erase_if(model, [](const Row& row) { return row.selected; });
            }
            break;
        case 2:
            selection = move_sources_up(*project, selection);
            move_model(model.begin(), model.end());
            break;
        case 3:
            selection = move_sources_down(*project, selection);
            move_model(model.rbegin(), model.rend());
            break;
        case 4: {
            const std::size_t index = draw(model.size() + 1);
            ASSERT_EQ(set_top_design(*project, index), index < model.size());
            if (index == model.size())
                clear_top_design(*project);
            for (Row& row : model)
                row.top = &row == model.data() + index;
            break;
        }
        case 5:
            if (draw(100) == 0) {
                const Vector<std::byte> image = project_image(*project);
                ProjectHeader header;
                project = read_project(image, "image", header);
                ASSERT_NE(project, nullptr);
                ASSERT_EQ(project_image(*project), image);
                project->directory = "/p/q";
                history = {};
                past.clear();
                future.clear();
                is_step = true;
            }
            break;
        case 6:
        case 7: {
            const bool back = draw(2) == 0;
            std::vector<Rows>& from = back ? past : future;
            ASSERT_EQ(back ? undo_change(history, *project) : redo_change(history, *project),
                      !from.empty());
            is_step = true;
            if (from.empty())
                break;
            (back ? future : past).push_back(std::exchange(model, from.back()));
            from.pop_back();
            for (Row& row : model)
                row.selected = false;
            selection.clear();
            break;
        }
        case 8: {
            OptionValues from{Source_options(), NullableText("shown")};
            OptionValues to = from;
            const int width = static_cast<int>(draw(3));
            const int flags = static_cast<int>(draw(4));
            const std::string library = draw(2) == 0 ? "" : "l" + std::to_string(draw(3));
            to.options.tab_width = static_cast<std::int16_t>(k_tab_width + width);
            to.options.flags ^= flags;
            to.options.library.assign(library);
            before.options = change_source_options(*project, selection, from, to);
            for (Row& row : model) {
                if (!row.selected)
                    continue;
                row.tab_width = width == 0 ? row.tab_width : k_tab_width + width;
                row.flags = (row.flags & ~flags) | (to.options.flags & flags);
                row.library = library.empty() ? row.library : library;
            }
            break;
        }
        default:
            selection.clear();
            for (std::size_t i = 0, share = 1 + draw(6); i < model.size(); ++i)
                if ((model[i].selected = draw(share) == 0))
                    selection.push_back(i);
        }
        ASSERT_EQ(rows_of(*project, selection), model) << "command " << round;
        if (is_step)
            continue;
        note_change(history, std::move(before), *project, std::move(removed));
        const auto is_same = [](const Row& a, const Row& b) {
            return a.note == b.note && a.top == b.top && a.library == b.library &&
                   a.tab_width == b.tab_width && a.flags == b.flags;
        };
        if (!std::ranges::equal(rows_before, model, is_same)) {
            future.clear();
            past.push_back(std::move(rows_before));
            if (past.size() > k_history_max)
                past.erase(past.begin());
        }
        ASSERT_TRUE(is_whole(history, *project)) << "command " << round;
    }
}

TEST(SourceList, AddingObeysTheRulesOfNames) {
    Project project;
    EXPECT_EQ(add_source(project, "a.vhd").status, AddStatus::impossible_name);
    project.directory = "/my home/a/p/";
    const std::string longest(k_source_name_max, 'n');
    constexpr AddStatus k_impossible = AddStatus::impossible_name;
    struct Case {
        std::string path;
        AddStatus status;
        std::string entry = {};
        std::string added_from = "\\my home\\a\\p";
    };
    const Case cases[] = {
        {"a.vhd", AddStatus::added, "a.vhd"},
        {"/my home/a/p/./sub/b.vhd", AddStatus::added, "sub/b.vhd", "\\my home\\a\\p\\sub"},
        {"/my home/a/x/y.vhd", AddStatus::added, "../x/y.vhd", "\\my home\\a\\x"},
        {"/c.vhd", AddStatus::added, "../../../c.vhd", "\\"},
        {"c.pla", AddStatus::pla_not_alone},
        {"\xE4\"'%s%n.vhd", AddStatus::added, "\xE4\"'%s%n.vhd"},
        {"-ga.vhd", AddStatus::added, "./-ga.vhd"},
        {longest, AddStatus::added, longest},
        {longest + "n", AddStatus::too_long},
        {"/other dir/z.vhd", AddStatus::holds_blank},
        {"a b.vhd", AddStatus::holds_blank},
        {"a\tb.vhd", AddStatus::holds_blank},
        {"a\n", AddStatus::holds_blank},
        {std::string("a\0.vhd", 6), AddStatus::holds_blank},
        {"\x7F.vhd", AddStatus::holds_blank},
        {"", k_impossible},
        {"/", k_impossible},
        {"sub/", k_impossible},
        {"x/..", k_impossible},
        {"/my home/a/p", k_impossible},
        {"/my home/a", k_impossible},
        {"/my home", k_impossible},
    };
    std::size_t count = 0;
    for (const Case& row : cases) {
        const AddResult result = add_source(project, row.path);
        EXPECT_EQ(result.status, row.status) << row.path;
        count += row.status == AddStatus::added ? 1 : 0;
        ASSERT_EQ(project.sources.size(), count) << row.path;
        if (row.status != AddStatus::added)
            continue;
        const VHDL_source& source = *project.sources.back();
        EXPECT_EQ(source.file_name.view(), row.entry);
        EXPECT_EQ(source.added_from.view(), row.added_from);
        EXPECT_EQ(source.kind, SourceKind::vhdl);
        EXPECT_EQ(source.options.flags, k_new_project_flags);
    }
}

TEST(SourceList, PlaFilesStandAloneAndAddAllTakesVhdFilesOfAnyCase) {
    const TemporaryDirectory directory;
    for (const char* name : {"b.vhd", "A.VHD", "c.vhdl", "vhd", "d.vhd.old", "e.x.VhD"})
        directory.write(name, "");
    fs::create_directory(directory.path("dir.vhd"));
    fs::create_symlink("b.vhd", directory.path("link.vhd"));
    fs::create_symlink("nowhere", directory.path("dangling.vhd"));
    fs::create_directory_symlink(directory.path(), directory.path("way"));
    Vector<String> names;
    ASSERT_FALSE(failed(list_vhdl_files(directory.path(), names)));
    EXPECT_EQ(names, (Vector<String>{"A.VHD", "b.vhd", "e.x.VhD", "link.vhd"}));
    EXPECT_TRUE(is_missing(list_vhdl_files(directory.path("none"), names)));
    EXPECT_EQ(names.size(), 4U);
    EXPECT_EQ(view(resolved_place(directory.path("way/link.vhd"))), directory.path("link.vhd"));

    Project project;
    project.directory = directory.path();
    for (const char* name : {"chip.pla", "b.vhd"}) {
        EXPECT_TRUE(may_add_vhdl(project) && may_add_pla(project));
        EXPECT_EQ(add_source(project, name).status, AddStatus::added);
        EXPECT_EQ(may_add_vhdl(project), std::string_view(name) == "b.vhd");
        EXPECT_FALSE(may_add_pla(project));
        const bool is_pla = project.sources.front()->kind == SourceKind::pla;
        EXPECT_EQ(is_pla, std::string_view(name) == "chip.pla");
        const auto again = [&](const char* other) { return add_source(project, other).status; };
        EXPECT_EQ(again(name), AddStatus::already_listed);
        EXPECT_EQ(again("other.pla"), AddStatus::pla_not_alone);
        EXPECT_EQ(again("z.vhd"), is_pla ? AddStatus::beside_pla : AddStatus::added);
        const std::size_t with_some_beyond[] = {0, 1, 9};
        remove_sources(project, with_some_beyond);
    }
}

TEST(SourceList, HostileClipboardDataIsRefusedWhole) {
    const SourceClipboard written{"/p", {"a.vhd", "../x/b.vhd", "\xE4 \n.vhd"}};
    Vector<std::byte> bytes;
    ASSERT_TRUE(write_source_clipboard(written, bytes));
    SourceClipboard read;
    const auto is_read = [&read](const Vector<std::byte>& data) {
        read = {"before", {}};
        const bool done = read_source_clipboard(data, read);
        EXPECT_EQ(done, read.directory != "before");
        return done;
    };
    ASSERT_TRUE(is_read(bytes));
    EXPECT_EQ(read.directory, written.directory);
    EXPECT_EQ(read.names, written.names);
    for (const char* name : {"/.vhd", "a.vh\0", "vhd/.", "vh/..", "vhdl/"}) {
        Vector<std::byte> damaged = bytes;
        std::memcpy(damaged.data() + 22, name, 5);
        EXPECT_FALSE(is_read(damaged)) << name;
    }
    Vector<std::byte> many;
    ASSERT_TRUE(write_source_clipboard({"/p", Vector<String>(65536, "a")}, many));
    ASSERT_TRUE(is_read(many));
    many[14] = std::byte{1};
    many.insert(many.end(), many.end() - 5, many.end());
    EXPECT_FALSE(is_read(many));
    const Vector<std::byte> before = bytes;
    for (const SourceClipboard& data :
         {SourceClipboard{"p", {"a.vhd"}}, SourceClipboard{"/p", {""}},
          SourceClipboard{"/p", {"/etc/x"}}, SourceClipboard{"/p", {String(4096, 'n')}},
          SourceClipboard{"/p", Vector<String>(65537, "a")},
          SourceClipboard{"/p", Vector<String>(4200, String(4000, 'a'))}})
        EXPECT_FALSE(write_source_clipboard(data, bytes));
    EXPECT_EQ(bytes, before);
}

TEST(SourceList, PastingCopiesWhatTheProjectsDirectoryLacks) {
    const TemporaryDirectory root;
    for (const char* name :
         {"a/new.vhd", "a/both.vhd", "a/sub/both.vhd", "a/sub/deep.vhd", "a/x/deep.vhd",
          "b/both.vhd", "b/sub/both.vhd", "b/..d/x.vhd", "out.vhd"})
        root.write(name, name);
    fs::permissions(root.path("a/new.vhd"), fs::perms(0700));
    Project from;
    from.directory = root.path("a");
    for (const std::string& name :
         std::vector<std::string>{"new.vhd", "both.vhd", "sub/both.vhd", "sub/deep.vhd",
                                  "x/deep.vhd", root.path("out.vhd")})
        (from.sources.emplace_back(make_owned<VHDL_source>()))->file_name.assign(name);
    const std::size_t all[] = {0, 1, 2, 3, 4, 5, 6};
    SourceClipboard clipboard = copy_sources(from, all);
    ASSERT_EQ(clipboard.names.back(), "../out.vhd");
    for (const char* name : {"two words.vhd", "none.vhd", "../b/at.vhd", "..d/x.vhd"})
        clipboard.names.emplace_back(name);
    Project project;
    EXPECT_TRUE(plan_paste(project, clipboard).empty());
    project.directory = root.path("b");
    std::string done;
    for (const PasteStep& step : plan_paste(project, clipboard)) {
        if (step.copies)
            done +=
                failed(copy_source_file(view(step.from), view(step.to))) ? "failed " : "copied ";
        if (add_source(project, view(step.to)).status == AddStatus::added)
            done += "added " + std::string(project.sources.back()->file_name.view());
        done += "\n";
    }
    EXPECT_EQ(done, "copied added new.vhd\n"
                    "added both.vhd\n"
                    "added sub/both.vhd\n"
                    "copied added deep.vhd\n"
                    "failed \n"
                    "added ../out.vhd\n"
                    "\n"
                    "failed added none.vhd\n"
                    "added at.vhd\n"
                    "added ..d/x.vhd\n");
    EXPECT_EQ(root.read("b/new.vhd") + root.read("b/deep.vhd") + root.read("b/both.vhd"),
              "a/new.vhda/sub/deep.vhdb/both.vhd");
    EXPECT_EQ(fs::status(root.path("b/new.vhd")).permissions(), fs::perms(0700));
    for (const PasteStep& step : plan_paste(from, clipboard))
        EXPECT_FALSE(step.copies) << "a file onto itself: " << step.to;
}

TEST(SourceList, ACopyIsWholeOrNotThere) {
    const TemporaryDirectory root;
    const std::string from = root.write("a.vhd", std::string(100000, 'a'));
    const std::string to = root.path("b.vhd");
    fs::create_symlink("nowhere", root.path("dangling"));
    EXPECT_TRUE(is_taken(copy_source_file(from, root.path("dangling"))));
    EXPECT_TRUE(failed(copy_source_file(root.path(), to)));
    int failures = 0;
    for (;; ++failures) {
        int left = failures + 1;
        const test::FileFaults faults([&left](FileOperation, std::string_view) {
            return --left == 0 ? SystemError{ENOSPC} : SystemError::none;
        });
        const SystemError error = copy_source_file(from, to);
        const bool is_whole = root.read("b.vhd") == root.read("a.vhd");
        if (!failed(error) && left > 0)
            break;
        // Only when its name could not be made to last is a copy there in spite of an error.
        ASSERT_EQ(root.names().size(), is_whole ? 3U : 2U) << failures;
        fs::remove(to);
    }
    EXPECT_GT(failures, 8);
}

TEST(SourceList, AProjectKnowsWhatChangedOnTheDisk) {
    const TemporaryDirectory root;
    Project project;
    project.directory = root.path();
    project.file_name.assign("p.bpr");
    static_cast<void>(add_source(project, "a.vhd"));
    const std::string path = root.path("p.bpr");
    FileIdentity none;
    FileIdentity known;
    ASSERT_FALSE(failed(identify_file(path, none)));
    ASSERT_FALSE(failed(write_project(project).error));
    ASSERT_FALSE(failed(identify_file(path, known)));
    EXPECT_EQ(changed_on_disk(path, known), DiskState::same);
    EXPECT_EQ(changed_on_disk(path, none), DiskState::changed);

    fs::copy_file(path, root.path("q.bpr"));
    fs::last_write_time(root.path("q.bpr"), fs::last_write_time(path));
    fs::rename(root.path("q.bpr"), path);
    EXPECT_EQ(changed_on_disk(path, known), DiskState::changed) << "another file, as large and old";
    fs::remove(path);
    EXPECT_EQ(changed_on_disk(path, known), DiskState::gone);
    EXPECT_EQ(changed_on_disk(path, none), DiskState::same);
}

} // namespace
} // namespace pellux
