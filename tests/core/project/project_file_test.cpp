#include "core/project/project_file.h"

#include "core/common/callback.h"
#include "core/objects/object_stream.h"
#include "core/os/clock.h"
#include "core/project/project_state.h"
#include "tests/support/captured_reports.h"
#include "tests/support/file_faults.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace pellux {
namespace {

using test::CapturedReports;
using test::TemporaryDirectory;
namespace fs = std::filesystem;

/// Project files that another writer made from the description of the format.
const std::string k_kept = std::string(PELLUX_SOURCE_DIR) + "/fuzz/corpus/object_stream/";

ByteSink sink_to(std::string& bytes) {
    return {+[](void* context, std::span<const std::byte> part) {
                from_context<std::string>(context).append(
                    reinterpret_cast<const char*>(part.data()), part.size());
                return true;
            },
            &bytes};
}

std::string bytes_of(const Project& project, const char* version = "1x07") {
    std::string bytes;
    ProjectHeader header;
    header.version.assign(version);
    EXPECT_TRUE(write_project_to(project, sink_to(bytes), header));
    return bytes;
}

class ProjectFileTest : public testing::Test, protected CapturedReports {
protected:
    Owned<Project> read(std::string_view bytes) {
        said_.clear();
        ProjectHeader header;
        return read_project(std::as_bytes(std::span(bytes)), "p.bpr", header);
    }
};

TEST_F(ProjectFileTest, FilesOfAnotherWriterBecomeOurs) {
    const TemporaryDirectory directory;
    ManualClock clock;
    clock.advance((INT32_MAX - wall_seconds()) * 1000);
    const std::string whole = directory.read(k_kept + "every_field");
    // The oldest header; numbers longer than they need be, slashes, a program of another name.
    for (const char* name : {"every_field", "header_0", "long_numbers"}) {
        const Owned<Project> project = read_project(k_kept + name);
        ASSERT_NE(project, nullptr) << name;
        EXPECT_EQ(project->top_design, project->sources[1].get()) << name;
        EXPECT_TRUE(project->directory.empty());
        ASSERT_FALSE(failed(write_project_as(*project, directory.path("ours"), {}).error));
        EXPECT_EQ(directory.read("ours"), whole) << name;
    }
    EXPECT_TRUE(said_.empty()) << said_.front();
}

TEST_F(ProjectFileTest, OlderLayoutsGetDefaultsForWhatTheyLack) {
    const struct {
        const char* version;
        std::int16_t standard;
        std::int32_t colour;
        std::int16_t tab_width;
    } rows[] = {{"1x04", -1, k_keyword_colour, 8},
                {"1x05", 93, k_keyword_colour, 8},
                {"1x06", 93, 14, 8},
                {"1x07", 93, 14, 3}};
    for (const auto& row : rows) {
        const Owned<Project> expected = read_project(k_kept + "every_field");
        const Owned<Project> project = read(bytes_of(*expected, row.version));
        ASSERT_NE(project, nullptr) << row.version;
        for (Source_options* options : {&expected->options, &expected->sources[2]->options}) {
            options->vhdl_standard = row.standard;
            options->tab_width = row.tab_width;
            options->keyword_colour = row.colour;
            options->comment_colour = row.colour == 14 ? 15 : k_comment_colour;
            options->text_colour = row.colour == 14 ? 16 : k_text_colour;
            options->undo_limit = row.tab_width == 3 ? options->undo_limit : k_undo_limit;
        }
        EXPECT_EQ(project_image(*project), project_image(*expected)) << row.version;
    }
}

TEST_F(ProjectFileTest, OneMessageTellsWhatIsWrongWithAFile) {
    Project project;
    for (const char* name : {"a", "b"})
        project.sources.emplace_back(make_owned<VHDL_source>())->file_name.assign(name);
    const std::string whole = bytes_of(project);
    ASSERT_NE(read(whole), nullptr);
    // Object 4 is the project, 5 and 6 are its sources; none is the top design.
    const std::string list = "\2\3\5\3\6\4";
    const std::string error = "Error reading 'p.bpr'.";
    const struct {
        std::string found;
        std::string put;
        std::string said;
    } rows[] = {
        {list, "\2\3\5\3\5\4", error},
        {list, "\2\3\5\3\4\4", error},
        {list, "\2\3\5\4\3\6", error},
        {list, "\2\3\5\3\6\7", error},
        {list, "\2\3\5\3\7\4", "Missing object in 'p.bpr'."},
        {list, {"\2\3\5\3\0\4", 6}, "Missing object in 'p.bpr'."},
        {"\2\15\6", "\2\15\5", error},
        {{"\2\15\6\0", 4}, "\2\15\6\2", error},
        {"\1\5Class_stamp", "\7\5Class_stamp", error},
        {"\2\15\6", {"\2\15\0", 3}, error},
        {"VHDL_source", "VHDL_sourze",
         error + " Polyread(Object):  Class 'VHDL_sourze' not found."},
        {"1x07", "1X07", "Project 'p.bpr' version '1X07' is not supported."},
        {"\0051x07", "\4\5x07", "Project 'p.bpr' version '' is not supported."},
        {{"head\0\1\7\1", 8}, {"head\0\1\7\2", 8}, error},
    };
    for (const auto& row : rows) {
        std::string bytes = whole;
        const std::size_t at = bytes.find(row.found);
        ASSERT_NE(at, std::string::npos) << row.said;
        EXPECT_EQ(read(bytes.replace(at, row.put.size(), row.put)), nullptr);
        EXPECT_EQ(said_, std::vector<std::string>{row.said});
    }
    // The six words of the trailer.
    for (std::size_t at = whole.size() - 24; at < whole.size(); at += 4)
        for (const std::string_view value :
             {std::string_view("\0\0\0\0", 4), {"\x7F\xFF\xFF\xFF"}, {"\xFF\xFF\xFF\xFF"}}) {
            EXPECT_EQ(read(std::string(whole).replace(at, 4, value)), nullptr) << at;
            EXPECT_EQ(said_, std::vector<std::string>{error});
        }
    const Owned<VHDL_source> outside = make_owned<VHDL_source>();
    project.top_design = outside.get();
    EXPECT_EQ(read(bytes_of(project)), nullptr);
    EXPECT_EQ(said_, std::vector<std::string>{error});

    const TemporaryDirectory directory;
    fs::resize_file(directory.write("sparse.bpr", ""), std::uintmax_t{8} << 30);
    std::ofstream(directory.path("sparse.bpr"), std::ios::app | std::ios::binary) << whole;
    directory.write("empty.bpr", "");
    for (const auto& [name, why] : {std::pair("", " It is a directory."),
                                    {"none.bpr", " There is no such file."},
                                    {"empty.bpr/x", " There is no such file."},
                                    {"empty.bpr", ""},
                                    {"sparse.bpr", ""},
                                    {"/dev/zero", " Operation not supported."}}) {
        said_.clear();
        const std::string path = directory.path(name);
        EXPECT_EQ(read_project(path), nullptr);
        EXPECT_EQ(said_, std::vector<std::string>{"Error reading '" + path + "'." + why});
    }
    EXPECT_LT(allocatorStatistics().peak_bytes, std::uint64_t{1} << 30);
}

/// A stream with more bytes, and objects, somewhere before its header.
std::string grown(std::string bytes, std::size_t at, const std::string& more, int objects) {
    bytes.insert(at, more);
    for (const auto& [word_at, added] : {std::pair(20, objects),
                                         {8, static_cast<int>(more.size())},
                                         {4, static_cast<int>(more.size())}}) {
        char* word = bytes.data() + bytes.size() - word_at;
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i)
            value = value << 8 | static_cast<unsigned char>(word[i]);
        value += static_cast<std::uint32_t>(added);
        for (int i = 0; i < 4; ++i)
            word[i] = static_cast<char>(value >> (24 - 8 * i));
    }
    return bytes;
}

