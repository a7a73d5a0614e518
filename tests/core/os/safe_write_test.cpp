#include "core/os/safe_write.h"

#include "tests/core/os/temporary_directory.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <string>

#include <grp.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pellux {
namespace {

using test::ScopedVariable;
using test::TemporaryDirectory;

constexpr std::string_view k_old = "the old bytes, some more of them than a writing takes away\n";
constexpr std::string_view k_shorter = "the new";
const std::string k_longer(100'000, 'n');

std::span<const std::byte> bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

/// What lies there before a writing, and what the system refuses to do with it.
enum class Place { missing, plain, linked, two_names, closed_directory, no_replacing };
constexpr Place k_all_places[] = {Place::missing,          Place::plain,
                                  Place::linked,           Place::two_names,
                                  Place::closed_directory, Place::no_replacing};

/// A file in "work", written by the name "work/file" while operations are made to fail.
class SafeWrite : public testing::Test {
protected:
    enum class Fault { none, once, full_from_then, end_of_program };

    void SetUp() override { arrange(Place::plain); }
    void TearDown() override { set_file_fault_hook(nullptr, nullptr); }

    void arrange(Place place) {
        set_file_fault_hook(nullptr, nullptr);
        std::filesystem::remove_all(directory_.path("work"));
        std::filesystem::remove_all(directory_.path("state"));
        std::filesystem::create_directories(directory_.path("work"));
        place_ = place;
        file_ = directory_.path("work/file");
        real_name_ = place == Place::linked ? "work/real" : "work/file";
        if (place != Place::missing)
            directory_.write(real_name_, k_old);
        if (place == Place::linked)
            std::filesystem::create_symlink("real", file_);
        if (place == Place::two_names)
            std::filesystem::create_hard_link(file_, directory_.path("work/second"));
        names_ = directory_.names("work");
        arm(Fault::none, 0);
    }
    void arm(Fault fault, int at) {
        fault_ = fault;
        fault_at_ = at;
        operations_ = 0;
        fired_ = false;
        set_file_fault_hook(
            [](void* context, FileOperation operation, std::string_view path,
               std::size_t& partial) {
                return static_cast<SafeWrite*>(context)->decide(operation, path, partial);
            },
            this);
    }

    [[nodiscard]] bool is_refused(FileOperation operation, std::string_view path) const {
        const bool is_temporary =
            directory_part(path) == directory_.path("work") && extension_part(path) == "tmp";
        return (place_ == Place::closed_directory && operation == FileOperation::open &&
                is_temporary) ||
               (place_ == Place::no_replacing && operation == FileOperation::rename &&
                path == file_);
    }
    SystemError decide(FileOperation operation, std::string_view path, std::size_t& partial) {
        constexpr std::string_view letters = "orwtfcsRlxmDLak";
        trace_ += letters[static_cast<std::size_t>(operation)];
        if (is_refused(operation, path))
            return SystemError{EACCES};
        ++operations_;
        const bool now = fault_ != Fault::none && operations_ == fault_at_;
        if (now && fault_ == Fault::end_of_program)
            ::_exit(0);
        if (now)
            fired_operation_ = operation;
        fired_ = fired_ || now;
        const bool is_full =
            fault_ == Fault::full_from_then && fired_ && operation == FileOperation::write;
        partial = 3;
        return now || is_full ? SystemError{ENOSPC} : SystemError::none;
    }

    static SystemError write_in_pieces(SafeWriter& writer, std::string_view path,
                                       std::string_view text) {
        static_cast<void>(begin_safe_write(writer, path));
        safe_append(writer, bytes(text.substr(0, text.size() / 2)));
        safe_append(writer, bytes(text.substr(text.size() / 2)));
        return commit_safe_write(writer);
    }
    /// Names that a failed or finished writing has left.
    [[nodiscard]] std::set<std::string> left_over() const {
        std::set<std::string> left = directory_.names("state/pellux");
        for (const std::string& name : directory_.names("work"))
            if (!names_.contains(name) && name != "file")
                left.insert(name);
        return left;
    }
    void expect_whole(const SafeWriter& writer, std::string_view text, SystemError error) {
        const std::string now = directory_.read(real_name_);
        const std::string old = place_ == Place::missing ? "(missing)" : std::string(k_old);
        PathBuffer found;
        if (!writer.copy_path.empty()) {
            EXPECT_EQ(directory_.read(writer.copy_path.view()), old);
            set_file_fault_hook(nullptr, nullptr);
            EXPECT_TRUE(find_interrupted_copy(file_, found));
            EXPECT_EQ(found.view(), writer.copy_path.view());
            EXPECT_TRUE(failed(error));
            return;
        }
        EXPECT_EQ(left_over(), std::set<std::string>{});
        const bool in_last_step = fired_operation_ == FileOperation::flush_directory ||
                                  fired_operation_ == FileOperation::remove;
        if (failed(error) && !(in_last_step && now == text)) {
            EXPECT_EQ(error, SystemError{ENOSPC});
            EXPECT_EQ(now, old);
        } else {
            EXPECT_EQ(now, text);
        }
        if (!failed(error) && fired_) {
            EXPECT_TRUE(fired_operation_ == FileOperation::stat ||
                        fired_operation_ == FileOperation::attributes);
            EXPECT_EQ(writer.attributes_lost, fired_operation_ == FileOperation::attributes &&
                                                  writer.road == SafeWriter::Road::rename);
        }
    }

    // In memory: the tests flush thousands of times.
    TemporaryDirectory directory_{"/dev/shm"};
    ScopedVariable state_{"XDG_STATE_HOME", directory_.path("state").c_str()};
    Place place_ = Place::plain;
    std::string file_;
    std::string real_name_;
    std::set<std::string> names_;
    Fault fault_ = Fault::none;
    int fault_at_ = 0;
    int operations_ = 0;
    bool fired_ = false;
    FileOperation fired_operation_ = FileOperation::open;
    std::string trace_; ///< one letter for each operation
};

TEST_F(SafeWrite, EveryOperationMayFailOnce) {
    for (const Place place : k_all_places)
        for (const std::string_view text : {k_shorter, std::string_view(k_longer)}) {
            fired_ = true;
            int n = 0;
            while (fired_) {
                arrange(place);
                arm(Fault::once, ++n);
                SafeWriter writer;
                const SystemError error = write_in_pieces(writer, file_, text);
                SCOPED_TRACE(testing::Message()
                             << "place " << static_cast<int>(place) << ", n " << n << ", operation "
                             << static_cast<int>(fired_operation_));
                expect_whole(writer, text, error);
                EXPECT_TRUE(writer.copy_path.empty());
                EXPECT_TRUE(fired_ || !failed(error));
                ASSERT_FALSE(HasFailure());
            }
            EXPECT_GT(n, 8);
        }
}

TEST_F(SafeWrite, ADiskThatStaysFullKeepsTheOldBytesSomewhere) {
    int copies = 0;
    for (const Place place : k_all_places) {
        fired_ = true;
        for (int n = 1; fired_; ++n) {
            arrange(place);
            arm(Fault::full_from_then, n);
            SafeWriter writer;
            const SystemError error = write_in_pieces(writer, file_, k_longer);
            SCOPED_TRACE(testing::Message() << "place " << static_cast<int>(place) << ", n " << n);
            expect_whole(writer, k_longer, error);
            copies += writer.copy_path.empty() ? 0 : 1;
            ASSERT_FALSE(HasFailure());
        }
    }
    EXPECT_GT(copies, 3);
}

TEST_F(SafeWrite, AProgramThatEndsAnywhereLosesNothing) {
    int copies = 0;
    for (const Place place : k_all_places)
        for (int status = 0, n = 1; status == 0; ++n) {
            arrange(place);
            arm(Fault::end_of_program, n);
            const pid_t child = ::fork();
            if (child == 0) {
                SafeWriter writer;
                ::_exit(failed(write_in_pieces(writer, file_, k_shorter)) ? 2 : 1);
            }
            ASSERT_EQ(::waitpid(child, &status, 0), child);
            SCOPED_TRACE(testing::Message() << "place " << static_cast<int>(place) << ", n " << n);
            ASSERT_NE(WEXITSTATUS(status), 2);

            arm(Fault::none, 0);
            PathBuffer copy;
            const std::string now = directory_.read(real_name_);
            if (find_interrupted_copy(file_, copy)) {
                ++copies;
                ASSERT_EQ(directory_.read(copy.view()), k_old);
                // The rescue itself is a writing in place and must not take the copy away.
                ASSERT_FALSE(failed(safe_write_file(file_, bytes(k_old))));
                ASSERT_EQ(directory_.read(copy.view()), k_old);
                ASSERT_FALSE(failed(remove_interrupted_copy(copy.view())));
                ASSERT_FALSE(find_interrupted_copy(file_, copy));
                ASSERT_EQ(directory_.read(real_name_), k_old);
            } else if (place == Place::missing && now == "(missing)") {
                ASSERT_NE(WEXITSTATUS(status), 1);
            } else {
                ASSERT_TRUE(now == k_old || now == k_shorter) << now;
            }
        }
    EXPECT_GT(copies, 9);
}

TEST_F(SafeWrite, NothingTakesAPlaceBeforeItLiesOnTheDisk) {
    const struct {
        Place place;
        const char* wanted; ///< write, flush, Rename, Directory flushed, truncate, x removed
    } rows[] = {{Place::missing, "wwfRD"},
                {Place::plain, "wwfRD"},
                {Place::two_names, "wfRDwwtfxxD"},
                // A directory made, flushed with its parent's; the path file; the copy.
                {Place::closed_directory, "DDwfwfRDwwtfxxD"},
                {Place::no_replacing, "wwfRwfRDwtfxxDx"}};
    for (const auto& row : rows) {
        arrange(row.place);
        trace_.clear();
        SafeWriter writer;
        ASSERT_FALSE(failed(write_in_pieces(writer, file_, k_shorter)));
        std::erase_if(trace_, [](char c) {
            return std::string_view("wfRDtx").find(c) == std::string_view::npos;
        });
        EXPECT_EQ(trace_, row.wanted) << static_cast<int>(row.place);
    }
}

TEST_F(SafeWrite, AnAbandonedWritingLeavesTheOldBytes) {
    for (const Place place : k_all_places) {
        arrange(place);
        {
            SafeWriter writer;
            ASSERT_FALSE(failed(begin_safe_write(writer, file_)));
            safe_append(writer, bytes(k_longer));
            if (place == Place::plain)
                abandon_safe_write(writer);
        }
        EXPECT_EQ(directory_.read(real_name_), place == Place::missing ? "(missing)" : k_old);
        EXPECT_EQ(left_over(), std::set<std::string>{});
    }
}

TEST_F(SafeWrite, LinksAreFollowedToTheFile) {
    const auto link = [&](const char* to, const char* name) {
        std::filesystem::create_symlink(to, directory_.path(name));
    };
    std::filesystem::create_directories(directory_.path("far/deep"));
    directory_.write("far/real", k_old);
    link("../far/deep", "work/dir");
    link("dir/../real", "work/relative");
    link("relative", "work/chained");
    link(directory_.path("work/chained").c_str(), "work/absolute");
    link("../far/made", "work/dangling");
    for (const char* name : {"relative", "chained", "absolute", "dangling"}) {
        const std::string path = directory_.path("work/") + name;
        SafeWriter writer;
        ASSERT_FALSE(failed(begin_safe_write(writer, path))) << name;
        EXPECT_EQ(directory_part(writer.temporary.view()), directory_.path("far"));
        safe_append(writer, bytes(name));
        ASSERT_FALSE(failed(commit_safe_write(writer)));
        EXPECT_TRUE(std::filesystem::is_symlink(path));
        EXPECT_EQ(directory_.read(name == std::string("dangling") ? "far/made" : "far/real"), name);
    }
    link("loop2", "work/loop1");
    link("loop1", "work/loop2");
    link("nowhere/x", "work/lost");
    link("fifo", "work/to_fifo");
    ASSERT_EQ(::mkfifo(directory_.path("work/fifo").c_str(), 0600), 0);
    const std::set<std::string> before = directory_.names("work");
    const struct {
        const char* name;
        SystemError error;
    } refused[] = {
        {"work/loop1", refuse(Refusal::link_loop)}, {"work/lost", SystemError{ENOENT}},
        {"work/fifo", refuse(Refusal::not_a_file)}, {"work/to_fifo", refuse(Refusal::not_a_file)},
        {"work/dir", refuse(Refusal::directory)},   {"work", refuse(Refusal::directory)},
        {"/dev/null", refuse(Refusal::not_a_file)}, {"work/new/", SystemError{ENOENT}}};
    for (const auto& row : refused)
        EXPECT_EQ(safe_write_file(directory_.path(row.name), bytes("x")), row.error) << row.name;
    EXPECT_EQ(safe_write_file("", bytes("x")), SystemError{ENOENT});
    EXPECT_EQ(safe_write_file(std::string(5000, 'x'), bytes("x")), refuse(Refusal::path_too_long));
    EXPECT_EQ(directory_.names("work"), before);
}

TEST_F(SafeWrite, ARelativePathMeansTheSameUntilTheEnd) {
    PathBuffer before;
    ASSERT_FALSE(failed(current_directory(before)));
    ASSERT_FALSE(failed(change_directory(directory_.path("work"))));
    SafeWriter writer;
    const SystemError begun = begin_safe_write(writer, "file");
    ASSERT_FALSE(failed(change_directory(before.view())));
    ASSERT_FALSE(failed(begun));
    safe_append(writer, bytes("new"));
    EXPECT_FALSE(failed(commit_safe_write(writer)));
    EXPECT_EQ(directory_.read("work/file"), "new");
}

TEST_F(SafeWrite, AttributesAndNamesStay) {
    for (const Place place : {Place::plain, Place::two_names, Place::no_replacing}) {
        arrange(place);
        ASSERT_TRUE(::geteuid() != 0 || ::chown(file_.c_str(), 1234, 2345) == 0);
        ASSERT_EQ(::chmod(file_.c_str(), 0615), 0);
        FileStat old;
        FileStat now;
        ASSERT_FALSE(failed(stat_file(file_, old)));
        SafeWriter writer;
        ASSERT_FALSE(failed(write_in_pieces(writer, file_, k_shorter)));
        ASSERT_FALSE(failed(stat_file(file_, now)));
        EXPECT_EQ(std::tuple(now.mode, now.owner, now.group, now.links),
                  std::tuple(old.mode, old.owner, old.group, old.links));
        EXPECT_EQ(now.inode == old.inode, place != Place::plain);
        EXPECT_FALSE(writer.attributes_lost);
        EXPECT_EQ(directory_.read("work/second"),
                  place == Place::two_names ? k_shorter : "(missing)");
    }
}

TEST_F(SafeWrite, RightsThatCannotBeKeptWidenNobodys) {
    if (::geteuid() != 0)
        GTEST_SKIP() << "needs a file of another user";
    ASSERT_EQ(::chmod(directory_.path().c_str(), 0755), 0);
    ASSERT_EQ(::chmod(directory_.path("work").c_str(), 0777), 0);
    ASSERT_EQ(::chmod(file_.c_str(), 06676), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        SafeWriter writer;
        const bool is_other =
            ::setgroups(0, nullptr) == 0 && ::setgid(65534) == 0 && ::setuid(65534) == 0;
        ::_exit(is_other && !failed(write_in_pieces(writer, file_, k_shorter)) &&
                        writer.attributes_lost
                    ? 0
                    : 1);
    }
    int status = 1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    FileStat now;
    ASSERT_FALSE(failed(stat_file(file_, now)));
    EXPECT_EQ(std::tuple(now.mode, now.owner, now.group), std::tuple(0666U, 65534U, 65534U));
}

TEST_F(SafeWrite, AnEarlierCopyIsNeverTouched) {
    arrange(Place::two_names);
    directory_.write("work/.file.pellux-copy", "good bytes");
    ASSERT_FALSE(failed(safe_write_file(file_, bytes("new"))));
    PathBuffer copy;
    ASSERT_TRUE(find_interrupted_copy(directory_.path("work/file"), copy));
    EXPECT_EQ(directory_.read(copy.view()), "good bytes");
    EXPECT_FALSE(find_interrupted_copy(directory_.path("work/second"), copy));

    for (char number = '2'; number <= '9'; ++number)
        directory_.write(std::string("work/.file.pellux-copy-") + number, "good bytes");
    const auto before = directory_.names("work");
    EXPECT_TRUE(is_taken(safe_write_file(file_, bytes("newer"))));
    EXPECT_EQ(directory_.read("work/file"), "new");
    EXPECT_EQ(directory_.names("work"), before);

    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(directory_.path("work/.file.pellux-copy").c_str(), 1234, 2345), 0);
        ASSERT_TRUE(find_interrupted_copy(file_, copy));
        EXPECT_EQ(copy.view(), directory_.path("work/.file.pellux-copy-2")) << "offered by others";
    }
}

