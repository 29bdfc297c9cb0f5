#include "engine/identifier_candidate.h"

#include <utility>

#include "engine/engine_core.h"

namespace QB {

IQBIdentifierCandidateAccessor::~IQBIdentifierCandidateAccessor() = default;

QBEngineIdentifierCandidateAccessor::QBEngineIdentifierCandidateAccessor(
    std::shared_ptr<QBEngineCore> core)
    : m_core(std::move(core)) {}

QBEngineIdentifierCandidateAccessor::~QBEngineIdentifierCandidateAccessor() = default;

QBIdentifierCandidate* QBEngineIdentifierCandidateAccessor::addChild(
    QBIdentifierCandidate* parent) {
    return m_core->candidates.addChild(parent);
}

void QBEngineIdentifierCandidateAccessor::clearChildren(QBIdentifierCandidate* parent) {
    m_core->candidates.clearChildren(parent);
}

bool QBEngineIdentifierCandidateAccessor::removeChild(QBIdentifierCandidate* parent,
                                                      QBIdentifierCandidate* child) {
    return m_core->candidates.removeChild(parent, child);
}

int QBEngineIdentifierCandidateAccessor::childCount(QBIdentifierCandidate* parent) {
    int count = 0;
    m_core->candidates.access(parent, [&count](const QBIdentifierCandidate& node) {
        count = static_cast<int>(node.children.size());
    });
    return count;
}

QBIdentifierCandidate* QBEngineIdentifierCandidateAccessor::childAt(QBIdentifierCandidate* parent,
                                                                    int index) {
    QBIdentifierCandidate* child = nullptr;
    m_core->candidates.access(parent, [&child, index](const QBIdentifierCandidate& node) {
        child = node.children[static_cast<std::size_t>(index)];
    });
    return child;
}

QBIdentifierCandidate* QBEngineIdentifierCandidateAccessor::parent(
    QBIdentifierCandidate* candidate) {
    QBIdentifierCandidate* result = nullptr;
    m_core->candidates.access(
        candidate, [&result](const QBIdentifierCandidate& node) { result = node.parent; });
    return result == m_core->candidates.root() ? nullptr : result;
}

void QBEngineIdentifierCandidateAccessor::setName(QBIdentifierCandidate* candidate,
                                                  const std::string& name) {
    m_core->candidates.access(candidate,
                              [&name](QBIdentifierCandidate& node) { node.name = name; });
}

void QBEngineIdentifierCandidateAccessor::setType(QBIdentifierCandidate* candidate,
                                                  IdentifierType type) {
    m_core->candidates.access(candidate, [type](QBIdentifierCandidate& node) { node.type = type; });
}

void QBEngineIdentifierCandidateAccessor::setTag(QBIdentifierCandidate* candidate, quint64 tag) {
    m_core->candidates.access(candidate, [tag](QBIdentifierCandidate& node) { node.tag = tag; });
}

std::string QBEngineIdentifierCandidateAccessor::name(QBIdentifierCandidate* candidate) {
    return m_core->candidates.snapshot(candidate).name;
}

IdentifierType QBEngineIdentifierCandidateAccessor::type(QBIdentifierCandidate* candidate) {
    return m_core->candidates.snapshot(candidate).type;
}

quint64 QBEngineIdentifierCandidateAccessor::tag(QBIdentifierCandidate* candidate) {
    quint64 tag = 0;
    m_core->candidates.access(candidate,
                              [&tag](const QBIdentifierCandidate& node) { tag = node.tag; });
    return tag;
}

}  // namespace QB
