#include "core/common/callback.h"
#include "core/launch/spawner.h"
#include "core/os/loop.h"
#include "tests/support/rounds.h"
#include "tests/support/scratch.h"
#include "tests/tools/driver/compiled_tree.h"
#include "tests/tools/driver/generated_design.h"

namespace pellux {
namespace {

/// A run as the environment starts it: with a channel, and a response file for so many words.
struct Launched {
    fs::path tree;
    std::vector<std::string> words;
    std::string text;
    Spawner spawner{take, this};

    Launched(fs::path where, std::vector<std::string> given)
        : tree(std::move(where)), words(std::move(given)) {}
    static void take(void* context, const char* told, int done, int) {
        if (done == 0)
            from_context<Launched>(context).text += told;
    }
    void launch() {
        Words arguments{"-q", "-m", "-y" + std::string(200, 't')};
        arguments.insert(arguments.end(), words.begin(), words.end());
        const test::ArgumentVector vector(k_brix, arguments);
        const test::ScopedDirectory inside(tree);
        ASSERT_TRUE(spawner.launch(k_brix.c_str(), vector.pointers.data()));
    }
    /// Also when it found a library in use, which it says in one line; then it runs once more.
    Outcome end() {
        spawner.wait();
        const std::string waiting = "Waiting for library '";
        if (text.starts_with(waiting))
            text.erase(0, text.find('\n') + 1);
        if (spawner.status() == 5) {
            EXPECT_TRUE(text.starts_with("BRIX:  Library '")) << text;
            EXPECT_NE(text.find("' is in use by another compilation (process "), text.npos);
            EXPECT_EQ(text.find('\n'), text.size() - 1) << text;
            text.clear();
            launch();
            spawner.wait();
        }
        return outcome(tree, words, spawner.status(), text);
    }
};

/// Waits for neither before both run.
std::pair<Outcome, Outcome> run_both(Launched& a, Launched& b) {
    a.launch();
    b.launch();
    while (a.spawner.running() || b.spawner.running())
        run_turn(TurnWait::until_event);
    std::pair<Outcome, Outcome> both{a.end(), b.end()};
    both.first = outcome(a.tree, a.words, both.first.status, a.text);
    return both;
}

std::string differences(const Outcome& a, const Outcome& whole_a, const Outcome& b,
                        const Outcome& whole_b) {
    return (a.compiled == whole_a.compiled && b.compiled == whole_b.compiled ? "" : "counts\n") +
           difference(a, whole_a) + difference(b, whole_b);
}

TEST(TwoRuns, OfOneUserDisturbEachOtherNowhere) {
    const test::Rounds rounds(3);
    for (int round = 0; round < rounds.count; ++round) {
        const unsigned seed = rounds.seed + static_cast<unsigned>(round);
        const Scratch scratch;
        const test::ScopedVariable runtime("XDG_RUNTIME_DIR", scratch.path().c_str());
        const test::GeneratedDesign one(seed);
        const test::GeneratedDesign two(seed + 100'000);
        for (const char* name : {"a", "b", "shared", "ab", "ba"})
            fs::create_directory(scratch.path(name));
        one.write(scratch.path("a"));
        two.write(scratch.path("b"));
        Launched a(scratch.path("a"), one.words());
        Launched b(scratch.path("b"), two.words());
        const auto [apart_a, apart_b] = run_both(a, b);
        EXPECT_EQ(differences(apart_a, compile_afresh(scratch.path("fresh"), one), apart_b,
                              compile_afresh(scratch.path("fresh"), two)),
                  "")
            << "seed " << seed;

        // The second one's sources, in the libraries of the first.
        const std::vector<std::string> words = one.words();
        const bool has_two = std::count(words.begin(), words.end(), "-aalib") > 0;
        const std::string library = has_two ? "alib" : "work";
        const std::vector<std::string> further{words[0], "-a" + library, "further.vhd", "-b",
                                               "top.vhd"};
        for (const std::string name : {"shared", "ab", "ba"}) {
            one.write(scratch.path(name));
            scratch.write(name + "/further.vhd", "package further is end;\n");
            scratch.write(name + "/top.vhd", "library " + library + "; use " + library +
                                                 ".further.all;\nentity top is end;\n"
                                                 "architecture rtl of top is begin end;\n");
        }
        Launched first(scratch.path("shared"), one.words());
        Launched second(scratch.path("shared"), further);
        const auto [shared_a, shared_b] = run_both(first, second);
        std::string told = "seed " + std::to_string(seed) + "\n";
        bool agrees = false;
        for (const bool first_leads : {true, false}) {
            const fs::path tree = scratch.path(first_leads ? "ab" : "ba");
            const Outcome lead = compile(tree, first_leads ? one.words() : further, true);
            Outcome last = compile(tree, first_leads ? further : one.words(), true);
            Outcome whole = lead;
            whole.libraries = last.libraries;
            whole.records = last.records;
            const std::string differs = differences(shared_a, first_leads ? whole : last, shared_b,
                                                    first_leads ? last : whole);
            agrees = agrees || differs.empty();
            told += differs + "\n";
        }
        EXPECT_TRUE(agrees) << told;
    }
}

} // namespace
} // namespace pellux
