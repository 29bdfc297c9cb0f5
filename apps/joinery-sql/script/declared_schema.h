#pragma once

#include <string>
#include <utility>
#include <vector>

#include "engine/engine.h"

namespace QB::Cli {

/// Tables and foreign keys that a script states itself, in place of a database.
/// Thread: changed on the main thread while no worker runs; workers read it.
class DeclaredSchema {
public:
    struct Key {
        QBIdentifierObjectPath from;
        QBIdentifierObjectPath to;
        std::vector<std::pair<std::string, std::string>> fields;  ///< of from, of to
    };

    /// Errors: a Refusal for a table that is there already, or a field that comes twice.
    void addTable(const QBIdentifierObjectPath& path, const std::vector<std::string>& fields);
    /// Errors: a Refusal for a table or field that is not there.
    void addKey(const Key& key);

    /// @name What the engine asks a host for
    /// @{
    void fillChildren(IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node) const;
    std::vector<QBForeignKeyConstraint> findKeys(
        const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others) const;
    /// @}

private:
    struct Table {
        QBIdentifierObjectPath path;
        std::vector<std::string> fields;
    };

    const Table* find(const QBIdentifierObjectPath& path) const;
    void requireField(const QBIdentifierObjectPath& path, const std::string& field) const;

    std::vector<Table> m_tables;
    std::vector<Key> m_keys;
};

}  // namespace QB::Cli
