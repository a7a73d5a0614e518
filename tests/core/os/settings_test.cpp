#include "core/os/settings.h"

#include "core/os/files.h"
#include "tests/core/os/temporary_directory.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <string>

namespace pellux {
namespace {

constexpr const char* k_file = "config/Velmora/Pellux.conf";

class Settings : public testing::Test {
protected:
    test::TemporaryDirectory directory_;
    test::ScopedVariable config_{"XDG_CONFIG_HOME", directory_.path("config").c_str()};

    static std::string read(std::string_view name) {
        std::array<char, 1000> into;
        std::string_view value;
        return read_setting(name, into, value) ? std::string(value) : "(none)";
    }
    static bool write(std::string_view name, std::string_view value) {
        const Setting setting{name, value};
        return write_settings({&setting, 1});
    }
    void put(std::string_view text) const { directory_.write(k_file, text); }
    [[nodiscard]] std::string text() const { return directory_.read(k_file); }
};

TEST_F(Settings, ValuesOfAnyBytesComeBack) {
    std::string every;
    for (int byte = 1; byte < 256; ++byte)
        every += static_cast<char>(byte);
    const std::string values[] = {"",
                                  " ",
                                  "  two  ",
                                  "\t x\t",
                                  "line\nend\r\n",
                                  "C:\\new\\temp",
                                  "\\",
                                  "\\s",
                                  "a = b; # [c]",
                                  "\"quoted\"",
                                  "Gr\xC3\xBC\xDF",
                                  every,
                                  "trailing\\",
                                  "1 2 3 4",
                                  "\n"};
    for (const std::string& value : values) {
        ASSERT_TRUE(write("Position", value));
        EXPECT_EQ(read("Position"), value);
        EXPECT_TRUE(write("Other", "x"));
        EXPECT_EQ(read("pOSITION"), value);
    }
}

TEST_F(Settings, ReadsLinesWrittenByHand) {
    const struct {
        const char *text, *value;
    } rows[] = {{"Name=x", "x"},
                {"  name \t= x y \t\n", "x y"},
                {"NAME=x\r\n", "x"},
                {"; Name=no\n#Name=no\n[Name=no]\nName=yes\nName=second\n", "yes"},
                {"Name=a\\nb\\qc\\\n", "a\nb\\qc\\"},
                {"Names=x\nNam=y\n=z\nName\n", "(none)"},
                {"Name=\n", ""},
                {"Name= a=b\n", "a=b"},
                {"", "(none)"}};
    for (const auto& row : rows) {
        put(row.text);
        EXPECT_EQ(read("Name"), row.value) << row.text;
    }
}

TEST_F(Settings, OtherLinesStayAsTheyAre) {
    const struct {
        const char *before, *after; ///< setting "B" to "new" and "D" to "4"
    } rows[] = {
        {"; c\r\nA=1\r\n\r\nb = 2\r\nnonsense\n  C = 3\n",
         "; c\r\nA=1\r\n\r\nB=new\r\nnonsense\n  C = 3\nD=4\n"},
        {"[x]\nB=1\nb=2\nA=\\q", "[x]\nB=new\nA=\\q\nD=4\n"},
        {"d=1\nB=1", "D=4\nB=new\n"},
        {"", "B=new\nD=4\n"},
    };
    for (const auto& row : rows) {
        put(row.before);
        const Setting settings[] = {{"B", "old"}, {"D", "4"}, {"B", "new"}};
        ASSERT_TRUE(write_settings(settings));
        const bool later_first = std::string_view(row.before).empty();
        EXPECT_EQ(text(), later_first ? "D=4\nB=new\n" : row.after);
    }
}

TEST_F(Settings, MakesItsDirectoriesForTheUserAlone) {
    EXPECT_EQ(read("A"), "(none)");
    EXPECT_FALSE(file_exists(directory_.path("config")));
    ASSERT_TRUE(write("A", "1"));
    for (const char* made : {"config", "config/Velmora"}) {
        FileStat stat;
        ASSERT_FALSE(failed(stat_file(directory_.path(made), stat)));
        EXPECT_EQ(stat.mode, 0700U) << made;
    }
    EXPECT_EQ(directory_.names("config/Velmora"), std::set<std::string>{"Pellux.conf"});
}

TEST_F(Settings, ValuesThatAreTooLongAreNotCut) {
    ASSERT_TRUE(write("A", "12\n45"));
    std::array<char, 5> into;
    std::string_view value;
    EXPECT_TRUE(read_setting("A", into, value));
    EXPECT_EQ(value, "12\n45");
    EXPECT_FALSE(read_setting("A", std::span(into).first(4), value));
}

TEST_F(Settings, RefusesWhatCannotBeWritten) {
    put("A=1\n");
    for (const std::string_view name :
         {std::string_view(""), std::string_view("a=b"), std::string_view("a\nb"),
          std::string_view("a\rb"), std::string_view("a\0b", 3), std::string_view(" a"),
          std::string_view("a\t"), std::string_view("#a"), std::string_view(";a"),
          std::string_view("[a")})
        EXPECT_FALSE(write(name, "x")) << name;
    EXPECT_FALSE(write("A", std::string_view("x\0y", 3)));
    EXPECT_FALSE(write("B", std::string(k_settings_file_max - 6, 'x')));
    EXPECT_EQ(text(), "A=1\n");
    EXPECT_TRUE(write("B", std::string(k_settings_file_max - 7, 'x')));
    EXPECT_EQ(text().size(), k_settings_file_max);
    EXPECT_EQ(read("A"), "1");
    EXPECT_FALSE(write("C", ""));
    EXPECT_EQ(read("A"), "1");
}

TEST_F(Settings, ADamagedFileIsMovedAside) {
    const std::string damaged[] = {"A=1\n" + std::string(k_settings_file_max, 'x'),
                                   std::string("A=1\n\0", 5)};
    std::string aside = "config/Velmora/Pellux.conf.damaged1";
    for (const std::string& bytes : damaged) {
        put(bytes);
        EXPECT_EQ(read("A"), "(none)");
        ASSERT_TRUE(write("B", "2"));
        EXPECT_EQ(text(), "B=2\n");
        EXPECT_EQ(directory_.read(aside), bytes);
        ++aside.back();
    }
    for (; aside.back() <= '9'; ++aside.back())
        directory_.write(aside, "");
    put(damaged[1]);
    EXPECT_FALSE(write("B", "2"));
    EXPECT_EQ(text(), damaged[1]);
}

TEST_F(Settings, AFailedWritingLeavesTheOldFile) {
    for (const std::string& old : {std::string("A=1\n"), std::string("A=1\n\0", 5)}) {
        put(old);
        set_file_fault_hook(
            [](void*, FileOperation operation, std::string_view, std::size_t&) {
                return operation == FileOperation::write ? SystemError{ENOSPC} : SystemError::none;
            },
            nullptr);
        EXPECT_FALSE(write("A", "2"));
        set_file_fault_hook(nullptr, nullptr);
        EXPECT_EQ(text(), old);
        EXPECT_EQ(directory_.names("config/Velmora"), std::set<std::string>{"Pellux.conf"});
    }
}

TEST_F(Settings, AFileThatCannotBeReadIsNotReplaced) {
    put("A=1\n");
    for (const FileOperation broken : {FileOperation::open, FileOperation::read}) {
        FileOperation operation = broken;
        set_file_fault_hook(
            [](void* context, FileOperation asked, std::string_view, std::size_t&) {
                return asked == *static_cast<FileOperation*>(context) ? SystemError{EIO}
                                                                      : SystemError::none;
            },
            &operation);
        EXPECT_EQ(read("A"), "(none)");
        EXPECT_FALSE(write("B", "2"));
        set_file_fault_hook(nullptr, nullptr);
        EXPECT_EQ(text(), "A=1\n");
    }
    std::filesystem::remove(directory_.path(k_file));
    std::filesystem::create_directory(directory_.path(k_file));
    EXPECT_EQ(read("A"), "(none)");
    EXPECT_FALSE(write("B", "2"));
    EXPECT_TRUE(std::filesystem::is_directory(directory_.path(k_file)));
}

TEST_F(Settings, AFileCutAnywhereIsStillRead) {
    const std::string whole = "; c\r\nLong = a\\\\b\\n\r\nLong2=\\s x\\s\nA=1\n";
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        put(whole.substr(0, size));
        EXPECT_TRUE(write("New", "n")) << size;
        EXPECT_EQ(read("New"), "n") << size;
        EXPECT_EQ(text().substr(0, size), whole.substr(0, size));
        EXPECT_EQ(read("A"), size >= whole.size() - 1   ? "1"
                             : size == whole.size() - 2 ? ""
                                                        : "(none)");
    }
}

TEST_F(Settings, ALinkedFileStaysALink) {
    directory_.write("dotfiles/pellux", "A=1\n");
    std::filesystem::create_directories(directory_.path("config/Velmora"));
    std::filesystem::create_symlink("../../dotfiles/pellux", directory_.path(k_file));
    ASSERT_TRUE(write("A", "2"));
    EXPECT_TRUE(std::filesystem::is_symlink(directory_.path(k_file)));
    EXPECT_EQ(directory_.read("dotfiles/pellux"), "A=2\n");
}

} // namespace
} // namespace pellux
