#include "core/common/ascii_case.h"
#include "core/diagnostics/message.h"
#include "tests/support/rounds.h"
#include "tests/support/scratch.h"
#include "tests/tools/driver/compiled_tree.h"
#include "tools/driver/libraries/library_place.h"

#include <algorithm>
#include <array>
#include <random>

namespace pellux {
namespace {

const fs::path k_sources = "/usr/lib/ghdl/src"; ///< of the packages that come with GHDL

const std::string k_letter = "\xC3\xA9"; ///< in UTF-8

/// One of them, which goes into a library that is named after its folder.
struct Source {
    std::string path;
    std::string library;
    std::string text;

    [[nodiscard]] std::string unit() const {
        const std::string stem = fs::path(path).stem();
        return stem.substr(0, stem.find("-body"));
    }
};

/// The character that GHDL's column stands for; behind the line's end every column is one.
int character(const std::string& text, int line, int column) {
    std::istringstream lines(text);
    std::string found;
    for (int i = 0; i < line; ++i)
        std::getline(lines, found);
    // The sources are ASCII; of what is planted in them only this is UTF-8.
    const bool is_utf8 = text.find(k_letter) != text.npos;
    int reached = 0;
    int characters = 0;
    for (std::size_t i = 0;; ++i) {
        reached = i < found.size() && found[i] == '\t' ? reached / 8 * 8 + 8 : reached + 1;
        if (!is_utf8 || i >= found.size() || found[i] != k_letter[1])
            ++characters;
        if (column <= reached)
            return characters;
    }
}

/// GHDL alone, in the current directory, with the driver's options on one file. Its messages are
/// told as ours must be.
struct BareGhdl {
    int status = -1;
    std::vector<std::string> messages;

