#include "tools/driver/local_libraries.h"

#include "core/os/files.h"
#include "tests/tools/driver/scratch.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>

namespace pellux {
namespace {

struct Libraries : testing::Test {
    Scratch scratch;
    FileOperation refused = FileOperation::make_directory;
    int system_number = 0;

    void refuse(FileOperation operation, int number) {
        refused = operation;
        system_number = number;
        set_file_fault_hook(
            [](void* context, FileOperation asked, std::string_view, std::size_t&) {
                auto& self = *static_cast<Libraries*>(context);
                return asked == self.refused ? static_cast<SystemError>(self.system_number)
                                             : SystemError::none;
            },
            this);
    }
    ~Libraries() override { set_file_fault_hook(nullptr, nullptr); }
};

TEST_F(Libraries, DirectoriesAreMadeAndLeftEmpty) {
    EXPECT_FALSE(prepare_library({"alib", "alib"}));
    EXPECT_TRUE(std::filesystem::is_empty("alib"));
    EXPECT_FALSE(prepare_library({"alib", "alib"}));
}

TEST_F(Libraries, NoRightAndNoRoomDifferFromABadPlace) {
    struct Row {
        FileOperation operation;
        int number;
        ExitStatus status;
    };
    const Row rows[] = {
        {FileOperation::make_directory, EACCES, ExitStatus::no_room},
        {FileOperation::make_directory, EROFS, ExitStatus::no_room},
        {FileOperation::make_directory, ENOSPC, ExitStatus::no_room},
        {FileOperation::make_directory, ENAMETOOLONG, ExitStatus::bad_library},
        {FileOperation::open, EACCES, ExitStatus::no_room},
        {FileOperation::write, ENOSPC, ExitStatus::no_room},
        {FileOperation::close, EDQUOT, ExitStatus::no_room},
        {FileOperation::stat, EIO, ExitStatus::bad_library},
    };
    for (const Row& row : rows) {
        std::filesystem::remove_all("alib");
        refuse(row.operation, row.number);
        const Failure failure = prepare_library({"alib", "alib"});
        set_file_fault_hook(nullptr, nullptr);
        EXPECT_EQ(failure.status, row.status) << row.number;
        EXPECT_NE(failure.text.find("alib"), String::npos);
        EXPECT_TRUE(!std::filesystem::exists("alib") || std::filesystem::is_empty("alib"));
    }
}

TEST_F(Libraries, WhatIsNoDirectoryIsRefused) {
    scratch.write("alib", "a file");
    std::filesystem::create_symlink("nowhere", "blib");
    EXPECT_EQ(prepare_library({"alib", "alib"}).status, ExitStatus::bad_library);
    EXPECT_EQ(prepare_library({"blib", "blib"}).status, ExitStatus::bad_library);
    EXPECT_EQ(scratch.read("alib"), "a file");
}

TEST_F(Libraries, LocalOnesAreThoseWithALibraryFileOfTheStandard) {
    for (const char* directory : {"Alib", "blib", "src", "a b", "elsewhere"})
        scratch.make_directory(directory);
    scratch.write("Alib/alib-obj08.cf", "");
    scratch.write("blib/blib-obj93.cf", "");
    scratch.write("src/other-obj08.cf", "");
    scratch.write("elsewhere/clib-obj08.cf", "");
    scratch.write("file", "");
    std::filesystem::create_directory_symlink("elsewhere", "clib");
    const Surroundings around = look_around(VhdlStandard::vhdl_2008);
    EXPECT_EQ(around.directories, (Vector<String>{"Alib", "blib", "clib", "elsewhere", "src"}));
    ASSERT_EQ(around.libraries.size(), 2u);
    EXPECT_EQ(around.libraries[0].name, "alib");
    EXPECT_EQ(around.libraries[0].directory, "Alib");
    EXPECT_EQ(around.libraries[1].directory, "clib");
}

} // namespace
} // namespace pellux
