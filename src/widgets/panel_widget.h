#pragma once

#include <QPointer>
#include <QSet>
#include <QWidget>

#include "model/export.h"
#include "model/vocabulary.h"

namespace QB {

class QBEngine;
class QBEngine_LINUX;

namespace Component {
class AbstractTopLevelQueryComponent;
}

/// The base of every pane of the builder: a widget that knows the engine. Main thread only.
///
/// A subclass makes its connections to the engine's signals in a slot on engineSet(), with itself
/// as the receiver or context. It need not undo them: before each engineSet() all connections from
/// the signal emitter of the earlier engine to this panel are cut, also when the same engine comes
/// again.
class QB_EXPORT QBPanelWidget : public QWidget {
    Q_OBJECT

public:
    explicit QBPanelWidget(QWidget* parent = nullptr);
    ~QBPanelWidget() override;

    /// Stores @p engine and emits engineSet(). Null is ignored: the earlier engine stays.
    /// Ownership: stays with the caller.
    void setEngine(QBEngine_LINUX* engine);

    /// The engine; null before the first setEngine() and after the engine was destroyed.
    QBEngine_LINUX* engine() const;

Q_SIGNALS:
    /// The panel has got an engine. Fires on the main thread inside setEngine().
    void engineSet();

protected:
    bool event(QEvent* event) override;

private:
    QBEngine_LINUX* m_engine = nullptr;  // not owned: m_emitter tells whether it still lives
    QPointer<QObject> m_emitter;         // not owned: the engine's signal emitter
};

/// The base of the panels that edit one clause of the statement, or several. It hears the engine's
/// signals and passes on those that concern its clauses in the current layer.
class QB_EXPORT QBTopLevelElementPanelWidget : public QBPanelWidget {
    Q_OBJECT

public:
    explicit QBTopLevelElementPanelWidget(QWidget* parent = nullptr);
    ~QBTopLevelElementPanelWidget() override;

    /// The clauses whose changes concern this panel: those of setRelatedElements(), and for a
    /// subclass more, such as the sources that its fields belong to.
    virtual QSet<TopLevelQueryComponentElementEnum> relatedElements() const;

    /// One of the panel's clauses was changed in the current layer.
    ///
    /// Not called for changes whose sender is a widget inside the panel, which shows them already.
    /// It is called when the panel itself is the sender.
    /// @p sender is null or an address to compare with, never to cast.
    virtual void relatedElementModified(
        void* sender, const QSet<TopLevelQueryComponentElementEnum>& elements) = 0;

    /// Another layer is the current one. @p poppedLayer is the statement of the layer that was
    /// left by a pop, null after a push.
    virtual void topLevelQueryComponentLayerChanged(
        Component::AbstractTopLevelQueryComponent* poppedLayer) = 0;

    /// Says which clause the panel edits.
    virtual void setRelatedElements(const QSet<TopLevelQueryComponentElementEnum>& elements);

    /// A warning sign while the panel has invalid components, otherwise an empty icon.
    virtual QIcon tabIcon() const;

    /// Whether the panel shows components that would make a query fail; false here.
    virtual bool hasInvalidComponents() const;

    /// Another tab has become current; does nothing here.
    virtual void panelBecomeInactive();

    /// The clause that the panel edits and that names it: the first of setRelatedElements(); -1
    /// without any.
    int firstRelatedElement() const;

Q_SIGNALS:
    /// tabIcon() may have another answer now.
    void signalIconNeedsUpdate();

private:
    void connectEngine();
    bool concernsThisPanel(const QBEngine* sendingEngine,
                           const QSet<TopLevelQueryComponentElementEnum>& elements, int layer,
                           void* sender) const;

    QSet<TopLevelQueryComponentElementEnum> m_relatedElements;
};

}  // namespace QB
