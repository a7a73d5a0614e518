// Searching files as the search windows do, against a program that does nothing else.

#include "bench/large_text.h"
#include "bench/ratio.h"
#include "windows/workspace/search_run.h"

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace pellux;
namespace fs = std::filesystem;

constexpr std::string_view k_word = "interrupt_state";

[[noreturn]] void give_up(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::exit(1);
}

/// Its lines go to a file: where they go nowhere it does not look for them.
void run_grep(const std::vector<std::string>& files) {
    std::vector<std::string> words{"grep", "-n", "-F", "--", std::string(k_word)};
    words.insert(words.end(), files.begin(), files.end());
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "found", O_WRONLY | O_CREAT | O_TRUNC,
                                     0600);
    pid_t child = 0;
    int status = 0;
    if (posix_spawnp(&child, "grep", &actions, nullptr, arguments.data(), environ) != 0 ||
        waitpid(child, &status, 0) != child || status != 0)
        give_up("grep found nothing");
    posix_spawn_file_actions_destroy(&actions);
}

void run_search(const std::vector<std::string>& files, bool ignores_case) {
    std::int64_t lines = 0;
    SearchRun run(
        {.found =
             [](void* context, std::size_t, std::span<const LineMatch> found) {
                 *static_cast<std::int64_t*>(context) += std::ssize(found);
             },
         .unreadable = [](void*, std::size_t, SystemError) { give_up("a file can't be read"); },
         .advanced = [](void*) {},
         .context = &lines});
    run.start({files.begin(), files.end()}, {.pattern = k_word, .ignores_case = ignores_case});
    while (run.is_running())
        run_turn(TurnWait::none);
    if (lines != static_cast<std::int64_t>(files.size()))
        give_up("not all was found");
}

} // namespace

int main(int argument_count, char** arguments) {
    const bool moment = is_moment(argument_count, arguments);
    const int count = moment ? 20 : 1000;
    std::string place = fs::temp_directory_path() / "pellux_search_XXXXXX";
    if (mkdtemp(place.data()) == nullptr)
        give_up("there is no place for files");
    fs::current_path(place);
    std::string text = make_text(100'000);
    text.replace(text.size() / 2, k_word.size(), k_word);
    std::vector<std::string> files;
    for (int i = 0; i < count; ++i) {
        files.push_back(place + "/block_" + std::to_string(i) + ".vhd");
        std::ofstream(files.back()) << text;
    }
    compare(
        {.name = "files of 100 KB searched for a word",
         .yardstick = "grep -F",
         .units = static_cast<double>(count),
         .reach = 3},
        moment, [&] { run_grep(files); }, [&] { run_search(files, false); });
    compare(
        {.name = "the same, ignoring case",
         .yardstick = "grep -F with case",
         .units = static_cast<double>(count)},
        moment, [&] { run_grep(files); }, [&] { run_search(files, true); });
    fs::current_path("/");
    fs::remove_all(place);
    return 0;
}
