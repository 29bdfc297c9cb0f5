#include "engine/engine_linux.h"

#include <exception>

#include "model/callbacks.h"
#include "model/notification_names.h"

namespace QB {
namespace {

void* senderOf(const QBNotificationParameters& params) {
    const auto found = params.find("sender");
    return found == params.end() ? nullptr : found->second.toPointer();
}

QBIdentifierCandidate* identOf(const QBNotificationParameters& params) {
    return static_cast<QBIdentifierCandidate*>(params.at("ident").toPointer());
}

bool isDatabaseChanged(const QBNotificationParameters& params) {
    const bool isTypeChanged = params.at("dbTypeChanged").toInt() != 0;
    const bool isVersionChanged = params.at("dbVersionChanged").toInt() != 0;
    return isTypeChanged || isVersionChanged;
}

Component::AbstractTopLevelQueryComponent* poppedLayerOf(const QBNotificationParameters& params) {
    const auto found = params.find("poppedLayer");
    if (found == params.end()) return nullptr;
    return static_cast<Component::AbstractTopLevelQueryComponent*>(found->second.toPointer());
}

QSet<TopLevelQueryComponentElementEnum> elementsOf(const QBNotificationParameters& params) {
    QSet<TopLevelQueryComponentElementEnum> elements;
    const int size = params.at("elements.size").toInt();
    for (int i = 0; i < size; ++i) {
        const int element = params.at("elements[" + std::to_string(i) + "]").toInt();
        elements.insert(static_cast<TopLevelQueryComponentElementEnum>(element));
    }
    return elements;
}

}  // namespace

QBEngine_LINUX::QBEngine_LINUX() : m_signalEmitter(std::make_unique<QBEngineSignalEmitter>()) {}

QBEngine_LINUX::~QBEngine_LINUX() {
    endLife();
}

void QBEngine_LINUX::notified(std::string name, const QBNotificationParameters* params) {
    const QBNotificationParameters none;
    const QBNotificationParameters& given = params ? *params : none;
    void* const sender = senderOf(given);
    if (name == Notification::uiReset) {
        Q_EMIT m_signalEmitter->uiReset(this);
    } else if (name == Notification::databaseServerChanged) {
        if (isDatabaseChanged(given)) Q_EMIT m_signalEmitter->databaseTypeChanged(this);
    } else if (name == Notification::currentSchemaChanged) {
        Q_EMIT m_signalEmitter->currentSchemaChanged(this);
    } else if (name == Notification::identifierCandidateChildrenUpdateBegun) {
        Q_EMIT m_signalEmitter->identifierCandidateChildrenUpdateBegun(this, identOf(given));
    } else if (name == Notification::identifierCandidateChildrenUpdateEnded) {
        Q_EMIT m_signalEmitter->identifierCandidateChildrenUpdateEnded(this, identOf(given));
    } else if (name == Notification::topLevelQueryComponentLayerChanged) {
        Q_EMIT m_signalEmitter->topLevelQueryComponentLayerChanged(this, poppedLayerOf(given));
    } else if (name == Notification::topLevelQueryComponentElementModified) {
        const int layer = given.at("layer").toInt();
        Q_EMIT m_signalEmitter->topLevelQueryComponentElementModified(this, elementsOf(given),
                                                                      layer, sender);
    } else if (name == Notification::componentFocusChanged) {
        const bool isFocused = given.at("focused").toInt() != 0;
        auto* component =
            static_cast<Component::AbstractQueryComponent*>(given.at("component").toPointer());
        Q_EMIT m_signalEmitter->componentFocusChanged(this, component, isFocused, sender);
    } else if (name == Notification::parsingQueryUnsupported) {
        Callback::showError(given.at("message").toString());
    } else {
        throw std::exception();
    }
}

}  // namespace QB
