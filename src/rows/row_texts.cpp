#include "rows/row_texts.h"

#include <QBoxLayout>
#include <QStringList>
#include <algorithm>

#include "model/kind_of.h"
#include "platform/tolk/tolk.h"
#include "rows/invalid_reason.h"
#include "stringifier/query_component_stringifier.h"

namespace QB {

using namespace Component::SQL;

namespace {

/// More than any tooltip shows.
constexpr std::size_t longestShown = 8192;
constexpr int charactersForCaption = 36;

QString nameText(const std::string& name) {
    return QString::fromStdString(name);
}

/// The names of @p path from @p first on, each with a dot behind it.
QString dotted(const std::vector<std::string>& path, std::size_t first) {
    QString text;
    for (std::size_t i = first; i < path.size(); ++i)
        text += nameText(path[i]) + QLatin1Char('.');
    return text;
}

bool mayLeaveOut(const std::string& schema, const RowDatabase& database) {
    return !database.schema.empty() && schema == database.schema;
}

bool isSameName(const std::string& a, const std::string& b) {
    return nameText(a).compare(nameText(b), Qt::CaseInsensitive) == 0;
}

/// The qualifiers of a table without what may be left out, each with a dot behind it.
QString tableQualifiers(const SQLIdentifierSourceComponent* source, const RowDatabase& database) {
    const bool isBare = source->path.size() == 1 && mayLeaveOut(source->path.front(), database);
    return dotted(source->path, isBare ? 1 : 0);
}

/// What a field is written with before its name, as the text of the statement has it.
QString fieldQualifiers(const SQLFieldColumnComponent* field, const RowDatabase& database) {
    if (field->source && !field->source->alias.empty())
        return nameText(field->source->alias) + QLatin1Char('.');
    const std::vector<std::string>& path = field->parentPath;
    const auto* table = ifKind<SQLIdentifierSourceComponent>(field->source);
    // Without qualifiers, or with an alias that has gone since: by its table.
    if (table && (path.empty() || !isSameName(path.back(), table->name)))
        return tableQualifiers(table, database) + nameText(table->name) + QLatin1Char('.');
    const bool isSchemaDropped = path.size() >= 2 && mayLeaveOut(path.front(), database);
    return dotted(path, isSchemaDropped ? 1 : 0);
}

RowText qualifiedField(const SQLFieldColumnComponent* field, const RowDatabase& database) {
    const QString qualifiers = fieldQualifiers(field, database);
    if (field->isAsterisk) return {qualifiers + QLatin1Char('*')};
    if (field->fieldName.empty() && qualifiers.isEmpty())
        return textOrPrompt({}, Tolk::TextPromptColumn);
    const QString name = textOrPrompt(nameText(field->fieldName), Tolk::TextPromptColumn).text;
    if (!qualifiers.isEmpty()) return {qualifiers + name};
    return {promptText(Tolk::TextPromptTable) + QLatin1Char('.') + name};
}

RowText fieldText(const SQLFieldColumnComponent* field, const RowDatabase& database) {
    const SQLAbstractColumnComponent* referenced = field->referencedColumn;
    const bool isNamed = referenced && !referenced->alias.empty();
    const RowText text =
        isNamed ? RowText{nameText(referenced->alias)} : qualifiedField(field, database);
    if (field->aggregateFunction.empty()) return text;
    return {nameText(field->aggregateFunction) + QLatin1Char('(') + text.text + QLatin1Char(')')};
}

}  // namespace

QString promptText(Tolk::TextId id) {
    return QLatin1Char('<') + Tolk::localize(id) + QLatin1Char('>');
}

RowText textOrPrompt(const QString& text, Tolk::TextId prompt) {
    if (!text.isEmpty()) return {text};
    return {promptText(prompt), LabelColour::Placeholder};
}

RowText aliasText(const std::string& alias) {
    if (alias.empty()) return textOrPrompt({}, Tolk::TextPromptAlias);
    return {QLatin1Char('(') + nameText(alias) + QLatin1Char(')')};
}

RowText logicGateText(SQLLogicGate gate) {
    if (gate == SQLLogicGateOr) return {Tolk::localize(Tolk::TextOrWord), LabelColour::Operator};
    if (gate == SQLLogicGateAnd) return {Tolk::localize(Tolk::TextAndWord), LabelColour::Operator};
    return textOrPrompt({}, Tolk::TextPromptLogicWord);
}

RowText directionText(const SQLAbstractColumnComponent* column) {
    using ExtraData = SQLAbstractColumnComponent::ExtraDataOrderDirection;
    const auto* extra = column ? ifKind<ExtraData>(column->extraData) : nullptr;
    const OrderDirection direction = extra ? extra->direction : OrderDirectionNone;
    if (direction == OrderDirectionAscending) return {Tolk::localize(Tolk::TextAscending)};
    if (direction == OrderDirectionDescending) return {Tolk::localize(Tolk::TextDescending)};
    return textOrPrompt({}, Tolk::TextPromptDirection);
}

QString tableName(const SQLIdentifierSourceComponent* source, const RowDatabase& database) {
    if (source->name.empty()) return QString();
    RowDatabase known = database;
    // SQL Server is given the schema of a table even where it is the current one.
    if (known.info.databaseType == DatabaseTypeSQLServer) known.schema.clear();
    return tableQualifiers(source, known) + nameText(source->name);
}

RowText columnText(const SQLAbstractColumnComponent* column, const RowDatabase& database) {
    if (const auto* field = ifKind<SQLFieldColumnComponent>(column))
        return fieldText(field, database);
    const auto* expression = ifKind<SQLAnyExpressionColumnComponent>(column);
    return textOrPrompt(expression ? oneLine(expression->expression) : QString(),
                        Tolk::TextPromptExpression);
}

QString textInOneLine(const Component::AbstractQueryComponent* component,
                      const RowDatabase& database) {
    const auto stringifier = QBQueryComponentStringifier::createStringifier(database.info);
    if (!stringifier) return QString();
    stringifier->setCurrentSchema(database.schema);
    stringifier->setParameter(partLeavesOutSchemaKey, QBVariant(1));
    return oneLine(stringifier->stringifyQuery(component));
}

QString oneLine(const std::string& text) {
    const auto length = static_cast<int>(std::min(text.size(), longestShown));
    const QString start = QString::fromUtf8(text.data(), length);
    QString line;
    line.reserve(start.size());
    for (const QString& each : start.split(QLatin1Char('\n'), Qt::SkipEmptyParts)) {
        const QString trimmed = each.trimmed();
        if (!line.isEmpty() && !trimmed.isEmpty()) line += QLatin1Char(' ');
        line += trimmed;
    }
    return line;
}

void showRowText(QBLabel* label, const RowText& text, int reason) {
    showRowText(label, text, reason < 0 ? QString() : invalidReasonText(reason));
}

void showRowText(QBLabel* label, const RowText& text, const QString& why) {
    const QString toolTip = text.toolTip.isEmpty() ? text.text : text.toolTip;
    label->setText(text.text);
    label->setLabelColour(why.isEmpty() ? text.colour : LabelColour::Invalid);
    label->setToolTipText(why.isEmpty() ? toolTip : why + QLatin1Char('\n') + toolTip);
    if (label->accessibleDescription() != why) label->setAccessibleDescription(why);
}

void showCaptionIfRoom(QBLabel* caption, const QWidget* row) {
    caption->setVisible(row->width() >=
                        charactersForCaption * row->fontMetrics().averageCharWidth());
}

void showNegation(QBLabel* label, QBoxLayout* layout, QWidget* last, bool isNegated,
                  bool isOffered) {
    const bool isInFront = layout->indexOf(label) == 0;
    if (isNegated != isInFront) {
        layout->removeWidget(label);
        layout->insertWidget(isNegated ? 0 : layout->indexOf(last) + 1, label);
    }
    showRowText(label, {Tolk::localize(Tolk::TextNotWord),
                        isNegated ? LabelColour::Operator : LabelColour::Placeholder,
                        Tolk::localize(Tolk::TextNegateCondition)});
    label->setVisible(isNegated || isOffered);
}

void copyVisibility(const QWidget* row, QWidget* other) {
    for (const QBLabel* label : row->findChildren<QBLabel*>()) {
        auto* twin = other->findChild<QBLabel*>(label->objectName());
        if (twin) twin->setVisible(!label->isHidden());
    }
}

}  // namespace QB
