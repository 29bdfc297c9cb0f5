#pragma once

#include <QtGlobal>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "model/export.h"
#include "model/vocabulary.h"

namespace QB {

class QBEngineCore;

/// One object of the server: a schema, table, view or field. A node without children counts as not
/// yet fetched.
///
/// Ownership: nodes are made by the accessor and live as long as their engine and the tasks that
/// it started; a node that is removed from the tree stays in memory, so a stale pointer may be
/// read.
/// Thread: workers change nodes. Read them through QBEngine::childrenSnapshot and its siblings,
/// never through these fields.
struct QB_EXPORT QBIdentifierCandidate {
    QBIdentifierCandidate* parent = nullptr;  // not owned; null for the root
    std::string name;
    IdentifierType type = IdentifierTypeQuery;
    quint64 tag = 0;                               ///< free for the host
    std::vector<QBIdentifierCandidate*> children;  // not owned: the engine's arena owns all nodes
};

/// What one node held at one moment.
struct QBIdentifierCandidateSnapshot {
    QBIdentifierCandidate* candidate = nullptr;  // not owned; null in a record of no node
    std::string name;
    IdentifierType type = IdentifierTypeQuery;
    bool hasChildren = false;
    QBIdentifierCandidate* parent = nullptr;  // not owned; null for the root
};

/// How a host changes the tree of candidates. Wherever a candidate may be null, null stands for
/// the root.
/// Thread: any; each call is atomic for readers.
class QB_EXPORT IQBIdentifierCandidateAccessor {
public:
    IQBIdentifierCandidateAccessor() = default;
    virtual ~IQBIdentifierCandidateAccessor();
    IQBIdentifierCandidateAccessor(const IQBIdentifierCandidateAccessor&) = delete;
    IQBIdentifierCandidateAccessor& operator=(const IQBIdentifierCandidateAccessor&) = delete;

    /// Appends a new candidate with an empty name and the type 0.
    virtual QBIdentifierCandidate* addChild(QBIdentifierCandidate* parent) = 0;
    /// Empties the list of children; the nodes are not destroyed.
    virtual void clearChildren(QBIdentifierCandidate* parent) = 0;
    /// Takes @p child out of the list, in which the order stays; the node is not destroyed.
    /// False if it was not there.
    virtual bool removeChild(QBIdentifierCandidate* parent, QBIdentifierCandidate* child) = 0;
    virtual int childCount(QBIdentifierCandidate* parent) = 0;
    /// @p index counts from 0 and is not checked.
    virtual QBIdentifierCandidate* childAt(QBIdentifierCandidate* parent, int index) = 0;
    /// Null if the parent is the root.
    virtual QBIdentifierCandidate* parent(QBIdentifierCandidate* candidate) = 0;
    virtual void setName(QBIdentifierCandidate* candidate, const std::string& name) = 0;
    virtual void setType(QBIdentifierCandidate* candidate, IdentifierType type) = 0;
    virtual void setTag(QBIdentifierCandidate* candidate, quint64 tag) = 0;
    virtual std::string name(QBIdentifierCandidate* candidate) = 0;
    virtual IdentifierType type(QBIdentifierCandidate* candidate) = 0;
    virtual quint64 tag(QBIdentifierCandidate* candidate) = 0;
};

/// The host's function that fills the children of a node, null for the root, through the accessor.
using QBCandidateChildrenUpdater =
    std::function<void(IQBIdentifierCandidateAccessor*, QBIdentifierCandidate*)>;

/// Pairs of a referencing and a referenced field.
using QBForeignKeys = std::set<std::pair<QBIdentifierFieldPath, QBIdentifierFieldPath>>;

/// The host's function that finds the foreign keys between an object and some others.
using QBForeignKeySearcher = std::function<QBForeignKeys(const QBIdentifierObjectPath& object,
                                                         const std::set<QBIdentifierObjectPath>&)>;

/// One foreign key: its pairs of a referencing and a referenced field, in the order of the key.
using QBForeignKeyConstraint = std::vector<std::pair<QBIdentifierFieldPath, QBIdentifierFieldPath>>;

/// The host's function that finds the same keys one by one, so that two keys between two tables
/// are not taken for one of several fields.
using QBForeignKeyConstraintSearcher = std::function<std::vector<QBForeignKeyConstraint>(
    const QBIdentifierObjectPath& object, const std::set<QBIdentifierObjectPath>&)>;

/// The accessor over the tree of one engine; keeps the tree alive.
class QBEngineIdentifierCandidateAccessor : public IQBIdentifierCandidateAccessor {
public:
    explicit QBEngineIdentifierCandidateAccessor(std::shared_ptr<QBEngineCore> core);
    ~QBEngineIdentifierCandidateAccessor() override;

    QBIdentifierCandidate* addChild(QBIdentifierCandidate* parent) override;
    void clearChildren(QBIdentifierCandidate* parent) override;
    bool removeChild(QBIdentifierCandidate* parent, QBIdentifierCandidate* child) override;
    int childCount(QBIdentifierCandidate* parent) override;
    QBIdentifierCandidate* childAt(QBIdentifierCandidate* parent, int index) override;
    QBIdentifierCandidate* parent(QBIdentifierCandidate* candidate) override;
    void setName(QBIdentifierCandidate* candidate, const std::string& name) override;
    void setType(QBIdentifierCandidate* candidate, IdentifierType type) override;
    void setTag(QBIdentifierCandidate* candidate, quint64 tag) override;
    std::string name(QBIdentifierCandidate* candidate) override;
    IdentifierType type(QBIdentifierCandidate* candidate) override;
    quint64 tag(QBIdentifierCandidate* candidate) override;

private:
    const std::shared_ptr<QBEngineCore> m_core;
};

}  // namespace QB
