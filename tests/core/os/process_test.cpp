#include "tests/support/running.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace pellux {
namespace {

/// A child that has started one of its own.
struct Family : Child {
    std::int64_t grandchild_id = 0;

    explicit Family(const char* role) : Child({role}) {
        std::int64_t own_id = 0;
        std::istringstream(pipe.read('\n')) >> own_id >> grandchild_id;
        EXPECT_EQ(own_id, id);
        EXPECT_GT(grandchild_id, 0);
    }
};

TEST(Process, EndIsToldOnceWithItsStatus) {
    const struct {
        std::vector<std::string> role;
        bool by_signal;
        int code;
    } rows[] = {
        {{"exit", "0"}, false, 0}, {{"exit", "255"}, false, 255}, {{"crash"}, true, SIGTERM}};
    for (const auto& row : rows) {
        Child child(row.role);
        EXPECT_GT(child.id, 0);
        ASSERT_TRUE(turn_until([&] { return child.ends != 0; }));
        run_turn(TurnWait::none);
        EXPECT_EQ(child.ends, 1);
        EXPECT_EQ(child.end.by_signal, row.by_signal) << row.role[0];
        EXPECT_EQ(child.end.code, row.code);
        EXPECT_EQ(child.id, 0);
        EXPECT_FALSE(has_children());
    }
}

TEST(Process, WaitingTakesTheStatusWithoutTheLoop) {
    for (const auto of_our_children : {SIG_DFL, SIG_IGN}) {
        std::signal(SIGCHLD, of_our_children);
        Child child({"exit", "5"});
        EXPECT_EQ(wait_for_process(child).code, 5);
        std::signal(SIGCHLD, SIG_DFL);
        EXPECT_EQ(child.id, 0);
        run_turn(TurnWait::none);
        EXPECT_EQ(child.ends, 0);
        EXPECT_FALSE(has_children());
    }
}

TEST(Process, WhatCannotBeExecutedFailsAtOnce) {
    const test::TemporaryDirectory scratch;
    scratch.write("text", "no program");
    std::filesystem::permissions(scratch.write("bad", "no program"),
                                 std::filesystem::perms::owner_all);
    const struct {
        std::string program;
        const char* directory;
    } rows[] = {{"no_such_program_here", nullptr}, {scratch.path("missing"), nullptr},
                {scratch.path("text"), nullptr},   {scratch.path("bad"), nullptr},
                {scratch.path(), nullptr},         {"", nullptr},
                {k_os_child, "/no/such/directory"}};
    for (const auto& row : rows) {
        ChildRequest request({"exit", "0"});
        request.program = row.program.c_str();
        request.directory = row.directory;
        Process process;
        EXPECT_TRUE(failed(start_process(process, request))) << row.program;
        EXPECT_TRUE(failed(start_detached(request))) << row.program;
        EXPECT_EQ(process.id, 0);
    }
    EXPECT_FALSE(has_children());
}

TEST(Process, ChildGetsItsWordsAndStandardHandlesAndNothingElse) {
    sigset_t blocked, before;
    ::sigfillset(&blocked);
    ::sigprocmask(SIG_BLOCK, &blocked, &before);
    std::signal(SIGPIPE, SIG_IGN);
    const int open_handle = ::dup(STDOUT_FILENO);
    ChildRequest request({"echo", "two words", "", "\"q\\", "a\nb", "*?$HOME"});
    Pipe output, errors;
    request.output = output.write_end.get();
    request.errors = errors.write_end.get();
    request.directory = "/usr";
    Process process;
    const SystemError error = start_process(process, request);
    ::close(open_handle);
    std::signal(SIGPIPE, SIG_DFL);
    ::sigprocmask(SIG_SETMASK, &before, nullptr);
    output.write_end.reset();
    errors.write_end.reset();
    ASSERT_FALSE(failed(error));
    EXPECT_EQ(output.read(), "[two words][][\"q\\][a\nb][*?$HOME] group own, mask empty, "
                             "pipe signal default, handles 3, directory /usr");
    EXPECT_EQ(errors.read(), "errors");
    EXPECT_EQ(wait_for_process(process).code, 0);
}

TEST(Process, ChildrenThatNobodyWaitsForAreReaped) {
    {
        ASSERT_FALSE(failed(start_detached(ChildRequest({"exit", "0"}))));
        Child forgotten({"exit", "0"});
        forgotten.ended = [](void*, ProcessEnd) { ADD_FAILURE() << "told after it was forgotten"; };
    }
    EXPECT_TRUE(turn_until_no_child());
}

TEST(Process, OneTooManyIsRefusedUntilOthersHaveEnded) {
    const ChildRequest request({"exit", "0"});
    std::array<Process, k_processes_max> processes;
    for (Process& process : processes)
        ASSERT_FALSE(failed(start_process(process, request)));
    EXPECT_TRUE(failed(start_detached(request)));
    EXPECT_TRUE(turn_until_no_child());
    EXPECT_FALSE(failed(start_detached(request)));
    EXPECT_TRUE(turn_until_no_child());
}

TEST(Process, ProcessorTimeIsLimitedByTheSystem) {
    Process process;
    ChildRequest request({"ignore"});
    request.processor_seconds_max = 7;
    ASSERT_FALSE(failed(start_process(process, request)));
    rlimit limit{};
    ::prlimit(static_cast<pid_t>(process.id), RLIMIT_CPU, nullptr, &limit);
    EXPECT_EQ(std::pair(limit.rlim_cur, limit.rlim_max), std::pair(rlim_t{7}, rlim_t{7}));
    kill_process(process);
    wait_for_process(process);
}

TEST(Process, GivenUpChildIsEndedWithItsGroupWhenTheGraceIsOver) {
    ManualClock clock;
    Family family("family"), kept("grandchild");
    EXPECT_TRUE(turn_until([&] { return kept.ends == 1; }));
    Family given_up("grandchild");
    const std::int64_t child_id = family.id;
    end_process_later(family, 2000);
    end_process_later(given_up, 2000);
    EXPECT_EQ(family.id, 0);
    // What a child leaves behind goes with it, though it holds the pipe, if that was given up.
    EXPECT_TRUE(turn_until([&] { return !process_exists(given_up.grandchild_id); }));
    EXPECT_TRUE(process_exists(kept.grandchild_id));
    ::kill(static_cast<pid_t>(kept.grandchild_id), SIGKILL);
    clock.advance(1999);
    run_turn(TurnWait::none);
    EXPECT_TRUE(process_exists(child_id) && process_exists(family.grandchild_id));
    clock.advance(1);
    EXPECT_TRUE(turn_until_no_child());
    EXPECT_FALSE(process_exists(child_id));
    EXPECT_TRUE(turn_until([&] { return !process_exists(family.grandchild_id); }));
}

TEST(Process, ChildThatIgnoresSignalsIsEndedAtOnceWithoutAGrace) {
    Child child({"ignore"});
    EXPECT_EQ(child.pipe.read('\n'), "ready");
    end_process_later(child, 0);
    EXPECT_TRUE(turn_until_no_child());
    EXPECT_EQ(child.ends, 0);
}

TEST(Process, GivenUpChildDoesNotOutliveAProgramThatEndsWithinTheGrace) {
    Child child({"give_up", k_os_child});
    const std::int64_t given_up = std::stoll(child.pipe.read('\n'));
    ::kill(static_cast<pid_t>(child.id), SIGTERM);
    EXPECT_EQ(wait_for_process(child).code, SIGTERM);
    EXPECT_FALSE(process_exists(given_up));
}

TEST(Process, ZombieDoesNotExist) {
    Child child({"exit", "0"});
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, static_cast<id_t>(child.id), &info, WEXITED | WNOWAIT), 0);
    EXPECT_FALSE(process_exists(child.id));
    EXPECT_EQ(wait_for_process(child).code, 0);
    EXPECT_TRUE(process_exists(current_process_id()));
    for (const std::int64_t id : {std::int64_t{0}, std::int64_t{-1}, INT64_MAX, INT64_MIN})
        EXPECT_FALSE(process_exists(id)) << id;
}

