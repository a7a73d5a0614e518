#include "tests/support/rounds.h"
#include "tests/support/scratch.h"
#include "tests/tools/driver/compiled_tree.h"
#include "tests/tools/driver/generated_design.h"

namespace pellux {
namespace {

/// What is compiled after changes must be what a compilation of everything, with nothing there
/// before, makes. PELLUX_ROUNDS sets how often it is tried, PELLUX_SEED where it begins.
TEST(Recompile, AgreesWithACompilationOfEverythingAfterRandomEdits) {
    const test::Rounds rounds(30);
    constexpr int k_edits = 10;
    int saved = 0;
    for (int round = 0; round < rounds.count;) {
        const unsigned own_seed = rounds.seed + static_cast<unsigned>(round);
        test::GeneratedDesign design(own_seed);
        Scratch scratch;
        fs::path tree = fs::path(scratch.path()) / "tree";
        fs::create_directory(tree);
        std::string edits;
        for (int i = 0; i < k_edits && round < rounds.count; ++i, ++round) {
            design.write(tree);
            const Outcome whole = compile_afresh(fs::path(scratch.path()) / "fresh", design);
            const Outcome changed = compile(tree, design.words(), true);
            const std::string at = "seed " + std::to_string(own_seed) + ":" + edits;
            ASSERT_EQ(difference(changed, whole), "") << at;
            ASSERT_LE(changed.compiled.size(), whole.compiled.size()) << at;
            saved += static_cast<int>(whole.compiled.size() - changed.compiled.size());
            if (whole.status == 0 && !design.has_unit_twice()) {
                ASSERT_EQ(compile(tree, design.words(), true).compiled, std::vector<std::string>())
                    << at;
            }
            edits += " " + design.edit() + ";";
            if (i == 5) {
                edits += " tree moved;";
                fs::rename(tree, fs::path(scratch.path()) / "moved");
                tree = fs::path(scratch.path()) / "moved";
            }
        }
    }
    EXPECT_GT(saved, 0);
}

} // namespace
} // namespace pellux