TEST_F(ProjectFileTest, ReadingTakesAtMostTenTimesTheFile) {
    const auto expect = [&](const std::string& bytes, bool is_read) {
        const AllocatorStatistics before = allocatorStatistics();
        EXPECT_EQ(read(bytes) != nullptr, is_read);
        EXPECT_LT(allocatorStatistics().peak_bytes, before.bytes_in_use + 9 * bytes.size() + 67000);
        EXPECT_EQ(allocatorStatistics().blocks_in_use, before.blocks_in_use);
    };
    const test::ScopedVariable install("VELMORA_DIR", ("/" + std::string(300, 'v')).c_str());
    const std::string small = bytes_of({}, "1x04");
    const std::size_t paths_at = small.find("VELMORA_DIR") + 12;
    const std::size_t objects_at = small.find("\x1A\1\5Poly_head");
    // Paths that are absent or grow when they are read; projects that nothing refers to, their
    // fields one byte each. What stood at that place ends the last path.
    for (const int count : {100, 10000}) {
        std::string absent{'\x80', 0, 0, static_cast<char>(count >> 8), static_cast<char>(count)};
        std::string relative = absent;
        std::string projects;
        for (int i = 0; i + 1 < count; ++i) {
            absent += '\4';
            relative += std::string_view("\5$$REL$$", 9);
        }
        for (int number = 8; number < 8 + count / 2; ++number) {
            projects += {2, 14, static_cast<char>(0x20 | number >> 8), static_cast<char>(number)};
            projects += std::string_view("\4\0\4\4\4\4\4\0\0\0\0\0\0\0\4\4\0\0\0\0\4\0\0\4\0", 25);
        }
        const bool is_read = count == 100;
        expect(grown(small, paths_at, absent + '\5', 0), true);
        expect(grown(small, paths_at, relative + '\5', 0), is_read);
        expect(grown(small, objects_at, projects, 8 + count / 2), is_read);
    }
    // The most that an honest file asks for.
    std::string bytes;
    {
        Project project;
        for (int i = 0; i < 20000; ++i) {
            VHDL_source& source = *project.sources.emplace_back(make_owned<VHDL_source>());
            Source_options& options = source.options;
            for (NullableText* text : {&source.file_name, &source.added_from, &source.note,
                                       &options.library, &options.device, &options.package,
                                       &options.simulator, &options.text_12, &options.text_13})
                text->assign("x");
        }
        bytes = bytes_of(project, "1x04");
    }
    expect(bytes, true);
}

