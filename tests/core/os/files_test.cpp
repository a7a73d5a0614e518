#include "core/os/files.h"

#include "tests/core/os/temporary_directory.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <string>

#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

namespace pellux {
namespace {

using test::TemporaryDirectory;

std::span<const std::byte> bytes(std::string_view text) {
    return std::as_bytes(std::span(text));
}

TEST(Files, ReadingRefusesWhatIsNoFile) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo(directory.path("fifo").c_str(), 0600), 0);
    std::filesystem::create_symlink("fifo", directory.path("link"));
    const struct {
        std::string path;
        SystemError error;
    } rows[] = {{directory.path("fifo"), refuse(Refusal::not_a_file)},
                {directory.path("link"), refuse(Refusal::not_a_file)},
                {directory.path(), refuse(Refusal::directory)},
                {"/dev/null", refuse(Refusal::not_a_file)},
                {std::string("a\0b", 3), refuse(Refusal::bad_path)},
                {std::string(5000, 'x'), refuse(Refusal::path_too_long)}};
    for (const auto& row : rows) {
        File file;
        EXPECT_EQ(open_file(file, row.path, OpenMode::read), row.error) << row.path;
        EXPECT_FALSE(file);
    }
    File file;
    EXPECT_TRUE(is_missing(open_file(file, directory.path("none"), OpenMode::read)));
    EXPECT_TRUE(is_missing(open_file(file, "", OpenMode::read)));
}

TEST(Files, OpenModesKeepWhatTheyShould) {
    const struct {
        OpenMode mode;
        const char *on_old, *on_none; ///< contents after writing "NEW"; null: refused
    } rows[] = {{OpenMode::truncate, "NEW", "NEW"},
                {OpenMode::create, nullptr, "NEW"},
                {OpenMode::append, "old textNEW", "NEW"},
                {OpenMode::update, "NEW text", nullptr}};
    for (const auto& row : rows) {
        const TemporaryDirectory directory;
        directory.write("old", "old text");
        for (const char* name : {"old", "none"}) {
            const char* wanted = name == std::string("old") ? row.on_old : row.on_none;
            const std::string before = directory.read(name);
            File file;
            const SystemError error = open_file(file, directory.path(name), row.mode);
            EXPECT_EQ(failed(error), wanted == nullptr);
            if (!failed(error)) {
                EXPECT_FALSE(failed(write_all(file, bytes("NEW"))));
                EXPECT_FALSE(failed(close_file(file)));
                EXPECT_FALSE(file);
            }
            EXPECT_EQ(directory.read(name), wanted != nullptr ? wanted : before);
        }
    }
}

TEST(Files, ReadsAndWritesInPlace) {
    const TemporaryDirectory directory;
    File file;
    ASSERT_FALSE(failed(open_file(file, directory.write("f", "0123456789"), OpenMode::update)));
    ASSERT_FALSE(failed(write_at(file, 8, bytes("ABCD"))));
    ASSERT_FALSE(failed(truncate_file(file, 11)));
    std::array<std::byte, 8> into{};
    std::size_t got = 0;
    ASSERT_FALSE(failed(read_at(file, 6, into, got)));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(into.data()), got), "67ABC");
    ASSERT_FALSE(failed(read_some(file, into, got)));
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(into.data()), got), "01234567");
    FileStat stat;
    ASSERT_FALSE(failed(stat_open_file(file, stat)));
    EXPECT_EQ(stat.size, 11);
    EXPECT_GT(stat.modified_ns, 1'000'000'000'000'000'000);
}

TEST(Files, AFailingWriteMayWriteAPart) {
    const TemporaryDirectory directory;
    File file;
    ASSERT_FALSE(failed(open_file(file, directory.path("f"), OpenMode::create)));
    set_file_fault_hook(
        [](void*, FileOperation, std::string_view, std::size_t& partial) {
            partial = 3;
            return SystemError{ENOSPC};
        },
        nullptr);
    EXPECT_TRUE(is_out_of_room(write_all(file, bytes("abcdef"))));
    EXPECT_TRUE(is_out_of_room(write_at(file, 3, bytes("x"))));
    EXPECT_FALSE(file_exists(directory.path("f")));
    set_file_fault_hook(nullptr, nullptr);
    EXPECT_EQ(directory.read("f"), "abcx");
    EXPECT_TRUE(file_exists(directory.path("f")));
}

