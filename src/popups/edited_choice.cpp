#include "popups/edited_choice.h"

#include <algorithm>

#include "model/element_expressions.h"
#include "model/kind_of.h"
#include "model/tree_walks.h"
#include "tools/identifier_tools.h"
#include "tools/validation_scope.h"

namespace QB {

using namespace Component;
using namespace Component::SQL;

namespace {

using Rows = std::vector<ChoiceRow>;

/// Whether @p source, which may be gone, is in the current layer.
bool isLive(const SQLAbstractSourceComponent* source, const QBEngine* engine) {
    const auto* statement = Tools::Validation::currentStatement(engine);
    bool isFound = false;
    if (!statement || !source) return isFound;
    Tools::visitSourceNodes(statement->sourceExpr->root, [&](const SourceNode* node) {
        isFound = isFound || node->value == source;
    });
    return isFound;
}

long idOfLiveColumn(const SQLAbstractColumnComponent* column, const QBEngine* engine) {
    const auto* statement = Tools::Validation::currentStatement(engine);
    if (!statement || !column) return -1;
    const auto& columns = statement->selectColumnExpr->columns;
    return std::find(columns.begin(), columns.end(), column) == columns.end() ? -1 : column->id();
}

EditedChoice ofSource(const SQLIdentifierSourceComponent& source, const QBEngine* engine) {
    EditedChoice edited;
    edited.kind = EditedChoice::Source;
    const std::string schema = engine ? engine->currentSchema() : std::string();
    edited.names = Tools::Identifier::tablePath(source.path, source.name, schema);
    return edited;
}

void noteSource(EditedChoice& edited, const SQLAbstractSourceComponent& source) {
    edited.sourceId = source.id();
    edited.alias = source.alias;
    edited.names.clear();
    const auto* table = ifKind<SQLIdentifierSourceComponent>(&source);
    if (!table) return;
    edited.names = table->path;
    edited.names.push_back(table->name);
}

EditedChoice ofField(const SQLFieldColumnComponent& column, const QBEngine* engine) {
    EditedChoice edited;
    edited.kind = EditedChoice::Field;
    edited.columnId = column.id();
    edited.names = column.parentPath;
    if (isLive(column.source, engine)) noteSource(edited, *column.source);
    edited.referencedColumnId = idOfLiveColumn(column.referencedColumn, engine);
    edited.isAsterisk = column.isAsterisk;
    edited.fieldName = column.fieldName;
    edited.aggregateFunction = column.aggregateFunction;
    return edited;
}

EditedChoice ofExpression(const std::string& text) {
    EditedChoice edited;
    edited.kind = EditedChoice::Expression;
    edited.expression = text;
    return edited;
}

template <typename Wanted>
std::optional<ChoiceRow> findRow(const Rows& rows, const Wanted& isWanted) {
    const auto found = std::find_if(rows.begin(), rows.end(), isWanted);
    return found == rows.end() ? std::nullopt : std::optional<ChoiceRow>(*found);
}

std::optional<ChoiceRow> findObject(const ChoiceNode& node, const std::vector<std::string>& names) {
    if (names.size() < 2) return std::nullopt;
    const QString schema = QString::fromStdString(names[names.size() - 2]);
    const QString name = QString::fromStdString(names.back());
    if (node.heading.data.catalogOrSchemaName != schema) return std::nullopt;
    return findRow(node.rows, [&](const ChoiceRow& row) { return row.data.objectName == name; });
}

/// As it is written, or else with other letters: most servers take both for the same.
std::optional<ChoiceRow> findField(const ChoiceNode& node, const std::string& fieldName) {
    const QString name = QString::fromStdString(fieldName);
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive}) {
        const auto isWanted = [&](const ChoiceRow& row) {
            return row.kind == ChoiceKind::Field &&
                   row.data.fieldName.compare(name, sensitivity) == 0;
        };
        if (auto found = findRow(node.rows, isWanted)) return found;
    }
    return std::nullopt;
}