TEST_F(ProjectFileTest, WhoAsksForAWritingLearnsHowItWent) {
    const TemporaryDirectory directory{"/dev/shm"};
    const Owned<Project> project = read_project(k_kept + "every_field");
    const auto writes = [&] { return write_project(*project); };
    project->file_name.clear();
    project->directory = directory.path();
    EXPECT_EQ(writes().error, SystemError::none);
    EXPECT_TRUE(directory.names().empty());
    project->file_name.assign("p.bpr");
    EXPECT_EQ(writes().error, SystemError::none);
    const std::string old = directory.read("p.bpr");

    const auto result = [&](FileOperation failing) {
        const test::FileFaults faults(failing, ENOSPC);
        return writes();
    };
    const ProjectWriteResult unwritten = result(FileOperation::write);
    EXPECT_EQ(unwritten.error, SystemError{ENOSPC});
    EXPECT_TRUE(unwritten.old_contents.empty());
    const ProjectWriteResult unflushed = result(FileOperation::flush_directory);
    EXPECT_EQ(std::pair(unflushed.error, unflushed.directory_error),
              std::pair(SystemError::none, SystemError{ENOSPC}));
    EXPECT_FALSE(unflushed.attributes_lost);
    EXPECT_TRUE(result(FileOperation::attributes).attributes_lost);

    // In place, and the disk is full as soon as the copy of the old bytes is complete.
    fs::create_hard_link(directory.path("p.bpr"), directory.path("second"));
    std::optional<test::FileFaults> full([copied = false](FileOperation asked, auto) mutable {
        copied = copied || asked == FileOperation::rename;
        return copied && asked == FileOperation::write ? SystemError{ENOSPC} : SystemError::none;
    });
    const ProjectWriteResult damaged = writes();
    full.reset();
    EXPECT_EQ(damaged.error, SystemError{ENOSPC});
    EXPECT_EQ(directory.read(damaged.old_contents.view()).size(), old.size());
    static_cast<void>(read_project(directory.path("p.bpr")));
    EXPECT_EQ(said_.front(), "'" + directory.path("p.bpr") + "' was not written to its end; its " +
                                 "old contents lie in '" + damaged.old_contents.c_str() + "'.");
    const ProjectWriteResult whole = writes();
    EXPECT_EQ(whole.error, SystemError::none);
    EXPECT_TRUE(whole.old_contents.empty());

    ProjectHeader header;
    header.version.assign("9");
    EXPECT_TRUE(failed(write_project_as(*project, directory.path("p.bpr"), header).error));
    said_.clear();
    EXPECT_NE(read_project(directory.path("p.bpr")), nullptr);
    EXPECT_TRUE(said_.empty());
}

} // namespace
} // namespace pellux
