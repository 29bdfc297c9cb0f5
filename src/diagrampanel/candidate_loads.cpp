#include "diagrampanel/candidate_loads.h"

#include "engine/engine.h"

namespace QB {

bool isLoadDecided(const QBEngine& engine, const std::vector<std::string>& path,
                   const QBIdentifierCandidate* ended) {
    const QBIdentifierCandidate* const root = engine.identifierCandidateRootNode();
    const QBIdentifierCandidate* node = root;
    for (const std::string& name : path) {
        const QBIdentifierCandidate* const child = engine.findChildCandidate(node, name);
        if (!child) break;
        node = child;
    }
    return node == (ended ? ended : root) || engine.candidateSnapshot(node).hasChildren;
}

}  // namespace QB