TEST_F(SafeWrite, CopiesElsewhereBelongToOneFileOnly) {
    arrange(Place::closed_directory);
    directory_.write("other/file", "other");
    arm(Fault::full_from_then, 1'000'000);
    SafeWriter writer;
    ASSERT_FALSE(failed(begin_safe_write(writer, file_)));
    fired_ = true;
    EXPECT_TRUE(failed(safe_append(writer, bytes("new"))));
    arm(Fault::none, 0);
    PathBuffer copy;
    ASSERT_TRUE(find_interrupted_copy(file_, copy));
    EXPECT_EQ(directory_part(copy.view()), directory_.path("state/pellux"));
    FileStat stat;
    ASSERT_FALSE(failed(stat_file(directory_.path("state/pellux"), stat)));
    EXPECT_EQ(stat.mode, 0700U);
    ASSERT_FALSE(failed(stat_file(copy.view(), stat)));
    EXPECT_EQ(stat.mode, 0600U);
    EXPECT_FALSE(find_interrupted_copy(directory_.path("other/file"), copy));

    const std::string path_file = std::string(copy.view()) + ".path";
    EXPECT_EQ(directory_.read(path_file), file_);
    directory_.write(path_file, directory_.path("other/file"));
    EXPECT_FALSE(find_interrupted_copy(file_, copy));
    std::filesystem::remove(path_file);
    EXPECT_FALSE(find_interrupted_copy(file_, copy));
}

