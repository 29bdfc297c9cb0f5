#include "engine/candidate_tree.h"

#include <algorithm>

#include "model/names.h"

namespace QB {
namespace {

QBIdentifierCandidateSnapshot snapshotOf(const QBIdentifierCandidate* node) {
    return {const_cast<QBIdentifierCandidate*>(node), node->name, node->type,
            !node->children.empty(), node->parent};
}

}  // namespace

QBIdentifierCandidate* CandidateTree::addChild(QBIdentifierCandidate* parent) {
    const std::lock_guard lock(m_mutex);
    QBIdentifierCandidate& owner = orRoot(parent);
    QBIdentifierCandidate& child = m_arena.emplace_back();
    child.parent = &owner;
    m_isAttached.emplace(&child, true);
    owner.children.push_back(&child);
    return &child;
}

void CandidateTree::clearChildren(QBIdentifierCandidate* parent) {
    const std::lock_guard lock(m_mutex);
    for (const QBIdentifierCandidate* child : orRoot(parent).children)
        m_isAttached[child] = false;
    orRoot(parent).children.clear();
}

bool CandidateTree::removeChild(QBIdentifierCandidate* parent, QBIdentifierCandidate* child) {
    const std::lock_guard lock(m_mutex);
    auto& children = orRoot(parent).children;
    const auto found = std::find(children.begin(), children.end(), child);
    if (found == children.end()) return false;
    children.erase(found);
    m_isAttached[child] = false;
    return true;
}

void CandidateTree::access(QBIdentifierCandidate* node,
                           const std::function<void(QBIdentifierCandidate&)>& use) {
    const std::lock_guard lock(m_mutex);
    use(orRoot(node));
}

const QBIdentifierCandidate* CandidateTree::known(const QBIdentifierCandidate* node) const {
    if (!node || node == &m_root) return &m_root;
    return m_isAttached.count(node) > 0 ? node : nullptr;
}

std::vector<QBIdentifierCandidateSnapshot> CandidateTree::childrenSnapshot(
    const QBIdentifierCandidate* node, std::size_t first, std::size_t count) const {
    const std::lock_guard lock(m_mutex);
    std::vector<QBIdentifierCandidateSnapshot> result;
    const QBIdentifierCandidate* const owner = known(node);
    if (!owner) return result;
    if (first >= owner->children.size()) return result;
    const std::size_t end = first + std::min(count, owner->children.size() - first);
    result.reserve(end - first);
    for (std::size_t i = first; i < end; ++i)
        result.push_back(snapshotOf(owner->children[i]));
    return result;
}

QBIdentifierCandidateSnapshot CandidateTree::snapshot(const QBIdentifierCandidate* node) const {
    const std::lock_guard lock(m_mutex);
    const QBIdentifierCandidate* const found = known(node);
    return found ? snapshotOf(found) : QBIdentifierCandidateSnapshot();
}

std::vector<std::string> CandidateTree::path(const QBIdentifierCandidate* node) const {
    const std::lock_guard lock(m_mutex);
    std::vector<std::string> names;
    for (node = known(node); node && node != &m_root; node = node->parent)
        names.push_back(node->name);
    std::reverse(names.begin(), names.end());
    return names;
}

QBIdentifierCandidate* CandidateTree::findChild(const QBIdentifierCandidate* node,
                                                const std::string& name) const {
    const std::lock_guard lock(m_mutex);
    const QBIdentifierCandidate* const owner = known(node);
    if (!owner) return nullptr;
    const auto find = [&](bool hasCase) {
        const auto found = std::find_if(owner->children.begin(), owner->children.end(),
                                        [&](const QBIdentifierCandidate* child) {
                                            return isSameName(child->name, name, hasCase);
                                        });
        return found == owner->children.end() ? nullptr : *found;
    };
    QBIdentifierCandidate* const exact = find(true);
    return exact || m_namesHaveCase ? exact : find(false);
}

bool CandidateTree::hasChildren(const QBIdentifierCandidate* node) const {
    return snapshot(node).hasChildren;
}

bool CandidateTree::contains(const QBIdentifierCandidate* node) const {
    const std::lock_guard lock(m_mutex);
    for (; node != &m_root; node = node->parent) {
        const auto found = m_isAttached.find(node);
        if (found == m_isAttached.end() || !found->second) return false;
    }
    return true;
}

}  // namespace QB
