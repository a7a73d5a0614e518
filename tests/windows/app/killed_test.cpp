#include "core/common/run_register.h"
#include "core/os/interruption.h"
#include "core/project/project_file.h"
#include "tests/support/rounds.h"
#include "tests/windows/workspace/project_files.h"
#include "windows/app/program.h"
#include "windows/editor/auto_save.h"
#include "windows/editor/open_editors.h"
#include "windows/workspace/project_copies.h"
#include "windows/workspace/project_files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <map>
#include <random>
#include <sstream>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace pellux {
namespace {

namespace fs = std::filesystem;

constexpr const char* k_worker = "PELLUX_KILLED_WORKER";
constexpr std::size_t k_blocks = 7;

std::string text_number(int number) {
    std::string text;
    const std::size_t size = 1000 + static_cast<std::size_t>(number) % k_blocks * 40'000;
    while (text.size() < size)
        text += std::to_string(number) + "\n";
    return text;
}

/// Types, copies and saves a text and a list in the real program, at random and without end, and
/// says so before and after each step: the subject ('t' or 'l'), what is done to it, and a number
/// that tells what it is.
struct Worker {
    fs::path directory;
    std::mt19937_64 random;
    int journal = -1;
    int typed = 0;
    PostedCall call{.call = [](void* self) { static_cast<Worker*>(self)->step(); },
                    .context = this};

    void say(char subject, const char* what, int number) const {
        const std::string line =
            std::string(1, subject) + " " + what + " " + std::to_string(number) + "\n";
        static_cast<void>(!::write(journal, line.data(), line.size()));
    }
    void step_text(EditorWindow& editor) {
        TextEditing& editing = editor.view().editing;
        switch (random() % 4) {
        case 0:
            say('t', "save", typed);
            editor.save();
            say('t', "saved", typed);
            break;
        case 1:
            say('t', "copy", typed);
            editor.auto_save();
            say('t', "copied", typed);
            break;
        default:
            select_range(editing, 0, text_size(editor.document()));
            insert_text(editing, text_number(++typed));
            say('t', "typed", typed);
            break;
        }
    }
    void step_list(OpenProject& open) {
        const auto count = static_cast<int>(open.project->sources.size());
        switch (random() % 3) {
        case 0:
            say('l', "save", count);
            save_project(open.window);
            say('l', "saved", count);
            break;
        case 1:
            say('l', "copy", count);
            write_project_copy(open);
            say('l', "copied", count);
            break;
        default: {
            const fs::path file = directory / ("more" + std::to_string(count) + ".vhd");
            std::ofstream(file) << "";
            add_dropped_files(open.window, Vector<String>{String(file.c_str())});
            say('l', "typed", count + 1);
            break;
        }
        }
    }
    void step() {
        // The program is about to end.
        if (workspace().projects.empty())
            return;
        OpenProject& open = *workspace().projects.front();
        const fs::path text = directory / "text.vhd";
        EditorWindow* editor = open_editor(open.window, text.c_str());
        random() % 3 == 0 ? step_list(open) : step_text(*editor);
        post_call(call);
    }
    void run() {
        post_call(call);
        const std::string project = directory / "a.bpr";
        std::vector<std::string> words{"pellux", project};
        std::vector<char*> pointers{words[0].data(), words[1].data(), nullptr};
        run_pellux(2, pointers.data());
    }
};

/// What a journal says of a subject; numbers of what was begun and not ended are -1 otherwise.
struct Trail {
    int typed = 0;
    int saved = 0;
    int saving = -1;
    int copied = -1;
    int copying = -1;
    bool is_copied_last = false; ///< after the last saving
};

std::map<char, Trail> trails_of(const std::string& journal) {
    std::map<char, Trail> trails;
    std::istringstream lines(journal);
    char subject = 0;
    std::string what;
    for (int number = 0; lines >> subject >> what >> number;) {
        Trail& trail = trails[subject];
        if (what == "typed") {
            trail.typed = number;
        } else if (what == "save") {
            trail.saving = number;
        } else if (what == "saved") {
            trail.saved = std::exchange(trail.saving, -1);
            trail.is_copied_last = false;
        } else if (what == "copy") {
            trail.copying = number;
        } else {
            const int copied = std::exchange(trail.copying, -1);
            // What is saved has no copy.
            if (copied != trail.saved) {
                trail.copied = copied;
                trail.is_copied_last = true;
            }
        }
    }
    return trails;
}

struct Killing {
    test::TemporaryDirectory directory_;
    test::TemporaryDirectory settings_;
    test::ScopedVariable configuration_{"XDG_CONFIG_HOME", settings_.path().c_str()};
    test::ScopedVariable state_{"XDG_STATE_HOME", settings_.path().c_str()};
    test::ScopedVariable platform_{"QT_QPA_PLATFORM", "offscreen"};

