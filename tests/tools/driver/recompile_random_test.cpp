#include "core/library/library_index.h"
#include "tests/tools/driver/generated_design.h"
#include "tests/tools/driver/run_brix.h"
#include "tests/tools/driver/scratch.h"

#include <cstdlib>
#include <map>
#include <sstream>

namespace pellux {
namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status = -1;
    int compiled = 0;
    std::string errors;
    std::map<std::string, std::string> libraries;
    std::map<std::string, std::string> records;
};

/// A line of GHDL's library file without what differs from place to place and time to time.
std::string lasting_part(std::string line) {
    if (line.starts_with("file \""))
        line.erase(0, line.find("\" \"") + 2);
    for (std::size_t quote = line.find('"'); quote != std::string::npos;) {
        const std::size_t end = line.find('"', quote + 1);
        const std::string_view quoted(line.data() + quote + 1, end - quote - 1);
        const bool is_date = quoted.size() == 18 && quoted[14] == '.';
        if (is_date)
            line.erase(quote, end - quote + 1);
        quote = line.find('"', is_date ? quote : end + 1);
    }
    return line + '\n';
}

/// GHDL's library files for the standard.
std::map<std::string, std::string> library_files(const fs::path& tree, const std::string& suffix) {
    std::map<std::string, std::string> all;
    for (const std::string library : {"alib", "work"}) {
        std::ifstream file(tree / library / (library + suffix));
        std::string line;
        std::getline(file, line); // the format's version: all that an empty library has
        while (std::getline(file, line))
            all[library] += lasting_part(line);
    }
    return all;
}

/// The records of each library that has some; none where they speak of two standards at once.
std::map<std::string, std::string> records(const fs::path& tree) {
    std::map<std::string, std::string> all;
    for (const std::string library : {"alib", "work"}) {
        LibraryIndex index;
        if (fs::exists(tree / library / (library + "-obj93.cf")) ||
            open_index(index, (tree / library).c_str(), IndexMode::read) != IndexStatus::opened)
            continue;
        String record;
        for (std::int64_t more = seek_record(index, "0"); more > 0; more = next_record(index)) {
            if (read_record(index, record) > 0 && !record.starts_with("ffff"))
                all[library] += record.c_str() + std::string("\n");
        }
    }
    return all;
}

Outcome compile(const fs::path& tree, const test::GeneratedDesign& design, bool only_changed) {
    const test::ScopedDirectory inside(tree);
    std::vector<std::string> words = design.words();
    words.insert(words.begin(), {"-q", only_changed ? "-m" : "-yt"});
    std::vector<const char*> arguments;
    for (const std::string& word : words)
        arguments.push_back(word.c_str());
    const ToolRun run = run_brix(arguments);
    const std::string suffix = words[2] == "-v93" ? "-obj93.cf" : "-obj08.cf";
    Outcome outcome{run.status, 0, {}, library_files(tree, suffix), records(tree)};
    std::istringstream lines(run.text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("Compiling '"))
            ++outcome.compiled;
        else if (line.find("):  Warning: ") == std::string::npos && !line.starts_with(' ') &&
                 !line.starts_with("All "))
            outcome.errors += line + "\n";
    }
    return outcome;
}

/// What is compiled after changes must be what a compilation of everything, with nothing there
/// before, makes. PELLUX_ROUNDS sets how often it is tried, PELLUX_SEED where it begins.
TEST(Recompile, AgreesWithACompilationOfEverythingAfterRandomEdits) {
    const char* wanted = std::getenv("PELLUX_ROUNDS");
    const char* first = std::getenv("PELLUX_SEED");
    const int rounds = wanted != nullptr ? std::atoi(wanted) : 30;
    const unsigned seed = first != nullptr ? static_cast<unsigned>(std::atoi(first)) : 1;
    constexpr int k_edits = 10;
    int saved = 0;
    for (int round = 0; round < rounds;) {
        const unsigned own_seed = seed + static_cast<unsigned>(round);
        test::GeneratedDesign design(own_seed);
        Scratch scratch;
        fs::path tree = fs::path(scratch.path()) / "tree";
        fs::create_directory(tree);
        std::string edits;
        for (int i = 0; i < k_edits && round < rounds; ++i, ++round) {
            design.write(tree);
            const fs::path fresh = fs::path(scratch.path()) / "fresh";
            fs::remove_all(fresh);
            fs::create_directory(fresh);
            design.write(fresh);
            const Outcome whole = compile(fresh, design, false);
            const Outcome changed = compile(tree, design, true);
            const std::string at = "seed " + std::to_string(own_seed) + ":" + edits;
            ASSERT_EQ(changed.status, whole.status) << at << "\n" << changed.errors;
            ASSERT_EQ(changed.errors, whole.errors) << at;
            // A library that is in the design no longer stays as it was.
            for (const auto& [library, own] : whole.libraries)
                ASSERT_EQ(changed.libraries.at(library), own) << at;
            for (const auto& [library, own] : whole.records) {
                if (changed.records.count(library) == 0)
                    continue;
                ASSERT_EQ(changed.records.at(library), own) << at << library;
            }
            ASSERT_LE(changed.compiled, whole.compiled) << at;
            saved += whole.compiled - changed.compiled;
            if (whole.status == 0) {
                ASSERT_EQ(compile(tree, design, true).compiled, 0) << at;
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
