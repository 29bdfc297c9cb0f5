#pragma once

#include <cstdint>
#include <string>

#include "model/export.h"

/// The enumerations and small records that every room names.
///
/// The numbers are part of the contract: they travel through notification parameters and through
/// saved layouts.
namespace QB {

/// The server family that an engine serves.
enum DatabaseType : std::int32_t {
    DatabaseTypeNone = 0,
    DatabaseTypeMySQL = 1,
    DatabaseTypePostgreSQL = 2,
    DatabaseTypeOracle = 3,
    DatabaseTypeSQLite = 4,
    DatabaseTypeSQLServer = 5,
    DatabaseTypeMariaDB = 6,
    DatabaseTypeReserved = 7,
    DatabaseTypeMongoDB = 8,
};

/// The seven clauses of a statement, in the order in which the statement holds them.
enum TopLevelQueryComponentElementEnum : std::int32_t {
    ElementSelectColumn = 0,
    ElementSource = 1,
    ElementWhere = 2,
    ElementGroupBy = 3,
    ElementHaving = 4,
    ElementOrderBy = 5,
    ElementLimit = 6,
};

/// The operator of a comparison. The values 8 to 13, 16 and 17 are conveniences of the editor:
/// parsed text never yields them.
enum CompareOp : std::int32_t {
    CompareOpNone = -1,  ///< none of the operators below: the comparison is kept as free text
    CompareOpEqual = 0,
    CompareOpNotEqual = 1,
    CompareOpLess = 2,
    CompareOpLessOrEqual = 3,
    CompareOpGreater = 4,
    CompareOpGreaterOrEqual = 5,
    CompareOpLike = 6,
    CompareOpNotLike = 7,
    CompareOpContains = 8,
    CompareOpNotContains = 9,
    CompareOpBeginsWith = 10,
    CompareOpNotBeginsWith = 11,
    CompareOpEndsWith = 12,
    CompareOpNotEndsWith = 13,
    CompareOpIsNull = 14,
    CompareOpIsNotNull = 15,
    CompareOpIsEmpty = 16,
    CompareOpIsNotEmpty = 17,
    CompareOpBetween = 18,
    CompareOpNotBetween = 19,
    CompareOpIn = 20,
    CompareOpNotIn = 21,
};

/// The kind of a join. Comma and cross are the two kinds that take no condition.
enum SQLJoinType : std::int32_t {
    SQLJoinTypeCustom = 0,
    SQLJoinTypeComma = 1,
    SQLJoinTypeInner = 2,
    SQLJoinTypeLeft = 3,
    SQLJoinTypeRight = 4,
    SQLJoinTypeCross = 5,
    SQLJoinTypeFullOuter = 6,
};

/// How a condition joins the condition before it in a chain.
enum SQLLogicGate : std::int32_t {
    SQLLogicGateNone = -1,  ///< the first of a chain
    SQLLogicGateOr = 0,
    SQLLogicGateAnd = 1,
};

enum OrderDirection : std::int32_t {
    OrderDirectionNone = 0,
    OrderDirectionAscending = 1,
    OrderDirectionDescending = 2,
};

/// The kind of an identifier candidate; the host sets it, icons are chosen by it.
enum IdentifierType : std::int32_t {
    IdentifierTypeQuery = 0,  ///< a stored query, and the root of the candidate tree
    IdentifierTypeSchema = 1,
    IdentifierTypeTable = 2,
    IdentifierTypeView = 3,
    IdentifierTypeMaterializedView = 4,
    IdentifierTypeReserved = 5,
    IdentifierTypeField = 6,
};

/// True for the families 1 to 6, which have a statement model.
QB_EXPORT bool hasStatementModel(DatabaseType type);

/// The dialect number that the SQL parser uses for a family; MariaDB is parsed as MySQL.
/// Errors: throws std::runtime_error "Unexpected Database Type" for a value of 7 or above.
QB_EXPORT int parserDialect(DatabaseType type);

/// The join operator as the tools and rows write it, "[Custom Join]" for the custom kind;
/// empty for a value outside the enumeration.
QB_EXPORT std::string joinTypeText(SQLJoinType type);

/// A stretch of text: `[location, location + length)`, in bytes.
struct QBRange {
    std::int32_t location = 0;
    std::int32_t length = 0;
};

inline bool operator==(QBRange a, QBRange b) {
    return a.location == b.location && a.length == b.length;
}
inline bool operator!=(QBRange a, QBRange b) {
    return !(a == b);
}

/// Where a table-like object lies. Ordered byte-wise by schema, then object.
struct QB_EXPORT QBIdentifierObjectPath {
    std::string schema;
    std::string object;
};
QB_EXPORT bool operator<(const QBIdentifierObjectPath& a, const QBIdentifierObjectPath& b);
QB_EXPORT bool operator==(const QBIdentifierObjectPath& a, const QBIdentifierObjectPath& b);

/// Where a field lies. Ordered byte-wise by schema, object, field.
struct QB_EXPORT QBIdentifierFieldPath {
    std::string schema;
    std::string object;
    std::string field;
};
QB_EXPORT bool operator<(const QBIdentifierFieldPath& a, const QBIdentifierFieldPath& b);
QB_EXPORT bool operator==(const QBIdentifierFieldPath& a, const QBIdentifierFieldPath& b);

/// Family and version of the server. The version is the host's number: 80036 for MySQL 8.0.36,
/// 3040001 for SQLite 3.40.1, 120100 for Oracle 12.1, 11000000 for SQL Server 11.
struct QBDatabaseInfo {
    DatabaseType databaseType = DatabaseTypeNone;
    int databaseVersion = 0;
};

}  // namespace QB
