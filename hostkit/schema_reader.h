#pragma once

#include <QString>
#include <string>
#include <vector>

#include "engine/identifier_candidate.h"
#include "hostkit/database.h"

namespace QB::HostKit {

/// The bits of a candidate's tag.
enum CandidateTag : quint64 {
    TagPrimaryKey = 1,    ///< field: part of the primary key
    TagNotNull = 2,       ///< field: declared NOT NULL
    TagGenerated = 4,     ///< field: computed by the server
    TagVirtualTable = 8,  ///< table: a virtual table
};

/// Rows, or the text for the user of why there are none.
template <typename Row>
struct Fetched {
    std::vector<Row> rows;
    QString error;

    bool isOk() const { return error.isEmpty(); }
};

struct SchemaObject {
    std::string name;
    IdentifierType type = IdentifierTypeTable;
    quint64 tag = 0;
};

struct SchemaColumn {
    std::string name;
    std::string declaredType;
    quint64 tag = 0;
};

/// One pair of fields of a foreign key; a composite key gives one for each pair.
struct ForeignKeyField {
    std::string constraint;  ///< the same in all fields of one key, different for each key
    std::string field;
    std::string referencedSchema;
    std::string referencedObject;
    std::string referencedField;  ///< empty: the referenced object lacks it
};

/// Reads what a database holds, over the calling thread's connection. Blocks for the server: use
/// it on a worker. Internal tables of the server and the shadow tables of virtual tables are left
/// out.
/// Thread: any; holds the database open.
class QB_EXPORT SchemaReader {
public:
    explicit SchemaReader(const Database& database);

    Fetched<SchemaObject> schemas() const;
    Fetched<SchemaObject> objects(const std::string& schema) const;
    Fetched<SchemaColumn> columns(const std::string& schema, const std::string& object) const;
    Fetched<ForeignKeyField> foreignKeys(const std::string& schema,
                                         const std::string& object) const;

    /// Fills the children of @p candidate (null: the root): schemas, then tables and views, then
    /// fields. On an error the children stay as they were. Children that are still there keep
    /// their nodes where the order allows it.
    /// Returns: empty, or the text for the user.
    [[nodiscard]] QString fillChildren(IQBIdentifierCandidateAccessor* accessor,
                                       QBIdentifierCandidate* candidate) const;

    /// The foreign keys between @p object and @p others, in both directions, each with all its
    /// pairs in the order of the key, referencing field first; self references when @p object is
    /// among the others. Those of @p object come first. Schemas and objects are spelled as in the
    /// arguments, fields as the server spells them. A key that refers to a field which does not
    /// exist is left out as a whole. An empty schema stands for the default one. An error is
    /// reported through @p error when given; what was found stays.
    std::vector<QBForeignKeyConstraint> findForeignKeyConstraints(
        const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others,
        QString* error = nullptr) const;

    /// The pairs of all these keys, without telling which belong together.
    QBForeignKeys findForeignKeys(const QBIdentifierObjectPath& object,
                                  const std::set<QBIdentifierObjectPath>& others,
                                  QString* error = nullptr) const;

private:
    Database m_database;
};

}  // namespace QB::HostKit
