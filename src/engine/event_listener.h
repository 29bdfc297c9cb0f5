#pragma once

#include <memory>

namespace QB {

/// Carries nothing: only its life counts.
struct QBEventListenerGuarantor {};

/// Base of objects that want to be told of events. A trigger calls nothing of a listener that is
/// gone, so nobody has to unregister.
class QBEventListener {
public:
    QBEventListener() = default;
    virtual ~QBEventListener() = default;
    QBEventListener(const QBEventListener&) = delete;
    QBEventListener& operator=(const QBEventListener&) = delete;

    /// What a trigger watches; expires with the listener.
    std::weak_ptr<QBEventListenerGuarantor> guarantor() const { return m_guarantor; }

private:
    const std::shared_ptr<QBEventListenerGuarantor> m_guarantor =
        std::make_shared<QBEventListenerGuarantor>();
};

}  // namespace QB
