#include "core/os/settings.h"

#include "tests/support/file_faults.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

#include <array>
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
    for (const std::string& value :
         {std::string(), std::string(" "), std::string("  two  "), std::string("\t x\t"),
          std::string("\\s"), std::string("C:\\new\\"), std::string("a = b; # [c]\r\n"), every}) {
        ASSERT_TRUE(write("Position", value));
        EXPECT_EQ(read("Position"), value);
        EXPECT_TRUE(write("Other", "x"));
        EXPECT_EQ(read("pOSITION"), value);
    }
    std::array<char, 255> into;
    std::string_view value;
    EXPECT_TRUE(read_setting("Position", into, value));
    EXPECT_FALSE(read_setting("Position", std::span(into).first(254), value)) << "cut";
}

TEST_F(Settings, ReadsLinesWrittenByHand) {
    const struct {
        const char *text, *value;
    } rows[] = {{"  name \t= x y \t\n", "x y"},
                {"NAME=x\r\n", "x"},
                {"; Name=no\n#Name=no\n[Name=no]\nName=yes\nName=second\n", "yes"},
                {"Name=a\\nb\\qc\\\n", "a\nb\\qc\\"},
                {"Names=x\nNam=y\n=z\nName\n", "(none)"},
                {"Name= a=b", "a=b"}};
    for (const auto& row : rows) {
        put(row.text);
        EXPECT_EQ(read("Name"), row.value) << row.text;
    }
}

TEST_F(Settings, OtherLinesStayAsTheyAre) {
    const struct {
        const char *before, *after; ///< setting "B" to "new" and "D" to "4"
    } rows[] = {{"; c\r\nA=1\r\n\r\nb = 2\r\nnonsense\n  C = 3\n",
                 "; c\r\nA=1\r\n\r\nB=new\r\nnonsense\n  C = 3\nD=4\n"},
                {"[x]\nB=1\nb=2\nA=\\q", "[x]\nB=new\nA=\\q\nD=4\n"},
                {"d=1\nB=1", "D=4\nB=new\n"},
                {"", "D=4\nB=new\n"}};
    for (const auto& row : rows) {
        put(row.before);
        const Setting settings[] = {{"B", "old"}, {"D", "4"}, {"B", "new"}};
        ASSERT_TRUE(write_settings(settings));
        EXPECT_EQ(text(), row.after);
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

TEST_F(Settings, RefusesWhatCannotBeWritten) {
    put("A=1\n");
    for (const std::string& name : {std::string(), std::string("a=b"), std::string("a\nb"),
                                    std::string("a\0b", 3), std::string(" a"), std::string("a\t"),
                                    std::string("#a"), std::string(";a"), std::string("[a")})
        EXPECT_FALSE(write(name, "x")) << name;
    EXPECT_FALSE(write("A", std::string_view("x\0y", 3)));
    EXPECT_FALSE(write("B", std::string(k_settings_file_max - 6, 'x')));
    EXPECT_EQ(text(), "A=1\n");
    EXPECT_TRUE(write("B", std::string(k_settings_file_max - 7, 'x')));
    EXPECT_EQ(text().size(), k_settings_file_max);
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

TEST_F(Settings, AFileThatCannotBeReadOrWrittenStays) {
    for (const FileOperation broken :
         {FileOperation::open, FileOperation::read, FileOperation::write})
        for (const std::string& old : {std::string("A=1\n"), std::string("A=1\n\0", 5)}) {
            put(old);
            const test::FileFaults faults(broken, EIO);
            EXPECT_TRUE(broken == FileOperation::write || read("A") == "(none)");
            EXPECT_FALSE(write("B", "2"));
            EXPECT_EQ(text(), old);
            EXPECT_EQ(directory_.names("config/Velmora"), std::set<std::string>{"Pellux.conf"});
        }
    std::filesystem::remove(directory_.path(k_file));
    std::filesystem::create_directory(directory_.path(k_file));
    EXPECT_FALSE(write("B", "2"));
    EXPECT_TRUE(std::filesystem::is_directory(directory_.path(k_file)));
}

} // namespace
} // namespace pellux
