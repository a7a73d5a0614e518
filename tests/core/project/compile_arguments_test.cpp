#include "core/project/compile_arguments.h"

#include "core/os/environment.h"
#include "core/os/files.h"
#include "tests/support/captured_reports.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pellux {
namespace {

using test::CapturedReports;
using test::ScopedVariable;

Owned<Project> project_of(std::vector<const char*> names) {
    auto project = make_owned<Project>();
    for (const char* name : names) {
        project->sources.push_back(make_owned<VHDL_source>());
        project->sources.back()->file_name.assign(name);
    }
    return project;
}

Vector<CompileEntry> rows(const Project& project, std::vector<std::size_t> selected = {}) {
    Vector<CompileEntry> entries;
    for (const auto& source : project.sources)
        entries.push_back({source.get(), false});
    for (const std::size_t index : selected)
        entries[index].selected = true;
    return entries;
}

std::string joined(const Vector<String>& words) {
    std::string text;
    for (const String& word : words) {
        if (!text.empty())
            text += ' ';
        text += word;
    }
    return text;
}

std::string arguments(const Project& project, bool all = true,
                      std::vector<std::size_t> selected = {}) {
    return joined(build_arguments(project, rows(project, selected), all));
}

TEST(CompileArguments, EachOptionGivesItsSwitchInOrder) {
    const Owned<Project> project = project_of({"a.vhd", "b.vhd"});
    Source_options& options = project->options;
    EXPECT_EQ(arguments(*project), "-m -yga -fP -a a.vhd -a b.vhd");
    options.flags = -1;
    options.set(OptionFlag::rebuild, false);
    options.error_limit = 1;
    options.warning_limit = 20;
    options.optimise_level = 0;
    options.node_limit = -3;
    options.unused_outputs = 0;
    options.factor_limit = 7;
    options.vhdl_standard = 2;
    options.device.assign("cpld32");
    options.package.assign("");
    project->sources[0]->options.library.assign("");
    EXPECT_EQ(arguments(*project),
              "-m -xor2 -q -yv2 -yu -e1 -w20 -o0 -yga -fD -fT -fO -fK -fh -fF -fN -fUL -fL7 -ym-3 "
              "-v2 -yt -dcpld32 -a a.vhd -a b.vhd");
    options.flags = 1 << 9;
    options.error_limit = 0;
    options.warning_limit = -1;
    options.optimise_level = -1;
    options.unused_outputs = 2;
    options.factor_limit = 0;
    options.vhdl_standard = -1;
    options.device.assign("");
    options.package.assign("plcc44");
    EXPECT_EQ(arguments(*project), "-m -ys0 -ygs -fP -fL -yb -yp -pplcc44 -a a.vhd -a b.vhd");
    options.unused_outputs = 1;
    EXPECT_NE(arguments(*project).find("-fP -fUH -fL "), std::string::npos);
}

TEST(CompileArguments, ALonePlaFileTakesNoVhdlSwitches) {
    const Owned<Project> pla = project_of({"chip.pla"});
    pla->options.error_limit = 5;
    EXPECT_EQ(arguments(*pla), "-m -fP -a chip.pla");
    EXPECT_TRUE(is_pla_project(*project_of({"CHIP.PLA"})));
    for (const auto& names : {std::vector<const char*>{"chip.pla", "a.vhd"},
                              {"chippla"},
                              {"chip.pla.vhd"},
                              {"d.pla/chip"},
                              {}})
        EXPECT_FALSE(is_pla_project(*project_of(names)));
}

TEST(CompileArguments, LibrariesGoBeforeTheirFileAndTheTopDesignComesLast) {
    const Owned<Project> project = project_of({"a.vhd", "top.vhd", "-b.vhd"});
    project->sources[2]->options.library.assign("mylib");
    project->top_design = project->sources[1].get();
    EXPECT_EQ(arguments(*project), "-m -yga -fP -a a.vhd -amylib ./-b.vhd -b top.vhd");
    EXPECT_EQ(arguments(*project, false, {0, 2}), "-yga -fP -a a.vhd -amylib ./-b.vhd");
    project->sources[1]->options.library.assign("own");
    EXPECT_EQ(arguments(*project, false, {1}), "-yga -fP -aown -b top.vhd");
    Vector<CompileEntry> entries = rows(*project);
    entries[0].source = nullptr;
    EXPECT_EQ(joined(build_arguments(*project, entries, true)),
              "-m -yga -fP -amylib ./-b.vhd -aown -b top.vhd");
}

class FindCompiler : public testing::Test, protected CapturedReports {
protected:
    void touch(const char* name) const { scratch_.write(name, "x"); }
    std::string found() {
        PathBuffer path;
        return find_compiler(path) ? std::string(path.view()) : "none";
    }

    Scratch scratch_;
    ScopedVariable install_{"VELMORA_DIR", nullptr};
    ScopedVariable path_{"PATH", "one:two/"};
};

TEST_F(FindCompiler, TheInstallationWinsElseTheCurrentDirectoryElseThePath) {
    EXPECT_EQ(found(), "none");
    touch("two/BRIX.EXE");
    EXPECT_EQ(found(), "two/BRIX.EXE");
    touch("one/BRIX.EXE");
    EXPECT_EQ(found(), "one/BRIX.EXE");
    touch("BRIX.EXE");
    EXPECT_EQ(found(), "BRIX.EXE");
    // A stranger's project may bring "bin" and "lib" with it.
    touch("bin/BRIX.EXE");
    set_environment_variable("VELMORA_DIR", "");
    EXPECT_EQ(found(), "BRIX.EXE");
    set_environment_variable("VELMORA_DIR", "tree");
    EXPECT_EQ(found(), "none");
    touch("tree/bin/BRIX.EXE");
    EXPECT_EQ(found(), "tree/bin/BRIX.EXE");
    EXPECT_EQ(said_,
              (std::vector<std::string>{"Cannot find 'BRIX.EXE'.", "Cannot find 'BRIX.EXE'."}));
}

TEST_F(FindCompiler, ARebuildRequestDeletesIntermediatesOnceAndIsCleared) {
    const Owned<Project> project = project_of({"a.vhd", "sub.d/b", "c.x.vhd"});
    project->options.set(OptionFlag::rebuild, true);
    for (const char* name : {"a.bde", "sub.d/b.bde", "c.x.bde", "other.bde"})
        touch(name);
    Vector<String> vector;
    EXPECT_FALSE(prepare_compile(*project, rows(*project), true, vector));
    EXPECT_TRUE(project->options.has(OptionFlag::rebuild));
    EXPECT_TRUE(file_exists("a.bde"));
    touch("BRIX.EXE");
    ASSERT_TRUE(prepare_compile(*project, rows(*project, {0}), false, vector));
    EXPECT_TRUE(project->options.has(OptionFlag::rebuild));
    EXPECT_TRUE(file_exists("a.bde"));
    ASSERT_TRUE(prepare_compile(*project, rows(*project), true, vector));
    EXPECT_EQ(joined(vector), "BRIX.EXE -yga -fP -a a.vhd -a sub.d/b -a c.x.vhd");
    EXPECT_FALSE(file_exists("a.bde") || file_exists("sub.d/b.bde") || file_exists("c.x.bde"));
    EXPECT_TRUE(file_exists("other.bde"));
    ASSERT_TRUE(prepare_compile(*project, rows(*project), true, vector));
    EXPECT_EQ(joined(vector), "BRIX.EXE -m -yga -fP -a a.vhd -a sub.d/b -a c.x.vhd");
}

} // namespace
} // namespace pellux