TEST(Files, ListsEveryNameWithItsKind) {
    const TemporaryDirectory directory;
    directory.write("file", "");
    directory.write("sub/x", "");
    std::filesystem::create_symlink("nowhere", directory.path("link"));
    ASSERT_EQ(::mkfifo(directory.path("fifo").c_str(), 0600), 0);
    using Kinds = std::map<std::string, FileKind>;
    Kinds wanted{{"file", FileKind::regular},
                 {"sub", FileKind::directory},
                 {"link", FileKind::link},
                 {"fifo", FileKind::other}};
    // More than one piece of what the system hands out at a time.
    for (int i = 0; i < 700; ++i) {
        const std::string name = "a name that takes room " + std::to_string(i);
        directory.write(name, "");
        wanted[name] = FileKind::regular;
    }
    Kinds found;
    const auto collect = [](void* context, std::string_view name, FileKind kind) {
        static_cast<Kinds*>(context)->emplace(name, kind);
        return true;
    };
    ASSERT_FALSE(failed(list_directory(directory.path(), collect, &found)));
    EXPECT_EQ(found, wanted);

    int calls = 0;
    const auto stop = [](void* context, std::string_view, FileKind) {
        ++*static_cast<int*>(context);
        return false;
    };
    ASSERT_FALSE(failed(list_directory(directory.path(), stop, &calls)));
    EXPECT_EQ(calls, 1);
    EXPECT_TRUE(is_missing(list_directory(directory.path("file"), stop, &calls)));
}

TEST(Files, LinksAreReadFollowedAndResolved) {
    const TemporaryDirectory directory;
    directory.write("sub/file", "text");
    std::filesystem::create_symlink("sub/../sub/file", directory.path("link"));
    PathBuffer path;
    ASSERT_FALSE(failed(read_link(directory.path("link"), path)));
    EXPECT_EQ(path.view(), "sub/../sub/file");
    ASSERT_FALSE(failed(real_path(directory.path("link"), path)));
    EXPECT_EQ(path.view(), directory.path("sub/file"));
    FileStat stat;
    ASSERT_FALSE(failed(stat_link(directory.path("link"), stat)));
    EXPECT_EQ(stat.kind, FileKind::link);
    ASSERT_FALSE(failed(link_file(directory.path("sub/file"), directory.path("other"))));
    ASSERT_FALSE(failed(stat_file(directory.path("link"), stat)));
    EXPECT_EQ(stat.kind, FileKind::regular);
    EXPECT_EQ(stat.links, 2U);
    EXPECT_TRUE(failed(read_link(directory.path("sub"), path)));
    EXPECT_EQ(path.view(), directory.path("sub/file")) << "a failure changed its result";
}

TEST(Files, NamesAreMovedAndRemoved) {
    const TemporaryDirectory directory;
    directory.write("a", "A");
    directory.write("b", "B");
    const auto path = [&](const char* name) { return directory.path(name); };
    EXPECT_TRUE(is_taken(rename_to_new_name(path("a"), path("b"))));
    EXPECT_TRUE(is_taken(link_file(path("a"), path("b"))));
    EXPECT_EQ(directory.read("b"), "B");
    EXPECT_FALSE(failed(rename_to_new_name(path("a"), path("c"))));
    EXPECT_FALSE(failed(rename_file(path("c"), path("b"))));
    EXPECT_EQ(directory.read("b"), "A");
    EXPECT_FALSE(failed(remove_file(path("b"))));
    EXPECT_TRUE(is_missing(remove_file(path("b"))));

    EXPECT_FALSE(failed(make_directories(path("x/y/z"), 0700)));
    EXPECT_FALSE(failed(make_directories(path("x/y/z/"), 0700)));
    FileStat stat;
    ASSERT_FALSE(failed(stat_file(path("x/y"), stat)));
    EXPECT_EQ(stat.mode, 0700U);
    EXPECT_TRUE(failed(remove_directory(path("x/y"))));
    EXPECT_FALSE(failed(remove_directory(path("x/y/z"))));
    EXPECT_FALSE(failed(flush_directory(path("x"))));
    directory.write("file", "");
    EXPECT_TRUE(failed(make_directories(path("file/z"))));
    EXPECT_TRUE(failed(make_directories(path("file"))));
    EXPECT_EQ(directory.names(), (std::set<std::string>{"x", "file"}));
}

TEST(Files, RelativePathsCountFromTheCurrentDirectory) {
    const TemporaryDirectory directory;
    directory.write("sub/file", "text");
    PathBuffer before;
    ASSERT_FALSE(failed(current_directory(before)));
    ASSERT_FALSE(failed(change_directory(directory.path("sub"))));
    PathBuffer now;
    EXPECT_FALSE(failed(current_directory(now)));
    EXPECT_TRUE(file_exists("file"));
    EXPECT_FALSE(failed(make_directories("new/deep")));
    EXPECT_FALSE(failed(change_directory(before.view())));
    EXPECT_EQ(now.view(), directory.path("sub"));
    EXPECT_TRUE(file_exists(directory.path("sub/new/deep")));
}

