#include "tests/support/run_program.h"
#include "tests/support/scratch.h"
#include "tools/driver/libraries/library_lock.h"

#include <sys/resource.h>

namespace pellux {
namespace {

namespace fs = std::filesystem;

/// After "e.vhd" was compiled into "work", a shell spoils something; then `words` are compiled, and
/// "good.vhd" behind them.
struct Row {
    const char* spoil;
    std::string words;
    int status;
    std::string told; ///< lines other than "Compiling"
};

const Row k_rows[] = {
    {"", "gone.vhd", 1, "gone.vhd:  Can't read 'gone.vhd': No such file or directory\n"},
    {"echo bad >-m.vhd; echo 'entity x is end;' >@x.vhd", "./-m.vhd -a @x.vhd", 1,
     "-m.vhd (line 1, col 1):  missing entity, architecture, package or configuration\n"},
    {"mkdir x.vhd", "x.vhd", 1, "x.vhd:  Can't read 'x.vhd': Is a directory\n"},
    {"mkfifo x.vhd", "x.vhd", 1, "x.vhd:  Can't read 'x.vhd': Operation not supported\n"},
    {"ln -s /dev/zero x.vhd", "x.vhd", 1, "x.vhd:  Can't read 'x.vhd': Operation not supported\n"},
    {"ln -s /proc/self/mem x.vhd", "x.vhd", 1, "x.vhd:  Can't read 'x.vhd': Input/output error\n"},
    {": >x.vhd", "x.vhd", 1,
     "x.vhd (line 1, col 1):  design file is empty (no design unit found)\n"},
    // What it names stands behind it in the list.
    {"echo 'use work.GOOD; architecture a of good is begin end;' >x.vhd", "x.vhd", 1,
     "x.vhd (line 1, col 10):  unit \"good\" not found in library \"work\"\n"
     "    declared in 'good.vhd', number 2 of the list\n"
     "x.vhd (line 1, col 34):  entity 'good' was not analysed\n"
     "    declared in 'good.vhd', number 2 of the list\n"},
    {"echo 'package x is constant c : bit := p.c; constant d : bit := good.c; end;' >x.vhd; "
     "echo 'package p is end;' >p.vhd",
     "-aalib p.vhd -a x.vhd p.vhd", 1,
     "x.vhd (line 1, col 34):  no declaration for \"p\"\n"
     "    declared in 'p.vhd', number 3 of the list\n"
     "x.vhd (line 1, col 59):  no declaration for \"good\"\n"},
    // It vanishes between us and GHDL.
    {"cp e.vhd x.vhd; echo 'rm -f x.vhd; exec ghdl \"$@\"' >>bin/ghdl-mcode; chmod +x bin/*",
     "x.vhd", 1, "x.vhd:  cannot open x.vhd\n"},
    {"", "-aa/b e.vhd", 5, "BRIX:  'a/b' can't be the name of a library.\n"},
    {"rm work/index; mkdir work/index", "e.vhd", 5,
     "BRIX:  Library 'work' can't be used: 'work/index': Is a directory\n"},
    {"rm work/lock; mkdir work/lock", "e.vhd", 5,
     "BRIX:  Library 'work' can't be used: 'work/lock': Is a directory\n"},
    {"echo what is this >work/index", "e.vhd", 0,
     "BRIX:  Warning: The index of library 'work' is damaged; it is made anew.\n"},
    {"printf '\\2' | dd of=work/index bs=1 seek=63 conv=notrunc 2>log", "e.vhd", 0,
     "BRIX:  Warning: The index of library 'work' is of another version; it is made anew.\n"},
    {"echo what is this >work/work-obj08.cf", "e.vhd", 0,
     "BRIX:  Warning: Library 'work' was made by another version of GHDL; it is made anew.\n"},
    {"printf 'v 4\nfile' >work/work-obj08.cf", "e.vhd", 0,
     "BRIX:  Warning: Library 'work' is damaged; it is made anew.\n"},
    {"echo 1 nonsense >work/lock", "e.vhd", 0, ""},
    {"sed -i 's/bde 2/bde 3/' e.bde", "e.vhd", 0,
     "e.vhd:  Warning: 'e.bde' was written by a newer version; 'e.vhd' is compiled again.\n"},
    {"sed -i 's/content ./content z/' e.bde", "e.vhd", 0,
     "e.vhd:  Warning: 'e.bde' is damaged; 'e.vhd' is compiled again.\n"},
    {"rm e.bde; mkdir e.bde", "e.vhd", 0,
     "BRIX:  Warning: Can't write 'e.bde': Is a directory; its source will be compiled again.\n"},
    {"echo '#!/nowhere/sh' >bin/ghdl-mcode; chmod +x bin/*", "e.vhd", 3,
     "BRIX:  Can't run 'HERE/bin/ghdl-mcode': No such file or directory\n"},
    {"echo 'for w; do case $w in --workdir=*) echo v 5 >${w#*=}/work-obj08.cf;; esac; done' "
     ">>bin/ghdl-mcode; chmod +x bin/*",
     "e.vhd", 3,
     "BRIX:  GHDL writes libraries in a format that is not known here; version 2 is needed.\n"},
};

struct BadInput : testing::Test {
    Scratch scratch;
    std::string path_value = scratch.path("bin") + ":" + environment_variable("PATH");
    test::ScopedVariable path{"PATH", path_value.c_str()};

