#pragma once

#include <sqlite3.h>

#include <QSqlDatabase>
#include <QString>
#include <QTemporaryDir>
#include <stdexcept>
#include <string>

#include "hostkit/connection_settings.h"
#include "hostkit/database.h"

namespace QB::Test {

/// A database file in a temporary folder, made through SQLite's own interface so that the kit under
/// test has no hand in it. The connection stays open until close(), for locks.
class SqliteFile {
public:
    explicit SqliteFile(const std::string& script = std::string(),
                        const QString& name = QStringLiteral("sample.db"))
        : m_path(m_folder.filePath(name)) {
        if (sqlite3_open(m_path.toUtf8().constData(), &m_handle) != SQLITE_OK)
            throw std::runtime_error("cannot make " + m_path.toStdString());
        execute(script);
    }

    ~SqliteFile() { close(); }
    SqliteFile(const SqliteFile&) = delete;
    SqliteFile& operator=(const SqliteFile&) = delete;

    void execute(const std::string& script) {
        char* message = nullptr;
        if (sqlite3_exec(m_handle, script.c_str(), nullptr, nullptr, &message) == SQLITE_OK) return;
        const std::string text = message ? message : "?";
        sqlite3_free(message);
        throw std::runtime_error(text + " in: " + script);
    }

    void close() {
        sqlite3_close(m_handle);
        m_handle = nullptr;
    }

    const QString& path() const { return m_path; }
    QString folder() const { return m_folder.path(); }
    HostKit::ConnectionSettings settings() const {
        HostKit::ConnectionSettings settings = HostKit::ConnectionSettings::sqliteFile(m_path);
        settings.busyTimeoutMs = 50;
        return settings;
    }

    HostKit::Database open() const {
        HostKit::Database database;
        const QString error = database.open(settings());
        if (!error.isEmpty()) throw std::runtime_error(error.toStdString());
        return database;
    }

private:
    QTemporaryDir m_folder;
    const QString m_path;
    sqlite3* m_handle = nullptr;
};

}  // namespace QB::Test
