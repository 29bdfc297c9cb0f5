#include "differential/server_session.h"

#include <QSqlDriver>
#include <QSqlRecord>
#include <QVariant>
#include <algorithm>
#include <cstring>

#include "differential/adversarial_schema.h"

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

/// What a connection needs before the tables, once.
std::vector<const char*> settings(DatabaseType family) {
    switch (family) {
        case DatabaseTypeSQLite:
            return {"ATTACH ':memory:' AS other"};
        case DatabaseTypePostgreSQL:
            // Tables without statistics look large, and compiling would take most of the time.
            return {"SET jit = off", "SET statement_timeout = '10s'",
                    "SET client_min_messages = error"};
        default:
            return {"SET NAMES utf8mb4", "SET max_statement_time = 10"};
    }
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

ServerSession::ServerSession(LiveConnection& connection, DatabaseType family)
    : m_connection(connection), m_family(family), m_schema(mainSchema(family)) {
    // Decimals come as text, with all their digits.
    m_connection.database().driver()->setNumericalPrecisionPolicy(QSql::HighPrecision);
    for (const char* statement : settings(m_family)) {
        if (!m_connection.run(QString::fromUtf8(statement))) {
            m_error = m_connection.error().toStdString();
        }
    }
    load(false);
}

void ServerSession::load(bool isReversed) {
    useSchema(mainSchema(m_family));
    for (const std::string& statement : schemaScript(m_family, isReversed)) {
        if (m_connection.run(QString::fromStdString(statement))) continue;
        m_error = statement + ": " + m_connection.error().toStdString();
        return;
    }
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
    load(true);
    std::vector<Difference> differences;
    for (std::size_t i = 0; i < statements.size(); ++i)
        differences.push_back(differenceBetween(answers[i], answerTo(statements[i])));
    load(false);
    return differences;
}

}  // namespace QB::Test
