#pragma once

#include <atomic>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/identifier_candidate.h"

namespace QB {

/// The candidates of one engine with the short mutex that guards their fields.
///
/// A null node stands for the root in every call. The mutex is held only while fields are read or
/// written, never while somebody waits.
/// Ownership: owns all nodes, also those that were taken out of the tree.
/// Thread: any.
class CandidateTree {
public:
    CandidateTree() = default;
    CandidateTree(const CandidateTree&) = delete;
    CandidateTree& operator=(const CandidateTree&) = delete;

    QBIdentifierCandidate* root() { return &m_root; }
    const QBIdentifierCandidate* root() const { return &m_root; }

    // What the accessor does; see there.
    QBIdentifierCandidate* addChild(QBIdentifierCandidate* parent);
    void clearChildren(QBIdentifierCandidate* parent);
    bool removeChild(QBIdentifierCandidate* parent, QBIdentifierCandidate* child);

    /// Runs @p use with the node under the mutex; @p use takes no lock and calls nothing here.
    void access(QBIdentifierCandidate* node,
                const std::function<void(QBIdentifierCandidate&)>& use);

    /// At most @p count children from the index @p first on.
    std::vector<QBIdentifierCandidateSnapshot> childrenSnapshot(
        const QBIdentifierCandidate* node, std::size_t first = 0,
        std::size_t count = std::string::npos) const;
    QBIdentifierCandidateSnapshot snapshot(const QBIdentifierCandidate* node) const;
    /// The names below the root, outermost first; also for a node that was taken out.
    std::vector<std::string> path(const QBIdentifierCandidate* node) const;
    /// Whether names that differ in case alone are names of different things, as at the start.
    void setNamesHaveCase(bool haveCase) { m_namesHaveCase = haveCase; }
    /// The first child of exactly that name, or else the first that goes by it; null if none does.
    QBIdentifierCandidate* findChild(const QBIdentifierCandidate* node,
                                     const std::string& name) const;
    bool hasChildren(const QBIdentifierCandidate* node) const;
    /// True if @p node hangs in the tree. Any address may be asked for: it is looked up, not read.
    bool contains(const QBIdentifierCandidate* node) const;

private:
    /// The node, the root for null, or null for an address that is not one of ours.
    const QBIdentifierCandidate* known(const QBIdentifierCandidate* node) const;
    QBIdentifierCandidate& orRoot(QBIdentifierCandidate* node) { return node ? *node : m_root; }

    std::atomic<bool> m_namesHaveCase{true};
    mutable std::mutex m_mutex;
    QBIdentifierCandidate m_root;
    std::deque<QBIdentifierCandidate> m_arena;
    /// Every node of the arena, and whether it is in its parent's list.
    std::unordered_map<const QBIdentifierCandidate*, bool> m_isAttached;
};

}  // namespace QB
