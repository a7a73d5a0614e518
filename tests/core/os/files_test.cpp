#include "core/os/files.h"

#include "tests/support/file_faults.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include <sys/stat.h>
#include <sys/xattr.h>

namespace pellux {
namespace {

struct Files : testing::Test {
    const test::TemporaryDirectory directory;

    [[nodiscard]] std::string path(const char* name) const { return directory.path(name); }
};

TEST_F(Files, ReadingRefusesWhatIsNoFile) {
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    std::filesystem::create_symlink("fifo", path("link"));
    const struct {
        std::string path;
        SystemError error;
    } rows[] = {{path("fifo"), refuse(Refusal::not_a_file)},
                {path("link"), refuse(Refusal::not_a_file)},
                {path(""), refuse(Refusal::directory)},
                {"/dev/null", refuse(Refusal::not_a_file)},
                {path("none"), SystemError{ENOENT}},
                {"", SystemError{ENOENT}},
                {std::string("a\0b", 3), refuse(Refusal::bad_path)},
                {std::string(5000, 'x'), refuse(Refusal::path_too_long)}};
    for (const auto& row : rows) {
        File file;
        EXPECT_EQ(open_file(file, row.path, OpenMode::read), row.error) << row.path;
        EXPECT_FALSE(file);
    }
}

TEST_F(Files, ListsEveryNameWithItsKind) {
    using Kinds = std::map<std::string, FileKind>;
    Kinds wanted{{"sub", FileKind::directory}, {"link", FileKind::link}, {"fifo", FileKind::other}};
    std::filesystem::create_directory(path("sub"));
    std::filesystem::create_symlink("nowhere", path("link"));
    ASSERT_EQ(::mkfifo(path("fifo").c_str(), 0600), 0);
    // More than one piece of what the system hands out at a time.
    for (int i = 0; i < 700; ++i) {
        const std::string name = "a name that takes room " + std::to_string(i);
        directory.write(name, "");
        wanted[name] = FileKind::regular;
    }
    Kinds found;
    const auto collect = [](void* context, std::string_view name, FileKind kind) {
        return static_cast<Kinds*>(context)->emplace(name, kind).second;
    };
    ASSERT_FALSE(failed(list_directory(directory.path(), collect, &found)));
    EXPECT_EQ(found, wanted);
}

TEST_F(Files, TemporaryNamesAreNewAndFit) {
    // Another program that had the name first keeps its file.
    int left = 5;
    const test::FileFaults taken([&left](FileOperation operation, std::string_view) {
        return operation == FileOperation::open && left-- > 0 ? SystemError{EEXIST}
                                                              : SystemError::none;
    });
    for (const std::string& name : {std::string("a.vhd"), std::string(255, 'n')}) {
        PathBuffer temporary, other;
        File file;
        EXPECT_FALSE(failed(create_temporary(directory.path(name), 0600, file, temporary)));
        EXPECT_EQ(directory_part(temporary.view()), directory.path());
        EXPECT_TRUE(file_exists(temporary.view()));
        EXPECT_TRUE(temporary_name(directory.path(name), other));
        EXPECT_NE(other.view(), temporary.view());
    }
    EXPECT_LT(left, 0);
}

TEST_F(Files, ExtendedAttributesGoOverAndNoOthersStay) {
    const std::string from_path = directory.write("from", "");
    const std::string to_path = directory.write("to", "");
    if (::setxattr(to_path.c_str(), "user.other", "o", 1, 0) != 0)
        GTEST_SKIP() << "no extended attributes here";
    ASSERT_EQ(::setxattr(from_path.c_str(), "user.note", "text", 4, 0), 0);
    File from, to;
    bool lost = true;
    ASSERT_FALSE(failed(open_file(from, from_path, OpenMode::read)));
    ASSERT_FALSE(failed(open_file(to, to_path, OpenMode::update)));
    ASSERT_FALSE(failed(copy_attributes(from, to, lost)));
    EXPECT_FALSE(lost);
    char value[8];
    EXPECT_EQ(::getxattr(to_path.c_str(), "user.note", value, sizeof value), 4);
    EXPECT_LT(::getxattr(to_path.c_str(), "user.other", value, sizeof value), 0);
}

} // namespace
} // namespace pellux
