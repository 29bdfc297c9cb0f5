#include "apps/joinery-sql/script/declared_schema.h"

#include <algorithm>
#include <set>

#include "apps/joinery-sql/script/refusal.h"

namespace QB::Cli {
namespace {

std::string shown(const QBIdentifierObjectPath& path) {
    return path.schema + '.' + path.object;
}

/// Names are only ever added, so those that are there already are the first of @p names.
void appendChildren(IQBIdentifierCandidateAccessor* accessor, QBIdentifierCandidate* node,
                    const std::vector<std::string>& names, IdentifierType type) {
    const auto present = static_cast<std::size_t>(accessor->childCount(node));
    for (std::size_t i = present; i < names.size(); ++i) {
        QBIdentifierCandidate* const child = accessor->addChild(node);
        accessor->setName(child, names[i]);
        accessor->setType(child, type);
    }
}

QBForeignKeyConstraint constraintOf(const DeclaredSchema::Key& key) {
    QBForeignKeyConstraint constraint;
    for (const auto& [from, to] : key.fields)
        constraint.push_back(
            {{key.from.schema, key.from.object, from}, {key.to.schema, key.to.object, to}});
    return constraint;
}

}  // namespace

void DeclaredSchema::addTable(const QBIdentifierObjectPath& path,
                              const std::vector<std::string>& fields) {
    if (find(path)) throw Refusal("there is a table " + shown(path) + " already");
    std::set<std::string> seen;
    for (const std::string& field : fields)
        if (!seen.insert(field).second)
            throw Refusal("the field " + field + " comes twice in " + shown(path));
    m_tables.push_back({path, fields});
}

void DeclaredSchema::addKey(const Key& key) {
    for (const auto& [from, to] : key.fields) {
        requireField(key.from, from);
        requireField(key.to, to);
    }
    m_keys.push_back(key);
}

void DeclaredSchema::fillChildren(IQBIdentifierCandidateAccessor* accessor,
                                  QBIdentifierCandidate* node) const {
    std::vector<std::string> names;
    if (!node) {
        for (const Table& table : m_tables)
            if (std::find(names.begin(), names.end(), table.path.schema) == names.end())
                names.push_back(table.path.schema);
        return appendChildren(accessor, nullptr, names, IdentifierTypeSchema);
    }
    const std::string name = accessor->name(node);
    if (accessor->type(node) == IdentifierTypeSchema) {
        for (const Table& table : m_tables)
            if (table.path.schema == name) names.push_back(table.path.object);
        return appendChildren(accessor, node, names, IdentifierTypeTable);
    }
    if (accessor->type(node) != IdentifierTypeTable) return;
    const Table* const table = find({accessor->name(accessor->parent(node)), name});
    if (table) appendChildren(accessor, node, table->fields, IdentifierTypeField);
}

std::vector<QBForeignKeyConstraint> DeclaredSchema::findKeys(
    const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>& others) const {
    std::vector<QBForeignKeyConstraint> found;
    for (const Key& key : m_keys) {
        const bool isFrom = key.from == object && others.count(key.to) > 0;
        const bool isTo = key.to == object && others.count(key.from) > 0;
        if (isFrom || isTo) found.push_back(constraintOf(key));
    }
    return found;
}

const DeclaredSchema::Table* DeclaredSchema::find(const QBIdentifierObjectPath& path) const {
    const auto found = std::find_if(m_tables.begin(), m_tables.end(),
                                    [&](const Table& table) { return table.path == path; });
    return found == m_tables.end() ? nullptr : &*found;
}

void DeclaredSchema::requireField(const QBIdentifierObjectPath& path,
                                  const std::string& field) const {
    const Table* const table = find(path);
    if (!table) throw Refusal("there is no table " + shown(path));
    if (std::find(table->fields.begin(), table->fields.end(), field) == table->fields.end())
        throw Refusal(shown(path) + " has no field " + field);
}

}  // namespace QB::Cli