bool goesBy(const ChoiceNode& node, const std::vector<std::string>& names) {
    if (!node.alias.empty()) return names.size() == 1 && names.front() == node.alias;
    const bool isBareName = names.size() == 1 && !node.names.empty();
    return !names.empty() && (names == node.names || (isBareName && names[0] == node.names.back()));
}

/// The first row that @p findInNode finds.
template <typename FindInNode>
std::optional<ChoiceRow> findFirst(const ChoiceTree& tree, const FindInNode& findInNode) {
    for (const ChoiceNode& node : tree.nodes()) {
        if (auto found = findInNode(node)) return found;
    }
    return std::nullopt;
}

std::optional<ChoiceRow> findSelectColumn(const ChoiceTree& tree, long id) {
    return findFirst(tree, [id](const ChoiceNode& node) {
        return findRow(node.rows, [id](const ChoiceRow& row) {
            return row.kind == ChoiceKind::SelectColumn && row.componentId == id;
        });
    });
}

std::optional<ChoiceRow> findStarOfAll(const ChoiceTree& tree) {
    return findFirst(tree, [](const ChoiceNode& node) -> std::optional<ChoiceRow> {
        if (node.heading.kind != ChoiceKind::Star) return std::nullopt;
        return node.heading;
    });
}

/// A field that is written without a table: that of the one table that has it.
std::optional<ChoiceRow> findUnqualified(const ChoiceTree& tree, const std::string& fieldName) {
    std::vector<ChoiceRow> found;
    for (const ChoiceNode& node : tree.nodes()) {
        if (const auto row = findField(node, fieldName)) found.push_back(*row);
    }
    return found.size() == 1 ? std::optional<ChoiceRow>(found.front()) : std::nullopt;
}

/// A source that is in the statement goes by its id, or by the names of the one that is listed for
/// both.
bool isSourceOf(const ChoiceNode& node, const EditedChoice& edited) {
    if (node.heading.kind != ChoiceKind::Heading) return false;
    if (edited.sourceId == -1) return goesBy(node, edited.names);
    const bool isTwin =
        !node.names.empty() && node.names == edited.names && node.alias == edited.alias;
    return node.heading.componentId == edited.sourceId || isTwin;
}

const ChoiceNode* findSource(const ChoiceTree& tree, const EditedChoice& edited) {
    const auto& nodes = tree.nodes();
    const auto found = std::find_if(nodes.begin(), nodes.end(), [&edited](const ChoiceNode& node) {
        return isSourceOf(node, edited);
    });
    return found == nodes.end() ? nullptr : &*found;
}

}  // namespace

EditedChoice EditedChoice::of(const AbstractQueryComponent* component, const QBEngine* engine) {
    if (const auto* value = ifKind<SQLConditionValueComponent>(component))
        component = value->firstValue();
    if (const auto* source = ifKind<SQLIdentifierSourceComponent>(component))
        return ofSource(*source, engine);
    if (const auto* column = ifKind<SQLFieldColumnComponent>(component))
        return ofField(*column, engine);
    if (const auto* source = ifKind<SQLAnyExpressionSourceComponent>(component))
        return ofExpression(source->expression);
    if (const auto* column = ifKind<SQLAnyExpressionColumnComponent>(component))
        return ofExpression(column->expression);
    return {};
}

std::optional<ChoiceRow> EditedChoice::findIn(const ChoiceTree& tree) const {
    if (kind == Source)
        return findFirst(tree, [this](const ChoiceNode& node) { return findObject(node, names); });
    if (kind != Field) return std::nullopt;
    if (referencedColumnId != -1) return findSelectColumn(tree, referencedColumnId);
    const bool isUnqualified = sourceId == -1 && names.empty();
    if (isUnqualified) return isAsterisk ? findStarOfAll(tree) : findUnqualified(tree, fieldName);
    const ChoiceNode* const source = findSource(tree, *this);
    if (!source) return std::nullopt;
    if (!isAsterisk) return findField(*source, fieldName);
    return findRow(source->rows, [](const ChoiceRow& row) { return row.kind == ChoiceKind::Star; });
}

}  // namespace QB
