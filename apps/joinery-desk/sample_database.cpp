#include "apps/joinery-desk/sample_database.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QStandardPaths>
#include <QStringList>
#include <QTemporaryFile>
#include <QUuid>

namespace QB::Desk {
namespace {

/// A connection of its own for a few statements; removed with the object.
class ScratchConnection {
public:
    explicit ScratchConnection(const QString& file, const QString& options = QString()) {
        QSqlDatabase database = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        database.setDatabaseName(file);
        database.setConnectOptions(options);
        database.open();
    }
    ~ScratchConnection() { QSqlDatabase::removeDatabase(m_name); }
    ScratchConnection(const ScratchConnection&) = delete;
    ScratchConnection& operator=(const ScratchConnection&) = delete;

    /// Returns: empty, or the server's message.
    QString run(const QStringList& statements) {
        QSqlDatabase database = QSqlDatabase::database(m_name, false);
        if (!database.transaction()) return database.lastError().text();
        for (const QString& statement : statements) {
            QSqlQuery query(database);
            if (!query.exec(statement)) return query.lastError().text();
        }
        return database.commit() ? QString() : database.lastError().text();
    }

    /// The first value of the first row; 0 if there is none.
    int askNumber(const QString& statement) {
        QSqlQuery query(QSqlDatabase::database(m_name, false));
        return query.exec(statement) && query.next() ? query.value(0).toInt() : 0;
    }

private:
    const QString m_name = QUuid::createUuid().toString();
};

/// The statements of a script in which a statement ends with the line that ends with a semicolon.
QStringList statementsOf(const QString& script) {
    QStringList statements;
    QString statement;
    const QStringList lines = script.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        if (line.startsWith(QLatin1String("--")) || line.trimmed().isEmpty()) continue;
        statement += line + QLatin1Char('\n');
        if (!line.endsWith(QLatin1Char(';'))) continue;
        statements.append(statement);
        statement.clear();
    }
    return statements;
}

QStringList sampleStatements() {
    QFile script(QStringLiteral(":/desk/city_bikes.sql"));
    if (!script.open(QIODevice::ReadOnly)) return QStringList();
    return statementsOf(QString::fromUtf8(script.readAll()));
}

/// "PRAGMA user_version = 3;" stands first in the script.
int sampleVersion(const QStringList& statements) {
    return statements.value(0).section(QLatin1Char('='), 1).section(QLatin1Char(';'), 0, 0).toInt();
}

int versionOf(const QString& file) {
    if (!QFileInfo::exists(file)) return 0;
    return ScratchConnection(file, QStringLiteral("QSQLITE_OPEN_READONLY"))
        .askNumber(QStringLiteral("PRAGMA user_version"));
}

QString failure(const QString& file, const QString& reason) {
    return QCoreApplication::translate("SampleDatabase",
                                       "The sample database \"%1\" could not be written: %2")
        .arg(QDir::toNativeSeparators(file), reason);
}

}  // namespace

QString sampleDatabaseFile(const QString& settingsFile) {
    const QString folder =
        settingsFile.isEmpty()
            ? QStandardPaths::writableLocation(QStandardPaths::AppLocalDataLocation)
            : QFileInfo(settingsFile).absolutePath();
    return folder + QStringLiteral("/city_bikes.sqlite");
}

QString ensureSampleDatabase(const QString& file) {
    const QStringList statements = sampleStatements();
    if (versionOf(file) == sampleVersion(statements)) return QString();
    const QString folder = QFileInfo(file).absolutePath();
    QDir().mkpath(folder);
    QTemporaryFile draft(folder + QStringLiteral("/sample-XXXXXX"));
    if (!draft.open()) return failure(file, draft.errorString());
    draft.close();
    const QString error = ScratchConnection(draft.fileName()).run(statements);
    if (!error.isEmpty()) return failure(file, error);
    // Who has the earlier version open goes on reading that one.
    QFile::remove(file);
    if (!QFile::rename(draft.fileName(), file)) return failure(file, draft.errorString());
    QFile::setPermissions(
        file, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup | QFile::ReadOther);
    draft.setAutoRemove(false);
    return QString();
}

}  // namespace QB::Desk
