#include "differential/server_session.h"

#include <QSqlDriver>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>
#include <cstring>
#include <fstream>
#include <sstream>

#include "constructs/construct_table.h"

namespace QB::Test {
namespace {

constexpr std::size_t maximumRows = 20000;

std::string cellText(const QVariant& value) {
    if (value.isNull()) return "NULL";
    const std::string text = value.toString().toStdString();
    const bool isText = value.type() == QVariant::String || value.type() == QVariant::ByteArray;
    return isText ? "'" + text + "'" : text;
}

/// SQLite names a column by its text as written, qualifiers and quotes included, where a full join
/// has merged it from two tables.
Answer::Row bareLabels(Answer::Row labels) {
    for (std::string& label : labels) {
        const auto isQuote = [](char c) {
            return std::strchr("\"`[]", c) != nullptr;
        };
        label.erase(std::remove_if(label.begin(), label.end(), isQuote), label.end());
        label.erase(0, label.rfind('.') + 1);
    }
    return labels;
}

std::vector<Answer::Row> sorted(std::vector<Answer::Row> rows) {
    std::sort(rows.begin(), rows.end());
    return rows;
}

/// What a connection needs, once.
std::vector<const char*> settings(DatabaseType family) {
    switch (family) {
        case DatabaseTypeSQLite:
            return {};
        case DatabaseTypePostgreSQL:
            // Tables without statistics look large, and compiling would take most of the time.
            return {"SET jit = off", "SET statement_timeout = '10s'",
                    "SET client_min_messages = error"};
        default:
            return {"SET NAMES utf8mb4", "SET max_statement_time = 10"};
    }
}

/// What drops all that tables.sql makes; some of it may not be there.
std::vector<const char*> droppings(DatabaseType family) {
    switch (family) {
        case DatabaseTypeSQLite:
            return {"DETACH other"};
        case DatabaseTypePostgreSQL:
            return {"DROP SCHEMA IF EXISTS other CASCADE", "DROP TABLE IF EXISTS pg_temp.shade",
                    "DROP SCHEMA public CASCADE", "CREATE SCHEMA public"};
        default:
            return {"DROP DATABASE IF EXISTS other", "DROP TEMPORARY TABLE IF EXISTS shade",
                    "DROP DATABASE joinery", "CREATE DATABASE joinery", "USE joinery"};
    }
}

std::string usualColumns(DatabaseType family) {
    const std::string columns =
        "id integer, n integer, y integer, total integer, name varchar(100), x integer, "
        "s varchar(60)";
    if (family != DatabaseTypePostgreSQL) return columns;
    return columns +
           R"(, "Y" integer GENERATED ALWAYS AS (90 - (coalesce(id, 5) * 7 + coalesce(n, 2) * 13 +
                    coalesce(y, 3) * 17 + coalesce(total, 1) * 5) % 41) STORED,
                "O" integer GENERATED ALWAYS AS
                    ((coalesce(id, 4) * 3 + coalesce(n, 1) * 5 + coalesce(y, 2)) % 7) STORED)";
}

void replace(std::string& text, const std::string& what, const std::string& by) {
    const std::size_t at = text.find(what);
    if (at != std::string::npos) text.replace(at, what.size(), by);
}

/// The statements of tables.sql that are meant for the family.
std::vector<std::string> schemaScript(DatabaseType family) {
    std::ifstream file(JOINERY_TEST_DATA "/tables.sql");
    const std::string key = constructs::familyOf(family).key;
    const std::string only = "-- only ";
    std::vector<std::string> statements;
    std::string statement;
    bool isMeant = true;
    for (std::string line; std::getline(file, line);) {
        if (line.rfind(only, 0) == 0) isMeant = line.find(key) != std::string::npos;
        if (line.rfind("--", 0) == 0) continue;
        statement += line + '\n';
        if (line.empty() || line.back() != ';') continue;
        replace(statement, "…", usualColumns(family));
        if (isMeant) statements.push_back(statement);
        statement.clear();
        isMeant = true;
    }
    return statements;
}

/// The rows of an INSERT from the last to the first.
std::string reversed(const std::string& insertion) {
    const std::string between = "), (";
    const std::size_t first = insertion.find("VALUES (") + 8;
    const std::size_t last = insertion.rfind(");");
    std::string rows;
    for (std::size_t at = first; at < last;) {
        const std::size_t end = std::min(insertion.find(between, at), last);
        rows.insert(0, insertion.substr(at, end - at) + (rows.empty() ? "" : between));
        at = end + between.size();
    }
    return insertion.substr(0, first) + rows + ");";
}

}  // namespace

