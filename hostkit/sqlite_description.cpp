#include "hostkit/sqlite_description.h"

#include <sqlite3.h>

#include <QDir>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlResult>
#include <QUrl>
#include <algorithm>
#include <cctype>
#include <thread>

#include "hostkit/connection_pool.h"
#include "platform/tolk/tolk.h"

namespace QB::HostKit {
namespace {

constexpr int instructionsBetweenLooks = 1000;  // some 20 microseconds of work
constexpr std::chrono::milliseconds pauseWhileBusy{5};

/// The driver's own handle, or null. QVariant holds a pointer to it under its type's name.
sqlite3* nativeHandle(const QVariant& handle) {
    if (qstrcmp(handle.typeName(), "sqlite3*") != 0) return nullptr;
    return *static_cast<sqlite3* const*>(handle.constData());
}

QString fileProblem(const QString& file) {
    const QFileInfo info(file);
    const QByteArray name = QDir::toNativeSeparators(file).toUtf8();
    if (file.isEmpty()) return Tolk::localize(Tolk::TextNoDatabaseFile);
    if (info.isDir()) return Tolk::localizeWithArgs(Tolk::TextFileIsFolder, name.constData());
    if (!info.exists()) return Tolk::localizeWithArgs(Tolk::TextFileMissing, name.constData());
    if (!info.isFile()) return Tolk::localizeWithArgs(Tolk::TextFileNotRegular, name.constData());
    if (!info.isReadable())
        return Tolk::localizeWithArgs(Tolk::TextFileNotReadable, name.constData());
    return QString();
}

QString checkSettings(const ConnectionSettings& settings) {
    QString problem = fileProblem(settings.databaseFile);
    for (const AttachedFile& attached : settings.attached)
        if (problem.isEmpty()) problem = fileProblem(attached.file);
    return problem;
}

/// The file as a URI, whose mode keeps SQLite from creating a file that is not there.
QString fileUri(const QString& file, bool isReadOnly) {
    const QUrl url = QUrl::fromLocalFile(QFileInfo(file).absoluteFilePath());
    return QString::fromLatin1(url.toEncoded()) + QLatin1String("?mode=") +
           QLatin1String(isReadOnly ? "ro" : "rw");
}

void configure(QSqlDatabase& connection, const ConnectionSettings& settings) {
    connection.setDatabaseName(fileUri(settings.databaseFile, settings.readOnly));
    QStringList options{QStringLiteral("QSQLITE_OPEN_URI")};
    if (settings.readOnly) options << QStringLiteral("QSQLITE_OPEN_READONLY");
    for (auto option = settings.options.begin(); option != settings.options.end(); ++option)
        options << (option.value().isEmpty() ? option.key()
                                             : option.key() + QLatin1Char('=') + option.value());
    connection.setConnectOptions(options.join(QLatin1Char(';')));
}

/// Empty, or the server's message.
QString runOnce(QSqlDatabase& connection, const QString& sql,
                const QVariantList& values = QVariantList()) {
    QSqlQuery query(connection);
    const bool isPrepared = query.prepare(sql);
    for (const QVariant& value : values)
        query.addBindValue(value);
    if (isPrepared && query.exec()) return QString();
    const QString message = query.lastError().databaseText();
    return message.isEmpty() ? query.lastError().text() : message;
}

/// A name in double quotes that no column bears is an error here, not the text of that name: a
/// query over a dropped column must not quietly give a constant.
void refuseTextInDoubleQuotes(sqlite3* handle) {
    if (handle) sqlite3_db_config(handle, SQLITE_DBCONFIG_DQS_DML, 0, nullptr);
}

QString prepareConnection(QSqlDatabase& connection, const ConnectionSettings& settings) {
    refuseTextInDoubleQuotes(nativeHandle(connection.driver()->handle()));
    QString problem = runOnce(connection, QStringLiteral("SELECT count(*) FROM sqlite_schema"));
    for (const AttachedFile& attached : settings.attached) {
        if (!problem.isEmpty()) break;
        problem = runOnce(connection, QStringLiteral("ATTACH DATABASE ? AS ?"),
                          {fileUri(attached.file, settings.readOnly), attached.schema});
    }
    return problem;
}

int parseVersion(const QString& text) {
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() < 3) return 0;
    return parts[0].toInt() * 1000000 + parts[1].toInt() * 1000 + parts[2].toInt();
}

/// SQLite folds the case of ASCII letters only.
bool sameName(const std::string& a, const std::string& b) {
    return sqlite3_stricmp(a.c_str(), b.c_str()) == 0;
}

int stopIfAsked(void* watch) {
    return static_cast<const ConnectionWatch*>(watch)->isStopped() ? 1 : 0;
}

/// Returns: 1 to try again. SQLite's own handler would sleep through a cancel.
int waitWhileBusy(void* context, int attempt) {
    auto* const watch = static_cast<ConnectionWatch*>(context);
    const auto now = std::chrono::steady_clock::now();
    if (attempt == 0) watch->busySince = now;
    if (watch->isStopped()) return 0;
    if (now - watch->busySince >= std::chrono::milliseconds(watch->busyTimeoutMs)) return 0;
    std::this_thread::sleep_for(pauseWhileBusy);
    return 1;
}

void attachWatch(const QVariant& handle, ConnectionWatch* watch) {
    sqlite3* const native = nativeHandle(handle);
    if (!native) return;
    sqlite3_progress_handler(native, instructionsBetweenLooks, stopIfAsked, watch);
    sqlite3_busy_handler(native, waitWhileBusy, watch);
}

void cancel(const QVariant& handle) {
    if (sqlite3* const native = nativeHandle(handle)) sqlite3_interrupt(native);
}

/// Qt's record drops the double quotes of a column's name.
QStringList columnNames(const QSqlQuery& query) {
    const QVariant handle = query.result()->handle();
    QStringList names;
    if (qstrcmp(handle.typeName(), "sqlite3_stmt*") != 0) return names;
    auto* const statement = *static_cast<sqlite3_stmt* const*>(handle.constData());
    for (int column = 0; column < sqlite3_column_count(statement); ++column)
        names << QString::fromUtf8(sqlite3_column_name(statement, column));
    return names;
}

int errorPosition(const QVariant& handle, const QString& statement) {
    sqlite3* const native = nativeHandle(handle);
    const int bytes = native ? sqlite3_error_offset(native) : -1;
    if (bytes < 0) return -1;
    return QString::fromUtf8(statement.toUtf8().left(bytes)).size();
}

bool isInTransaction(const QVariant& handle) {
    sqlite3* const native = nativeHandle(handle);
    return native && sqlite3_get_autocommit(native) == 0;
}

/// The schema of temporary tables shows only when there are some.
const char* const schemasSql =
    "SELECT name FROM pragma_database_list"
    " WHERE name <> 'temp' OR EXISTS (SELECT 1 FROM temp.sqlite_schema) ORDER BY seq";

/// Shadow tables, in which a virtual table keeps its content, have a type of their own.
const char* const objectsSql =
    "SELECT name, CASE type WHEN 'view' THEN 'view' ELSE 'table' END,"
    " CASE type WHEN 'virtual' THEN 8 ELSE 0 END"
    " FROM pragma_table_list WHERE schema = :schema AND type <> 'shadow'"
    " AND name NOT LIKE 'sqlite!_%' ESCAPE '!'"
    " ORDER BY type = 'view', name COLLATE NOCASE, name";

/// hidden: 0 usual, 1 hidden column of a virtual table, 2 virtual and 3 stored generated column.
const char* const columnsSql =
    "SELECT name, type, (pk > 0) * 1 + (\"notnull\" <> 0) * 2 + (hidden IN (2, 3)) * 4"
    " FROM pragma_table_xinfo(:object, :schema) WHERE hidden <> 1 ORDER BY cid";

/// A key that names no columns refers to the primary key; names are given as the tables spell
/// them, whatever the key's own spelling is. Keys never leave their schema, which the hidden column
/// of the function gives back.
const char* const foreignKeysSql =
    "SELECT k.id, k.\"from\", k.schema, k.\"table\","
    "  (SELECT c.name FROM pragma_table_xinfo(k.\"table\", k.schema) c"
    "   WHERE CASE WHEN k.\"to\" IS NULL THEN c.pk = k.seq + 1"
    "         ELSE c.name = k.\"to\" COLLATE NOCASE END)"
    " FROM pragma_foreign_key_list(:object, :schema) k ORDER BY k.id, k.seq";

}  // namespace

const DriverDescription& sqliteDescription() {
    static const DriverDescription description = [] {
        DriverDescription d{};
        d.family = DatabaseTypeSQLite;
        d.qtDriver = "QSQLITE";
        d.defaultSchema = "main";
        d.checkSettings = checkSettings;
        d.configure = configure;
        d.prepareConnection = prepareConnection;
        d.versionSql = "SELECT sqlite_version()";
        d.parseVersion = parseVersion;
        d.schemasSql = schemasSql;
        d.objectsSql = objectsSql;
        d.columnsSql = columnsSql;
        d.foreignKeysSql = foreignKeysSql;
        d.sameName = sameName;
        d.attachWatch = attachWatch;
        d.cancel = cancel;
        d.columnNames = columnNames;
        d.errorPosition = errorPosition;
        d.isInTransaction = isInTransaction;
        return d;
    }();
    return description;
}

}  // namespace QB::HostKit