    /// Compiles "e.vhd" into an empty library.
    void begin() const {
        for (const auto& entry : fs::directory_iterator(scratch.path()))
            fs::remove_all(entry.path());
        scratch.write("e.vhd", "entity e is end;\n");
        scratch.write("bin/ghdl-mcode", "#!/bin/sh\n"); // of no use until it may be run
        scratch.write("good.vhd", "entity good is end;\n");
        EXPECT_EQ(run_brix({"-q", "e.vhd"}).status, 0);
    }
    /// All but the lines "Compiling", with HERE for the directory's path.
    [[nodiscard]] std::string told(const ToolRun& run) const {
        std::string rest;
        for (std::string line : test::words_of(run.text, '\n')) {
            if (line.find(scratch.path()) != line.npos)
                line.replace(line.find(scratch.path()), scratch.path().size(), "HERE");
            if (!line.starts_with("Compiling '"))
                rest += line + "\n";
        }
        return rest;
    }
    /// Does GHDL alone find "e" in the library?
    static bool opens() {
        return std::system("ghdl --dir --std=08 --work=work --workdir=work >log 2>&1 && "
                           "grep -q 'entity e$' log") == 0;
    }
};

TEST_F(BadInput, IsToldInOneLineAndHarmsNoLibrary) {
    for (const Row& row : k_rows) {
        begin();
        ASSERT_EQ(std::system(row.spoil), 0) << row.spoil;
        scratch.write("words", row.words + " good.vhd");
        const ToolRun run = run_brix({"-q", "-m", "@words"});
        EXPECT_EQ(run.status, row.status) << run.text;
        EXPECT_EQ(told(run), row.told);
        // What is wrong with a file stands under its name.
        const std::string file = row.told.substr(0, row.told.find_first_of(": "));
        EXPECT_TRUE(file.empty() || file == "BRIX" ||
                    run.text.find("Compiling '" + file + "'\n" + row.told) != file.npos)
            << run.text;
        // One bad file hides no good one.
        EXPECT_EQ(run.text.find("Compiling 'good.vhd'\n") != run.text.npos, row.status < 2)
            << run.text;
        EXPECT_TRUE(opens()) << row.told << scratch.read("log");
    }
}

TEST_F(BadInput, OutputComesBeforeGhdlIsAskedAndIsNeverLostInSilence) {
    begin();
    scratch.write("bin/ghdl-mcode", "#!/bin/sh\ntest -s out || echo $1 >>late\nexec ghdl \"$@\"\n");
    fs::permissions("bin/ghdl-mcode", fs::perms::owner_all);
    static_cast<void>(std::system((k_brix + " -b e.vhd >out").c_str()));
    EXPECT_FALSE(fs::exists("late")) << scratch.read("late");
    EXPECT_EQ(std::system((k_brix + " -q -m e.vhd >/dev/full 2>log").c_str()), 256);
    EXPECT_EQ(scratch.read("log"), "Can't write standard output: No space left on device\n");
}

TEST_F(BadInput, AHeldLibraryIsNamedWithItsHolder) {
    begin();
    const WaitGuard guard{[](void*, const LibraryPlace&) {}, [](void*) { return false; }, nullptr};
    LibraryLock lock;
    ASSERT_FALSE(lock_library({"work", "work"}, lock, guard));
    LibraryLock second;
    const Failure failure = lock_library({"work", "work"}, second, guard, 0);
    EXPECT_EQ(failure.status, ExitStatus::bad_library);
    EXPECT_EQ(failure.text, "Library 'work' is in use by another compilation (process " +
                                String(std::to_string(current_process_id())) + ").");
    Process process;
    const OwnedHandle output = start_program(process, "BRIX.EXE", {"-q", "e.vhd"});
    const std::string waiting = "Waiting for library 'work', which another compilation uses.\n";
    EXPECT_EQ(read_until(output, "\n"), waiting);
    lock = {};
    EXPECT_EQ(read_until(output, ""), "Compiling 'e.vhd'\n");
    EXPECT_EQ(status_of(wait_for_process(process)), 0);
}

TEST_F(BadInput, WithoutRoomALibraryStaysAsItWas) {
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    std::string big;
    for (int i = 0; i < 40; ++i)
        big += "entity b" + std::to_string(i) + " is end;\n";
    int failures = 0;
    for (rlim_t room = 0; room < 16'000; room += 1000) {
        begin();
        scratch.write("big.vhd", big);
        const rlimit tight{room, old.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
        const ToolRun run = run_brix({"-q", "-m", "e.vhd", "big.vhd"});
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
        if (run.status == 4)
            EXPECT_EQ(told(run).find("BRIX:  Library 'work' can't be written: "), 0u) << run.text;
        else if (run.status == 1)
            EXPECT_EQ(told(run), "big.vhd:  GHDL itself failed on this file (signal 25).\n");
        else
            EXPECT_EQ(told(run), "");
        failures += run.status == 0 ? 0 : 1;
        EXPECT_TRUE(opens()) << room;
        EXPECT_EQ(run_brix({"-q", "-m", "e.vhd", "big.vhd"}).status, 0) << room;
    }
    EXPECT_GT(failures, 5);
}

} // namespace
} // namespace pellux
