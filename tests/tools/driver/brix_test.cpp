#include "core/os/channel.h"
#include "core/os/environment.h"
#include "core/os/loop.h"
#include "core/os/process.h"
#include "tests/tools/driver/run_brix.h"
#include "tests/tools/driver/scratch.h"

#include <gtest/gtest.h>

#include <csignal>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

namespace pellux {
namespace {

/// The driver with the fake GHDL first in `PATH`.
struct Brix : testing::Test {
    Scratch scratch;
    std::string path_before = environment_variable("PATH");

    Brix() {
        const std::string path = std::string(PELLUX_BINARY_DIR) + "/tests/fake_ghdl:" + path_before;
        set_environment_variable("PATH", path.c_str());
        set_environment_variable("FAKE_GHDL_LOG", scratch.path("calls.log").c_str());
    }
    ~Brix() override {
        set_environment_variable("PATH", path_before.c_str());
        set_environment_variable("FAKE_GHDL_LOG", nullptr);
    }

    /// What GHDL was asked: command and subject of each call.
    [[nodiscard]] std::string calls() const {
        std::istringstream lines(scratch.read("calls.log"));
        std::string all;
        for (std::string line; std::getline(lines, line);) {
            const std::size_t command = line.find(' ');
            all += line.substr(command + 1, 3) + line.substr(line.rfind(' ') + 1) + "; ";
        }
        return all;
    }
    [[nodiscard]] std::int64_t last_process() const {
        const std::string log = scratch.read("calls.log");
        const std::size_t last = log.rfind('\n', log.size() - 2);
        return std::atoll(log.c_str() + (last == std::string::npos ? 0 : last + 1));
    }
};

TEST_F(Brix, EachFileIsCompiledThoughOthersAreBad) {
    scratch.write("top.vhd", "entity top is end;");
    const BrixRun result =
        run_brix({"-q", "errors.vhd", "-aalib", "good.vhd", "-b", "top.vhd", "-e9"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.text, "Compiling 'errors.vhd'\n"
                           "errors.vhd (line 1, col 1):  fault 1\n"
                           "errors.vhd (line 2, col 1):  fault 2\n"
                           "errors.vhd (line 3, col 1):  fault 3\n"
                           "errors.vhd (line 4, col 1):  fault 4\n"
                           "errors.vhd (line 5, col 1):  fault 5\n"
                           "Compiling 'good.vhd'\n"
                           "Compiling 'top.vhd'\n");
    EXPECT_EQ(calls(), "-a errors.vhd; -a good.vhd; -a top.vhd; ");
    EXPECT_TRUE(std::filesystem::is_directory("alib"));
    EXPECT_TRUE(std::filesystem::is_directory("work"));
    EXPECT_NE(scratch.read("calls.log").find("--work=alib --workdir=alib -Pwork"),
              std::string::npos);
}

TEST_F(Brix, UnusedUnitsOfTheTopAreElaborated) {
    scratch.write("top.vhd", "entity leaf is end; entity top is end; architecture rtl of top is\n"
                             "begin u : entity work.leaf; end;");
    const BrixRun result = run_brix({"good.vhd", "-b", "top.vhd"});
    EXPECT_EQ(calls(), "-a good.vhd; -a top.vhd; -f top.vhd; -e top; -e other; ");
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.text.starts_with("BRIX"));
    EXPECT_TRUE(result.text.ends_with("Compiling 'top.vhd'\n"
                                      "/nowhere/x.vhd (line 3, col 2):  unit is missing\n"))
        << result.text;
}

TEST_F(Brix, GhdlsOwnFaultsAreErrorsOfTheFile) {
    const std::pair<const char*, const char*> rows[] = {
        {"silent.vhd", "silent.vhd:  GHDL refused this file without a message.\n"},
        {"fault.vhd", "fault.vhd:  GHDL itself failed on this file (exit status 2).\n"},
        {"killed.vhd", "killed.vhd:  GHDL itself failed on this file (signal 9).\n"},
    };
    for (const auto& [file, line] : rows) {
        const BrixRun result = run_brix({"-q", file, "good.vhd"});
        EXPECT_EQ(result.status, 1) << file;
        EXPECT_TRUE(result.text.ends_with(std::string(line) + "Compiling 'good.vhd'\n"))
            << result.text;
    }
}

TEST_F(Brix, OddOutputOfGhdlComesThrough) {
    EXPECT_EQ(run_brix({"-q", "raw.vhd"}).text,
              "Compiling 'raw.vhd'\nraw.vhd (line 1, col 1):  a b c \n");
    const BrixRun longer = run_brix({"-q", "long.vhd"});
    EXPECT_TRUE(longer.text.ends_with("col 1):  " + std::string(5000, 'x') + "\n"));
    const BrixRun holder = run_brix({"-q", "holder.vhd"});
    EXPECT_EQ(holder.status, 1);
    EXPECT_TRUE(holder.text.ends_with("holder.vhd (line 1, col 1):  half a line\n"));
    const BrixRun flood = run_brix({"-q", "flood.vhd"});
    EXPECT_EQ(std::count(flood.text.begin(), flood.text.end(), '\n'), 20001);
}

TEST_F(Brix, LimitsEndTheRunAndGhdl) {
    const BrixRun errors = run_brix({"-q", "-e2", "endless.vhd", "good.vhd"});
    EXPECT_EQ(errors.status, 1);
    EXPECT_TRUE(errors.text.ends_with("endless.vhd (line 3, col 1):  fault 3\n"
                                      "endless.vhd:  Abort:  (E46) Error limit (2) exceeded\n"))
        << errors.text;
    EXPECT_FALSE(process_exists(last_process()));
    const BrixRun warnings = run_brix({"-q", "-w1", "warnings.vhd", "good.vhd"});
    EXPECT_EQ(warnings.status, 1);
    EXPECT_TRUE(warnings.text.ends_with("Warning limit (1) exceeded\n")) << warnings.text;
    EXPECT_EQ(run_brix({"-q", "-w3", "warnings.vhd"}).status, 0);
}

TEST_F(Brix, ASignalEndsGhdlToo) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        OwnedHandle read_end;
        OwnedHandle write_end;
        ASSERT_FALSE(failed(make_pipe(read_end, write_end)));
        Process process;
        start_brix(process, {"-q", "errors.vhd", "endless.vhd"}, write_end.get());
        write_end.reset();
        // The fourth fault is told when the fifth is known, so GHDL runs by now.
        const std::string text = read_until(read_end.get(), "endless.vhd (line 4");
        ::kill(static_cast<pid_t>(process.id), signal);
        EXPECT_EQ(status_of(wait_for_process(process)), 1) << text;
        EXPECT_FALSE(process_exists(last_process()));
    }
}

