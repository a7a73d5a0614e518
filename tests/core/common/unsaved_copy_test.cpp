#include "core/common/run_register.h"
#include "core/common/unsaved_copy.h"
#include "core/os/process.h"
#include "tests/support/forked.h"
#include "tests/support/temporary_directory.h"

#include <gtest/gtest.h>

namespace pellux {
namespace {

namespace fs = std::filesystem;

class UnsavedCopies : public testing::Test {
protected:
    test::TemporaryDirectory directory_;
    test::ScopedVariable state_{"XDG_STATE_HOME", directory_.path("state").c_str()};

    [[nodiscard]] ContentSum sum_of(const std::string& text) const {
        ContentSum sum;
        EXPECT_FALSE(failed(sum_file(directory_.write("summed", text), sum)));
        return sum;
    }
    /// The copy is so many seconds younger than the file.
    void put(const char* file, const char* copy, int seconds) const {
        directory_.write("a.vhd", file);
        directory_.write("peltmp/a.vhd", copy);
        const fs::file_time_type time = fs::last_write_time(directory_.path("a.vhd"));
        fs::last_write_time(directory_.path("peltmp/a.vhd"), time + std::chrono::seconds(seconds));
    }
};

TEST_F(UnsavedCopies, AreOfferedAsTimesAndBasesSay) {
    struct Row {
        const char* file;
        const char* copy;
        int seconds;
        const char* base; ///< what the file was; null: there is none
        bool is_saved;
        CopyState state;
    };
    using enum CopyState;
    const std::string file = directory_.path("a.vhd");
    const String copy = copy_beside(file);
    EXPECT_EQ(look_at_copy(file, view(copy)), none);
    for (const Row& row :
         {Row{"file", "copy", 1, nullptr, false, newer}, Row{"file", "copy", 0, "file", false, old},
          Row{"file", "copy", -1, nullptr, false, old}, Row{"file", "copy", -1, "file", true, old},
          Row{"file", "copy", -1, "file", false, newer},
          Row{"file", "copy", -1, "other", false, beside_changed},
          Row{"file", "copy", -1, "other", true, beside_changed},
          Row{"same", "same", -1, "other", false, old}}) {
        put(row.file, row.copy, row.seconds);
        if (row.base != nullptr)
            write_copy_base(view(copy), sum_of(row.base), row.is_saved);
        EXPECT_EQ(look_at_copy(file, view(copy)), row.state) << row.file << ' ' << row.seconds;
        remove_copy(view(copy));
        EXPECT_FALSE(fs::exists(directory_.path("peltmp")));
    }
    // What is no base of ours says nothing, and stays.
    const std::string good = "pellux base 1\n" + std::string(32, '0') + " unsaved\n";
    for (std::size_t size = 0; size < good.size(); size += 5) {
        put("file", "copy", -1);
        directory_.write("peltmp/a.vhd.base", good.substr(0, size));
        EXPECT_EQ(look_at_copy(file, view(copy)), old) << size;
        write_copy_base(view(copy), {}, false);
        EXPECT_EQ(directory_.read("peltmp/a.vhd.base"), good.substr(0, size));
    }
    fs::remove(file);
    EXPECT_EQ(look_at_copy(file, view(copy)), newer);
    // A directory that leads elsewhere: the copy's name is the file's own there.
    fs::remove_all(directory_.path("peltmp"));
    directory_.write("a.vhd", "file");
    fs::create_directory_symlink(".", directory_.path("peltmp"));
    EXPECT_FALSE(prepare_copy(view(copy)));
    EXPECT_EQ(look_at_copy(file, view(copy)), none);
    remove_copy(view(copy));
    EXPECT_EQ(directory_.read("a.vhd"), "file");
    // A copy that is the file by another name.
    fs::remove(directory_.path("peltmp"));
    EXPECT_TRUE(prepare_copy(view(copy)));
    fs::create_hard_link(file, copy.c_str());
    EXPECT_TRUE(prepare_copy(view(copy)));
    EXPECT_FALSE(fs::exists(copy.c_str()));
    EXPECT_EQ(directory_.read("a.vhd"), "file");
    // The text of a private file is nobody's else in the copy.
    fs::permissions(file, fs::perms::owner_all);
    EXPECT_EQ(copy_permissions(file), 0600U);
}

TEST_F(UnsavedCopies, AreKnownToOtherProgramsAndAfterACrash) {
    const std::string odd = directory_.write("a %\n.vhd", "");
    const String beside = copy_beside(odd, current_process_id());
    const String apart = copy_apart(odd);
    const auto begin = [&] {
        begin_register();
        note_opened(odd);
        note_opened("/closed");
        note_closed("/closed");
        for (int i = 0; i < 2; ++i)
            note_copy({CopyKind::text, String(odd), beside});
        note_copy({CopyKind::project, {}, apart});
        note_copy({CopyKind::text, {}, String("/elsewhere/copy")});
        note_copy({CopyKind::text, {}, copy_of_no_file()});
        note_copy_gone(view(copy_of_no_file()));
        return true;
    };
    begin();
    fs::create_symlink(odd, directory_.path("link"));
    const std::int64_t own = current_process_id();
    EXPECT_EQ(find_other_program(odd), 0);
    EXPECT_EQ(test::run_forked([&] {
                  begin_register();
                  return find_other_program(odd) == own && find_other_program("/closed") == 0 &&
                         find_other_program(directory_.path("link")) == own &&
                         take_left_registers().empty();
              }),
              1);
    note_copy_gone(view(beside));
    note_copy_gone(view(apart));
    note_copy_gone("/elsewhere/copy");
    end_register();
    EXPECT_TRUE(take_left_registers().empty());
    EXPECT_TRUE(fs::is_empty(directory_.path("state/pellux/running")));
    EXPECT_TRUE(test::run_and_kill(begin));
    EXPECT_EQ(find_other_program(odd), 0) << "it has crashed";
    // Its last note was cut off.
    const auto left_by_it = fs::directory_iterator(directory_.path("state/pellux/running"))->path();
    std::ofstream(left_by_it, std::ios::app) << "drop " << beside.c_str();
    Vector<LeftRegister> left = take_left_registers();
    ASSERT_EQ(left.size(), 1);
    ASSERT_EQ(left[0].copies.size(), 2);
    EXPECT_EQ(left[0].copies[0].file, odd.c_str());
    EXPECT_EQ(left[0].copies[0].copy, beside);
    EXPECT_EQ(left[0].copies[1].kind, CopyKind::project);
    EXPECT_TRUE(take_left_registers().empty()) << "each is offered by one program";
    drop_left_copy(left[0], view(beside));
    left.clear();
    left = take_left_registers();
    ASSERT_EQ(left.size(), 1);
    EXPECT_EQ(left[0].copies.size(), 1);
    drop_left_copy(left[0], view(apart));
    EXPECT_FALSE(fs::exists(left_by_it));
}

} // namespace
} // namespace pellux
