#pragma once

#include <functional>
#include <vector>

#include "engine/engine.h"
#include "model/components.h"
#include "tools/join_tools.h"

/// Joins that the foreign keys of the database propose.
namespace QB::Tools::SQL {

/// One foreign key between two sources of a statement, with all its pairs of fields in the order
/// of the key. A source is named by pointer and id, since it may go at any time: before it is
/// touched, it is looked up among the sources of a statement by address, and the ids are compared.
struct ForeignKeyJoin {
    Component::SQL::SQLIdentifierSourceComponent* source;  // not owned
    long sourceId;
    Component::SQL::SQLIdentifierSourceComponent* foreign;  // not owned
    long foreignId;
    std::vector<FieldPair> fields;  ///< of source, of foreign
    bool isOfSource;                ///< source refers to foreign; else foreign to source
};

/// Looks up, on the dispatched thread, the foreign keys between @p source and the other tables of
/// the current statement, in both directions, and calls @p done on the main thread with all of
/// them: each key once for each source of the other table, those between the same two sources
/// together and in the order of the keys (QBEngineCore::foreignKeys). Other sources of the same
/// table are no partners, and neither are sources without a path.
/// The statement is the one that is current at the call, as the worker finds it; what has gone
/// since may be among the answers.
/// Nothing is called when the engine goes before, for a source without a path, and without a
/// statement. Where the host's function throws, @p done is called with nothing, and the exception
/// goes on to the host's dispatched thread.
/// Thread: main. Copies of @p done may be destroyed on another one.
void findForeignKeyJoins(QBEngine* engine, Component::SQL::SQLIdentifierSourceComponent* source,
                         std::function<void(const std::vector<ForeignKeyJoin>&)> done);

/// Links the sources of those that still stand in the current FROM clause, each with one
/// modification and a condition for every pair; the others are skipped, and so are keys of which
/// the joins compare all pairs already.
/// Thread: main.
void makeJoinLinksByForeignKeys(QBEngine* engine, void* sender,
                                const std::vector<ForeignKeyJoin>& joins);

/// For a table that was just added: looks up its foreign keys and links it to each source of the
/// other tables that joins do not compare it with yet. Returns at once.
///
/// Where several keys lie between two sources, the first is taken. One whose fields are linked with
/// another source of the table that they refer to gives way to the next: with two languages in the
/// query, a film has one as its language and the other as its original language.
/// Thread: main.
void makeJoinLinkByForeignKeyIfNecessary(QBEngine* engine, void* sender,
                                         Component::SQL::SQLIdentifierSourceComponent* source);

}  // namespace QB::Tools::SQL
