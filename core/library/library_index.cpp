#include "core/library/library_index.h"

#include "core/library/index_error.h"
#include "core/os/files.h"

#include <sqlite3.h>

namespace pellux {
namespace {

int bind(sqlite3_stmt* statement, int place, std::string_view text) {
    // A null pointer would be bound as no text at all. The text outlives the step.
    return sqlite3_bind_text64(statement, place, text.data() == nullptr ? "" : text.data(),
                               text.size(), SQLITE_STATIC, SQLITE_UTF8);
}

/// Bytes of a column of the present row; they last until the statement is reset.
std::string_view column(sqlite3_stmt* statement, int number) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, number));
    const int length = sqlite3_column_bytes(statement, number);
    return text == nullptr ? std::string_view()
                           : std::string_view(text, static_cast<std::size_t>(length));
}

void leave_place(LibraryIndex& index) {
    index.has_place = false;
    index.has_record = false;
}

/// Moves to the row that `statement` answers for `key`.
std::int64_t move_to(LibraryIndex& index, sqlite3_stmt* statement, std::string_view key) {
    int code = bind(statement, 1, key);
    if (code == SQLITE_OK)
        code = sqlite3_step(statement);
    leave_place(index);
    if (code == SQLITE_ROW) {
        index.key = column(statement, 0);
        index.record = column(statement, 1);
        const bool is_sound = !index.key.empty() && index.record.starts_with(view(index.key));
        index.has_place = is_sound;
        index.has_record = is_sound;
        if (!is_sound)
            code = SQLITE_CORRUPT;
    }
    if (code != SQLITE_ROW && code != SQLITE_DONE)
        index.error = index_error(index.database.get(), code);
    sqlite3_reset(statement);
    if (index.has_record)
        return static_cast<std::int64_t>(index.record.size());
    return code == SQLITE_DONE ? 0 : -1;
}

bool carry_out(LibraryIndex& index, sqlite3_stmt* statement) {
    // Outside a transaction, which a failure may have ended, half of the changes would last.
    if (sqlite3_get_autocommit(index.database.get()) != 0)
        return false;
    const int code = sqlite3_step(statement);
    if (code != SQLITE_DONE)
        index.error = index_error(index.database.get(), code);
    sqlite3_reset(statement);
    return code == SQLITE_DONE;
}

bool run(LibraryIndex& index, const char* statement) {
    const int code = sqlite3_exec(index.database.get(), statement, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        index.error = index_error(index.database.get(), code);
    return code == SQLITE_OK;
}

void end_connection(LibraryIndex& index) {
    index.seek.reset();
    index.step.reset();
    index.insert.reset();
    index.remove.reset();
    index.database.reset();
}

/// Gives a new index its place. The journal of the old one would be taken for its own.
bool take_place(LibraryIndex& index) {
    end_connection(index);
    const String journal = index.replaced + "-journal";
    SystemError error = SystemError::none;
    if (file_exists(view(journal))) {
        error = remove_file(view(index.replaced));
        if (!failed(error) || is_missing(error))
            error = remove_file(view(journal));
    }
    if (!failed(error))
        error = rename_file(view(index.temporary), view(index.replaced));
    if (!failed(error))
        index.temporary.clear();
    close_index(index);
    index.error = error;
    return !failed(error);
}

} // namespace

void IndexClose::operator()(sqlite3* database) const {
    sqlite3_close_v2(database);
}

void IndexClose::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

void close_index(LibraryIndex& index) {
    end_connection(index);
    if (!index.temporary.empty())
        static_cast<void>(remove_file(view(index.temporary)));
    index = {};
}

std::int64_t seek_record(LibraryIndex& index, std::string_view start) {
    const std::int64_t length = move_to(index, index.seek.get(), start);
    if (length <= 0 || view(index.key).starts_with(start))
        return length;
    leave_place(index);
    return 0;
}

std::int64_t next_record(LibraryIndex& index) {
    if (!index.has_place)
        return 0;
    // The place's key is written while the old one is still bound.
    const String key = index.key;
    return move_to(index, index.step.get(), view(key));
}

std::int64_t read_record(const LibraryIndex& index, String& record) {
    record = index.has_record ? index.record : String();
    return static_cast<std::int64_t>(record.size());
}

bool begin_changes(LibraryIndex& index) {
    // A connection that only reads would begin well and fail at the first change.
    if (sqlite3_db_readonly(index.database.get(), "main") != 0) {
        index.error = index_error(index.database.get(), SQLITE_READONLY);
        return false;
    }
    return run(index, "BEGIN IMMEDIATE");
}

bool commit_changes(LibraryIndex& index) {
    if (sqlite3_get_autocommit(index.database.get()) != 0)
        return false;
    if (run(index, "COMMIT"))
        return index.temporary.empty() || take_place(index);
    const SystemError error = index.error;
    undo_changes(index);
    index.error = error;
    return false;
}

void undo_changes(LibraryIndex& index) {
    leave_place(index);
    if (index.database != nullptr && sqlite3_get_autocommit(index.database.get()) == 0)
        run(index, "ROLLBACK");
}

bool insert_record(LibraryIndex& index, std::string_view key, std::string_view record) {
    if (key.empty() || record.size() > k_index_record_max || !record.starts_with(key)) {
        index.error = refuse(Refusal::bad_path);
        return false;
    }
    sqlite3_stmt* statement = index.insert.get();
    return bind(statement, 1, key) == SQLITE_OK && bind(statement, 2, record) == SQLITE_OK &&
           carry_out(index, statement);
}

bool delete_record(LibraryIndex& index) {
    if (!index.has_record)
        return false;
    sqlite3_stmt* statement = index.remove.get();
    if (bind(statement, 1, view(index.key)) != SQLITE_OK || !carry_out(index, statement))
        return false;
    index.has_record = false;
    return sqlite3_changes(index.database.get()) == 1;
}

} // namespace pellux
