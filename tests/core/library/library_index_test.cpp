#include "core/library/library_index.h"

#include "tests/core/library/index_contents.h"
#include "tests/support/file_faults.h"
#include "tests/support/forked.h"
#include "tests/support/scratch.h"

#include <gtest/gtest.h>

#include <sqlite3.h>

#include <map>
#include <random>

#include <sys/resource.h>

namespace pellux {
namespace {

namespace fs = std::filesystem;

const Records k_old{"0001a@a.vhd"};

/// Works in a directory with an index of one record.
class Index : public testing::Test {
protected:
    Index() {
        EXPECT_EQ(open_index(index, "", IndexMode::create), IndexStatus::opened);
        EXPECT_TRUE(begin_changes(index) && insert_record(index, "0001a@", "0001a@a.vhd") &&
                    commit_changes(index));
        close_index(index);
        whole = scratch.read("index");
    }
    void run_sql(const char* sql) const {
        sqlite3* database = nullptr;
        EXPECT_EQ(sqlite3_open(scratch.path("index").c_str(), &database), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(database, sql, nullptr, nullptr, nullptr), SQLITE_OK) << sql;
        sqlite3_close(database);
    }
    IndexStatus read() { return open_index(index, "", IndexMode::read, 0); }

    Scratch scratch;
    LibraryIndex index;
    std::string whole; ///< the file's bytes
};

/// Enough of them change every page and fill SQLite's cache, so that some are written early.
bool insert_many(LibraryIndex& index, int count) {
    bool succeeded = true;
    for (int i = 0; i < count && succeeded; ++i) {
        const std::string key = std::to_string(i * 7919 % 10007) + std::string(300, 'k');
        succeeded = insert_record(index, key, key);
    }
    return succeeded;
}

TEST_F(Index, DoesWhatAnOrderedMapDoes) {
    const unsigned seed = std::random_device{}();
    std::mt19937 random(seed);
    const std::string alphabet("ab@'\"%_\0\x80\xFF", 10);
    const auto text = [&](std::size_t least) {
        std::string result;
        for (std::size_t i = least + random() % 4; i > 0; --i)
            result += alphabet[random() % alphabet.size()];
        return result;
    };
    std::map<std::string, std::string> model{{"0001a@", "0001a@a.vhd"}};
    std::map<std::string, std::string> committed = model;
    std::string place;
    bool has_place = false;
    const auto check_move = [&](std::int64_t length, auto found, const std::string& start) {
        has_place = found != model.end() && found->first.starts_with(start);
        ASSERT_EQ(length, has_place ? static_cast<std::int64_t>(found->second.size()) : 0);
        String record;
        ASSERT_EQ(read_record(index, record), length);
        ASSERT_EQ(view(record), has_place ? found->second : "");
        if (has_place)
            place = found->first;
    };
    ASSERT_EQ(open_index(index, "", IndexMode::update), IndexStatus::opened);
    ASSERT_TRUE(begin_changes(index));
    for (int i = 0; i < 20'000 && !HasFailure(); ++i) {
        SCOPED_TRACE("seed " + std::to_string(seed) + ", step " + std::to_string(i));
        const auto choice = random() % 100;
        if (choice < 25) {
            const std::string key = text(1);
            ASSERT_TRUE(insert_record(index, key, model[key] = key + text(0)));
        } else if (choice < 55) {
            const std::string start = text(0);
            check_move(seek_record(index, start), model.lower_bound(start), start);
        } else if (choice < 75) {
            check_move(next_record(index), has_place ? model.upper_bound(place) : model.end(), "");
        } else if (choice < 97) {
            String record;
            const bool is_there = read_record(index, record) > 0;
            ASSERT_EQ(delete_record(index), is_there);
            ASSERT_FALSE(delete_record(index));
            ASSERT_EQ(model.erase(is_there ? place : ""), is_there ? 1u : 0u);
        } else {
            if (choice == 97)
                undo_changes(index);
            else
                ASSERT_TRUE(commit_changes(index));
            (choice == 97 ? model : committed) = choice == 97 ? committed : model;
            if (choice == 99) {
                ASSERT_EQ(open_index(index, "", IndexMode::update), IndexStatus::opened);
            }
            has_place = false;
            ASSERT_EQ(seek_record(index, "no such"), 0);
            ASSERT_FALSE(insert_record(index, "a", "a")) << "changes were not begun";
            ASSERT_TRUE(begin_changes(index));
        }
    }
    const std::string longest(k_index_record_max, 'a');
    ASSERT_TRUE(insert_record(index, longest, longest));
    ASSERT_FALSE(insert_record(index, "a", longest + "a"));
    ASSERT_FALSE(insert_record(index, "", "a"));
    ASSERT_FALSE(insert_record(index, "ab", "ac"));
}

TEST_F(Index, WhatIsNoneOfOursIsToldApart) {
    run_sql("INSERT INTO records VALUES('0002b@', 'of another key')");
    ASSERT_EQ(read(), IndexStatus::opened);
    EXPECT_EQ(contents(index), (Records{"0001a@a.vhd", "(unreadable)"}));
    std::string disordered = scratch.read("index");
    disordered.replace(disordered.find("0001a@"), 6, "0003c@");
    const struct {
        const char* sql; ///< run on a whole index; null: the bytes are the file
        std::string bytes;
        IndexStatus status;
    } rows[] = {
        {"PRAGMA user_version=2", "", IndexStatus::other_version},
        {"PRAGMA application_id=0", "", IndexStatus::other_version},
        {"PRAGMA journal_mode=WAL", "", IndexStatus::other_version},
        {"CREATE TABLE more(a)", "", IndexStatus::damaged},
        {"CREATE VIEW more AS SELECT * FROM records", "", IndexStatus::damaged},
        {"DROP TABLE records", "", IndexStatus::damaged},
        {"DROP TABLE records; CREATE TABLE records(key, record)", "", IndexStatus::damaged},
        {nullptr, disordered, IndexStatus::damaged},
        {nullptr, "", IndexStatus::missing},
        {nullptr, "x", IndexStatus::damaged},
        {nullptr, std::string(5000, '\0'), IndexStatus::damaged},
        {nullptr, whole.substr(0, 4096) + std::string(4096, '\xFF'), IndexStatus::damaged},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.sql == nullptr ? row.bytes.substr(0, 10) : row.sql);
        scratch.write("index", row.sql == nullptr ? row.bytes : whole);
        if (row.sql != nullptr)
            run_sql(row.sql);
        const std::string bytes = scratch.read("index");
        EXPECT_EQ(read(), row.status);
        EXPECT_EQ(open_index(index, "", IndexMode::update), row.status);
        EXPECT_EQ(index.database, nullptr);
        EXPECT_EQ(scratch.read("index"), bytes);
        EXPECT_EQ(scratch.names(), std::set<std::string>{"index"});
        const auto put_record = [&] {
            return replace_index(index, "") == IndexStatus::opened && begin_changes(index) &&
                   insert_record(index, "0002b@", "0002b@b.vhd");
        };
        EXPECT_TRUE(put_record());
        undo_changes(index);
        close_index(index);
        EXPECT_EQ(scratch.read("index"), bytes);
        EXPECT_TRUE(put_record());
        scratch.write("index-journal", "left behind");
        EXPECT_TRUE(commit_changes(index));
        EXPECT_EQ(read(), IndexStatus::opened);
        EXPECT_EQ(contents(index), Records{"0002b@b.vhd"});
        EXPECT_EQ(scratch.names(), std::set<std::string>{"index"});
    }
}

TEST_F(Index, ItsPlaceIsJudged) {
    const struct {
        const char* directory;
        IndexMode mode;
        IndexStatus status;
    } rows[] = {
        {"none", IndexMode::read, IndexStatus::missing},
        {"none", IndexMode::update, IndexStatus::missing},
        {"none", IndexMode::create, IndexStatus::failed},
        {"index", IndexMode::read, IndexStatus::missing}, // a file in a directory's place
        {"taken", IndexMode::create, IndexStatus::failed},
        {"file:new?vfs=none", IndexMode::create, IndexStatus::opened},
    };
    fs::create_directories("taken/index");
    fs::create_directory("file:new?vfs=none");
    for (const auto& row : rows)
        EXPECT_EQ(open_index(index, row.directory, row.mode), row.status) << row.directory;
    EXPECT_TRUE(replace_index(index, "taken") == IndexStatus::opened && begin_changes(index));
    EXPECT_FALSE(commit_changes(index));
    EXPECT_TRUE(fs::remove("taken/index") && fs::remove("taken")) << "something was left";
    const test::FileFaults denied(
        [](FileOperation, std::string_view) { return SystemError{EACCES}; });
    EXPECT_EQ(read(), IndexStatus::denied);
    EXPECT_FALSE(replace_index(index, "") == IndexStatus::opened && begin_changes(index) &&
                 commit_changes(index));
    EXPECT_TRUE(is_denied(index.error));
    EXPECT_EQ(scratch.read("index"), whole);
}

TEST_F(Index, AReaderChangesNothingAndAWriterKeepsOthersOut) {
    ASSERT_EQ(read(), IndexStatus::opened);
    EXPECT_FALSE(begin_changes(index) && insert_record(index, "b", "b"));
    EXPECT_TRUE(is_denied(index.error));
    LibraryIndex writer;
    LibraryIndex second;
    ASSERT_EQ(open_index(second, "", IndexMode::update, 0), IndexStatus::opened);
    ASSERT_EQ(open_index(writer, "", IndexMode::update, 0), IndexStatus::opened);
    ASSERT_TRUE(begin_changes(writer) && insert_record(writer, "b", "b"));
    EXPECT_EQ(contents(index).size(), 1u) << "a change can be seen before it is committed";
    EXPECT_FALSE(begin_changes(second));
    EXPECT_TRUE(is_busy(second.error));
    ASSERT_TRUE(insert_many(writer, 10'000)); // pages are written, so that nobody may read
    EXPECT_EQ(seek_record(index, ""), -1);
    EXPECT_EQ(read(), IndexStatus::failed);
    EXPECT_TRUE(is_busy(index.error));
    EXPECT_TRUE(commit_changes(writer));
    ASSERT_EQ(read(), IndexStatus::opened);
    EXPECT_EQ(contents(index).size(), 10'002u);
}

TEST_F(Index, AKilledWriterLeavesTheOldRecords) {
    for (const bool has_written : {false, true}) {
        LibraryIndex own;
        ASSERT_TRUE(test::run_and_kill([&] {
            return open_index(own, "", IndexMode::update) == IndexStatus::opened &&
                   begin_changes(own) && seek_record(own, "0001a@") > 0 && delete_record(own) &&
                   insert_many(own, has_written ? 10'000 : 10);
        }));
        ASSERT_EQ(scratch.read("index") != whole, has_written);
        // Reading alone puts the file right.
        ASSERT_EQ(read(), IndexStatus::opened);
        EXPECT_EQ(contents(index), k_old);
        EXPECT_EQ(scratch.read("index"), whole);
    }
}

TEST_F(Index, AKilledMakerLeavesNone) {
    // Its first page is written, or only later ones are.
    for (const char* made : {"BEGIN; CREATE TABLE t(a); PRAGMA application_id=0x506C7849; "
                             "PRAGMA user_version=1",
                             "PRAGMA cache_size=1; BEGIN; CREATE TABLE t(a); "
                             "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE "
                             "i < 9999) INSERT INTO t SELECT randomblob(50) FROM n"}) {
        for (const IndexMode mode : {IndexMode::read, IndexMode::update}) {
            fs::remove("index");
            sqlite3* database = nullptr;
            ASSERT_TRUE(test::run_and_kill([&] {
                return sqlite3_open("index", &database) == SQLITE_OK &&
                       sqlite3_exec(database, made, nullptr, nullptr, nullptr) == SQLITE_OK &&
                       (made[0] == 'P' || sqlite3_db_cacheflush(database) == SQLITE_OK);
            }));
            ASSERT_GT(scratch.read("index").size(), 100u);
            EXPECT_EQ(open_index(index, "", mode), IndexStatus::missing) << made;
        }
    }
}

TEST_F(Index, NothingComesAfterAChangeThatFoundNoRoom) {
    make_size_limit_an_error();
    rlimit old{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &old), 0);
    // While records are put in, and when they are committed.
    for (const rlim_t room : {rlim_t{8192}, rlim_t{40'000}}) {
        ASSERT_EQ(open_index(index, "", IndexMode::update), IndexStatus::opened);
        const rlimit tight{room, old.rlim_max};
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tight), 0);
        EXPECT_FALSE(begin_changes(index) && insert_many(index, 100) && commit_changes(index));
        EXPECT_TRUE(is_out_of_room(index.error)) << room;
        EXPECT_FALSE(insert_record(index, "z", "z") && commit_changes(index));
        ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &old), 0);
        ASSERT_EQ(read(), IndexStatus::opened);
        EXPECT_EQ(contents(index), k_old);
    }
}

} // namespace
} // namespace pellux