TEST_F(SafeWrite, TwoWritersDoNotMeetInOneFile) {
    arrange(Place::two_names);
    SafeWriter first;
    ASSERT_FALSE(failed(begin_safe_write(first, file_)));
    safe_append(first, bytes("first"));
    EXPECT_TRUE(is_busy(safe_write_file(directory_.path("work/second"), bytes("second"))));
    PathBuffer copy;
    EXPECT_FALSE(find_interrupted_copy(file_, copy)) << "the writing is under way";
    ASSERT_FALSE(failed(commit_safe_write(first)));
    EXPECT_FALSE(failed(safe_write_file(directory_.path("work/second"), bytes("second"))));
    EXPECT_EQ(directory_.read("work/file"), "second");
}

TEST_F(SafeWrite, AFileOfAnotherSizeThanWrittenIsAFailure) {
    struct Meddler {
        Place place;
        FileOperation operation;
        int calls_before;
        SafeWriter* writer = nullptr;
    } rows[] = {{Place::plain, FileOperation::flush, 0},
                {Place::two_names, FileOperation::flush, 1},
                {Place::two_names, FileOperation::read, 0}};
    for (Meddler& row : rows) {
        arrange(row.place);
        SafeWriter writer;
        row.writer = &writer;
        set_file_fault_hook(
            [](void* context, FileOperation operation, std::string_view, std::size_t&) {
                auto& meddler = *static_cast<Meddler*>(context);
                if (operation == meddler.operation && meddler.calls_before-- == 0)
                    std::ofstream(meddler.place == Place::plain ? meddler.writer->temporary.c_str()
                                                                : meddler.writer->target.c_str(),
                                  std::ios::app)
                        << '!';
                return SystemError::none;
            },
            &row);
        EXPECT_EQ(write_in_pieces(writer, file_, k_shorter), refuse(Refusal::damaged));
        const bool grew_before = row.operation == FileOperation::read;
        EXPECT_EQ(directory_.read("work/file"), std::string(k_old) + (grew_before ? "!" : ""));
        EXPECT_EQ(left_over(), std::set<std::string>{});
    }
}

