#pragma once

#include "tests/core/library/index_contents.h"
#include "tests/support/run_program.h"
#include "tests/support/scoped_directory.h"
#include "tools/driver/ghdl/ghdl_library.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

namespace pellux {

namespace fs = std::filesystem;

inline std::string contents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What a run left in a tree with the libraries "alib" and "work".
struct Outcome {
    int status = -1;
    std::vector<std::string> compiled; ///< files
    std::string told;                  ///< all else that it said
    std::map<std::string, std::string> libraries;
    std::map<std::string, std::string> records;
};

/// GHDL's library files for the standard, without what differs from place to place and time to
/// time.
inline std::map<std::string, std::string> library_files(const fs::path& tree,
                                                        const std::string& suffix) {
    std::map<std::string, std::string> all;
    for (const std::string library : {"alib", "work"}) {
        const fs::path path = tree / library / (library + suffix);
        GhdlLibrary read;
        if (fs::exists(path)) {
            EXPECT_EQ(parse_ghdl_library(contents(path), read), GhdlLibraryStatus::read) << path;
        }
        for (GhdlSource& source : read.sources) {
            source.name = fs::path(view(source.name)).filename().c_str();
            source.directory.clear();
            source.time_stamp.clear();
        }
        if (fs::exists(tree / library))
            all[library] = view(ghdl_library_text(read));
    }
    return all;
}

/// The records of each library that has some; none where they speak of two standards at once.
inline std::map<std::string, std::string> records(const fs::path& tree) {
    std::map<std::string, std::string> all;
    for (const std::string library : {"alib", "work"}) {
        LibraryIndex index;
        if (fs::exists(tree / library / (library + "-obj93.cf")) ||
            open_index(index, (tree / library).c_str(), IndexMode::read) != IndexStatus::opened)
            continue;
        for (const std::string& record : contents(index))
            all[library] += record.starts_with("ffff") ? "" : record + "\n";
    }
    return all;
}

/// What there is after a run with these words, which printed `text`.
inline Outcome outcome(const fs::path& tree, const std::vector<std::string>& words, int status,
                       const std::string& text) {
    const bool is_93 = std::find(words.begin(), words.end(), "-v93") != words.end();
    Outcome result{
        status, {}, {}, library_files(tree, is_93 ? "-obj93.cf" : "-obj08.cf"), records(tree)};
    for (const std::string& line : test::words_of(text, '\n')) {
        if (line.starts_with("Compiling '"))
            result.compiled.push_back(line.substr(11, line.rfind('\'') - 11));
        else if (!line.starts_with("All "))
            result.told += line + "\n";
    }
    return result;
}

inline Outcome compile(const fs::path& tree, std::vector<std::string> words, bool only_changed) {
    const test::ScopedDirectory inside(tree);
    words.insert(words.begin(), {"-q", only_changed ? "-m" : "-yt"});
    const ToolRun run = run_brix(words);
    return outcome(tree, words, run.status, run.text);
}

/// In a directory of that name beside the tree, where nothing was compiled before.
template <typename Design>
Outcome compile_afresh(const fs::path& fresh, const Design& design) {
    fs::remove_all(fresh);
    fs::create_directory(fresh);
    design.write(fresh);
    return compile(fresh, design.words(), false);
}

/// Where what is there after a run is not what a compilation of everything makes; a library that is
/// in the design no longer stays as it was.
inline std::string difference(const Outcome& changed, const Outcome& whole) {
    std::string told;
    if (changed.status != whole.status || changed.told != whole.told)
        told += "status " + std::to_string(changed.status) + "\n" + changed.told + "not " +
                std::to_string(whole.status) + "\n" + whole.told;
    for (const auto& [library, own] : whole.libraries) {
        const auto found = changed.libraries.find(library);
        if (found == changed.libraries.end() || found->second != own)
            told += library + " is not\n" + own;
    }
    for (const auto& [library, own] : whole.records) {
        const auto found = changed.records.find(library);
        if (found != changed.records.end() && found->second != own)
            told += found->second + "in the index of " + library + " are not\n" + own;
    }
    return told;
}

} // namespace pellux
