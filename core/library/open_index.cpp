#include "core/library/index_error.h"
#include "core/library/library_index.h"
#include "core/os/files.h"

#include <sqlite3.h>

#include <array>
#include <cstdio>
#include <cstring>

namespace pellux {
namespace {

constexpr const char* k_table = "CREATE TABLE records(key TEXT NOT NULL PRIMARY KEY, "
                                "record TEXT NOT NULL) STRICT, WITHOUT ROWID";
constexpr int k_application = 0x506C7849; // "PlxI"
constexpr int k_layout = 1;

using Database = std::unique_ptr<sqlite3, IndexClose>;

/// The status for an opening that ended with SQLite's `code`.
IndexStatus fail(LibraryIndex& index, int code) {
    index.error = index_error(index.database.get(), code);
    switch (code & 0xFF) {
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_TOOBIG:
    case SQLITE_ERROR: // of our own statements, so that the tables are not ours
        index.error = refuse(Refusal::damaged);
        return IndexStatus::damaged;
    default:
        return is_denied(index.error) ? IndexStatus::denied : IndexStatus::failed;
    }
}

int connect(Database& database, const PathBuffer& path, int flags, int wait_ms) {
    sqlite3* opened = nullptr;
    const int code = sqlite3_open_v2(path.c_str(), &opened,
                                     flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    // It must be closed even when it could not be opened.
    database.reset(opened);
    if (code == SQLITE_OK)
        sqlite3_busy_timeout(opened, wait_ms);
    return code;
}

/// Bytes of the file's head that SQLite does not judge as we need it. They are looked at before
/// SQLite does: a database with a write-ahead log would make it create files. Reading them by a
/// handle of our own would end the locks that this process has on the file.
IndexStatus check_head(LibraryIndex& index) {
    sqlite3_file* file = nullptr;
    std::array<unsigned char, 100> head{};
    int code = sqlite3_file_control(index.database.get(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    if (code == SQLITE_OK)
        code = file->pMethods->xRead(file, head.data(), static_cast<int>(head.size()), 0);
    constexpr std::array<unsigned char, 16> k_magic = {'S', 'Q', 'L', 'i', 't', 'e', ' ', 'f',
                                                       'o', 'r', 'm', 'a', 't', ' ', '3', 0};
    if (code == SQLITE_IOERR_SHORT_READ ||
        (code == SQLITE_OK && std::memcmp(head.data(), k_magic.data(), k_magic.size()) != 0))
        return fail(index, SQLITE_NOTADB);
    if (code != SQLITE_OK)
        return fail(index, code);
    const auto number_at = [&](std::size_t at) {
        return head[at] << 24 | head[at + 1] << 16 | head[at + 2] << 8 | head[at + 3];
    };
    const bool rolls_back = head[18] == 1 && head[19] == 1;
    const bool is_utf8 = number_at(56) == 1;
    return rolls_back && is_utf8 && number_at(60) == k_layout && number_at(68) == k_application
               ? IndexStatus::opened
               : IndexStatus::other_version;
}

int run(sqlite3* database, const char* statements) {
    return sqlite3_exec(database, statements, nullptr, nullptr, nullptr);
}

/// What is in the file is not trusted, and what a statement may ask for is bounded.
int restrain(sqlite3* database) {
    sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(database, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    // A row has the key and the record, and some bytes that tell their lengths.
    sqlite3_limit(database, SQLITE_LIMIT_LENGTH, static_cast<int>(2 * k_index_record_max + 100));
    // A small change takes 1 ms with this much care and hardly less with any less of it that
    // still flushes. Overwriting what was deleted with zeros is for secrets.
    return run(database, "PRAGMA synchronous=FULL; PRAGMA cell_size_check=ON; "
                         "PRAGMA secure_delete=OFF");
}

/// The disk is waited for when there are records too.
int make_table(sqlite3* database) {
    // Another program may have made it since we looked.
    const char* columns = k_table + std::strlen("CREATE TABLE");
    std::array<char, 300> statements;
    std::snprintf(statements.data(), statements.size(),
                  "PRAGMA synchronous=OFF; BEGIN IMMEDIATE; CREATE TABLE IF NOT EXISTS%s; PRAGMA "
                  "application_id=%d; "
                  "PRAGMA user_version=%d; COMMIT",
                  columns, k_application, k_layout);
    return run(database, statements.data());
}

/// Is the one row that `question` gives this text?
int expect(sqlite3* database, const char* question, std::string_view answer) {
    sqlite3_stmt* prepared = nullptr;
    int code = sqlite3_prepare_v2(database, question, -1, &prepared, nullptr);
    const std::unique_ptr<sqlite3_stmt, IndexClose> statement(prepared);
    if (code != SQLITE_OK)
        return code;
    code = sqlite3_step(prepared);
    if (code != SQLITE_ROW)
        return code == SQLITE_DONE ? SQLITE_CORRUPT : code;
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(prepared, 0));
    return text != nullptr && answer == text ? SQLITE_OK : SQLITE_CORRUPT;
}

int check_contents(sqlite3* database) {
    const int code = expect(database, "SELECT group_concat(sql, ';') FROM sqlite_schema", k_table);
    return code != SQLITE_OK ? code : expect(database, "PRAGMA integrity_check(1)", "ok");
}

int prepare(LibraryIndex& index) {
    const struct {
        std::unique_ptr<sqlite3_stmt, IndexClose>& statement;
        const char* text;
    } rows[] = {
        {index.seek, "SELECT key, record FROM records WHERE key >= ?1 ORDER BY key LIMIT 1"},
        {index.step, "SELECT key, record FROM records WHERE key > ?1 ORDER BY key LIMIT 1"},
        {index.insert, "INSERT OR REPLACE INTO records VALUES(?1, ?2)"},
        {index.remove, "DELETE FROM records WHERE key = ?1"},
    };
    for (const auto& row : rows) {
        sqlite3_stmt* prepared = nullptr;
        const int code = sqlite3_prepare_v3(index.database.get(), row.text, -1,
                                            SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
        if (code != SQLITE_OK)
            return code;
        row.statement.reset(prepared);
    }
    return SQLITE_OK;
}

/// Undoes what a writer left unfinished; a connection that only reads cannot.
int undo_unfinished(const PathBuffer& path, int wait_ms) {
    Database database;
    const int code = connect(database, path, SQLITE_OPEN_READWRITE, wait_ms);
    return code != SQLITE_OK ? code : run(database.get(), "SELECT 1 FROM sqlite_schema");
}

IndexStatus open_file_at(LibraryIndex& index, const PathBuffer& path, IndexMode mode, bool is_new,
                         int wait_ms) {
    const int flags = mode == IndexMode::read ? SQLITE_OPEN_READONLY
                      : is_new                ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE
                                              : SQLITE_OPEN_READWRITE;
    int code = connect(index.database, path, flags, wait_ms);
    if (code != SQLITE_OK)
        return fail(index, code);
    // SQLite is content with a file that it cannot write.
    if (mode != IndexMode::read && sqlite3_db_readonly(index.database.get(), "main") != 0)
        return fail(index, SQLITE_PERM);
    if (!is_new) {
        const IndexStatus head = check_head(index);
        if (head != IndexStatus::opened)
            return head;
    }
    sqlite3* database = index.database.get();
    // What nobody sees yet need not outlive us when it is undone.
    const bool is_unseen = !index.temporary.empty();
    if (is_unseen)
        code = run(database, "PRAGMA journal_mode=MEMORY");
    if (is_new && code == SQLITE_OK)
        code = make_table(database);
    if (code == SQLITE_OK)
        code = restrain(database);
    // Where a loss of power leaves holes in a file made at one go, it is found damaged.
    if (is_unseen && code == SQLITE_OK)
        code = run(database, "PRAGMA synchronous=OFF");
    if (code == SQLITE_OK)
        code = check_contents(database);
    if (code == SQLITE_READONLY_ROLLBACK) {
        if (undo_unfinished(path, wait_ms) != SQLITE_OK)
            return fail(index, SQLITE_CORRUPT);
        code = check_contents(database);
    }
    if (code == SQLITE_OK)
        code = prepare(index);
    return code == SQLITE_OK ? IndexStatus::opened : fail(index, code);
}

/// A relative path starts with a dot, so that SQLite takes none for a URI.
bool index_path(std::string_view directory, PathBuffer& path) {
    return path.assign(".") && path.join(directory) && path.join(k_index_file);
}

IndexStatus look_and_open(LibraryIndex& index, std::string_view directory, IndexMode mode,
                          int wait_ms) {
    PathBuffer path;
    FileStat stat;
    index.error =
        index_path(directory, path) ? stat_file(path.view(), stat) : refuse(Refusal::path_too_long);
    const bool is_new = is_missing(index.error) ||
                        (!failed(index.error) && stat.kind == FileKind::regular && stat.size == 0);
    if (is_new && mode != IndexMode::create)
        return IndexStatus::missing;
    if (!is_new && failed(index.error))
        return is_denied(index.error) ? IndexStatus::denied : IndexStatus::failed;
    index.error = SystemError::none;
    if (!is_new && stat.kind != FileKind::regular) {
        index.error =
            refuse(stat.kind == FileKind::directory ? Refusal::directory : Refusal::not_a_file);
        return IndexStatus::failed;
    }
    return open_file_at(index, path, mode, is_new, wait_ms);
}

/// A writer that ended while it made the file left a head that means nothing, or no table once
/// SQLite has undone what the journal tells. True when there is none of that any more.
bool undo_unfinished_making(std::string_view directory, int wait_ms) {
    PathBuffer path;
    PathBuffer journal;
    FileStat stat;
    if (!index_path(directory, path) || !journal.assign(path.view()) || !journal.append("-journal"))
        return false;
    if (file_exists(journal.view()))
        return undo_unfinished(path, wait_ms) == SQLITE_OK;
    return !failed(stat_file(path.view(), stat)) && stat.size == 0;
}

} // namespace

IndexStatus open_index(LibraryIndex& index, std::string_view directory, IndexMode mode,
                       int wait_ms) {
    close_index(index);
    IndexStatus status = look_and_open(index, directory, mode, wait_ms);
    if (status == IndexStatus::damaged || status == IndexStatus::other_version) {
        const SystemError error = index.error;
        close_index(index);
        index.error = error;
        if (undo_unfinished_making(directory, wait_ms))
            status = look_and_open(index, directory, mode, wait_ms);
    }
    if (status != IndexStatus::opened) {
        const SystemError error = index.error;
        close_index(index);
        index.error = error;
    }
    return status;
}

IndexStatus replace_index(LibraryIndex& index, std::string_view directory) {
    close_index(index);
    PathBuffer path;
    PathBuffer temporary;
    if (!index_path(directory, path) || !temporary_name(path.view(), temporary)) {
        index.error = refuse(Refusal::path_too_long);
        return IndexStatus::failed;
    }
    index.temporary = temporary.view();
    index.replaced = path.view();
    const IndexStatus status = open_file_at(index, temporary, IndexMode::create, true, 0);
    if (status != IndexStatus::opened) {
        const SystemError error = index.error;
        close_index(index);
        index.error = error;
    }
    return status;
}

} // namespace pellux
