#include "apps/joinery-desk/window_states.h"

#include <QCryptographicHash>
#include <QSettings>
#include <QStringList>

namespace QB::Desk {
namespace {

const char* const orderKey = "databases/order";

/// A path has slashes, which are groups in the settings, and may be of any length.
QString keyOf(const QString& database) {
    const QByteArray digest =
        QCryptographicHash::hash(database.toUtf8(), QCryptographicHash::Sha1).toHex();
    return QStringLiteral("databases/") + QString::fromLatin1(digest);
}

}  // namespace

QStringList WindowStates::order() const {
    return m_settings->value(QLatin1String(orderKey)).toStringList();
}

std::optional<WindowState> WindowStates::read(const QString& key) const {
    const QString layout = m_settings->value(key + QLatin1String("/layout")).toString();
    if (layout.isEmpty()) return std::nullopt;
    return WindowState{layout, m_settings->value(key + QLatin1String("/rows")).toByteArray(),
                       m_settings->value(key + QLatin1String("/preferences")).toMap(),
                       m_settings->value(key + QLatin1String("/zoom"), 1).toDouble()};
}

std::optional<WindowState> WindowStates::find(const QString& database) const {
    return read(keyOf(database));
}

std::optional<WindowState> WindowStates::newest() const {
    return read(order().value(0));
}

void WindowStates::store(const QString& database, const WindowState& state) {
    const QString key = keyOf(database);
    m_settings->setValue(key + QLatin1String("/file"), database);  // for who looks for it
    m_settings->setValue(key + QLatin1String("/layout"), state.layout);
    m_settings->setValue(key + QLatin1String("/rows"), state.rows);
    m_settings->setValue(key + QLatin1String("/preferences"), state.preferences);
    m_settings->setValue(key + QLatin1String("/zoom"), state.zoom);
    QStringList keys = order();
    keys.removeAll(key);
    keys.prepend(key);
    while (keys.size() > limit)
        m_settings->remove(keys.takeLast());
    m_settings->setValue(QLatin1String(orderKey), keys);
}

}  // namespace QB::Desk
