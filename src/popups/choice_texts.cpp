#include "popups/choice_texts.h"

#include <QGuiApplication>
#include <QStringList>

#include "model/kind_of.h"

namespace QB {

using namespace Component::SQL;

namespace {

QString fieldText(const SQLFieldColumnComponent& field) {
    const QString name = field.isAsterisk ? QStringLiteral("*") : utf8Text(field.fieldName);
    if (field.aggregateFunction.empty()) return name;
    return QStringLiteral("%1(%2)").arg(utf8Text(field.aggregateFunction), name);
}

}  // namespace

QString utf8Text(const std::string& text) {
    return QString::fromStdString(text);
}

QString pathText(const std::vector<std::string>& names, const std::string& alias) {
    QStringList all;
    for (const std::string& name : names)
        all.append(utf8Text(name));
    const QString path = all.join(QLatin1Char('.'));
    return alias.empty() ? path : path + QStringLiteral(" AS ") + utf8Text(alias);
}

QString starText(const QString& of) {
    const QString text = of + QStringLiteral(" (*)");
    if (!QGuiApplication::isRightToLeft()) return text;
    constexpr QChar beginOfLeftToRight(0x2066);
    constexpr QChar end(0x2069);
    return beginOfLeftToRight + text + end;
}

QString shortened(const QString& text) {
    constexpr int longest = 80;
    constexpr int looked = 10 * longest;
    const QString line = text.left(looked).simplified();
    return line.size() <= longest ? line : line.left(longest - 1) + QChar(0x2026);
}

bool canBeChosenAgain(const SQLAbstractColumnComponent& column) {
    const auto* field = ifKind<SQLFieldColumnComponent>(&column);
    const bool isWildcard = field && field->isAsterisk && field->aggregateFunction.empty();
    return !isWildcard && (field || !column.alias.empty());
}

QString selectColumnText(const SQLAbstractColumnComponent& column) {
    const auto* field = ifKind<SQLFieldColumnComponent>(&column);
    const auto* expression = ifKind<SQLAnyExpressionColumnComponent>(&column);
    QString name;
    if (field) name = fieldText(*field);
    if (expression) name = shortened(utf8Text(expression->expression));
    return column.alias.empty() ? name
                                : QStringLiteral("%1 (%2)").arg(name, utf8Text(column.alias));
}

}  // namespace QB
