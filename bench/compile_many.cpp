// `bpr compile` of many files against one call of GHDL that does the same.

#include "bench/child_runs.h"
#include "bench/ratio.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr const char* k_tree = PELLUX_BINARY_DIR "/velmora";
constexpr const char* k_package = "common.vhd";

void write(const std::string& name, const std::string& text) {
    std::ofstream(name) << text;
}

std::string package_text(const std::string& mark) {
    return "package common is\n  constant width : positive := 8;\n" + mark + "end;\n";
}

/// An entity of about 100 lines, which names the package or does not.
std::string unit_text(const std::string& name, bool names_package, bool is_bad) {
    const std::string width = names_package ? "width" : "8";
    std::string text = "library ieee;\nuse ieee.std_logic_1164.all;\nuse ieee.numeric_std.all;\n";
    if (names_package)
        text += "use work.common.all;\n";
    text += "entity " + name + " is\n  port (clk : in std_logic;\n    a : in unsigned(" + width +
            " - 1 downto 0);\n    q : out unsigned(" + width +
            " - 1 downto 0));\nend;\narchitecture rtl of " + name + " is\n";
    for (int i = 0; i < 20; ++i)
        text += "  signal s_" + std::to_string(i) + " : unsigned(" + width +
                " - 1 downto 0) := (others => '0');\n";
    text += "begin\n  process (clk)\n  begin\n    if rising_edge(clk) then\n";
    for (int i = 0; i < 40; ++i)
        text += "      s_" + std::to_string(i % 20) + " <= s_" + std::to_string((i + 1) % 20) +
                " + a;\n";
    text += "    end if;\n  end process;\n";
    for (int i = 0; i < 15; ++i)
        text += "  -- A comment, number " + std::to_string(i) + ", as long as many a line.\n";
    return text + (is_bad ? "  q <= nothing;\n" : "  q <= s_0;\n") + "end;\n";
}

/// A directory of its own with so many units, the package and, on top, what uses all.
struct Generated {
    fs::path directory;
    Words files;       ///< in the order of analysis
    Words using_files; ///< those that name the package, with it

    Generated(const std::string& name, int count, bool is_bad)
        : directory(fs::temp_directory_path() / ("pellux-bench-" + name)) {
        fs::remove_all(directory);
        fs::create_directories(directory);
        fs::current_path(directory);
        write(k_package, package_text(""));
        files = using_files = {k_package};
        std::string uses;
        for (int i = 0; i < count; ++i) {
            const std::string unit = "unit_" + std::to_string(i);
            const bool names_package = i % 5 != 0;
            write(unit + ".vhd", unit_text(unit, names_package, is_bad));
            files.push_back(unit + ".vhd");
            if (names_package)
                using_files.push_back(unit + ".vhd");
            uses += "  u_" + unit + " : entity work." + unit + " port map (clk, a, open);\n";
        }
        write("top.vhd", "library ieee;\nuse ieee.std_logic_1164.all;\nuse ieee.numeric_std.all;\n"
                         "entity top is\nend;\narchitecture rtl of top is\n"
                         "  signal clk : std_logic;\n  signal a : unsigned(7 downto 0);\nbegin\n" +
                             uses + "end;\n");
        if (!is_bad)
            files.push_back("top.vhd");
    }
    ~Generated() {
        fs::current_path("/");
        fs::remove_all(directory);
    }
    Generated(const Generated&) = delete;
    Generated& operator=(const Generated&) = delete;

    void enter() const { fs::current_path(directory); }
    [[nodiscard]] Words brix(bool has_top) const {
        Words words{std::string(k_tree) + "/bin/BRIX.EXE", "-q", "-m"};
        words.insert(words.end(), files.begin(), files.end());
        if (has_top)
            words.insert(words.end() - 1, "-b");
        return words;
    }
    void clean() const {
        enter();
        put_aside("work");
        fs::create_directory("work");
        for (const std::string& file : files)
            put_aside(fs::path(file).replace_extension("bde"));
    }
};

Words ghdl(const char* mode, const Words& what) {
    Words words{"ghdl-mcode", mode, "--std=08", "--workdir=work"};
    words.insert(words.end(), what.begin(), what.end());
    return words;
}

} // namespace

int main(int argc, char** argv) {
    const bool moment = is_moment(argc, argv);
    ::setenv("VELMORA_DIR", k_tree, 1);
    {
        const Generated theirs("theirs", moment ? 20 : 499, false);
        const Generated ours("ours", moment ? 20 : 499, false);
        const auto make = [&] {
            theirs.enter();
            expect_success(ghdl("-m", {"top"}));
        };
        const auto make_all = [&] {
            theirs.clean();
            expect_success(ghdl("-i", theirs.files));
            make();
        };
        const auto compile_all = [&](bool elaborated) {
            ours.clean();
            expect_success(ours.brix(elaborated));
        };
        compare({.name = "500 files of 100 lines in full",
                 .yardstick = "ghdl -i and -m",
                 .reach = 1.3,
                 .round_ms = 2000},
                moment, make_all, [&] { compile_all(false); });
        compare(
            {.name = "the same, and elaborated",
             .yardstick = "ghdl -i, -m and -e",
             .reach = 0,
             .round_ms = 2000},
            moment,
            [&] {
                make_all();
                expect_success(ghdl("-e", {"top"}));
            },
            [&] { compile_all(true); });
        compare({.name = "the same with nothing changed",
                 .yardstick = "ghdl -m",
                 .reach = 0.3,
                 .round_ms = 1000},
                moment, make, [&] {
                    ours.enter();
                    expect_success(ours.brix(true));
                });
        unsigned changes = 0;
        compare(
            {.name = "the same after a package that 400 name",
             .yardstick = "ghdl -a of those",
             .reach = 1.4,
             .round_ms = 2000},
            moment,
            [&] {
                theirs.enter();
                expect_success(ghdl("-a", theirs.using_files));
            },
            [&] {
                ours.enter();
                write(k_package, package_text("  constant c_" + std::to_string(++changes) +
                                              " : bit := '0';\n"));
                Words words = ours.brix(false);
                words.pop_back();
                expect_success(words);
            });
    }
    const Generated bad("bad", moment ? 5 : 100, true);
    compare(
        {.name = "100 files with an error each",
         .yardstick = "ghdl -a of each",
         .reach = 1.3,
         .round_ms = 2000},
        moment,
        [&] {
            bad.clean();
            for (const std::string& file : bad.files)
                run(ghdl("-a", {file}));
        },
        [&] {
            bad.clean();
            run(bad.brix(false));
        });
    return 0;
}
