// Makes the generator known to the rooms that cannot include it.

#include "model/statement_text.h"
#include "stringifier/query_component_stringifier.h"

namespace QB {
namespace {

std::string textOf(const Component::AbstractQueryComponent* component, QBDatabaseInfo info,
                   const std::string& schema, const QuoteName& quote) {
    const auto stringifier = QBQueryComponentStringifier::createStringifier(info);
    if (!stringifier) return {};
    stringifier->setCurrentSchema(schema);
    stringifier->setQuoteName(quote);
    return stringifier->stringifyQuery(component);
}

struct Installer {
    Installer() { installStatementText(textOf); }
};
const Installer installer;

}  // namespace
}  // namespace QB
