#include "stringifier/query_component_stringifier.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "model/callbacks.h"
#include "stringifier/dialects.h"

namespace QB {

std::unique_ptr<QBQueryComponentStringifier> QBQueryComponentStringifier::createStringifier(
    QBDatabaseInfo info) {
    switch (info.databaseType) {
        case DatabaseTypeMySQL:
            return std::make_unique<QBQueryComponentStringifier_MYSQL>(info);
        case DatabaseTypePostgreSQL:
            return std::make_unique<QBQueryComponentStringifier_PGSQL>(info);
        case DatabaseTypeOracle:
            return std::make_unique<QBQueryComponentStringifier_ORA>(info);
        case DatabaseTypeSQLite:
            return std::make_unique<QBQueryComponentStringifier_SQLITE>(info);
        case DatabaseTypeSQLServer:
            return std::make_unique<QBQueryComponentStringifier_MSSQL>(info);
        case DatabaseTypeMariaDB:
            return std::make_unique<QBQueryComponentStringifier_MARIADB>(info);
        case DatabaseTypeMongoDB:
            return std::make_unique<QBQueryComponentStringifier_MONGODB>(info);
        case DatabaseTypeNone:
        case DatabaseTypeReserved:
            break;
    }
    return nullptr;
}

QBQueryComponentStringifier::QBQueryComponentStringifier(QBDatabaseInfo info)
    : m_databaseInfo(info) {}

QBQueryComponentStringifier::~QBQueryComponentStringifier() = default;

void QBQueryComponentStringifier::setCurrentSchema(const std::string& schema) {
    m_currentSchema = schema;
}

void QBQueryComponentStringifier::setQuoteName(QuoteName quote) {
    m_quoteName = std::move(quote);
}

void QBQueryComponentStringifier::setParameter(const std::string& key, const QBVariant& value) {
    m_parameters.emplace(key, value);
}

std::string QBQueryComponentStringifier::stringifyQuery(
    const Component::AbstractQueryComponent* component) {
    m_ranges.clear();
    resetRun();
    ComponentRangeList ranges;
    std::string text = flatten(stringifyComponent(component, 0, {}), ranges);
    m_ranges = std::move(ranges);
    return text;
}

QBQueryComponentStringifier::Ranges QBQueryComponentStringifier::componentRanges() const {
    // Sorted first, so that every insertion goes to the end of the map. The sort is stable: of a
    // component met twice the first range comes first, and the map keeps that one.
    ComponentRangeList sorted = m_ranges;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const auto& a, const auto& b) { return std::less<>()(a.first, b.first); });
    Ranges ranges;
    for (const auto& [component, range] : sorted)
        ranges.emplace_hint(ranges.end(), component, range);
    return ranges;
}

std::string QBQueryComponentStringifier::newlineIndent(int level) {
    std::string indent = "\n";
    if (level > 0) indent.append(static_cast<std::size_t>(level), '\t');
    return indent;
}

std::string QBQueryComponentStringifier::quoted(const std::string& name) const {
    if (m_quoteName) return m_quoteName(name);
    return Callback::formatIdentifier(name, m_databaseInfo.databaseType,
                                      m_databaseInfo.databaseVersion);
}

const QBVariant* QBQueryComponentStringifier::parameter(const std::string& key) const {
    const auto found = m_parameters.find(key);
    return found == m_parameters.end() ? nullptr : &found->second;
}

void QBQueryComponentStringifier::resetRun() {}

}  // namespace QB