    /// Starts the worker, ends it by a signal after a while, and answers its journal.
    std::string run_worker(unsigned seed, int signal, int after_us) {
        const std::string self = fs::read_symlink("/proc/self/exe");
        const std::string number = std::to_string(seed);
        const test::ScopedVariable worker(k_worker, number.c_str());
        const std::string log = directory_.path("journal");
        const pid_t child = ::fork();
        if (child == 0) {
            static_cast<void>(!::chdir(directory_.path().c_str()));
            ::execl(self.c_str(), self.c_str(), "--gtest_filter=KilledProgram.LosesNothing",
                    nullptr);
            ::_exit(127);
        }
        const auto size = [&] { return fs::exists(log) ? fs::file_size(log) : 0; };
        while (size() == 0 && ::waitpid(child, nullptr, WNOHANG) == 0)
            ::usleep(1000);
        ::usleep(static_cast<useconds_t>(after_us));
        ::kill(child, signal);
        int status = 0;
        EXPECT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_TRUE(signal == SIGKILL ? WIFSIGNALED(status) : WEXITSTATUS(status) == 128 + SIGTERM);
        return directory_.read("journal");
    }
    /// `number_of` tells which number a file holds; -1: none.
    void check(const Trail& trail, const std::string& path, bool was_asked,
               const std::function<int(const std::string&)>& number_of) {
        SCOPED_TRACE(path);
        const int file = number_of(path);
        EXPECT_TRUE(file == trail.saved || (file == trail.saving && file >= 0)) << file;
        const std::string place = copy_beside(path).c_str();
        const int copy = fs::exists(place) ? number_of(place) : -1;
        const bool is_begun = copy == trail.copying && copy >= 0;
        const bool has_to = was_asked && trail.typed != trail.saved;
        EXPECT_TRUE(has_to ? copy == trail.typed
                           : trail.copied < 0 || copy == trail.copied || is_begun || was_asked)
            << copy;
        if (trail.saving >= 0 || copy < 0 ||
            fs::last_write_time(place) == fs::last_write_time(path))
            return;
        const bool is_newer =
            trail.is_copied_last || is_begun || (was_asked && copy == trail.typed);
        EXPECT_EQ(!find_copies(path).empty(), is_newer && copy != file) << copy << ' ' << file;
    }
};

TEST(KilledProgram, LosesNothing) {
    if (const char* seed = std::getenv(k_worker)) {
        Worker worker{.directory = fs::current_path(), .random = std::mt19937_64(std::atoi(seed))};
        worker.journal = ::open("journal", O_WRONLY | O_CREAT | O_APPEND, 0600);
        worker.run();
        ::_exit(128 + interruption());
    }
    Killing killing;
    const test::TemporaryDirectory& directory = killing.directory_;
    const test::Rounds rounds(4);
    std::mt19937_64 random(rounds.seed);
    for (int round = 0; round < rounds.count; ++round) {
        const bool is_asked = round % 4 == 3;
        SCOPED_TRACE(testing::Message() << "round " << round << " seed " << rounds.seed);
        for (const auto& entry : fs::directory_iterator(directory.path()))
            fs::remove_all(entry);
        fs::remove_all(killing.settings_.path("pellux"));
        test::make_project_file(directory.path(), "a.bpr");
        const std::string text = directory.write("text.vhd", text_number(0));
        std::map<char, Trail> trails = trails_of(
            killing.run_worker(rounds.seed + static_cast<unsigned>(round),
                               is_asked ? SIGTERM : SIGKILL, static_cast<int>(random() % 400'000)));
        killing.check(trails['t'], text, is_asked, [](const std::string& path) {
            std::ifstream file(path);
            const std::string held{std::istreambuf_iterator<char>(file), {}};
            const int number = held.empty() ? -1 : std::stoi(held);
            return number >= 0 && held == text_number(number) ? number : -1;
        });
        if (trails.contains('l'))
            killing.check(
                trails['l'], directory.path("a.bpr"), is_asked, [](const std::string& path) {
                    const Owned<Project> project = read_project(path);
                    return project == nullptr ? -1 : static_cast<int>(project->sources.size());
                });
        Vector<LeftRegister> left = take_left_registers();
        if (trails['t'].copied >= 0) {
            ASSERT_EQ(left.size(), 1);
            EXPECT_TRUE(std::ranges::any_of(left[0].copies, [&](const KeptCopy& kept) {
                return view(kept.file) == text && kept.copy == copy_beside(text);
            }));
        }
    }
}

} // namespace
} // namespace pellux
