// Every accepted cell on a server: the statement and what is rebuilt from it give the same rows.
#include <gtest/gtest.h>

#include <QFile>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>

#include "constructs/construct_table.h"
#include "constructs/expected_text.h"
#include "live/live_server.h"
#include "support/round_trip.h"

using namespace QB;
using namespace QB::Test;
using namespace constructs;

namespace {

/// What a statement gives: its rows, in the order they came, or why the server refuses it.
struct Answer {
    QStringList rows;
    QString error;
};

QString rowText(const QSqlQuery& query) {
    QStringList values;
    for (int i = 0; i < query.record().count(); ++i)
        values.append(query.isNull(i) ? QStringLiteral("NULL")
                                      : "<" + query.value(i).toString() + ">");
    return values.join(',');
}

Answer answerOf(const QSqlDatabase& database, const std::string& sql) {
    QSqlQuery query(database);
    query.setForwardOnly(true);
    Answer answer;
    if (!query.exec(QString::fromStdString(sql))) {
        answer.error = query.lastError().text();
        return answer;
    }
    while (query.next())
        answer.rows.append(rowText(query));
    return answer;
}

class ConstructsLive : public OnServer {
protected:
    void SetUp() override {
        OnServer::SetUp();
        if (family() == DatabaseTypeMariaDB) server().run("SET sql_mode = 'ANSI_QUOTES'");
        makeTables();
        if (family() == DatabaseTypeMariaDB) server().run("SET sql_mode = DEFAULT");
    }

    const char* familyKey() const { return familyOf(family()).key; }

    void makeTables() {
        QFile file(QStringLiteral(JOINERY_TEST_DATA "/tables.sql"));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QString statement;
        bool isMeant = true;
        for (const QString& line : QString::fromUtf8(file.readAll()).split('\n')) {
            const QString only = QStringLiteral("-- only ");
            if (line.startsWith(only)) isMeant = line.mid(only.size()) == familyKey();
            if (line.startsWith("--")) continue;
            statement += line + '\n';
            if (!line.endsWith(';')) continue;
            ASSERT_TRUE(!isMeant || server().run(statement))
                << statement.toStdString() << server().error().toStdString();
            statement.clear();
            isMeant = true;
        }
    }

    void expectSameRows(const Cell& cell) {
        Answer original = answerOf(server().database(), cell.statement());
        ASSERT_EQ(original.error.toStdString(), "") << "the original";
        for (const HostStyle style : {HostStyle::AlwaysQuote, HostStyle::Minimal}) {
            const RoundTrip trip = roundTrip(cell.statement(), static_cast<DatabaseType>(family()),
                                             cell.schema(), style);
            if (!trip.outcome.isAccepted()) return;  // which test_constructs reports
            Answer rebuilt = answerOf(server().database(), trip.text);
            EXPECT_EQ(rebuilt.error.toStdString(), "") << trip.text;
            if (!cell.entry->isOrdered) {
                std::sort(original.rows.begin(), original.rows.end());
                std::sort(rebuilt.rows.begin(), rebuilt.rows.end());
            }
            EXPECT_EQ(rebuilt.rows, original.rows) << trip.text;
        }
        ++m_run;
        m_withRows += original.rows.isEmpty() ? 0 : 1;
    }

    /// Another order, a NULL for an empty string and a refusal show in the answers.
    void expectAnswersTellApart() {
        const auto rows = [this](const char* sql) {
            return answerOf(server().database(), sql).rows;
        };
        const QStringList ascending = rows("SELECT id FROM t ORDER BY id");
        EXPECT_EQ(ascending.size(), 10);
        EXPECT_NE(rows("SELECT id FROM t ORDER BY id DESC"), ascending);
        EXPECT_NE(rows("SELECT x FROM t WHERE x IS NULL"),
                  rows("SELECT '' FROM t WHERE x IS NULL"));
        EXPECT_NE(answerOf(server().database(), "SELECT nix FROM t").error, QString());
    }

    int m_run = 0;
    int m_withRows = 0;
};

TEST_P(ConstructsLive, MeanTheSameWhenRebuilt) {
    for (const Cell& cell : cells()) {
        if (cell.family->number != family() || !cell.isAccepted() || !cell.entry->notRun.empty() ||
            cell.statement().empty())
            continue;
        SCOPED_TRACE(cell.entry->place + ": " + cell.statement());
        expectSameRows(cell);
    }
    std::cout << GetParam().name << ": " << m_run << " statements, " << m_withRows
              << " with rows\n";
    EXPECT_GT(m_withRows, m_run * 3 / 4) << "statements without rows compare little";
    expectAnswersTellApart();
}

INSTANTIATE_TEST_SUITE_P(Live, ConstructsLive,
                         testing::Values(livePostgreSQL, liveMariaDB, liveSQLite), serverName);

}  // namespace
