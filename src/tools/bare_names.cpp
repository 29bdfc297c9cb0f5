#include "tools/bare_names.h"

#include <algorithm>
#include <set>

#include "layouts/source_tree_surgery.h"
#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/names.h"
#include "model/tree_walks.h"
#include "tools/identifier_tools.h"
#include "tools/subquery_fields.h"
#include "tools/validation_scope.h"

namespace QB::Tools::SQL {

using namespace Component::SQL;

namespace {

using Names = std::set<std::string>;

Names bareNamesOf(const SQLSelectStmtComponent* statement) {
    Names names;
    for (const SQLAbstractColumnComponent* column : statement->selectColumnExpr->columns) {
        const auto* field = ifKind<SQLFieldColumnComponent>(column);
        if (field && isBareName(*field)) names.insert(field->fieldName);
    }
    return names;
}

/// The sources of a statement that have fields, and which of some names they have.
class KnownFields {
public:
    KnownFields(QBEngine* engine, const SQLSelectStmtComponent* statement, const Names& names)
        : m_engine(engine), m_haveCase(namesHaveCase(engine->databaseType())), m_lookup(engine) {
        visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
            if (SourceTree::isLeaf(node->value)) add(node->value, names);
        });
        m_lookup.run();
    }

    const SQLAbstractSourceComponent* ownerOf(const std::string& name) const {
        if (m_unknown) return m_tables.empty() && m_lists.empty() ? m_single : nullptr;
        std::vector<const SQLAbstractSourceComponent*> owners;
        for (const auto& [source, table] : m_tables)
            if (!m_lookup.isMissing(table, name)) owners.push_back(source);
        for (const auto& [source, fields] : m_lists)
            if (fields.count(foldedName(name, m_haveCase)) > 0) owners.push_back(source);
        return owners.size() == 1 ? owners.front() : nullptr;
    }

private:
    using Source = SQLAbstractSourceComponent;

    void add(const Source* source, const Names& names) {
        if (const auto* derived = ifKind<SQLSubquerySourceComponent>(source)) {
            Names& fields = m_lists[source];
            for (const std::string& field : knownSubqueryFields(m_engine, derived))
                fields.insert(foldedName(field, m_haveCase));
            return;
        }
        const auto* const table =
            Identifier::findTargetIdentifierCandidate(source, m_engine, true).candidate;
        if (!table || !m_engine->candidateSnapshot(table).hasChildren) return addUnknown(source);
        m_tables[source] = table;
        for (const std::string& name : names)
            m_lookup.add(table, name);
    }

    void addUnknown(const Source* source) { m_single = m_unknown++ ? nullptr : source; }

    QBEngine* const m_engine;
    const bool m_haveCase;
    Validation::FieldLookup m_lookup;
    std::map<const Source*, const QBIdentifierCandidate*> m_tables;
    std::map<const Source*, Names> m_lists;  // of subqueries
    int m_unknown = 0;
    const Source* m_single = nullptr;  // the one of which nothing is known
};

}  // namespace

bool isBareName(const SQLFieldColumnComponent& field) {
    return !field.source && field.parentPath.empty() && !field.referencedColumn &&
           !field.isAsterisk && field.aggregateFunction.empty();
}

BareNames::BareNames(QBEngine* engine, const SQLSelectStmtComponent* statement) {
    const Names names = engine && statement ? bareNamesOf(statement) : Names();
    if (names.empty()) return;
    const KnownFields known(engine, statement, names);
    for (const std::string& name : names)
        m_owners.emplace(name, known.ownerOf(name));
}

const BareNames::Source* BareNames::ownerOf(const std::string& name) const {
    const auto owner = m_owners.find(name);
    return owner == m_owners.end() ? nullptr : owner->second;
}

}  // namespace QB::Tools::SQL
