#pragma once

#include <QObject>
#include <QString>
#include <cstddef>
#include <memory>

#include "model/export.h"

class QUndoStack;

namespace QB {

class QBDiagramPanelWidget;
class QBEngine_LINUX;

/// One history over everything that a query is edited with: clause panels, diagram, SQL text,
/// layers. Each modification that the engine announces is a step, and so is each arrangement of the
/// diagram; what follows from a step by itself (QBEngine::FollowUp) is part of it: repairs, and
/// links by foreign keys.
///
/// Going back restores the statement to the byte: texts that no parser reads, halves of conditions,
/// ids; then the layer in which the step was done, what was selected, and where everything stood. A
/// step is kept as the difference between two records, so that 10,000 steps take a few megabytes.
/// Another engine, or a root statement that the engine itself replaces (setDatabaseInfo), empties
/// the history.
/// Ownership: the builder's. Thread: main.
class QB_EXPORT QBQueryHistory : public QObject {
    Q_OBJECT

public:
    /// @p diagram goes after the history, or is null: then there is no arrangement to keep.
    explicit QBQueryHistory(QBDiagramPanelWidget* diagram, QObject* parent = nullptr);
    ~QBQueryHistory() override;

    /// Starts anew on @p engine, which may be null.
    void setEngine(QBEngine_LINUX* engine);

    /// For a host's menu: createUndoAction() and the like, with the names of the steps in the
    /// user's language. The host pushes no commands of its own. Going to any index of it goes there
    /// at once; while isBusy() it stays at the index where it is. Owned by the history.
    QUndoStack* undoStack() const;
    /// Names the step of the modification that is announced next, for an edit whose sender knows
    /// better than the clause does.
    void nameNextStep(const QString& name);
    /// Forgets all steps; the present state is where the next one begins.
    void clear();
    /// Bytes that the steps take.
    std::size_t memoryUse() const;
    /// While true, going back and forth does nothing: a parse, or a gesture, is under way.
    bool isBusy() const;

Q_SIGNALS:
    /// A step was taken, back, forth or anew.
    void changed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Private;
    const std::unique_ptr<Private> d;
};

}  // namespace QB