TEST(Files, TemporaryNamesAreNewAndFit) {
    const TemporaryDirectory directory;
    for (const std::string& name : {std::string("a.vhd"), std::string(255, 'n')}) {
        std::set<std::string> seen;
        for (int i = 0; i < 3; ++i) {
            PathBuffer temporary;
            File file;
            ASSERT_FALSE(failed(create_temporary(directory.path(name), 0600, file, temporary)));
            EXPECT_EQ(directory_part(temporary.view()), directory.path());
            EXPECT_EQ(file_name_part(temporary.view()).substr(0, 4), "." + name.substr(0, 3));
            EXPECT_TRUE(seen.emplace(temporary.view()).second);
        }
    }
    // Another program that had the name first keeps its file.
    int refused = 0;
    set_file_fault_hook(
        [](void* context, FileOperation operation, std::string_view, std::size_t&) {
            int& count = *static_cast<int*>(context);
            return operation == FileOperation::open && ++count <= 5 ? SystemError{EEXIST}
                                                                    : SystemError::none;
        },
        &refused);
    PathBuffer temporary;
    File file;
    EXPECT_FALSE(failed(create_temporary(directory.path("f"), 0600, file, temporary)));
    set_file_fault_hook(nullptr, nullptr);
    EXPECT_EQ(refused, 6);
    EXPECT_TRUE(file_exists(temporary.view()));
}

TEST(Files, LocksExcludeOtherOpeners) {
    const TemporaryDirectory directory;
    const std::string path = directory.write("f", "");
    File first;
    File second;
    ASSERT_FALSE(failed(open_file(first, path, OpenMode::update)));
    ASSERT_FALSE(failed(open_file(second, path, OpenMode::read)));
    EXPECT_FALSE(failed(lock_file(first, FileLock::shared)));
    EXPECT_FALSE(failed(lock_file(second, FileLock::shared)));
    EXPECT_TRUE(is_busy(lock_file(first, FileLock::exclusive)));
    ASSERT_FALSE(failed(close_file(second)));
    EXPECT_FALSE(failed(lock_file(first, FileLock::exclusive)));
}

TEST(Files, AttributesGoOverAndNoOthersStay) {
    const TemporaryDirectory directory;
    const std::string from_path = directory.write("from", "");
    const std::string to_path = directory.write("to", "");
    if (::setxattr(to_path.c_str(), "user.other", "o", 1, 0) != 0)
        GTEST_SKIP() << "no extended attributes here";
    ASSERT_EQ(::setxattr(from_path.c_str(), "user.note", "text", 4, 0), 0);
    ASSERT_TRUE(::geteuid() != 0 || ::chown(from_path.c_str(), 1234, 2345) == 0);
    ASSERT_EQ(::chmod(from_path.c_str(), 04751), 0);
    File from;
    File to;
    ASSERT_FALSE(failed(open_file(from, from_path, OpenMode::read)));
    ASSERT_FALSE(failed(open_file(to, to_path, OpenMode::update)));
    bool lost = true;
    ASSERT_FALSE(failed(copy_attributes(from, to, lost)));
    EXPECT_FALSE(lost);
    FileStat wanted;
    FileStat stat;
    ASSERT_FALSE(failed(stat_open_file(from, wanted)));
    ASSERT_FALSE(failed(stat_open_file(to, stat)));
    EXPECT_EQ(std::tuple(stat.mode, stat.owner, stat.group),
              std::tuple(wanted.mode, wanted.owner, wanted.group));
    char value[8];
    EXPECT_EQ(::getxattr(to_path.c_str(), "user.note", value, sizeof value), 4);
    EXPECT_LT(::getxattr(to_path.c_str(), "user.other", value, sizeof value), 0);
}

TEST(SystemErrors, AreClassifiedAndDescribed) {
    const struct {
        int number;
        bool missing, denied, full, busy;
    } rows[] = {{ENOENT, true, false, false, false},  {ENOTDIR, true, false, false, false},
                {EACCES, false, true, false, false},  {EPERM, false, true, false, false},
                {EROFS, false, true, false, false},   {ENOSPC, false, false, true, false},
                {EDQUOT, false, false, true, false},  {EFBIG, false, false, true, false},
                {EAGAIN, false, false, false, true},  {EBUSY, false, false, false, true},
                {ETXTBSY, false, false, false, true}, {EIO, false, false, false, false},
                {0, false, false, false, false}};
    for (const auto& row : rows) {
        const SystemError error{row.number};
        EXPECT_EQ(is_missing(error), row.missing) << row.number;
        EXPECT_EQ(is_denied(error), row.denied) << row.number;
        EXPECT_EQ(is_out_of_room(error), row.full) << row.number;
        EXPECT_EQ(is_busy(error), row.busy) << row.number;
    }
    char text[64];
    EXPECT_EQ(describe(SystemError{ENOSPC}, text), "No space left on device");
    char little[8];
    EXPECT_EQ(describe(SystemError{ENOSPC}, little), "No spac");
    EXPECT_EQ(little[7], '\0');
    EXPECT_EQ(describe(SystemError{ENOSPC}, {}), "");
}

} // namespace
} // namespace pellux
