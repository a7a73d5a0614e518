#include "tests/core/os/running.h"
#include "tests/core/os/scoped_directory.h"

#include <gtest/gtest.h>

#include <csignal>
#include <memory>
#include <sstream>

#include <sys/wait.h>
#include <unistd.h>

namespace pellux {
namespace {

struct Ended {
    int calls = 0;
    ProcessEnd end;
};

void note_end(void* context, ProcessEnd end) {
    auto& ended = *static_cast<Ended*>(context);
    ++ended.calls;
    ended.end = end;
}

bool has_children() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
}

bool turn_until_no_child() {
    return turn_until([] { return !has_children(); });
}

/// A child whose standard output is a pipe.
struct TalkingChild {
    Process process;
    Ended ended;
    OwnedHandle output;

    explicit TalkingChild(std::initializer_list<std::string> role) {
        ChildRequest child(role);
        OwnedHandle write_end;
        EXPECT_FALSE(failed(make_pipe(output, write_end)));
        child.request.output = write_end.get();
        process.ended = note_end;
        process.context = &ended;
        EXPECT_FALSE(failed(start_process(process, child.request)));
    }
};

TEST(Process, EndIsToldOnceWithItsStatus) {
    struct Case {
        std::vector<std::string> role;
        bool by_signal;
        int code;
    };
    const Case cases[] = {{{"exit", "0"}, false, 0},
                          {{"exit", "7"}, false, 7},
                          {{"exit", "255"}, false, 255},
                          {{"crash", ""}, true, SIGTERM}};
    for (const Case& c : cases) {
        Process process;
        Ended ended;
        process.ended = note_end;
        process.context = &ended;
        ChildRequest child({c.role[0], c.role[1]});
        ASSERT_FALSE(failed(start_process(process, child.request)));
        EXPECT_GT(process.id, 0);
        ASSERT_TRUE(turn_until([&] { return ended.calls != 0; }));
        run_turn(TurnWait::none);
        EXPECT_EQ(ended.calls, 1);
        EXPECT_EQ(ended.end.by_signal, c.by_signal) << c.role[0];
        EXPECT_EQ(ended.end.code, c.code);
        EXPECT_EQ(process.id, 0);
        EXPECT_FALSE(has_children());
    }
}

TEST(Process, WaitingTakesTheStatusWithoutTheLoop) {
    TalkingChild child({"exit", "5"});
    EXPECT_EQ(wait_for_process(child.process).code, 5);
    EXPECT_EQ(child.process.id, 0);
    run_turn(TurnWait::none);
    EXPECT_EQ(child.ended.calls, 0);
    EXPECT_FALSE(has_children());
}

TEST(Process, StatusIsKeptInAProgramThatWasToldToIgnoreChildren) {
    std::signal(SIGCHLD, SIG_IGN);
    TalkingChild child({"exit", "3"});
    EXPECT_EQ(wait_for_process(child.process).code, 3);
    std::signal(SIGCHLD, SIG_DFL);
}

TEST(Process, WhatCannotBeExecutedFailsAtOnce) {
    const test::TemporaryDirectory scratch;
    const std::string text = scratch.write("text", "no program");
    const std::string bad_program = scratch.write("bad", "no program");
    std::filesystem::permissions(bad_program, std::filesystem::perms::owner_all);
    for (const std::string& program :
         {std::string("no_such_program_here"), scratch.path() + "/missing", text, bad_program,
          scratch.path(), std::string()}) {
        ChildRequest child({"exit", "0"});
        child.request.program = program.c_str();
        Process process;
        EXPECT_TRUE(failed(start_process(process, child.request))) << program;
        EXPECT_TRUE(failed(start_detached(child.request))) << program;
        EXPECT_EQ(process.id, 0);
    }
    ChildRequest child({"exit", "0"});
    child.request.directory = "/no/such/directory";
    EXPECT_TRUE(failed(start_detached(child.request)));
    EXPECT_FALSE(has_children());
}

TEST(Process, WordsAndHandlesArriveUnchanged) {
    ChildRequest child({"echo", "two words", "", "\"q\\", "a\nb", "*?$HOME"});
    OwnedHandle output, output_end, errors, errors_end;
    ASSERT_FALSE(failed(make_pipe(output, output_end)));
    ASSERT_FALSE(failed(make_pipe(errors, errors_end)));
    child.request.output = output_end.get();
    child.request.errors = errors_end.get();
    Process process;
    ASSERT_FALSE(failed(start_process(process, child.request)));
    output_end.reset();
    errors_end.reset();
    EXPECT_EQ(read_text(output), "[two words][][\"q\\][a\nb][*?$HOME]");
    EXPECT_EQ(read_text(errors), "errors");
    EXPECT_EQ(wait_for_process(process).code, 0);
}

TEST(Process, OurOwnStandardHandlesCanBeGivenCrosswise) {
    OwnedHandle first, first_end, second, second_end;
    ASSERT_FALSE(failed(make_pipe(first, first_end)));
    ASSERT_FALSE(failed(make_pipe(second, second_end)));
    const int kept_output = ::dup(STDOUT_FILENO);
    const int kept_errors = ::dup(STDERR_FILENO);
    ::dup2(static_cast<int>(first_end.get()), STDOUT_FILENO);
    ::dup2(static_cast<int>(second_end.get()), STDERR_FILENO);
    ChildRequest child({"echo", "x"});
    child.request.output = standard_errors();
    child.request.errors = standard_output();
    Process process;
    const SystemError error = start_process(process, child.request);
    ::dup2(kept_output, STDOUT_FILENO);
    ::dup2(kept_errors, STDERR_FILENO);
    ::close(kept_output);
    ::close(kept_errors);
    first_end.reset();
    second_end.reset();
    ASSERT_FALSE(failed(error));
    EXPECT_EQ(read_text(first), "errors");
    EXPECT_EQ(read_text(second), "[x]");
    wait_for_process(process);
}

TEST(Process, ChildInheritsNothingButItsStandardHandles) {
    sigset_t blocked;
    sigset_t before;
    ::sigfillset(&blocked);
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    std::signal(SIGPIPE, SIG_IGN);
    const int open_handle = ::dup(STDOUT_FILENO);
    ChildRequest child({"inherited"});
    OwnedHandle output, output_end;
    ASSERT_FALSE(failed(make_pipe(output, output_end)));
    child.request.output = output_end.get();
    child.request.directory = "/usr";
    Process process;
    const SystemError error = start_process(process, child.request);
    ::close(open_handle);
    std::signal(SIGPIPE, SIG_DFL);
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    output_end.reset();
    ASSERT_FALSE(failed(error));
    EXPECT_EQ(read_text(output),
              "group own, mask empty, pipe signal default, handles 3, directory /usr");
    wait_for_process(process);
}

TEST(Process, ChildrenThatNobodyWaitsForAreReaped) {
    {
        ChildRequest child({"exit", "0"});
        ASSERT_FALSE(failed(start_detached(child.request)));
        Process forgotten;
        forgotten.ended = [](void*, ProcessEnd) { ADD_FAILURE() << "told after it was forgotten"; };
        ASSERT_FALSE(failed(start_process(forgotten, child.request)));
    }
    EXPECT_TRUE(has_children());
    EXPECT_TRUE(turn_until_no_child());
}

TEST(Process, OneMoreThanTheMostIsNotStarted) {
    OwnedHandle input, input_end;
    ASSERT_FALSE(failed(make_pipe(input, input_end)));
    ChildRequest child({"wait_for_input"});
    child.request.input = input.get();
    std::vector<std::unique_ptr<Process>> processes;
    for (std::size_t i = 0; i < k_processes_max; ++i) {
        processes.push_back(std::make_unique<Process>());
        ASSERT_FALSE(failed(start_process(*processes.back(), child.request))) << i;
    }
    EXPECT_TRUE(failed(start_detached(child.request)));
    kill_process(*processes.back());
    EXPECT_TRUE(wait_for_process(*processes.back()).by_signal);
    EXPECT_FALSE(failed(start_process(*processes.back(), child.request)));
    input_end.reset();
    processes.clear();
    EXPECT_TRUE(turn_until_no_child());
}

TEST(Process, GivenUpChildIsEndedWithItsGroupWhenTheGraceIsOver) {
    ManualClock clock;
    std::int64_t child_id = 0;
    std::int64_t grandchild_id = 0;
    {
        TalkingChild child({"family"});
        std::istringstream(read_text(child.output, '\n')) >> child_id >> grandchild_id;
        ASSERT_EQ(child_id, child.process.id);
        end_process_later(child.process, 2000);
        EXPECT_EQ(child.process.id, 0);
    }
    clock.advance(1999);
    run_turn(TurnWait::none);
    EXPECT_TRUE(process_exists(child_id));
    EXPECT_TRUE(process_exists(grandchild_id));
    clock.advance(1);
    EXPECT_TRUE(turn_until_no_child());
    EXPECT_FALSE(process_exists(child_id));
    EXPECT_TRUE(turn_until([&] { return !process_exists(grandchild_id); }));
}

TEST(Process, ChildThatIgnoresSignalsIsEndedAtOnceWithoutAGrace) {
    TalkingChild child({"ignore"});
    EXPECT_EQ(read_text(child.output, '\n'), "ready");
    end_process_later(child.process, 0);
    EXPECT_TRUE(turn_until_no_child());
    EXPECT_EQ(child.ended.calls, 0);
}

TEST(Process, GivenUpChildThatEndsInTimeLeavesNoGrandchild) {
    ManualClock clock;
    std::int64_t child_id = 0;
    std::int64_t grandchild_id = 0;
    TalkingChild child({"grandchild"});
    end_process_later(child.process, 2000);
    std::istringstream(read_text(child.output, '\n')) >> child_id >> grandchild_id;
    ASSERT_GT(grandchild_id, 0);
    EXPECT_TRUE(turn_until([&] { return !process_exists(grandchild_id); }));
    EXPECT_TRUE(turn_until_no_child());
}

TEST(Process, GivenUpChildDoesNotOutliveAProgramThatEndsWithinTheGrace) {
    TalkingChild child({"give_up", k_os_child});
    const std::int64_t given_up = std::stoll(read_text(child.output, '\n'));
    EXPECT_EQ(wait_for_process(child.process).code, 0);
    EXPECT_FALSE(process_exists(given_up));
}

TEST(Process, EndIsToldWhileAGrandchildHoldsThePipe) {
    std::int64_t child_id = 0;
    std::int64_t grandchild_id = 0;
    TalkingChild child({"grandchild"});
    std::istringstream(read_text(child.output, '\n')) >> child_id >> grandchild_id;
    EXPECT_TRUE(turn_until([&] { return child.ended.calls == 1; }));
    EXPECT_TRUE(process_exists(grandchild_id));
    ::kill(static_cast<pid_t>(grandchild_id), SIGKILL);
}

TEST(Process, ZombieDoesNotExist) {
    TalkingChild child({"exit", "0"});
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child.process.id), &info, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(process_exists(child.process.id));
    EXPECT_EQ(wait_for_process(child.process).code, 0);
    EXPECT_TRUE(process_exists(current_process_id()));
    for (const std::int64_t id : {std::int64_t{0}, std::int64_t{-1}, INT64_MAX, INT64_MIN})
        EXPECT_FALSE(process_exists(id)) << id;
}