TEST_F(SafeWrite, AFileThatMayNotBeWrittenIsNotReplaced) {
    set_file_fault_hook(
        [](void* context, FileOperation operation, std::string_view path, std::size_t&) {
            return operation == FileOperation::open && path == *static_cast<std::string*>(context)
                       ? SystemError{EACCES}
                       : SystemError::none;
        },
        &file_);
    EXPECT_TRUE(is_denied(safe_write_file(file_, bytes("new"))));
    EXPECT_EQ(directory_.read("work/file"), k_old);
    EXPECT_EQ(left_over(), std::set<std::string>{});
}

TEST_F(SafeWrite, OneWriterServesManyFiles) {
    SafeWriter writer;
    const std::string name(255, 'n');
    for (const std::string& file : {std::string("file"), std::string("new"), name}) {
        const std::string path = directory_.path("work/") + file;
        ASSERT_FALSE(failed(write_in_pieces(writer, path, file)));
        EXPECT_EQ(directory_.read("work/" + file), file);
    }
    std::filesystem::create_hard_link(directory_.path("work/" + name), directory_.path("work/z"));
    ASSERT_FALSE(failed(write_in_pieces(writer, directory_.path("work/" + name), "")));
    EXPECT_EQ(directory_.read("work/z"), "");
    EXPECT_EQ(writer.road, SafeWriter::Road::in_place);
}

} // namespace
} // namespace pellux