Difference differenceBetween(const Answer& original, const Answer& rebuilt) {
    Difference difference;
    if (rebuilt.isRefused) {
        difference.isRefused = true;
        return difference;
    }
    difference.inLabels = bareLabels(original.labels) != bareLabels(rebuilt.labels);
    if (original.rows == rebuilt.rows) return difference;
    difference.inRows = sorted(original.rows) != sorted(rebuilt.rows);
    difference.inOrder = !difference.inRows;
    return difference;
}

std::string describe(const Answer& answer) {
    if (answer.isRefused) return "refused: " + answer.message;
    std::string text;
    const auto addLine = [&text](const Answer::Row& cells) {
        for (std::size_t i = 0; i < cells.size(); ++i)
            text += (i > 0 ? " | " : "") + cells[i];
        text += '\n';
    };
    addLine(answer.labels);
    for (std::size_t i = 0; i < answer.rows.size() && i < 8; ++i)
        addLine(answer.rows[i]);
    return text + "(" + std::to_string(answer.rows.size()) + " rows)";
}

std::string mainSchema(DatabaseType family) {
    return constructs::familyOf(family).schema;
}

ServerSession::ServerSession(LiveConnection& connection, DatabaseType family)
    : m_connection(connection), m_family(family), m_schema(mainSchema(family)) {
    // Decimals come as text, with all their digits.
    m_connection.database().driver()->setNumericalPrecisionPolicy(QSql::HighPrecision);
    for (const char* statement : settings(m_family))
        run(statement);
    load(RowOrder::AsWritten);
}

void ServerSession::run(const std::string& statement) {
    if (m_connection.run(QString::fromStdString(statement)) || !m_error.empty()) return;
    m_error = statement + ": " + m_connection.error().toStdString();
}

void ServerSession::dropTables() {
    for (const char* statement : droppings(m_family))
        m_connection.run(QString::fromUtf8(statement));
    if (m_family != DatabaseTypeSQLite) return;
    for (const char* from : {"temp", "main"}) {
        const QString name = QString::fromUtf8(from);
        const QStringList tables = m_connection.column(
            QStringLiteral("SELECT name FROM %1.sqlite_master WHERE type = 'table'").arg(name));
        for (QString table : tables)
            m_connection.run("DROP TABLE " + name + ".\"" + table.replace("\"", "\"\"") + "\"");
    }
}

void ServerSession::load(RowOrder order) {
    useSchema(mainSchema(m_family));
    dropTables();
    const bool isMariaDB = m_family == DatabaseTypeMariaDB;
    if (isMariaDB) run("SET sql_mode = 'ANSI_QUOTES'");
    for (const std::string& statement : schemaScript(m_family)) {
        const bool isTurned = order == RowOrder::Reversed && statement.rfind("INSERT", 0) == 0;
        run(isTurned ? reversed(statement) : statement);
    }
    if (isMariaDB) run("SET sql_mode = DEFAULT");
}

Answer ServerSession::ask(const std::string& sql) {
    Answer answer;
    QSqlQuery query(m_connection.database());
    query.setNumericalPrecisionPolicy(QSql::HighPrecision);
    if (!query.exec(QString::fromStdString(sql))) {
        answer.isRefused = true;
        answer.message = query.lastError().text().toStdString();
        return answer;
    }
    const QSqlRecord record = query.record();
    for (int i = 0; i < record.count(); ++i)
        answer.labels.push_back(record.fieldName(i).toStdString());
    while (answer.rows.size() < maximumRows && query.next()) {
        Answer::Row row;
        for (int i = 0; i < record.count(); ++i)
            row.push_back(cellText(query.value(i)));
        answer.rows.push_back(std::move(row));
    }
    // Some refusals come with a row only.
    answer.isRefused = query.lastError().isValid();
    answer.message = query.lastError().text().toStdString();
    return answer;
}

void ServerSession::useSchema(const std::string& schema) {
    if (m_family == DatabaseTypeSQLite || schema == m_schema) return;
    const bool isPostgreSQL = m_family == DatabaseTypePostgreSQL;
    const std::string statement = (isPostgreSQL ? "SET search_path = " : "USE ") + schema;
    if (m_connection.run(QString::fromStdString(statement))) m_schema = schema;
}

std::vector<Difference> ServerSession::chances(const std::vector<LocatedStatement>& statements) {
    const auto answerTo = [this](const LocatedStatement& statement) {
        useSchema(statement.schema);
        return ask(statement.sql);
    };
    std::vector<Answer> answers;
    for (const LocatedStatement& statement : statements)
        answers.push_back(answerTo(statement));
    load(RowOrder::Reversed);
    std::vector<Difference> differences;
    for (std::size_t i = 0; i < statements.size(); ++i)
        differences.push_back(differenceBetween(answers[i], answerTo(statements[i])));
    load(RowOrder::AsWritten);
    return differences;
}

}  // namespace QB::Test