TEST_F(Brix, EveryWayToFailHasItsStatusAndOneLine) {
    scratch.write("afile", "");
    scratch.write("bad.rsp", "@again.rsp");
    std::filesystem::create_symlink("nowhere", "dangling");
    struct Row {
        std::vector<const char*> words;
        int status;
    };
    const Row rows[] = {
        {{"-q"}, 2},
        {{"-q", "-zz", "good.vhd"}, 2},
        {{"@gone.rsp"}, 2},
        {{"@bad.rsp"}, 2},
        {{"@."}, 2},
        {{"-q", "-astd", "good.vhd"}, 5},
        {{"-q", "-aa/b", "good.vhd"}, 5},
        {{"-q", "-aafile", "good.vhd"}, 5},
        {{"-q", "-adangling", "good.vhd"}, 5},
        {{"-%bpipe1023", "good.vhd"}, 2},
    };
    for (const Row& row : rows) {
        const BrixRun result = run_brix(row.words);
        EXPECT_EQ(result.status, row.status) << row.words.back();
        EXPECT_EQ(std::count(result.text.begin(), result.text.end(), '\n'), 1) << result.text;
    }
    EXPECT_EQ(calls(), "");
    set_environment_variable("PATH", scratch.directory.c_str());
    EXPECT_EQ(run_brix({"-q", "good.vhd"}).status, 3);
}

TEST_F(Brix, ALibraryThatCannotBeWrittenEndsTheRun) {
    const BrixRun refused = run_brix({"-q", "library.vhd", "good.vhd"});
    EXPECT_EQ(refused.status, 4);
    EXPECT_EQ(refused.text, "Compiling 'library.vhd'\nlibrary.vhd:  cannot update library file "
                            "\"work/work-obj08.cf\"\n");
}

/// The environment's side of a run.
struct Environment {
    ChannelServer server;
    std::vector<std::string> texts;
    std::vector<std::int64_t> completions;
    std::string item;
    std::string close_at; ///< asks for the end when a text holds this
    bool answers = true;  ///< acknowledges the completion
    bool ended = false;
    ProcessEnd end;

