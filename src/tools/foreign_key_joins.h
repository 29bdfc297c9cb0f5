#pragma once

#include <functional>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"
#include "tools/join_tools.h"

/// Joins that the foreign keys of the database propose.
namespace QB::Tools::SQL {

/// One foreign key between two sources of a statement, with all its pairs of fields in the order
/// of the key. A source is named by pointer and id: use it only while it is found by both (see
/// makeJoinLinksByForeignKeys).
struct ForeignKeyJoin {
    Component::SQL::SQLIdentifierSourceComponent* source;  // not owned
    long sourceId;
    Component::SQL::SQLIdentifierSourceComponent* foreign;  // not owned
    long foreignId;
    std::vector<FieldPair> fields;  ///< of source, of foreign
};

/// Looks up, on the dispatched thread, the foreign keys between @p source and the other tables of
/// the current statement, in both directions, and calls @p done on the main thread with all of
/// them: each key once for each source of the other table, those between the same two sources
/// together and in the order of the keys. Other sources of the same table are no partners.
/// Nothing is called when the engine goes before, or for a source without a path.
/// Thread: main.
void findForeignKeyJoins(QBEngine* engine, Component::SQL::SQLIdentifierSourceComponent* source,
                         std::function<void(const std::vector<ForeignKeyJoin>&)> done);

/// Links the sources of those that still stand in the current FROM clause; the others are skipped.
/// Thread: main.
void makeJoinLinksByForeignKeys(QBEngine* engine, void* sender,
                                const std::vector<ForeignKeyJoin>& joins);

/// For a table that was just added: looks up its foreign keys and links it to the other tables, by
/// the first key where several lie between the same two sources. Returns at once.
/// Thread: main.
void makeJoinLinkByForeignKeyIfNecessary(QBEngine* engine, void* sender,
                                         Component::SQL::SQLIdentifierSourceComponent* source);

}  // namespace QB::Tools::SQL
