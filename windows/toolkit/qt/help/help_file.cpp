#include "windows/toolkit/qt/help/help_file.h"

#include "core/os/files.h"

#include <QFile>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QVariant>

#include <array>
#include <cstring>

namespace pellux {
namespace {

constexpr std::int64_t k_help_bytes_max = 64 * 1024 * 1024;

// Head of a database file, big-endian.
constexpr std::size_t k_head_size = 100;
constexpr char k_head_mark[] = "SQLite format 3"; ///< with its zero byte
constexpr std::size_t k_page_size_at = 16;        ///< 2 bytes; 1 stands for 65536
constexpr std::size_t k_versions_at = 18;         ///< of writing and of reading, a byte each
constexpr std::size_t k_page_count_at = 28;       ///< 4 bytes

QString first_value(const QSqlDatabase& database, const char* question) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    return query.exec(QLatin1String(question)) && query.next() ? query.value(0).toString()
                                                               : QString();
}

/// Views, triggers and virtual tables would run what the file says; no help file has them.
constexpr const char* k_foreign_parts =
    "SELECT count(*) FROM sqlite_master "
    "WHERE type NOT IN ('table', 'index') OR sql LIKE 'CREATE VIRTUAL%'";
constexpr const char* k_own_tables =
    "SELECT count(*) FROM sqlite_master WHERE name IN "
    "('NamespaceTable', 'FolderTable', 'FileNameTable', 'FileDataTable', 'ContentsTable', "
    "'IndexTable')";

} // namespace

/// A file that is as long as its head says. One in the journal mode that needs files beside it even
/// for reading is refused, since those would stay.
bool is_whole_database(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    File file;
    FileStat stat;
    std::array<std::byte, k_head_size> head;
    std::size_t got = 0;
    if (failed(open_file(file, {name.constData(), static_cast<std::size_t>(name.size())},
                         OpenMode::read)) ||
        failed(stat_open_file(file, stat)) || stat.size > k_help_bytes_max ||
        failed(read_at(file, 0, head, got)) || got != head.size() ||
        std::memcmp(head.data(), k_head_mark, sizeof k_head_mark) != 0)
        return false;
    const auto number = [&head](std::size_t at, std::size_t count) {
        std::int64_t value = 0;
        for (std::size_t i = at; i < at + count; ++i)
            value = value << 8 | std::to_integer<std::int64_t>(head[i]);
        return value;
    };
    const std::int64_t page_size =
        number(k_page_size_at, 2) == 1 ? 65536 : number(k_page_size_at, 2);
    return number(k_versions_at, 2) == 0x0101 &&
           number(k_page_count_at, 4) * page_size == stat.size;
}

bool is_help_file(const QString& path) {
    if (!is_whole_database(path))
        return false;
    const QString connection = QStringLiteral("pellux-help-check");
    bool is_book = false;
    {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), connection);
        database.setConnectOptions(QStringLiteral("QSQLITE_OPEN_READONLY"));
        database.setDatabaseName(path);
        is_book = database.open() && first_value(database, k_foreign_parts) == u"0" &&
                  first_value(database, k_own_tables) == u"6" &&
                  first_value(database, "PRAGMA quick_check(1)") == u"ok" &&
                  !first_value(database, "SELECT Name FROM NamespaceTable").isEmpty();
    }
    QSqlDatabase::removeDatabase(connection);
    return is_book;
}

} // namespace pellux