    Environment() {
        server.events.context = this;
        server.events.poke = [](void* context, std::uint64_t connection, std::string_view,
                                std::string_view poke_item, std::span<const std::byte> data) {
            auto& self = *static_cast<Environment*>(context);
            self.item = poke_item;
            self.take(connection, {reinterpret_cast<const char*>(data.data()), data.size()});
            return k_poke_taken;
        };
        EXPECT_FALSE(failed(open_channel_server(server)));
    }
    void take(std::uint64_t connection, std::string_view data) {
        ASSERT_FALSE(data.empty());
        if (data[0] == '0') {
            ASSERT_EQ(data.back(), '\0');
            texts.emplace_back(data.substr(1, data.size() - 2));
            if (!close_at.empty() && texts.back().find(close_at) != std::string::npos)
                static_cast<void>(send_channel_message(connection, k_message_close, 0));
            return;
        }
        ASSERT_EQ(data[0], '1');
        ASSERT_EQ(data.size(), 5u);
        std::int64_t status = 0;
        for (std::size_t i = 0; i < 4; ++i)
            status |= std::int64_t{static_cast<unsigned char>(data[i + 1])} << (8 * i);
        completions.push_back(status);
        if (answers)
            static_cast<void>(send_channel_message(connection, k_message_completion_seen, 0));
    }
    void run(std::vector<const char*> words) {
        const std::string pipe = "-%bpipe" + std::to_string(server.address);
        words.insert(words.begin(), pipe.c_str());
        Process process;
        process.context = this;
        process.ended = [](void* context, ProcessEnd how) {
            static_cast<Environment*>(context)->ended = true;
            static_cast<Environment*>(context)->end = how;
        };
        start_brix(process, words, SystemHandle::none);
        const std::string own_item = std::to_string(process.id);
        while (!ended)
            run_turn(TurnWait::until_event);
        drain_channel_server(server);
        EXPECT_EQ(item, own_item);
    }
    [[nodiscard]] std::string all() const {
        std::string text;
        for (const std::string& packet : texts)
            text += packet;
        return text;
    }
};

TEST_F(Brix, TalksToTheEnvironment) {
    Environment environment;
    environment.run({"-q", "errors.vhd", "long.vhd", "good.vhd"});
    EXPECT_EQ(status_of(environment.end), 1);
    EXPECT_EQ(environment.completions, (std::vector<std::int64_t>{1}));
    int begun = 0;
    for (const std::string& text : environment.texts) {
        EXPECT_LE(text.size(), 1022u);
        const std::size_t compiling = text.find("Compiling '");
        if (compiling != std::string::npos) {
            EXPECT_EQ(compiling, 0u);
            ++begun;
        }
    }
    EXPECT_EQ(begun, 3);
    EXPECT_EQ(environment.all(), run_brix({"-q", "errors.vhd", "long.vhd", "good.vhd"}).text);
}

TEST_F(Brix, AFloodComesThroughTheChannel) {
    Environment environment;
    environment.run({"-q", "flood.vhd"});
    const std::string text = environment.all();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 20001);
    EXPECT_EQ(environment.completions, (std::vector<std::int64_t>{1}));
    // Lines are joined: far fewer packets than lines.
    EXPECT_LT(environment.texts.size(), 3000u);
}

TEST_F(Brix, AskedToCloseItEndsGhdlAndItself) {
    Environment environment;
    environment.close_at = "endless.vhd (line 4";
    environment.answers = false;
    environment.run({"-q", "endless.vhd", "good.vhd"});
    EXPECT_EQ(environment.completions, (std::vector<std::int64_t>{1}));
    EXPECT_FALSE(process_exists(last_process()));
    EXPECT_EQ(calls(), "-a endless.vhd; ");
}

TEST_F(Brix, ALostEnvironmentEndsGhdlToo) {
    OwnedHandle read_end;
    Process process;
    {
        Environment environment;
        const std::string pipe = "-%bpipe" + std::to_string(environment.server.address);
        start_brix(process, {pipe.c_str(), "-q", "endless.vhd"}, SystemHandle::none);
        while (environment.all().find("line 4") == std::string::npos)
            run_turn(TurnWait::until_event);
    }
    EXPECT_NE(status_of(wait_for_process(process)), 0);
    EXPECT_FALSE(process_exists(last_process()));
}

TEST_F(Brix, FaultsAndLimitsReachTheEnvironment) {
    Environment limited;
    limited.run({"-q", "-e1", "endless.vhd"});
    EXPECT_EQ(limited.completions, (std::vector<std::int64_t>{1}));
    EXPECT_TRUE(limited.all().ends_with("Error limit (1) exceeded\n"));
    EXPECT_FALSE(process_exists(last_process()));
    Environment mistaken;
    mistaken.run({"-zz"});
    EXPECT_EQ(mistaken.completions, (std::vector<std::int64_t>{2}));
    EXPECT_EQ(mistaken.all(), "BRIX:  Unknown switch '-zz'.\n");
    Environment reserved;
    reserved.run({"-q", "-aieee", "good.vhd"});
    EXPECT_EQ(reserved.completions, (std::vector<std::int64_t>{5}));
}

} // namespace
} // namespace pellux
