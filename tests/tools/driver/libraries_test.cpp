#include "tools/driver/compile/plan.h"

#include "tests/support/file_faults.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

TEST(Libraries, NoRightAndNoRoomDifferFromABadPlace) {
    const Scratch scratch;
    const struct {
        FileOperation operation;
        int number; ///< of the system's error
        ExitStatus status;
    } rows[] = {
        {FileOperation::make_directory, 0, ExitStatus::nothing_failed},
        {FileOperation::make_directory, EACCES, ExitStatus::no_room},
        {FileOperation::make_directory, ENAMETOOLONG, ExitStatus::bad_library},
        {FileOperation::open, EACCES, ExitStatus::no_room},
        {FileOperation::write, ENOSPC, ExitStatus::no_room},
        {FileOperation::close, EDQUOT, ExitStatus::no_room},
        {FileOperation::stat, EIO, ExitStatus::bad_library},
    };
    for (const auto& row : rows) {
        std::filesystem::remove_all("alib");
        Failure failure;
        {
            const test::FileFaults faults(row.operation, row.number);
            failure = prepare_library({"alib", "alib"});
        }
        EXPECT_EQ(failure.status, row.status) << row.number;
        EXPECT_EQ(failure.text.find("alib") != String::npos, row.number != 0);
        EXPECT_TRUE(scratch.names("alib").empty());
    }
}

TEST(Libraries, EachNameIsFoundInTheFirstPlaceThatHasIt) {
    const Scratch scratch;
    for (const char* file :
         {"Alib/alib-obj08.cf", "blib/blib-obj93.cf", "src/other-obj08.cf",
          "elsewhere/clib-obj08.cf", "a b/x", "file", "far/dlib-obj08.cf", "dlib/dlib-obj08.cf",
          "tree/lib/alib/work/alib-obj08.cf", "tree/lib/elib/work/elib-obj08.cf"})
        scratch.write(file, "");
    scratch.write("brix.rc", "# alib far\nDLIB far\nflib tree/lib/elib/work\n");
    std::filesystem::create_directory_symlink("elsewhere", "clib");
    const test::ScopedVariable install("VELMORA_DIR", scratch.path("tree").c_str());
    Options options;
    options.files = {{"a.vhd", "ALIB"}, {"b.vhd", "new"}, {"c.vhd", "elib"}, {"d.vhd", "flib"}};
    FoundLibraries found;
    ASSERT_FALSE(find_libraries(named_libraries(options), options.standard, found));
    const String installed(scratch.path("tree/lib/elib/work"));
    EXPECT_EQ(found.visible,
              (Vector<LibraryPlace>{{"dlib", "far"}, {"alib", "Alib"}, {"clib", "clib"}}));
    EXPECT_EQ(found.installed, (Vector<LibraryPlace>{{"elib", installed}}));
    ASSERT_EQ(found.targets.size(), 4u);
    EXPECT_EQ(found.targets[0].place, (LibraryPlace{"alib", "Alib"}));
    EXPECT_FALSE(found.targets[0].is_installed);
    EXPECT_EQ(found.targets[1].place, (LibraryPlace{"new", "new"}));
    EXPECT_TRUE(found.targets[3].is_installed);
    EXPECT_EQ(make_plan(options, found).failure.text, "Library 'elib' is an installed library.");
    // One library is one target, in its own place, whatever its case.
    options.files = {{"a.vhd", "ALIB"}, {"b.vhd", "new"}, {"e.vhd", "ALib"}};
    EXPECT_EQ(make_plan(options, found).targets,
              (Vector<LibraryPlace>{{"alib", "Alib"}, {"new", "new"}}));
}

} // namespace
} // namespace pellux
