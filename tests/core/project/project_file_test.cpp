#include "core/project/project_file.h"

#include "core/common/callback.h"
#include "core/diagnostics/catalogue.h"
#include "core/diagnostics/reporter.h"
#include "core/os/files.h"
#include "tests/support/captured_reports.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace pellux {
namespace {

using test::CapturedReports;
using test::TemporaryDirectory;

using Bytes = std::vector<std::byte>;

bool append_bytes(void* context, std::span<const std::byte> part) {
    Bytes& all = from_context<Bytes>(context);
    all.insert(all.end(), part.begin(), part.end());
    return true;
}

Bytes bytes_of(const Project& project, const char* version = "1x07") {
    Bytes bytes;
    ProjectHeader header;
    header.version.assign(version);
    EXPECT_TRUE(write_project_to(project, {append_bytes, &bytes}, header));
    return bytes;
}

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Every field away from its default.
Owned<Project> full_project() {
    auto project = make_owned<Project>();
    project->file_name.assign("brix.bpr");
    for (const char* name : {"a.vhd", "sub/b.vhd", "c.vhd"}) {
        auto source = make_owned<VHDL_source>();
        source->file_name.assign(name);
        source->added_from.assign("\\home\\me");
        source->options.library.assign("mylib");
        source->options.vhdl_standard = 93;
        source->options.keyword_colour = 1;
        source->options.tab_width = 3;
        source->note.assign("n\xE4mlich");
        source->words = {1, 2, 3, 4, 5, 0, 0, 0xFFFFFFFF};
        project->sources.push_back(std::move(source));
    }
    project->top_design = project->sources[1].get();
    Source_options& options = project->options;
    options.device.assign("cpld32");
    options.package.assign("");
    options.optimise_level = 2;
    options.flags = -1;
    options.error_limit = 10;
    options.vhdl_standard = 87;
    options.comment_colour = 5;
    options.undo_limit = -7;
    project->window.top = -20;
    project->window.right = 700;
    project->list_font.face.assign("DejaVu Sans");
    project->list_font.size = 11;
    project->compile_window.assign("1 2 3 4 10 0 Mono");
    for (int i = 0; i < 300; ++i)
        project->print_record.push_back(static_cast<std::byte>(i));
    return project;
}

class ProjectFileTest : public testing::Test, protected CapturedReports {
protected:
    ~ProjectFileTest() override { set_file_fault_hook(nullptr, nullptr); }

