#include "tools/driver/compile/plan.h"

#include <gtest/gtest.h>

#include <string>

namespace pellux {
namespace {

Options options_of(Vector<SourceArgument> files, const char* top = "") {
    Options options;
    options.files = std::move(files);
    options.top = top;
    return options;
}

std::string joined(const Vector<String>& words) {
    std::string all;
    for (const String& word : words)
        all += std::string(view(word)) + " ";
    return all;
}

TEST(Plan, TopIsAnalysedLastInWorkAndThenElaborated) {
    const Plan plan = make_plan(options_of({{"a.vhd", "alib"}, {"b.vhd", "work"}}, "t.vhd"), {});
    EXPECT_FALSE(plan.failure);
    Vector<String> steps;
    for (const Step& step : plan.steps)
        steps.push_back((step.kind == StepKind::analyse ? "a:" : "e:") +
                        plan.targets[step.library].directory + "/" + step.file);
    EXPECT_EQ(joined(steps), "a:alib/a.vhd a:work/b.vhd a:work/t.vhd e:work/t.vhd ");
}

TEST(Plan, OneLibraryIsOneTargetWhateverItsCase) {
    const FoundLibraries found{.targets = {{{"alib", "ALIB"}}}, .visible = {}, .installed = {}};
    const Plan plan = make_plan(options_of({{"a.vhd", "ALib"}, {"b.vhd", "alib"}}, "t.vhd"), found);
    EXPECT_EQ(plan.targets, (Vector<LibraryPlace>{{"alib", "ALIB"}, {"work", "work"}}));
}

TEST(Plan, ALibraryHasOneSourceOfAName) {
    const auto failure = [](Vector<SourceArgument> files, const char* top) {
        const Failure told = make_plan(options_of(std::move(files), top), {}).failure;
        return std::to_string(static_cast<int>(told.status)) + told.text.c_str();
    };
    EXPECT_EQ(failure({{"a/x.vhd", "lib"}, {"b/x.vhd", "LIB"}}, ""),
              "2'a/x.vhd' and 'b/x.vhd' would be one source of library 'lib'.");
    EXPECT_EQ(failure({{"x.vhdl", "work"}}, "x.vhd"),
              "2'x.vhdl' and 'x.vhd' would be one source of library 'work'.");
    EXPECT_EQ(failure({{"a/x.vhd", "lib"}, {"b/x.vhd", "work"}}, "y.vhd"), "0");
    // The top design is the last, wherever it stands.
    const Plan plan = make_plan(options_of({{"t.vhd", "work"}, {"a.vhd", "work"}}, "t.vhd"), {});
    ASSERT_EQ(plan.steps.size(), 3u);
    EXPECT_EQ(plan.steps[0].file, "a.vhd");
}

TEST(Plan, RefusesNamesThatAreNoLibraryOfTheUsers) {
    for (const char* name : {"std", "IEEE", "a/b", "..", "a b", "_a", "a_", "a__b", "1a", "", "-x",
                             "gr\xFCn", "\\x\\"}) {
        const Plan plan = make_plan(options_of({{"ok.vhd", "work"}, {"a.vhd", name}}), {});
        EXPECT_EQ(plan.failure.status, ExitStatus::bad_library) << name;
        EXPECT_FALSE(plan.failure.text.empty()) << name;
    }
}

TEST(Plan, CallsNameTheLibrariesInPlay) {
    const FoundLibraries found{.targets = {},
                               .visible = {{"alib", "alib"}, {"more", "More"}, {"ieee", "ieee"}},
                               .installed = {{"alib", "x"}, {"far", "f"}}};
    const Plan plan = make_plan(options_of({{"a.vhd", "alib"}}), found);
    EXPECT_EQ(plan.others, (Vector<LibraryPlace>{{"more", "More"}}));
    EXPECT_EQ(plan.installed, (Vector<LibraryPlace>{{"far", "f"}}));
    const GhdlCalls calls{"/bin/g", VhdlStandard::vhdl_93, "run", {"More"}};
    EXPECT_EQ(joined(analysis_words(calls, "alib", "a.vhd")),
              "/bin/g -a --std=93 --work=alib --workdir=run -Prun -PMore "
              "-fno-caret-diagnostics -fno-color-diagnostics -fmax-errors=100000 a.vhd ");
    EXPECT_EQ(joined(elaboration_words(calls, "work", "top")),
              "/bin/g -e --std=93 --work=work --workdir=run -Prun -PMore "
              "-fno-caret-diagnostics -fno-color-diagnostics -fmax-errors=100000 top ");
    EXPECT_EQ(ghdl_file_name("-x.vhd"), "./-x.vhd");
}

} // namespace
} // namespace pellux
