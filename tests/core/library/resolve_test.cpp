#include "core/library/resolve.h"

#include "core/library/install_root.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

using test::ScopedVariable;
namespace fs = std::filesystem;

TEST(Resolving, TheFirstRuleThatHoldsDecides) {
    const Scratch scratch;
    for (const char* directory :
         {"tree/lib/shipped/work", "tree/lib/Mixed/work", "tree/lib/dsp/work", "tree/lib/no_work",
          "tree/gone/work", "here", "dsp", "both", "BOTH", "Both2", "away"})
        fs::create_directories(directory);
    for (const char* file : {"plain", "README"})
        scratch.write(file, "");
    fs::create_directory_symlink("away", "LINKED");
    const RcFile file = parse_rc_file("here /else\nShipped rel\n");
    const std::string tree = scratch.path("tree");
    const struct {
        const char* name;
        LibraryRule rule;
        std::string path;
    } rows[] = {
        {"HERE", LibraryRule::assigned, "/else"}, // though a directory of that name exists
        {"shipped", LibraryRule::assigned, "rel"},
        {"dsp", LibraryRule::local, "dsp"}, // though there is an installed one
        {"plain", LibraryRule::local, "plain"},
        {"both", LibraryRule::local, "both"},
        {"Both", LibraryRule::local, "BOTH"},
        {"linked", LibraryRule::local, "LINKED"},
        {"./dsp", LibraryRule::local, "./dsp"},
        {"mixed", LibraryRule::installed, tree + "/lib/Mixed/work"},
        {"no_work", LibraryRule::itself, "no_work"},
        {"readme", LibraryRule::itself, "readme"}, // a file of another name is no library
        {"Nowhere", LibraryRule::itself, "nowhere"},
        {"../gone", LibraryRule::itself, "../gone"},
        {"", LibraryRule::itself, ""},
    };
    const ScopedVariable install("VELMORA_DIR", tree.c_str());
    for (const auto& row : rows) {
        const LibraryDirectory found = resolve_library(file, row.name);
        EXPECT_EQ(found.rule, row.rule) << row.name;
        EXPECT_EQ(view(found.path), row.path);
    }
    const ScopedVariable unset("VELMORA_DIR", nullptr);
    EXPECT_EQ(resolve_library(file, "mixed").rule, LibraryRule::itself);
}

TEST(InstallRoot, IsFoundByTheVariableOrAboveTheCompiler) {
    const Scratch scratch;
    for (const char* directory : {"tree/lib", "a/lib", "directory/BRIX.EXE", "empty"})
        fs::create_directories(directory);
    scratch.write("plain/BRIX.EXE", "");
    for (const char* program : {"a/b/c/bin/BRIX.EXE", "a/b/BRIX.EXE"})
        fs::permissions(scratch.write(program, ""), fs::perms::owner_all);
    const test::ScopedDirectory below("a/b");
    const std::string none = scratch.path("directory") + "::" + scratch.path("plain") + ":";
    const struct {
        const char* install;
        std::string path;
        std::string root;
    } rows[] = {
        {"tree", none + scratch.path("a/b/c/bin"), scratch.path("tree/lib")},
        {"empty", none + scratch.path("a/b/c/bin"), scratch.path("a/lib")},
        {nullptr, none + "c/bin/", "../lib"},
        {nullptr, none + ".", "./../lib"},
        {nullptr, "../b", "../lib"},
        {nullptr, none, ""}, // the current directory holds one, but no entry names it
    };
    for (const auto& row : rows) {
        const std::string tree = scratch.path(row.install == nullptr ? "" : row.install);
        const ScopedVariable install("VELMORA_DIR", row.install == nullptr ? "" : tree.c_str());
        const ScopedVariable path("PATH", row.path.c_str());
        PathBuffer root;
        EXPECT_EQ(find_install_library_root(root), !row.root.empty());
        EXPECT_EQ(root.view(), row.root) << row.path;
    }
}

TEST(InstallRoot, WhatLeadsIntoItIsInside) {
    const Scratch scratch;
    for (const char* directory : {"real/lib/dsp/work", "real/library", "mine"})
        fs::create_directories(directory);
    fs::create_directory_symlink("real", "tree");
    fs::create_directory_symlink("../real/lib/dsp", "mine/link");
    fs::create_directory_symlink("../../mine", "real/lib/out");
    const struct {
        std::string directory;
        bool is_inside;
    } rows[] = {
        {scratch.path("tree/lib"), true},
        {"mine/link/work", true},
        {"mine/link/new/newer", true},
        {"mine/new/../link/../other", true},
        {"./mine//../tree/lib/new/", true},
        {"mine", false},
        {"", false},
        {"real/library", false},
        {"real/lib/out/new", false},
        {"mine/link/../../../mine", false},
        {std::string(5000, 'x'), false},
    };
    const ScopedVariable install("VELMORA_DIR", scratch.path("tree").c_str());
    for (const auto& row : rows)
        EXPECT_EQ(is_inside_install_root(row.directory), row.is_inside) << row.directory;
}

} // namespace
} // namespace pellux