    Owned<Project> read(const Bytes& bytes) {
        ProjectHeader header;
        return read_project(bytes, "p.bpr", header);
    }
};

TEST_F(ProjectFileTest, EveryFieldComesBack) {
    const Owned<Project> written = full_project();
    const Owned<Project> project = read(bytes_of(*written));
    ASSERT_NE(project, nullptr);
    EXPECT_EQ(bytes_of(*project).size(), bytes_of(*written).size());
    ASSERT_EQ(project->sources.size(), 3U);
    EXPECT_EQ(project->top_design, project->sources[1].get());
    const VHDL_source& source = *project->sources[2];
    EXPECT_EQ(source.file_name.view(), "c.vhd");
    EXPECT_EQ(source.note.view(), "n\xE4mlich");
    EXPECT_EQ(source.words, written->sources[2]->words);
    EXPECT_EQ(source.options.tab_width, 3);
    EXPECT_FALSE(source.options.device.present());
    EXPECT_TRUE(project->options.package.present());
    EXPECT_EQ(project->options.flags, -1);
    EXPECT_EQ(project->options.undo_limit, -7);
    EXPECT_EQ(project->window.top, -20);
    EXPECT_EQ(project->list_font.face.view(), "DejaVu Sans");
    EXPECT_EQ(project->compile_window.view(), "1 2 3 4 10 0 Mono");
    EXPECT_EQ(project->print_record, written->print_record);
    EXPECT_TRUE(project->directory.empty());
    EXPECT_TRUE(said_.empty());
}

TEST_F(ProjectFileTest, OlderLayoutsGetDefaultsForWhatTheyLack) {
    const Owned<Project> written = full_project();
    struct Row {
        const char* version;
        std::int16_t standard;
        std::int32_t colour;
        std::int16_t tab_width;
    };
    for (const Row& row :
         {Row{"1x04", -1, k_keyword_colour, 8}, Row{"1x05", 93, k_keyword_colour, 8},
          Row{"1x06", 93, 1, 8}, Row{"1x07", 93, 1, 3}}) {
        ProjectHeader header;
        const Owned<Project> project = read_project(bytes_of(*written, row.version), "p", header);
        ASSERT_NE(project, nullptr) << row.version;
        EXPECT_EQ(header.version.view(), row.version);
        for (const auto& source : project->sources) {
            EXPECT_EQ(source->options.vhdl_standard, row.standard) << row.version;
            EXPECT_EQ(source->options.keyword_colour, row.colour) << row.version;
            EXPECT_EQ(source->options.tab_width, row.tab_width) << row.version;
            EXPECT_EQ(source->words, written->sources[0]->words) << row.version;
        }
        const bool newest = std::string_view(row.version) == "1x07";
        EXPECT_EQ(project->options.undo_limit, newest ? -7 : 200) << row.version;
        EXPECT_EQ(project->options.text_colour, k_text_colour);
        // Written back it has the newest layout.
        static_cast<void>(read_project(bytes_of(*project), "p", header));
        EXPECT_EQ(header.version.view(), "1x07");
    }
}

TEST_F(ProjectFileTest, OtherVersionsAreNotSupported) {
    Bytes bytes = bytes_of(*full_project());
    const std::string text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    bytes[text.rfind("1x07") + 1] = std::byte{'X'};
    EXPECT_EQ(read(bytes), nullptr);
    bytes[text.rfind("1x07") - 1] = std::byte{4};
    EXPECT_EQ(read(bytes), nullptr);
    EXPECT_EQ(said_.front(), "Project 'p.bpr' version '1X07' is not supported.");
    EXPECT_EQ(said_.size(), 2U);
}

TEST_F(ProjectFileTest, SlashesOfTheDirectoryAreTurned) {
    auto project = make_owned<Project>();
    project->sources.push_back(make_owned<VHDL_source>());
    project->sources[0]->added_from.assign("c:/a\\b/c");
    const Owned<Project> back = read(bytes_of(*project));
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(back->sources[0]->added_from.view(), "c:\\a\\b\\c");
    EXPECT_TRUE(back->print_record.empty());
}

TEST_F(ProjectFileTest, DamageGivesOneMessageAndLeavesNothingBehind) {
    const Bytes whole = bytes_of(*full_project());
    const std::uint64_t blocks = allocatorStatistics().blocks_in_use;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        EXPECT_EQ(read(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length))),
                  nullptr);
        ASSERT_EQ(said_, std::vector<std::string>{"Error reading 'p.bpr'."}) << length;
        said_.clear();
    }
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int value : {0, 0xFF, 0x80, 0x7F, 1, 2, 3, 4}) {
            Bytes damaged = whole;
            damaged[at] = static_cast<std::byte>(value);
            const Owned<Project> project = read(damaged);
            EXPECT_LE(said_.size(), 2U) << at << ' ' << value;
            EXPECT_TRUE(project != nullptr || !said_.empty()) << at << ' ' << value;
            said_.clear();
        }
    }
    EXPECT_EQ(allocatorStatistics().blocks_in_use, blocks);
}

/// Writes an empty project in which one number is another one.
class HostileProject : public Object {
public:
    int which = 0;
    std::uint32_t value = 0;
    mutable int numbers = 0;

