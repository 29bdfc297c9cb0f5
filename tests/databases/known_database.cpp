#include "known_database.h"

#include <sqlite3.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>
#include <stdexcept>

namespace QB::Test {
namespace {

/// How to ask a server. Keys come as schema, table, key, field, and the other schema, table and
/// field; ordered by the first three and the place in the key.
struct Catalogue {
    const char* script;
    const char* tables;
    const char* keys;
};

const Catalogue sqlite{
    "sqlite.sql",
    "SELECT 'main', name FROM sqlite_schema WHERE type = 'table' AND name NOT LIKE 'sqlite%'",
    "SELECT 'main', m.name, k.id, k.\"from\", 'main', t.name, f.name FROM sqlite_schema m,"
    " pragma_foreign_key_list(m.name) k, sqlite_schema t, pragma_table_info(t.name) f"
    " WHERE m.type = 'table' AND t.type = 'table' AND t.name = k.\"table\" COLLATE NOCASE"
    " AND f.name = k.\"to\" COLLATE NOCASE"
    " ORDER BY m.name, k.id, k.seq"};

const Catalogue postgresql{
    "postgresql.sql",
    "SELECT schemaname, tablename FROM pg_tables"
    " WHERE schemaname NOT IN ('pg_catalog', 'information_schema')",
    "SELECT n.nspname, c.relname, k.oid, a.attname, fn.nspname, fc.relname, fa.attname"
    " FROM pg_constraint k CROSS JOIN LATERAL unnest(k.conkey, k.confkey)"
    " WITH ORDINALITY AS pair (own, other, place)"
    " JOIN pg_class c ON c.oid = k.conrelid JOIN pg_namespace n ON n.oid = c.relnamespace"
    " JOIN pg_class fc ON fc.oid = k.confrelid JOIN pg_namespace fn ON fn.oid = fc.relnamespace"
    " JOIN pg_attribute a ON a.attrelid = c.oid AND a.attnum = pair.own"
    " JOIN pg_attribute fa ON fa.attrelid = fc.oid AND fa.attnum = pair.other"
    " WHERE k.contype = 'f' ORDER BY 1, 2, 3, pair.place"};

const Catalogue mariadb{
    "mysql.sql",
    "SELECT table_schema, table_name FROM information_schema.tables"
    " WHERE table_schema = DATABASE() AND table_type = 'BASE TABLE'",
    "SELECT DATABASE(), SUBSTRING_INDEX(f.for_name, '/', -1), f.id, c.for_col_name, DATABASE(),"
    " SUBSTRING_INDEX(f.ref_name, '/', -1), c.ref_col_name"
    " FROM information_schema.innodb_sys_foreign f"
    " JOIN information_schema.innodb_sys_foreign_cols c ON c.id = f.id"
    " WHERE SUBSTRING_INDEX(f.for_name, '/', 1) = DATABASE() ORDER BY 2, 3, c.pos"};

const Catalogue& catalogueOf(const LiveServer& server) {
    if (server.family == DatabaseTypeSQLite) return sqlite;
    return server.family == DatabaseTypePostgreSQL ? postgresql : mariadb;
}

QString scriptOf(const LiveServer& server, const QString& name) {
    return QStringLiteral(JOINERY_DATABASES "/%1/%2").arg(name, catalogueOf(server).script);
}

QByteArray readScript(const QString& script) {
    QFile file(script);
    if (!file.open(QIODevice::ReadOnly)) throw std::runtime_error("no " + script.toStdString());
    // Collations of MySQL that MariaDB does not have.
    return file.readAll()
        .replace("utf8mb4_0900_ai_ci", "utf8mb4_bin")
        .replace("utf8mb4_0900_bin", "utf8mb4_bin");
}

/// Statements that the server does not take are left out, such as those on owners.
void runClient(const LiveServer& server, const QString& database, const QByteArray& script) {
    const QString socket = qEnvironmentVariable(server.variable);
    QProcess client;
    client.setStandardOutputFile(QProcess::nullDevice());
    client.setStandardErrorFile(QProcess::nullDevice());
    if (server.family == DatabaseTypePostgreSQL) {
        client.start("psql", {"-h", socket, "-U", "joinery", "-q", database});
    } else {
        client.start("mariadb", {"--no-defaults", "--force", "--socket=" + socket, "--user=joinery",
                                 database});
    }
    client.write(script);
    client.closeWriteChannel();
    if (!client.waitForFinished(-1)) throw std::runtime_error("cannot start the client");
}

void fillSqliteFile(const QString& file, const QByteArray& script) {
    sqlite3* handle = nullptr;
    const QByteArray quickly = "PRAGMA synchronous = OFF;" + script;
    const bool isFilled =
        sqlite3_open(QFile::encodeName(file).constData(), &handle) == SQLITE_OK &&
        sqlite3_exec(handle, quickly.constData(), nullptr, nullptr, nullptr) == SQLITE_OK;
    sqlite3_close(handle);
    if (!isFilled) throw std::runtime_error("cannot fill " + file.toStdString());
}

}  // namespace

QStringList databasesFor(const LiveServer& server) {
    QStringList names = QDir(QStringLiteral(JOINERY_DATABASES)).entryList(QDir::Dirs, QDir::Name);
    names.erase(
        std::remove_if(names.begin(), names.end(),
                       [&](const QString& name) { return !QFile::exists(scriptOf(server, name)); }),
        names.end());
    return names;
}

KnownDatabase::KnownDatabase(const LiveServer& server, LiveConnection& connection,
                             const QString& name)
    : m_server(server), m_connection(connection), m_name(name.toLower()) {
    load(readScript(scriptOf(server, name)));
    const Catalogue& catalogue = catalogueOf(server);
    for (const auto& row : rows(catalogue.tables))
        tables.push_back({row[0], row[1]});
    std::sort(tables.begin(), tables.end());
    readKeys(catalogue.keys);
}

KnownDatabase::~KnownDatabase() {
    QSqlDatabase::removeDatabase(m_name);
    if (m_server.variable) m_connection.run(QStringLiteral("DROP DATABASE %1").arg(m_name));
}

void KnownDatabase::load(const QByteArray& script) {
    QSqlDatabase database = QSqlDatabase::cloneDatabase(m_connection.database(), m_name);
    database.setDatabaseName(m_server.variable ? m_name : file());
    if (m_server.variable) {
        m_connection.run(QStringLiteral("CREATE DATABASE %1").arg(m_name));
        runClient(m_server, m_name, script);
    } else {
        fillSqliteFile(file(), script);
    }
    if (!database.open()) throw std::runtime_error(database.lastError().text().toStdString());
}

std::vector<std::vector<std::string>> KnownDatabase::rows(const char* sql) const {
    std::vector<std::vector<std::string>> all;
    QSqlQuery query(QSqlDatabase::database(m_name));
    if (!query.exec(QString::fromLatin1(sql)))
        throw std::runtime_error(query.lastError().text().toStdString());
    while (query.next()) {
        auto& row = all.emplace_back();
        for (int column = 0; column < query.record().count(); ++column)
            row.push_back(query.value(column).toString().toStdString());
    }
    return all;
}

void KnownDatabase::readKeys(const char* sql) {
    std::string last;
    for (const auto& row : rows(sql)) {
        const std::string key = row[0] + '\n' + row[1] + '\n' + row[2];
        if (keys.empty() || key != last) keys.emplace_back();
        last = key;
        keys.back().push_back({{row[0], row[1], row[3]}, {row[4], row[5], row[6]}});
    }
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
}

QString KnownDatabase::refusal(const std::string& sql) const {
    QSqlQuery query(QSqlDatabase::database(m_name));
    if (query.exec(QStringLiteral("EXPLAIN ") + QString::fromStdString(sql))) return QString();
    return query.lastError().text();
}

}  // namespace QB::Test
