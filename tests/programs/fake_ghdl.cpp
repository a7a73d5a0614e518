// Stands in for GHDL: the base name of the source or unit that it is called for is its role.

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

#include <unistd.h>

namespace {

void log_call(int count, char** words) {
    const char* name = std::getenv("FAKE_GHDL_LOG");
    if (name == nullptr)
        return;
    std::ofstream log(name, std::ios::app);
    log << ::getpid();
    for (int i = 1; i < count; ++i)
        log << ' ' << words[i];
    log << '\n';
}

std::string role_of(std::string_view word) {
    const std::string_view name = word.substr(word.rfind('/') + 1);
    return std::string(name.substr(0, name.find('.')));
}

void say(const std::string& text) {
    static_cast<void>(!::write(STDERR_FILENO, text.data(), text.size()));
}

void say_each(const std::string& file, int lines, const std::string& text) {
    for (int i = 1; i <= lines; ++i)
        say(file + ":" + std::to_string(i) + ":1:" + text + "\n");
}

void say_line(const std::string& file, std::size_t line, std::size_t length) {
    say(file + ":" + std::to_string(line) + ":1: " + std::string(length, 'x') + "\n");
}

void hang() {
    for (;;)
        ::pause();
}

std::string word_behind(const std::string& start, int count, char** words) {
    for (int i = 1; i < count; ++i) {
        if (std::string_view(words[i]).starts_with(start))
            return words[i] + start.size();
    }
    return {};
}

/// Records a file in the library as GHDL does, with one entity of the file's name; the sum is
/// nobody's.
void record(const std::string& file, int count, char** words) {
    const std::string library = word_behind("--work=", count, words);
    const std::string path = word_behind("--workdir=", count, words) + "/" + library + "-obj08.cf";
    std::string entry = "file \"/nowhere/\" \"" + file + "\" \"" + std::string(40, '0') +
                        "\" \"20200101000000.000\":\n  entity " + role_of(file) +
                        " at 1( 0) + 0 on 11;\n";
    if (role_of(file) == "top")
        entry += "  entity leaf at 1( 0) + 0 on 12;\n  configuration other at 1( 0) + 0 on 13;\n";
    std::ifstream old(path);
    const std::string known(std::istreambuf_iterator<char>(old), {});
    std::ofstream(path) << "v 4\n" << (known.empty() ? "" : known.substr(4)) << entry;
}

int analyse(const std::string& file) {
    const std::string role = role_of(file);
    if (role == "good" || role == "top" || role == "forgetful" || role.starts_with("run_"))
        return 0;
    if (role == "warnings")
        say_each(file, 3, "warning: doubt [-Wunused]");
    if (role == "errors" || role == "endless")
        say_each(file, 5, " fault");
    // Lines of all lengths, so that packets are filled to the last byte.
    for (std::size_t i = 1; role == "flood" && i <= 20000; ++i)
        say_line(file, i, 1 + i % 97);
    if (role == "endless")
        hang();
    if (role == "fault")
        say("******* Bug occurred *******\n");
    if (role == "killed")
        ::raise(SIGKILL);
    // Those that just fit into a packet, and do not, then one that fits into none.
    for (std::size_t i = 1; role == "long" && i < 10; ++i)
        say_line(file, i, 988 + i);
    if (role == "long")
        say(file + ":10:1: " + std::string(5000, 'x'));
    if (role == "raw")
        say(file + std::string(":1:1: a\0b\rc\r\n", 13));
    // The grandchild holds the pipe open after its parent's end.
    if (role == "holder" && ::fork() == 0) {
        ::alarm(20);
        hang();
    }
    if (role == "holder")
        say(file + ":1:1: half a line");
    return role == "fault" ? 2 : role == "warnings" ? 0 : 1;
}

/// Writes a waveform of some moments, the last one perhaps cut.
void write_waveform(int count, char** words, bool whole) {
    std::ofstream(word_behind("--vcd=", count, words))
        << "$enddefinitions $end\n#0\n0!\n#5\n1!\n#1" << (whole ? "0\n" : "");
}

int simulate(const std::string& role, int count, char** words) {
    if (role != "run_empty")
        write_waveform(count, words, role != "run_hang" && role != "run_cut");
    if (role == "run_hang") {
        say("x.vhd:1:1:@0ms:(report note): runs\n");
        hang();
    }
    if (role == "run_crash")
        ::raise(SIGKILL);
    return role == "run_fault" ? 2 : role == "run_silent" ? 1 : 0;
}

} // namespace

int main(int count, char** words) {
    if (count == 2 && std::string_view(words[1]) == "--version") {
        std::puts("GHDL 0.0 (stand-in)");
        return 0;
    }
    log_call(count, words);
    if (count < 3)
        return 1;
    const std::string command = words[1];
    const char* subject = words[count - 1];
    if (command == "-a") {
        const auto is_option = [](const char* word) { return word[0] == '-'; };
        char** const first = std::find_if_not(words + 2, words + count, is_option);
        for (char** file = first; file != words + count; ++file)
            if (const int status = analyse(*file); status != 0)
                return status;
        for (char** file = first; file != words + count; ++file)
            if (role_of(*file) != "forgetful")
                record(*file, count, words);
        return 0;
    }
    if (command == "-r") {
        int unit = count - 1;
        while (words[unit][0] == '-')
            --unit;
        return simulate(words[unit], count, words);
    }
    if (command == "-e" && role_of(subject) == "other") {
        say("/nowhere/x.vhd:3:2: unit is missing\n");
        return 1;
    }
    return 0;
}