    [[nodiscard]] const ClassRecord& class_record() const override {
        return Project().class_record();
    }
    void write_poly(ObjectWriter& writer) const override {
        numbers = 0;
        const auto number = [&](std::uint32_t usual) {
            writer.put_u32(numbers++ == which ? value : usual);
        };
        const auto short_number = [&] {
            writer.put_u16(numbers++ == which ? static_cast<std::uint16_t>(value) : 0);
        };
        writer.put_text({});
        number(0); // sources
        writer.put_reference(nullptr);
        for (int i = 0; i < 4; ++i)
            writer.put_text({});
        short_number();
        for (int i = 0; i < 3; ++i)
            number(0);
        for (int i = 0; i < 3; ++i)
            short_number();
        writer.put_text({});
        writer.put_text({});
        short_number();
        for (int i = 0; i < 3; ++i)
            number(0);
        short_number();
        short_number();
        for (int i = 0; i < 4; ++i)
            number(0); // window
        writer.put_text({});
        number(0);
        number(0);
        writer.put_text({});
        number(0); // print record
    }
};

TEST_F(ProjectFileTest, NoNumberIsTrusted) {
    register_project_classes();
    HostileProject hostile;
    const std::uint64_t before = allocatorStatistics().peak_bytes;
    for (hostile.which = 0; hostile.which <= hostile.numbers; ++hostile.which) {
        for (const std::uint32_t value : {0U, 1U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
            hostile.value = value;
            Bytes bytes;
            Poly_head head;
            head.program_version.assign("1x07");
            ObjectWriter writer({append_bytes, &bytes}, std::move(head));
            writer.write_object(hostile);
            ASSERT_TRUE(writer.close());
            const bool is_count = hostile.which == 0 || hostile.which == hostile.numbers - 1;
            EXPECT_EQ(read(bytes) == nullptr, is_count && value != 0) << hostile.which << value;
        }
    }
    EXPECT_GT(hostile.numbers, 15);
    EXPECT_LT(allocatorStatistics().peak_bytes, before + 100000);
}

TEST_F(ProjectFileTest, ATopDesignOutsideTheListIsRefused) {
    auto project = full_project();
    const Owned<VHDL_source> outside = make_owned<VHDL_source>();
    project->top_design = outside.get();
    EXPECT_EQ(read(bytes_of(*project)), nullptr);
    EXPECT_EQ(said_, std::vector<std::string>{"Error reading 'p.bpr'."});
}

TEST_F(ProjectFileTest, MemoryStaysWithinAFewTimesTheFile) {
    // Many sources of the smallest size, and a list that names more than there are.
    Project project;
    for (int i = 0; i < 20000; ++i)
        project.sources.push_back(make_owned<VHDL_source>());
    Bytes bytes = bytes_of(project);
    project.sources.clear();
    const std::uint64_t before = allocatorStatistics().bytes_in_use;
    const Owned<Project> back = read(bytes);
    ASSERT_NE(back, nullptr);
    EXPECT_LT(allocatorStatistics().peak_bytes, before + 8 * bytes.size());
}

TEST_F(ProjectFileTest, ReadingNeedsARegularFileThatIsThere) {
    const TemporaryDirectory directory;
    EXPECT_EQ(read_project(directory.path()), nullptr);
    EXPECT_EQ(read_project(directory.path() + "/none.bpr"), nullptr);
    std::ofstream(directory.path() + "/empty.bpr");
    EXPECT_EQ(read_project(directory.path() + "/empty.bpr"), nullptr);
    EXPECT_EQ(read_project("/dev/zero"), nullptr);
    EXPECT_EQ(said_.size(), 4U);
    EXPECT_EQ(said_[1], "Error reading '" + directory.path() + "/none.bpr'.");
}

TEST_F(ProjectFileTest, AProjectWithoutANameIsNotWritten) {
    const TemporaryDirectory directory;
    Project project;
    project.directory = directory.path();
    EXPECT_EQ(write_project(project).error, SystemError::none);
    project.file_name.assign("x.bpr");
    EXPECT_EQ(write_project(project).error, SystemError::none);
    EXPECT_NE(read_project(directory.path() + "/x.bpr"), nullptr);
    project.directory += "/none";
    EXPECT_TRUE(is_missing(write_project(project).error));
}

struct FailNth {
    int countdown;
    FileOperation failing = FileOperation::open;
    bool end_process = false;
};

SystemError fail_nth(void* context, FileOperation operation, std::string_view, std::size_t&) {
    FailNth& fault = from_context<FailNth>(context);
    if (--fault.countdown != 0)
        return SystemError::none;
    if (fault.end_process)
        _exit(7);
    fault.failing = operation;
    return SystemError{28};
}

TEST_F(ProjectFileTest, AFailureAtAnyStepOfASaveLeavesTheOldFileOrTheNewOne) {
    const TemporaryDirectory directory;
    auto project = full_project();
    project->directory = directory.path();
    ASSERT_EQ(write_project(*project).error, SystemError::none);
    const std::string path = directory.path() + "/brix.bpr";
    const std::string old = contents(path);
    project->options.error_limit = 11;
    for (int n = 1;; ++n) {
        FailNth fault{n};
        set_file_fault_hook(fail_nth, &fault);
        const ProjectWriteResult result = write_project(*project);
        set_file_fault_hook(nullptr, nullptr);
        const std::string now = contents(path);
        if (fault.countdown > 0) {
            EXPECT_EQ(result.error, SystemError::none);
            EXPECT_NE(now, old);
            EXPECT_GT(n, 5);
            break;
        }
        if (now != old) {
            const Owned<Project> back = read_project(path);
            ASSERT_NE(back, nullptr) << n;
            EXPECT_EQ(back->options.error_limit, 11);
            std::ofstream(path, std::ios::binary) << old;
        }
        const bool must_fail = fault.failing == FileOperation::write ||
                               fault.failing == FileOperation::flush ||
                               fault.failing == FileOperation::rename;
        EXPECT_TRUE(failed(result.error) || !must_fail) << n;
    }
}

/// Saves in a child process in which `fault` happens; answers how the child ended.
int save_in_child(const Project& project, std::uint64_t allocation, FailNth fault) {
    const pid_t child = fork();
    if (child == 0) {
        reporter().output = [](void*, std::string_view) {};
        start_diagnostics(nullptr);
        if (fault.countdown > 0)
            set_file_fault_hook(fail_nth, &fault);
        fail_allocation(allocation);
        _exit(failed(write_project(project).error) ? 1 : 0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(ProjectFileTest, EndingInTheMiddleOfASaveLeavesTheOldFileOrTheNewOne) {
    const TemporaryDirectory directory;
    auto project = full_project();
    project->directory = directory.path();
    ASSERT_EQ(write_project(*project).error, SystemError::none);
    const std::string path = directory.path() + "/brix.bpr";
    const std::string old = contents(path);
    project->options.error_limit = 11;
    const auto check = [&](int n) {
        if (contents(path) == old)
            return;
        const Owned<Project> back = read_project(path);
        ASSERT_NE(back, nullptr) << n;
        EXPECT_EQ(back->options.error_limit, 11);
        std::ofstream(path, std::ios::binary) << old;
    };
    int exhausted = 0;
    for (std::uint64_t n = 1;; ++n) {
        const int status = save_in_child(*project, n, {0});
        check(static_cast<int>(n));
        if (status == 0)
            break;
        ASSERT_EQ(status, 255) << n;
        ++exhausted;
    }
    EXPECT_GT(exhausted, 3);
    int killed = 0;
    for (int n = 1;; ++n) {
        const int status = save_in_child(*project, 0, {n, FileOperation::open, true});
        check(n);
        if (status == 0)
            break;
        ASSERT_EQ(status, 7) << n;
        ++killed;
    }
    EXPECT_GT(killed, 5);
}

} // namespace
} // namespace pellux
