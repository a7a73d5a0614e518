#include "tools/driver/local_libraries.h"

#include "core/os/files.h"
#include "tests/tools/driver/scratch.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace pellux {
namespace {

struct Refused {
    FileOperation operation;
    int number; ///< of the system's error
    ExitStatus status;

    static SystemError answer(void* context, FileOperation asked, std::string_view, std::size_t&) {
        const auto& self = *static_cast<const Refused*>(context);
        return asked == self.operation ? static_cast<SystemError>(self.number) : SystemError::none;
    }
};

TEST(Libraries, NoRightAndNoRoomDifferFromABadPlace) {
    const Scratch scratch;
    Refused rows[] = {
        {FileOperation::make_directory, 0, ExitStatus::nothing_failed},
        {FileOperation::make_directory, EACCES, ExitStatus::no_room},
        {FileOperation::make_directory, ENAMETOOLONG, ExitStatus::bad_library},
        {FileOperation::open, EACCES, ExitStatus::no_room},
        {FileOperation::write, ENOSPC, ExitStatus::no_room},
        {FileOperation::close, EDQUOT, ExitStatus::no_room},
        {FileOperation::stat, EIO, ExitStatus::bad_library},
    };
    for (Refused& row : rows) {
        std::filesystem::remove_all("alib");
        set_file_fault_hook(Refused::answer, &row);
        const Failure failure = prepare_library({"alib", "alib"});
        set_file_fault_hook(nullptr, nullptr);
        EXPECT_EQ(failure.status, row.status) << row.number;
        EXPECT_EQ(failure.text.find("alib") != String::npos, row.number != 0);
        EXPECT_TRUE(scratch.names("alib").empty());
    }
}

TEST(Libraries, LocalOnesAreThoseWithALibraryFileOfTheStandard) {
    const Scratch scratch;
    for (const char* file : {"Alib/alib-obj08.cf", "blib/blib-obj93.cf", "src/other-obj08.cf",
                             "elsewhere/clib-obj08.cf", "a b/x", "file"})
        scratch.write(file, "");
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
