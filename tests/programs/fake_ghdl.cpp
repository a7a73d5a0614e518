// Stands in for GHDL: the base name of the source or unit that it is called for is its role.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <csignal>
#include <unistd.h>

namespace {

void log_call(int count, char** words) {
    const char* name = std::getenv("FAKE_GHDL_LOG");
    if (name == nullptr)
        return;
    std::FILE* log = std::fopen(name, "a");
    if (log == nullptr)
        return;
    std::fprintf(log, "%d", static_cast<int>(::getpid()));
    for (int i = 1; i < count; ++i)
        std::fprintf(log, " %s", words[i]);
    std::fputc('\n', log);
    std::fclose(log);
}

std::string role_of(const char* word) {
    const char* slash = std::strrchr(word, '/');
    std::string name = slash != nullptr ? slash + 1 : word;
    return name.substr(0, name.find('.'));
}

void say(const std::string& text) {
    static_cast<void>(!::write(STDERR_FILENO, text.data(), text.size()));
}

void hang() {
    for (;;)
        ::pause();
}

int analyse(const std::string& file) {
    const std::string role = role_of(file.c_str());
    if (role == "errors" || role == "endless") {
        for (int i = 1; i <= 5; ++i)
            say(file + ":" + std::to_string(i) + ":1: fault " + std::to_string(i) + "\n");
        if (role == "endless")
            hang();
        return 1;
    }
    if (role == "warnings") {
        for (int i = 1; i <= 3; ++i)
            say(file + ":" + std::to_string(i) + ":1:warning: doubt [-Wunused]\n");
        return 0;
    }
    if (role == "silent")
        return 1;
    if (role == "fault") {
        say("******* Bug occurred *******\n");
        return 2;
    }
    if (role == "killed")
        ::raise(SIGKILL);
    if (role == "waits")
        hang();
    if (role == "long") {
        say(file + ":1:1: " + std::string(5000, 'x'));
        return 1;
    }
    if (role == "raw") {
        say(file + std::string(":1:1: a\0b\rc\r\n", 13));
        return 1;
    }
    if (role == "flood") {
        for (int i = 1; i <= 20000; ++i)
            say(file + ":" + std::to_string(i) + ":1: fault\n");
        return 1;
    }
    if (role == "library") {
        say("ghdl-mcode: cannot update library file \"work/work-obj08.cf\"\n");
        return 1;
    }
    if (role == "holder") {
        // The grandchild holds the pipe open after its parent's end.
        if (::fork() == 0) {
            ::alarm(20);
            hang();
        }
        say(file + ":1:1: half a line");
        return 1;
    }
    return 0;
}

} // namespace

int main(int count, char** words) {
    log_call(count, words);
    if (count < 3)
        return 1;
    const std::string command = words[1];
    const char* subject = words[count - 1];
    if (command == "-a")
        return analyse(subject);
    if (command == "-f")
        std::puts("entity leaf\nentity top **\narchitecture rtl of top\nconfiguration other");
    if (command == "-e" && role_of(subject) == "other") {
        say("/nowhere/x.vhd:3:2: unit is missing\n");
        return 1;
    }
    return 0;
}
