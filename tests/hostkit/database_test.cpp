#include "hostkit/database.h"

#include <gtest/gtest.h>

#include <QDebug>
#include <QFile>
#include <thread>

#include "hostkit/schema_reader.h"
#include "sqlite_file.h"

using namespace QB;
using namespace QB::HostKit;
using QB::Test::SqliteFile;

namespace {

const QString password = QStringLiteral("s3cr/et pass");

std::string errorOf(ConnectionSettings settings) {
    settings.password = Password(password);
    settings.busyTimeoutMs = 30;
    Database database;
    const QString error = database.open(settings);
    EXPECT_EQ(error.isEmpty(), database.isOpen());
    EXPECT_FALSE(error.contains(password)) << error.toStdString();
    return error.toStdString();
}

std::string errorOfFile(const QString& file) {
    return errorOf(ConnectionSettings::sqliteFile(file));
}

}  // namespace

TEST(Database, AFileThatCannotBeOpenedIsNamedWithTheReason) {
    const SqliteFile good;
    const QString folder = good.folder();
    QFile text(folder + "/text.db");
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write(QByteArray("no database at all, but long enough\n").repeated(99));
    text.close();
    EXPECT_EQ(errorOfFile(QString()), "No database file is given.");
    EXPECT_EQ(errorOfFile(folder), folder.toStdString() + " is a folder, not a database file.");
    EXPECT_EQ(errorOfFile(folder + "/none.db"),
              "There is no file " + folder.toStdString() + "/none.db.");
    EXPECT_FALSE(QFile::exists(folder + "/none.db"));
    EXPECT_EQ(errorOfFile(folder + "/text.db"), "Cannot open text.db: file is not a database");
    EXPECT_EQ(errorOfFile("/dev/null"), "/dev/null is not a regular file.");
    EXPECT_EQ(errorOfFile(folder + "/" + password),
              "There is no file " + folder.toStdString() + "/***.");
    ConnectionSettings settings;
    settings.family = DatabaseTypePostgreSQL;
    EXPECT_EQ(errorOf(settings), "The host kit cannot connect to PostgreSQL yet.");
}

TEST(Database, ALockedFileGivesTheServersMessageAfterTheBusyTimeout) {
    SqliteFile file("CREATE TABLE t (a)");
    file.execute("BEGIN EXCLUSIVE");
    EXPECT_EQ(errorOfFile(file.path()), "Cannot open sample.db: database is locked");
    file.execute("COMMIT");
    EXPECT_EQ(errorOfFile(file.path()), "");
}

TEST(Database, AnEmptyFileIsADatabaseAndItsNameMayHoldWhatAUriWouldRead) {
    SqliteFile file({}, QStringLiteral("100% ä?mode=memory#x.db"));
    const Database database = file.open();
    EXPECT_EQ(database.info().databaseVersion, sqlite3_libversion_number());
    const auto objects = SchemaReader(database).objects("main");
    EXPECT_TRUE(objects.isOk() && objects.rows.empty());
    file.execute("CREATE TABLE t (a)");
    EXPECT_EQ(SchemaReader(database).objects("main").rows.size(), 1u);
}

TEST(Database, AnErrorClosesWhatWasOpenBefore) {
    const SqliteFile file("CREATE TABLE t (a)");
    Database database = file.open();
    const Database copy = database;
    EXPECT_FALSE(database.open(ConnectionSettings::sqliteFile("/nowhere")).isEmpty());
    EXPECT_FALSE(database.isOpen());
    EXPECT_FALSE(copy.isOpen());
    EXPECT_EQ(SchemaReader(copy).schemas().error.toStdString(), "The database is closed.");
}

TEST(Database, EachThreadHasItsOwnConnectionAndClosesItWhenItEnds) {
    const SqliteFile file("CREATE TABLE t (a)");
    const Database database = file.open();
    const int before = QSqlDatabase::connectionNames().size();
    ASSERT_TRUE(SchemaReader(database).objects("main").isOk());
    EXPECT_EQ(QSqlDatabase::connectionNames().size(), before + 1);
    std::thread([&] {
        EXPECT_EQ(SchemaReader(database).objects("main").rows.size(), 1u);
        EXPECT_EQ(QSqlDatabase::connectionNames().size(), before + 2);
    }).join();
    EXPECT_EQ(QSqlDatabase::connectionNames().size(), before + 1);
    Database(database).close();
    EXPECT_EQ(QSqlDatabase::connectionNames().size(), before);
}

TEST(Database, ANameInDoubleQuotesThatIsNoColumnIsAnErrorNotAText) {
    const SqliteFile file("CREATE TABLE t (a); CREATE VIEW broken AS SELECT \"gone\" FROM t");
    const auto columns = SchemaReader(file.open()).columns("main", "broken");
    EXPECT_FALSE(columns.isOk());
    EXPECT_NE(columns.error.toStdString().find("no such column: gone"), std::string::npos)
        << columns.error.toStdString();
}

TEST(ConnectionSettings, ThePasswordIsPrintedNowhere) {
    ConnectionSettings settings = ConnectionSettings::sqliteFile("/tmp/" + password);
    settings.password = Password(password);
    settings.host = "pg:" + password;
    settings.options["password"] = password;
    settings.options["uri"] = "x://u:s3cr%2Fet%20pass@h";
    settings.attached.append({"a", password});
    QString printed;
    QDebug(&printed) << settings << settings.password;
    for (const QString& text : {printed, settings.displayName()}) {
        EXPECT_FALSE(text.contains("s3cr")) << text.toStdString();
        EXPECT_TRUE(text.contains("***")) << text.toStdString();
    }
}
