#pragma once

#include <string_view>

#include "stringifier/query_component_stringifier_sql.h"

/// The dialects of all families, in one file: each is a few lines, and they are read side by side.
/// The server's version takes no part in them. A limit that is not set writes nothing.
namespace QB {

/// LIMIT count, or LIMIT offset, count.
class QBQueryComponentStringifier_MYSQL : public QBQueryComponentStringifier_SQL {
public:
    explicit QBQueryComponentStringifier_MYSQL(QBDatabaseInfo info)
        : QBQueryComponentStringifier_SQL(info) {}

protected:
    StringifiedNode stringifyExpr_ELEMSQLLimitExpr(
        const Component::SQL::SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* element,
        int level, TopLevelQueryComponentElementEnum which) override;
    /// Every kind of join takes a condition, so that one without would take the next.
    bool readsNestedJoin(const Component::SQL::SQLJoinSourceNodeComponent* nested) const override;
};

/// The same as MySQL.
class QBQueryComponentStringifier_MARIADB : public QBQueryComponentStringifier_SQL {
public:
    explicit QBQueryComponentStringifier_MARIADB(QBDatabaseInfo info)
        : QBQueryComponentStringifier_SQL(info) {}

protected:
    StringifiedNode stringifyExpr_ELEMSQLLimitExpr(
        const Component::SQL::SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* element,
        int level, TopLevelQueryComponentElementEnum which) override;
    bool readsNestedJoin(const Component::SQL::SQLJoinSourceNodeComponent* nested) const override;
};

/// LIMIT and OFFSET, each on its line and only if set.
class QBQueryComponentStringifier_PGSQL : public QBQueryComponentStringifier_SQL {
public:
    explicit QBQueryComponentStringifier_PGSQL(QBDatabaseInfo info)
        : QBQueryComponentStringifier_SQL(info) {}

protected:
    StringifiedNode stringifyExpr_ELEMSQLLimitExpr(
        const Component::SQL::SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* element,
        int level, TopLevelQueryComponentElementEnum which) override;
};

/// FETCH FIRST or NEXT, with percentages and ties.
class QBQueryComponentStringifier_ORA : public QBQueryComponentStringifier_SQL {
public:
    explicit QBQueryComponentStringifier_ORA(QBDatabaseInfo info)
        : QBQueryComponentStringifier_SQL(info) {}

protected:
    StringifiedNode stringifyExpr_ELEMSQLLimitExpr(
        const Component::SQL::SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* element,
        int level, TopLevelQueryComponentElementEnum which) override;
    /// Oracle reads no AS before the alias of a source.
    std::string_view sourceAliasSeparator() const override;
};

/// LIMIT and OFFSET; OFFSET needs a LIMIT before it.
class QBQueryComponentStringifier_SQLITE : public QBQueryComponentStringifier_SQL {
public:
    explicit QBQueryComponentStringifier_SQLITE(QBDatabaseInfo info)
        : QBQueryComponentStringifier_SQL(info) {}

protected:
    StringifiedNode stringifyExpr_ELEMSQLLimitExpr(
        const Component::SQL::SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* element,
        int level, TopLevelQueryComponentElementEnum which) override;
    /// SQLite reads a condition only right behind its join's right side.
    bool readsNestedJoin(const Component::SQL::SQLJoinSourceNodeComponent* nested) const override;
};

/// OFFSET and FETCH NEXT; both need ORDER BY, and FETCH needs OFFSET.
class QBQueryComponentStringifier_MSSQL : public QBQueryComponentStringifier_SQL {
public:
    explicit QBQueryComponentStringifier_MSSQL(QBDatabaseInfo info)
        : QBQueryComponentStringifier_SQL(info) {}

protected:
    StringifiedNode stringifyExpr_ELEMSQLLimitExpr(
        const Component::SQL::SQLSelectStmtComponent* statement, const ELEMSQLLimitExpr* element,
        int level, TopLevelQueryComponentElementEnum which) override;
    bool keepsTableSchema() const override;
};

/// A family without a text form: every component gives an empty text and no range.
class QBQueryComponentStringifier_MONGODB : public QBQueryComponentStringifier {
public:
    explicit QBQueryComponentStringifier_MONGODB(QBDatabaseInfo info)
        : QBQueryComponentStringifier(info) {}

    StringifiedNode stringifyComponent(const Component::AbstractQueryComponent* component,
                                       int level, const SourceChildCallback& sourceChild) override;
};

}  // namespace QB