    BareGhdl(const std::string& standard, const Source& source) {
        const std::string command =
            "ghdl-mcode -a --std=" + standard + " --work=" + source.library +
            " --workdir=. -P. -fno-caret-diagnostics -fno-color-diagnostics -fmax-errors=100000 " +
            source.path + " >log 2>&1";
        status = std::system(command.c_str());
        std::ifstream log("log", std::ios::binary);
        for (std::string line; std::getline(log, line);) {
            const std::size_t size = source.path.size();
            int row = 0;
            int column = 0;
            int read = 0;
            if (!line.starts_with(source.path) || line.find(":note:") != line.npos ||
                std::sscanf(line.c_str() + size, ":%d:%d:%n", &row, &column, &read) != 2)
                continue;
            std::string text = line.substr(size + static_cast<std::size_t>(read));
            if (text.starts_with("warning:"))
                text.replace(0, 1, " W");
            messages.push_back(format_text("%s (line %d, col %d): %s", source.path.c_str(), row,
                                           character(source.text, row, column), text.c_str())
                                   .c_str());
        }
    }
    [[nodiscard]] std::string first() const { return messages.empty() ? "" : messages[0]; }
};

/// Our lines behind the line "Compiling" of a file, without those that only explain.
std::vector<std::string> messages_about(const std::string& path, const std::string& text) {
    const std::string begin = "Compiling '" + path + "'\n";
    std::vector<std::string> messages;
    const std::size_t at = text.find(begin);
    std::istringstream lines(at == text.npos ? "not compiled" : text.substr(at + begin.size()));
    for (std::string line; std::getline(lines, line) && !line.starts_with("Compiling '");) {
        if (!line.starts_with(' '))
            messages.push_back(line);
    }
    return messages;
}

std::string standard_of(const test::Rounds& rounds, int round) {
    constexpr std::array k_standards{"87", "08", "93", "02"};
    return k_standards[(rounds.seed + static_cast<unsigned>(round)) % k_standards.size()];
}

ToolRun brix(const std::string& standard, const std::vector<Source>& sources) {
    const std::string digits = standard[0] == '0' ? standard.substr(1) : standard;
    Words words{"-q", "-m", "-v" + digits};
    for (const Source& source : sources)
        words.insert(words.end(), {"-a" + source.library, source.path});
    return run_brix(words);
}

/// The sources that GHDL alone accepts in the current directory, in an order in which it does.
std::vector<Source> accepted_sources(const std::string& standard) {
    std::vector<Source> waiting;
    for (const auto& entry : fs::recursive_directory_iterator(k_sources)) {
        std::string library =
            "of_" + entry.path().parent_path().lexically_relative(k_sources).string();
        std::replace(library.begin(), library.end(), '/', '_');
        if (entry.path().extension() == ".vhdl")
            waiting.push_back({entry.path(), library, contents(entry.path())});
    }
    std::sort(waiting.begin(), waiting.end(),
              [](const Source& a, const Source& b) { return a.path < b.path; });
    std::vector<Source> accepted;
    for (std::size_t before = 1; before != waiting.size();) {
        before = waiting.size();
        std::erase_if(waiting, [&](Source& source) {
            const bool is_accepted = BareGhdl(standard, source).status == 0;
            if (is_accepted)
                accepted.push_back(source);
            return is_accepted;
        });
    }
    return accepted;
}

/// A character deleted, replaced or inserted.
std::string with_fault(std::string text, std::mt19937& random) {
    const std::size_t at = random() % text.size();
    const unsigned kind = random() % 8;
    const std::string c = kind == 0   ? "\t"
                          : kind == 1 ? std::string(1, static_cast<char>(random() % 256))
                          : kind == 2 ? k_letter
                                      : std::string(1, static_cast<char>(' ' + random() % 95));
    switch (random() % 3) {
    case 0:
        return text.erase(at, 1);
    case 1:
        return text.replace(at, 1, c);
    default:
        return text.insert(at, c);
    }
}

TEST(GhdlSources, AreCompiledOnceAndTheFirstMessageAboutAPlantedFaultIsGhdlsOwn) {
    const test::Rounds rounds(12);
    std::map<std::string, std::vector<Source>> accepted;
    for (int round = 0; round < rounds.count; ++round) {
        std::mt19937 random(rounds.seed + static_cast<unsigned>(round));
        const std::string at = "seed " + std::to_string(rounds.seed + static_cast<unsigned>(round));
        const std::string standard = standard_of(rounds, round / 50);
        const Scratch scratch;
        fs::create_directory("bare");
        std::vector<Source>& all = accepted[standard];
        if (all.empty()) {
            const test::ScopedDirectory inside("bare");
            all = accepted_sources(standard);
            EXPECT_GT(all.size(), 12u) << k_sources << " holds less than GHDL brings";
            const ToolRun first = brix(standard, all);
            EXPECT_EQ(first.status, 0) << standard;
            std::string warnings;
            for (const std::string& line : test::words_of(first.text, '\n'))
                warnings += line.starts_with("Compiling '") ? "" : line + "\n";
            EXPECT_EQ(brix(standard, all).text, warnings + "All files are up to date.\n");
            fs::remove_all(scratch.path("bare"));
            fs::create_directory(scratch.path("bare"));
        }
        const std::size_t chosen = random() % all.size();
        std::vector<Source> needed{all[chosen]};
        for (std::size_t i = chosen; i-- > 0;) {
            const auto names = [&](const Source& source) {
                return lower_case(source.text).find(all[i].unit()) != String::npos;
            };
            if (all[i].library == all[chosen].library &&
                std::any_of(needed.begin(), needed.end(), names))
                needed.insert(needed.begin(), all[i]);
        }
        for (Source& source : needed)
            source.path = fs::path(source.path).filename();
        Source& faulty = needed.back();
        const auto analyse = [&](const char* place, const Source& source) {
            const test::ScopedDirectory inside(place);
            std::ofstream(source.path, std::ios::binary) << source.text;
            return BareGhdl(standard, source);
        };
        for (const Source& source : needed) {
            if (&source != &faulty) {
                EXPECT_EQ(analyse("bare", source).status, 0) << at << source.path;
            }
        }
        const BareGhdl bare = [&] {
            for (;;) {
                faulty.text = with_fault(all[chosen].text, random);
                // What it accepts is in its library from then on.
                fs::remove_all("tried");
                fs::copy("bare", "tried");
                BareGhdl tried = analyse("tried", faulty);
                // GHDL itself fails on some.
                if (tried.status != 0 && !tried.messages.empty())
                    return tried;
            }
        }();
        for (const Source& source : needed)
            scratch.write(source.path, source.text);
        const ToolRun run = brix(standard, needed);
        EXPECT_EQ(run.status, 1) << at;
        const std::vector<std::string> own = messages_about(faulty.path, run.text);
        ASSERT_FALSE(own.empty() || bare.messages.empty()) << at << "\n" << run.text;
        EXPECT_EQ(own[0], bare.first()) << at << " standard " << standard;
        for (const std::string& message : own)
            EXPECT_TRUE(std::count(bare.messages.begin(), bare.messages.end(), message))
                << at << " " << message;
    }
}

} // namespace
} // namespace pellux
