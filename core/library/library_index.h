#pragma once

#include "core/common/containers.h"
#include "core/os/system_error.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace pellux {

inline constexpr std::string_view k_index_file = "index"; ///< in a library's directory
inline constexpr std::size_t k_index_record_max = 65536;  ///< bytes, of a key too
inline constexpr int k_index_wait_ms = 2000;              ///< for another program's change

enum class IndexMode {
    read,   ///< makes no file and needs no right to write
    update, ///< an index that exists
    create, ///< the same, made when it is missing, in a directory that exists
};

enum class IndexStatus {
    opened,
    missing,       ///< or of no byte: its making was cut off
    damaged,       ///< no database, not whole, or changed by others than these operations
    other_version, ///< a database of another layout, perhaps of another program
    denied,
    failed, ///< another program's change that took too long, a directory of that name, ...
};

// What ends SQLite's objects.
struct IndexClose {
    void operator()(sqlite3* database) const;
    void operator()(sqlite3_stmt* statement) const;
};

/// An open index: records in the order of their keys' bytes, and a place among them.
///
/// Every record begins with its key; no two keys are alike. What several programs change at the
/// same time, each changes as a whole. A change that did not come to its end, for a crash or a loss
/// of power, was never made. Single-threaded.
struct LibraryIndex {
    SystemError error = SystemError::none; ///< of the last call that failed

    // The index's own.
    std::unique_ptr<sqlite3, IndexClose> database;
    std::unique_ptr<sqlite3_stmt, IndexClose> seek;
    std::unique_ptr<sqlite3_stmt, IndexClose> step;
    std::unique_ptr<sqlite3_stmt, IndexClose> insert;
    std::unique_ptr<sqlite3_stmt, IndexClose> remove;
    String temporary;        ///< the file of one that replaces another
    String replaced;         ///< whose place it takes
    String key;              ///< of the place
    String record;           ///< at the place
    bool has_place = false;  ///< `next_record` goes on from `key`
    bool has_record = false; ///< it was not deleted
};

/// Opens the index in `directory`. `error` says what went wrong in all statuses but `opened`,
/// `missing` and `other_version`. `wait_ms` is the time for which this and every later call waits
/// for another program.
[[nodiscard]] IndexStatus open_index(LibraryIndex& index, std::string_view directory,
                                     IndexMode mode, int wait_ms = k_index_wait_ms);
/// Opens a new empty index that `commit_changes` puts in the place of whatever lies there, and then
/// closes. Until then others see the old one, and undoing the changes or closing drops the new one.
[[nodiscard]] IndexStatus replace_index(LibraryIndex& index, std::string_view directory);
/// Nothing when it is closed. Changes that were not committed are undone.
void close_index(LibraryIndex& index);

// Seeking and stepping answer the length of the record found, 0 when there is none, -1 when it
// could not be read.

/// Goes to the first record whose key begins with `start`.
std::int64_t seek_record(LibraryIndex& index, std::string_view start);
/// Goes to the next record in key order, also from one that was deleted.
std::int64_t next_record(LibraryIndex& index);
/// The record at the place, and its length; 0 and an empty text when there is none.
std::int64_t read_record(const LibraryIndex& index, String& record);

// Changes are made between a `begin_changes` and a `commit_changes`. All of these answer false when
// they fail; what fails for want of room or by the disk may end the changes, and then all that
// follow fail as well.

/// False also when another program changes the index and goes on for longer than we wait.
[[nodiscard]] bool begin_changes(LibraryIndex& index);
/// Makes the changes since `begin_changes` last, or undoes them all.
[[nodiscard]] bool commit_changes(LibraryIndex& index);
void undo_changes(LibraryIndex& index); ///< nothing when there are none

/// Adds a record or replaces the one of that key. The place stays.
[[nodiscard]] bool insert_record(LibraryIndex& index, std::string_view key,
                                 std::string_view record);
/// Deletes the record at the place.
[[nodiscard]] bool delete_record(LibraryIndex& index);

} // namespace pellux
