#include "model/statement_text.h"

#include <atomic>

namespace QB {
namespace {

// Initialised before any dynamic initialiser runs, so that these may install.
std::atomic<StatementText> installed{nullptr};

}  // namespace

void installStatementText(StatementText function) {
    installed.store(function);
}

StatementText statementText() {
    return installed.load();
}

}  // namespace QB
