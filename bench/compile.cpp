// `bpr compile` of the example of 24 files, all of them or what was changed, against GHDL called by
// hand on the same files.

#include "bench/child_runs.h"
#include "bench/ratio.h"
#include "core/project/project_file.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr const char* k_tree = PELLUX_BINARY_DIR "/velmora";

Words ghdl_words(const char* mode, const std::string& library, const std::string& what) {
    return {"ghdl-mcode",
            mode,
            "--std=08",
            "--work=" + library,
            "--workdir=" + library,
            "-Pwork",
            "-Pblocks",
            "-fno-caret-diagnostics",
            what};
}

void analyse_by_hand(const VHDL_source& source) {
    const NullableText& library = source.options.library;
    expect_success(
        ghdl_words("-a", library.present() ? library.c_str() : "work", source.file_name.c_str()));
}

void elaborate_by_hand() {
    expect_success(ghdl_words("-e", "work", "system_tb"));
}

void clean() {
    for (const char* library : {"work", "blocks"}) {
        put_aside(library);
        fs::create_directory(library);
    }
}

/// One call for the sources of each library, of which "blocks" uses nothing of "work".
void analyse_each_library(const Project& project) {
    clean();
    for (const std::string library : {"blocks", "work"}) {
        Words words = ghdl_words("-a", library, "");
        words.pop_back();
        for (const auto& source : project.sources) {
            const NullableText& own = source->options.library;
            if ((own.present() ? own.c_str() : "work") == library)
                words.emplace_back(source->file_name.c_str());
        }
        expect_success(words);
    }
}

/// A leaf of the hierarchy that is another file at each change.
class Leaf {
public:
    /// `marks` are put before its architecture's declarations in turn.
    Leaf(fs::path path, std::array<const char*, 2> marks) : path_(std::move(path)), marks_(marks) {
        std::ifstream file(path_);
        original_.assign(std::istreambuf_iterator<char>(file), {});
    }
    ~Leaf() { write(original_); }
    Leaf(const Leaf&) = delete;
    Leaf& operator=(const Leaf&) = delete;

    void change() {
        std::string text = original_;
        const std::string before = "architecture rtl of serial_sender is\n";
        text.insert(text.find(before) + before.size(), marks_[++changes_ % 2]);
        write(text);
    }

private:
    void write(const std::string& text) { std::ofstream(path_) << text; }

    fs::path path_;
    std::array<const char*, 2> marks_;
    std::string original_;
    unsigned changes_ = 0;
};

constexpr std::array k_comments{"-- a\n", "-- b\n"};
constexpr std::array k_signals{"  signal spare_a : std_logic;\n",
                               "  signal spare_b : std_logic;\n"};

/// Three copies of the example: one that GHDL alone compiles, one compiled in full, one by `-m`.
struct Trees {
    fs::path root = fs::temp_directory_path() / "pellux-bench-compile";
    fs::path by_hand = root / "by-hand";
    fs::path full = root / "full";
    fs::path kept = root / "kept";
    Words bpr{std::string(k_tree) + "/bin/bpr", "compile", "brix.bpr"};

    Trees() {
        fs::remove_all(root);
        fs::create_directories(root);
        for (const fs::path& tree : {by_hand, full, kept})
            fs::copy(std::string(k_tree) + "/share/examples/pipeline", tree,
                     fs::copy_options::recursive);
    }
    ~Trees() {
        fs::current_path("/");
        fs::remove_all(root);
    }
    Trees(const Trees&) = delete;
    Trees& operator=(const Trees&) = delete;

    void compile_full(const char* project = "brix.bpr") const {
        fs::current_path(full);
        clean();
        expect_success({bpr[0], bpr[1], project});
    }
    void compile_changed() const {
        fs::current_path(kept);
        expect_success(bpr);
    }
};

const VHDL_source& source_of(const Project& project, std::string_view name) {
    return **std::find_if(project.sources.begin(), project.sources.end(),
                          [=](const auto& source) { return source->file_name.view() == name; });
}

constexpr const char* k_leaf = "parts/serial_sender.vhd";
constexpr std::array k_users{"cpu/system.vhd", "cpu/system_tb.vhd"};

enum class ByHand { leaf, leaf_users_and_elaboration };

void measure_changed_leaf(const Trees& trees, const Project& project, bool moment,
                          const RatioRow& row, std::array<const char*, 2> marks, ByHand by_hand) {
    Leaf theirs(trees.by_hand / k_leaf, marks);
    Leaf ours(trees.kept / k_leaf, marks);
    compare(
        row, moment,
        [&] {
            fs::current_path(trees.by_hand);
            theirs.change();
            analyse_by_hand(source_of(project, k_leaf));
            if (by_hand == ByHand::leaf)
                return;
            for (const char* user : k_users)
                analyse_by_hand(source_of(project, user));
            elaborate_by_hand();
        },
        [&] {
            ours.change();
            trees.compile_changed();
        });
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    ::setenv("VELMORA_DIR", k_tree, 1);
    const Trees trees;
    fs::current_path(trees.by_hand);
    const Owned<Project> project = read_project("brix.bpr");
    if (project == nullptr)
        return 1;
    VHDL_source* const top = std::exchange(project->top_design, nullptr);
    const std::string apart = trees.full / "apart.bpr";
    if (failed(write_project_as(*project, apart.c_str(), {}).error))
        return 1;
    project->top_design = top;
    compare(
        {.name = "bpr compile of the example of 24 files, elaboration apart",
         .yardstick = "one ghdl -a for each library",
         .reach = 1.4,
         .round_ms = 2000},
        moment,
        [&] {
            fs::current_path(trees.by_hand);
            analyse_each_library(*project);
        },
        [&] { trees.compile_full("apart.bpr"); });
    compare(
        {.name = "the same with elaboration and nothing changed",
         .yardstick = "in full",
         .reach = 0.15,
         .round_ms = 2000},
        moment, [&] { trees.compile_full(); }, [&] { trees.compile_changed(); });
    measure_changed_leaf(trees, *project, moment,
                         {.name = "the same after a comment in a leaf",
                          .yardstick = "GHDL by hand on that file",
                          .reach = 3,
                          .round_ms = 1000},
                         k_comments, ByHand::leaf);
    measure_changed_leaf(trees, *project, moment,
                         {.name = "the same after a signal in a leaf",
                          .yardstick = "GHDL by hand on that file",
                          .reach = 3,
                          .round_ms = 1000},
                         k_signals, ByHand::leaf);
    measure_changed_leaf(trees, *project, moment,
                         {.name = "the same after a signal in a leaf",
                          .yardstick = "GHDL by hand on that file, what uses it, and elaboration",
                          .reach = 0,
                          .round_ms = 1000},
                         k_signals, ByHand::leaf_users_and_elaboration);
    return 0;
}
