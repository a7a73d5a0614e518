#include "tools/driver/plan.h"

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

TEST(Plan, OneLibraryHasOneDirectoryWhateverItsCase) {
    const Surroundings around{.directories = {"ALIB", "Alib", "WORK", "src"}, .libraries = {}};
    const Plan plan =
        make_plan(options_of({{"a.vhd", "ALib"}, {"b.vhd", "alib"}}, "t.vhd"), around);
    ASSERT_EQ(plan.targets.size(), 2u);
    EXPECT_EQ(plan.targets[0].name, "alib");
    EXPECT_EQ(plan.targets[0].directory, "ALIB");
    EXPECT_EQ(plan.targets[1].directory, "WORK");
    const Surroundings exact{.directories = {"ALIB", "alib"}, .libraries = {}};
    EXPECT_EQ(make_plan(options_of({{"a.vhd", "ALib"}}), exact).targets[0].directory, "alib");
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
    Options options = options_of({{"a.vhd", "alib"}, {"-x.vhd", "work"}}, "-t.vhd");
    options.standard = VhdlStandard::vhdl_93;
    const Surroundings around{.directories = {},
                              .libraries = {{"alib", "alib"}, {"more", "More"}, {"ieee", "ieee"}}};
    const Plan plan = make_plan(options, around);
    EXPECT_EQ(joined(analysis_words("/bin/g", plan, plan.steps[0])),
              "/bin/g -a --std=93 --work=alib --workdir=alib -Pwork -PMore "
              "-fno-caret-diagnostics -fno-color-diagnostics -fmax-errors=100000 a.vhd ");
    EXPECT_EQ(analysis_words("g", plan, plan.steps[1]).back(), "./-x.vhd");
    EXPECT_EQ(joined(elaboration_words("g", plan, plan.steps[3], "top")),
              "g -e --std=93 --work=work --workdir=work -Palib -PMore "
              "-fno-caret-diagnostics -fno-color-diagnostics -fmax-errors=100000 top ");
    EXPECT_EQ(joined(listing_words("g", plan, plan.steps[3])), "g -f --std=93 ./-t.vhd ");
}

} // namespace
} // namespace pellux