TEST(Process, ProgramIsFoundAlongThePathButNeverInTheCurrentDirectory) {
    const Scratch scratch;
    std::filesystem::create_symlink(k_os_child, scratch.path("pellux_probe"));
    scratch.write("no_program", "text");
    std::filesystem::create_directory(scratch.path("directory"));
    const auto found = [](const char* name) {
        PathBuffer path;
        return find_program(name, path) ? std::string(path.view()) : "(nowhere)";
    };
    for (const char* list : {"", "::.:", "./", "../", static_cast<const char*>(nullptr)}) {
        const test::ScopedVariable variable("PATH", list);
        EXPECT_EQ(found("pellux_probe"), "(nowhere)") << (list != nullptr ? list : "unset");
        EXPECT_EQ(found("core_os_tests"), std::string(PELLUX_BINARY_DIR) + "/core_os_tests");
    }
    const test::ScopedVariable variable("PATH", ("/no/such:" + scratch.path()).c_str());
    EXPECT_EQ(found("pellux_probe"), scratch.path("pellux_probe"));
    EXPECT_EQ(found("no_program"), "(nowhere)");
    EXPECT_EQ(found("directory"), "(nowhere)");
    EXPECT_EQ(found("./pellux_probe"), "./pellux_probe");
}

TEST(Pipe, SidesThatWaitOrAreGoneAreTold) {
    Pipe pipe;
    std::array<std::byte, 4> bytes{};
    std::size_t got = 9;
    bool would_wait = false;
    set_non_blocking(pipe.read_end.get());
    EXPECT_FALSE(failed(read_handle(pipe.read_end.get(), bytes, got, would_wait)));
    EXPECT_TRUE(would_wait && got == 0);
    pipe.read_end.reset();
    EXPECT_TRUE(failed(write_handle(pipe.write_end.get(), bytes)));
}

} // namespace
} // namespace pellux
