#include "core/os/safe_write.h"

#include "core/os/safe_copy.h"
#include "tests/support/file_faults.h"
#include "tests/support/forked.h"
#include "tests/support/scoped_directory.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>

#include <grp.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pellux {
namespace {

constexpr std::string_view k_old = "the old bytes, some more of them than a writing takes away\n";
constexpr std::string_view k_shorter = "the new";
const std::string k_longer(100'000, 'n');

std::span<const std::byte> bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

/// What lies there before a writing, and what the system refuses to do with it.
enum class Place { missing, plain, linked, two_names, closed_directory, no_replacing, no_writing };
constexpr Place k_writable_places[] = {Place::missing,          Place::plain,
                                       Place::linked,           Place::two_names,
                                       Place::closed_directory, Place::no_replacing};

/// A file in "work", written by the name "work/file" while operations are made to fail.
class SafeWrite : public testing::Test {
protected:
    enum class Fault { none, once, full_from_then, end_of_program };

    SafeWrite() { arrange(Place::plain); }

    void arrange(Place place) {
        for (const char* name : {"work", "state"})
            std::filesystem::remove_all(directory_.path(name));
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
        meddle_ = nullptr;
        arm(Fault::none, 0);
    }
    void arm(Fault fault, int at) {
        fault_ = fault;
        fault_at_ = at;
        operations_ = 0;
        fired_ = false;
        trace_.clear();
    }
    [[nodiscard]] bool is_refused(FileOperation operation, std::string_view path) const {
        const bool opens = operation == FileOperation::open;
        return (place_ == Place::closed_directory && opens && extension_part(path) == "tmp" &&
                directory_part(path) == directory_.path("work")) ||
               (place_ == Place::no_writing && opens && path == file_) ||
               (place_ == Place::no_replacing && operation == FileOperation::rename &&
                path == file_);
    }
    SystemError decide(FileOperation operation, std::string_view path) {
        trace_ += "orwtfcsRxmDLak"[static_cast<std::size_t>(operation)];
        if (meddle_)
            meddle_(operation);
        if (is_refused(operation, path))
            return SystemError{EACCES};
        const bool now = ++operations_ == fault_at_ && fault_ != Fault::none;
        if (now && fault_ == Fault::end_of_program)
            ::_exit(0);
        if (now)
            fired_operation_ = operation;
        fired_ = fired_ || now;
        const bool is_full =
            fault_ == Fault::full_from_then && fired_ && operation == FileOperation::write;
        return now || is_full ? SystemError{ENOSPC} : SystemError::none;
    }

    static SystemError write_in_pieces(SafeWriter& writer, std::string_view path,
                                       std::string_view text) {
        static_cast<void>(begin_safe_write(writer, path));
        safe_append(writer, bytes(text.substr(0, text.size() / 2)));
        safe_append(writer, bytes(text.substr(text.size() / 2)));
        return commit_safe_write(writer);
    }
    [[nodiscard]] std::string old() const {
        return place_ == Place::missing ? "(missing)" : std::string(k_old);
    }
    void expect_nothing_left_over() const {
        std::set<std::string> left = directory_.names("work");
        for (const char* ours : {"file", "real", "second"})
            left.erase(ours);
        left.merge(directory_.names("state/pellux"));
        // The path of a copy that has not come about yet names nothing.
        std::erase_if(left, [](const std::string& name) { return name.ends_with(".path"); });
        EXPECT_EQ(left, std::set<std::string>{});
    }
    void expect_whole(const SafeWriter& writer, std::string_view text, SystemError error) {
        const std::string now = directory_.read(real_name_);
        if (!writer.copy_path.empty()) {
            EXPECT_TRUE(failed(error));
            EXPECT_EQ(directory_.read(writer.copy_path.view()), old());
            fault_ = Fault::none;
            PathBuffer found;
            EXPECT_TRUE(find_interrupted_copy(file_, found));
            EXPECT_EQ(found.view(), writer.copy_path.view());
            return;
        }
        if (!failed(writer.directory_error))
            expect_nothing_left_over();
        EXPECT_EQ(now, failed(error) ? old() : text);
        EXPECT_TRUE(!failed(error) || error == SystemError{ENOSPC});
        if (!failed(error) && fired_) {
            const bool in_attributes = fired_operation_ == FileOperation::attributes;
            // The last step apart, only what looks for what earlier writings left may fail.
            const bool in_last_step = fired_operation_ == FileOperation::flush_directory ||
                                      fired_operation_ == FileOperation::remove;
            const bool in_search = fired_operation_ == FileOperation::stat ||
                                   fired_operation_ == FileOperation::open ||
                                   fired_operation_ == FileOperation::list ||
                                   fired_operation_ == FileOperation::lock;
            EXPECT_TRUE(in_attributes || in_last_step || in_search);
            EXPECT_EQ(failed(writer.directory_error), in_last_step);
            EXPECT_EQ(writer.attributes_lost,
                      in_attributes && writer.method == SafeWriter::Method::rename);
        }
    }

    // In memory: the tests flush thousands of times.
    test::TemporaryDirectory directory_{"/dev/shm"};
    test::ScopedVariable state_{"XDG_STATE_HOME", directory_.path("state").c_str()};
    Place place_ = Place::plain;
    std::string file_;
    std::string real_name_;
    std::function<void(FileOperation)> meddle_;
    Fault fault_ = Fault::none;
    int fault_at_ = 0;
    int operations_ = 0;
    bool fired_ = false;
    FileOperation fired_operation_ = FileOperation::open;
    std::string trace_; ///< one letter for each operation
    test::FileFaults faults_{
        [this](FileOperation operation, std::string_view path) { return decide(operation, path); }};
};

TEST_F(SafeWrite, AnyOperationMayFailOnceOrTheDiskStayFull) {
    const struct {
        Fault fault;
        std::string_view text;
    } rows[] = {
        {Fault::once, k_shorter}, {Fault::once, k_longer}, {Fault::full_from_then, k_longer}};
    int copies = 0;
    for (const auto& row : rows)
        for (const Place place : k_writable_places) {
            int n = 0;
            do {
                arrange(place);
                arm(row.fault, ++n);
                SafeWriter writer;
                const SystemError error = write_in_pieces(writer, file_, row.text);
                SCOPED_TRACE(testing::Message()
                             << "place " << static_cast<int>(place) << ", n " << n << ", operation "
                             << static_cast<int>(fired_operation_));
                expect_whole(writer, row.text, error);
                EXPECT_TRUE(writer.copy_path.empty() || row.fault == Fault::full_from_then);
                EXPECT_TRUE(fired_ || !failed(error));
                copies += writer.copy_path.empty() ? 0 : 1;
                ASSERT_FALSE(HasFailure());
            } while (fired_);
            EXPECT_GT(n, 8);
        }
    EXPECT_GT(copies, 3);
}

TEST_F(SafeWrite, AProgramThatEndsAnywhereLosesNothing) {
    int copies = 0;
    for (const Place place : k_writable_places)
        for (int status = 0, n = 1; status == 0; ++n) {
            arrange(place);
            arm(Fault::end_of_program, n);
            SafeWriter writer;
            status = test::run_forked(
                [&] { return failed(write_in_pieces(writer, file_, k_shorter)) ? 2 : 1; });
            SCOPED_TRACE(testing::Message() << "place " << static_cast<int>(place) << ", n " << n);
            ASSERT_NE(status, 2);

            arm(Fault::none, 0);
            PathBuffer copy;
            const std::string now = directory_.read(real_name_);
            if (find_interrupted_copy(file_, copy)) {
                ++copies;
                ASSERT_EQ(directory_.read(copy.view()), k_old);
                // The rescue itself may fail, and then must not take the copy away.
                arm(Fault::once, 1 + n);
                const bool is_rescued = !failed(safe_write_file(file_, bytes(k_old)));
                arm(Fault::none, 0);
                ASSERT_TRUE(is_rescued || directory_.read(copy.view()) == k_old);
                ASSERT_FALSE(failed(safe_write_file(file_, bytes(k_old))));
                ASSERT_FALSE(find_interrupted_copy(file_, copy));
                ASSERT_EQ(directory_.read(real_name_), k_old);
            } else {
                ASSERT_TRUE(now == k_shorter || (now == old() && status == 0)) << now;
                ASSERT_FALSE(failed(safe_write_file(file_, bytes(k_old))));
            }
            expect_nothing_left_over();
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
        SafeWriter writer;
        ASSERT_FALSE(failed(write_in_pieces(writer, file_, k_shorter)));
        std::erase_if(trace_, [](char c) { return std::string_view("wfRDtx").find(c) > 5; });
        EXPECT_EQ(trace_, row.wanted) << static_cast<int>(row.place);
    }
}

TEST_F(SafeWrite, AnAbandonedOrRefusedWritingLeavesTheOldBytes) {
    for (const Place place : k_writable_places) {
        arrange(place);
        {
            SafeWriter writer;
            ASSERT_FALSE(failed(begin_safe_write(writer, file_)));
            safe_append(writer, bytes(k_longer));
            if (place == Place::plain)
                abandon_safe_write(writer);
        }
        EXPECT_EQ(directory_.read(real_name_), old());
        expect_nothing_left_over();
    }
    arrange(Place::no_writing);
    EXPECT_TRUE(is_denied(safe_write_file(file_, bytes("new"))));
    EXPECT_EQ(directory_.read("work/file"), k_old);
    expect_nothing_left_over();
}

TEST_F(SafeWrite, LinksAreFollowedToTheFile) {
    const auto link = [&](const char* to, const char* name) {
        std::filesystem::create_symlink(to, directory_.path("work/") + name);
    };
    std::filesystem::create_directories(directory_.path("far/deep"));
    directory_.write("far/real", k_old);
    link("../far/deep", "dir");
    link("dir/../real", "relative");
    link("relative", "chained");
    link(directory_.path("work/chained").c_str(), "absolute");
    link("../far/made", "dangling");
    for (const std::string name : {"relative", "chained", "absolute", "dangling"}) {
        SafeWriter writer;
        {
            // The path means the same until the end.
            const test::ScopedDirectory here(directory_.path("work"));
            ASSERT_FALSE(failed(begin_safe_write(writer, name))) << name;
        }
        safe_append(writer, bytes(name));
        ASSERT_FALSE(failed(commit_safe_write(writer)));
        EXPECT_TRUE(std::filesystem::is_symlink(directory_.path("work/" + name)));
        EXPECT_EQ(directory_.read(name == "dangling" ? "far/made" : "far/real"), name);
    }
    link("loop2", "loop1");
    link("loop1", "loop2");
    link("nowhere/x", "lost");
    link("fifo", "to_fifo");
    ASSERT_EQ(::mkfifo(directory_.path("work/fifo").c_str(), 0600), 0);
    const std::set<std::string> before = directory_.names("work");
    const struct {
        const char* name;
        SystemError error;
    } refused[] = {
        {"work/loop1", refuse(Refusal::link_loop)}, {"work/lost", SystemError{ENOENT}},
        {"work/fifo", refuse(Refusal::not_a_file)}, {"work/to_fifo", refuse(Refusal::not_a_file)},
        {"work/dir", refuse(Refusal::directory)},   {"work/new/", SystemError{ENOENT}}};
    for (const auto& row : refused)
        EXPECT_EQ(safe_write_file(directory_.path(row.name), bytes("x")), row.error) << row.name;
    EXPECT_EQ(directory_.names("work"), before);
}

TEST_F(SafeWrite, AttributesAndNamesStay) {
    for (const Place place : {Place::plain, Place::two_names, Place::no_replacing}) {
        arrange(place);
        ASSERT_TRUE(::geteuid() != 0 || ::chown(file_.c_str(), 1234, 2345) == 0);
        ASSERT_EQ(::chmod(file_.c_str(), 0615), 0);
        FileStat before, now;
        ASSERT_FALSE(failed(stat_file(file_, before)));
        SafeWriter writer;
        ASSERT_FALSE(failed(write_in_pieces(writer, file_, k_shorter)));
        ASSERT_FALSE(failed(stat_file(file_, now)));
        EXPECT_EQ(std::tuple(now.mode, now.owner, now.group, now.links),
                  std::tuple(before.mode, before.owner, before.group, before.links));
        EXPECT_EQ(now.inode == before.inode, place != Place::plain);
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
    SafeWriter writer;
    EXPECT_TRUE(test::run_forked([&] {
        return ::setgroups(0, nullptr) == 0 && ::setgid(65534) == 0 && ::setuid(65534) == 0 &&
               !failed(write_in_pieces(writer, file_, k_shorter)) && writer.attributes_lost;
    }));
    FileStat now;
    ASSERT_FALSE(failed(stat_file(file_, now)));
    EXPECT_EQ(std::tuple(now.mode, now.owner, now.group), std::tuple(0666U, 65534U, 65534U));
}

TEST_F(SafeWrite, AnEarlierCopyStaysUntilAWritingIsWhole) {
    PathBuffer copy;
    for (const Place place : {Place::plain, Place::two_names}) {
        arrange(place);
        for (const char* name : {"work/.file.pellux-copy", "work/.file.pellux-copy-3"})
            directory_.write(name, "good bytes");
        EXPECT_FALSE(find_interrupted_copy(directory_.path("work/second"), copy));
        const auto before = directory_.names("work");
        SafeWriter writer;
        ASSERT_FALSE(failed(begin_safe_write(writer, file_)));
        abandon_safe_write(writer);
        EXPECT_EQ(directory_.names("work"), before);
        ASSERT_FALSE(failed(safe_write_file(file_, bytes("new"))));
        expect_nothing_left_over();
    }
    for (char number = '1'; number <= '9'; ++number)
        directory_.write("work/.file.pellux-copy" +
                             (number == '1' ? std::string() : std::string("-") + number),
                         "good bytes");
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
    const std::string other = directory_.write("other/file", "other");
    arm(Fault::full_from_then, 1'000'000);
    SafeWriter writer;
    ASSERT_FALSE(failed(begin_safe_write(writer, file_)));
    fired_ = true;
    EXPECT_TRUE(failed(safe_append(writer, bytes("new"))));
    arm(Fault::none, 0);
    PathBuffer copy;
    ASSERT_TRUE(find_interrupted_copy(file_, copy));
    EXPECT_EQ(directory_part(copy.view()), directory_.path("state/pellux"));
    FileStat state, stat;
    ASSERT_FALSE(failed(stat_file(directory_.path("state/pellux"), state)));
    ASSERT_FALSE(failed(stat_file(copy.view(), stat)));
    EXPECT_EQ(std::pair(state.mode, stat.mode), std::pair(0700U, 0600U));
    EXPECT_FALSE(find_interrupted_copy(other, copy));

    const std::string path_file = std::string(copy.view()) + ".path";
    EXPECT_EQ(directory_.read(path_file), file_);
    directory_.write(path_file, other);
    EXPECT_FALSE(find_interrupted_copy(file_, copy));
}

TEST_F(SafeWrite, TwoWritersDoNotMeetInOneFile) {
    arrange(Place::two_names);
    const std::string second = directory_.path("work/second");
    SafeWriter first;
    ASSERT_FALSE(failed(begin_safe_write(first, file_)));
    safe_append(first, bytes("first"));
    EXPECT_TRUE(is_busy(safe_write_file(second, bytes("second"))));
    PathBuffer copy;
    EXPECT_FALSE(find_interrupted_copy(file_, copy)) << "the writing is under way";
    ASSERT_FALSE(failed(commit_safe_write(first)));
    EXPECT_FALSE(failed(safe_write_file(second, bytes("second"))));
    EXPECT_EQ(directory_.read("work/file"), "second");
}

TEST_F(SafeWrite, AFileOfAnotherSizeThanWrittenIsAFailure) {
    const struct {
        Place place;
        FileOperation operation;
        int calls_before;
        const char* grown; ///< ahead of the copy
    } rows[] = {{Place::plain, FileOperation::flush, 0, ""},
                {Place::two_names, FileOperation::flush, 1, ""},
                {Place::two_names, FileOperation::read, 0, "!"}};
    for (const auto& row : rows) {
        arrange(row.place);
        SafeWriter writer;
        meddle_ = [&, calls = row.calls_before](FileOperation operation) mutable {
            const PathBuffer& path = row.place == Place::plain ? writer.temporary : writer.target;
            if (operation == row.operation && calls-- == 0)
                std::ofstream(path.c_str(), std::ios::app) << '!';
        };
        EXPECT_EQ(write_in_pieces(writer, file_, k_shorter), refuse(Refusal::damaged));
        EXPECT_EQ(directory_.read("work/file"), std::string(k_old) + row.grown);
        expect_nothing_left_over();
    }
}

} // namespace
} // namespace pellux
