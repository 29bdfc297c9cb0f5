#pragma once

#include <QObject>
#include <QSet>

#include "model/export.h"
#include "model/vocabulary.h"

namespace QB {

class QBEngine;
struct QBIdentifierCandidate;
namespace Component {
class AbstractQueryComponent;
class AbstractTopLevelQueryComponent;
}  // namespace Component

/// The notifications of an engine as Qt signals, each with the engine first. They are direct calls
/// on the main thread, after the raw listeners, with no lock held; a receiver may modify the
/// query, register listeners and create or destroy widgets.
/// A sender is an address to compare with; what lies behind it may be of any class or gone.
class QB_EXPORT QBEngineSignalEmitter : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;

Q_SIGNALS:
    void uiReset(QB::QBEngine* engine);
    /// Family or version changed; the root statement is a new one.
    void databaseTypeChanged(QB::QBEngine* engine);
    void currentSchemaChanged(QB::QBEngine* engine);
    /// @p ident is null for the root.
    void identifierCandidateChildrenUpdateBegun(QB::QBEngine* engine,
                                                QB::QBIdentifierCandidate* ident);
    void identifierCandidateChildrenUpdateEnded(QB::QBEngine* engine,
                                                QB::QBIdentifierCandidate* ident);
    /// @p poppedLayer is the statement of the layer that was closed, null after a push.
    void topLevelQueryComponentLayerChanged(
        QB::QBEngine* engine, QB::Component::AbstractTopLevelQueryComponent* poppedLayer);
    void topLevelQueryComponentElementModified(
        QB::QBEngine* engine, const QSet<QB::TopLevelQueryComponentElementEnum>& elements,
        int layer, void* sender);
    void componentFocusChanged(QB::QBEngine* engine,
                               QB::Component::AbstractQueryComponent* component, bool focused,
                               void* sender);
};

}  // namespace QB
