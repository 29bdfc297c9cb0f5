#include "apps/joinery-desk/workspace.h"

namespace QB::Desk {

Workspace::~Workspace() {
    // An engine leaves its statement behind; without a family it has none. Subqueries go first.
    m_engine->resetUi();
    m_engine->setDatabaseInfo(DatabaseTypeNone, 0);
}

QBIdentifierCandidate* Workspace::defaultSchemaCandidate() const {
    return m_engine->findChildCandidate(nullptr, m_database.defaultSchema());
}

}  // namespace QB::Desk