TEST(Process, DescentIsFollowedThroughParents) {
    std::int64_t child_id = 0;
    std::int64_t grandchild_id = 0;
    TalkingChild child({"family"});
    std::istringstream(read_text(child.output, '\n')) >> child_id >> grandchild_id;
    EXPECT_TRUE(is_descendant_or_self(child_id, child_id));
    EXPECT_TRUE(is_descendant_or_self(child_id, grandchild_id));
    EXPECT_TRUE(is_descendant_or_self(current_process_id(), grandchild_id));
    EXPECT_FALSE(is_descendant_or_self(child_id, current_process_id()));
    EXPECT_FALSE(is_descendant_or_self(grandchild_id, child_id));
    EXPECT_FALSE(is_descendant_or_self(child_id, 0));
    EXPECT_FALSE(is_descendant_or_self(0, child_id));
    kill_process(child.process);
    EXPECT_TRUE(turn_until([&] { return child.ended.calls == 1; }));
    EXPECT_TRUE(child.ended.end.by_signal);
}

TEST(Process, ProgramIsFoundAlongThePathButNeverInTheCurrentDirectory) {
    const test::TemporaryDirectory scratch;
    std::filesystem::create_symlink(k_os_child, scratch.path("pellux_probe"));
    scratch.write("no_program", "text");
    std::filesystem::create_directory(scratch.path("directory"));
    const test::ScopedDirectory here(scratch.path());
    PathBuffer path;
    for (const char* list :
         {"", ":", ".", "./", "::.:", "../", static_cast<const char*>(nullptr)}) {
        const test::ScopedVariable variable("PATH", list);
        EXPECT_FALSE(find_program("pellux_probe", path)) << (list != nullptr ? list : "unset");
        EXPECT_TRUE(find_program("core_os_tests", path)) << "not found beside our own programs";
        EXPECT_EQ(path.view(), std::string(PELLUX_BINARY_DIR) + "/core_os_tests");
    }
    const test::ScopedVariable variable("PATH", ("/no/such:" + scratch.path()).c_str());
    EXPECT_TRUE(find_program("pellux_probe", path));
    EXPECT_EQ(path.view(), scratch.path("pellux_probe"));
    EXPECT_FALSE(find_program("no_program", path));
    EXPECT_FALSE(find_program("directory", path));
    EXPECT_TRUE(find_program("./pellux_probe", path));
    EXPECT_EQ(path.view(), "./pellux_probe");
}

TEST(Pipe, WriterLearnsThatTheReaderIsGone) {
    OwnedHandle read_end, write_end;
    ASSERT_FALSE(failed(make_pipe(read_end, write_end)));
    std::array<std::byte, 4> bytes{};
    std::size_t got = 9;
    bool would_wait = false;
    set_non_blocking(read_end.get());
    EXPECT_FALSE(failed(read_handle(read_end.get(), bytes, got, would_wait)));
    EXPECT_TRUE(would_wait);
    EXPECT_EQ(got, 0U);
    EXPECT_FALSE(failed(write_handle(write_end.get(), std::span(bytes).first(3))));
    EXPECT_FALSE(failed(read_handle(read_end.get(), bytes, got, would_wait)));
    EXPECT_EQ(got, 3U);
    read_end.reset();
    EXPECT_TRUE(failed(write_handle(write_end.get(), bytes)));
}

} // namespace
} // namespace pellux
