#pragma once

#include <string>
#include <vector>

namespace QB {

class QBEngine;
struct QBIdentifierCandidate;

/// Whether nothing more is to come of a load of the node at @p path, now that a load of @p ended
/// (null stands for the root) has ended: it was that one, its children are there, or the node is
/// not. Names of @p path are read as the server does. Thread: any.
bool isLoadDecided(const QBEngine& engine, const std::vector<std::string>& path,
                   const QBIdentifierCandidate* ended);

}  // namespace QB
