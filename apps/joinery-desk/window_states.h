#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QVariant>
#include <optional>

class QSettings;

namespace QB::Desk {

/// How the window looked with a database, as the widgets give it.
struct WindowState {
    QString layout;   ///< of window and panes: QBQueryBuilderWidget::obtainWidgetLayoutJsonString
    QByteArray rows;  ///< of the splitter between builder and rows
    QMap<QString, QVariant> preferences;
    double zoom = 1;  ///< of the diagram
};

/// The looks of the window for each database file, kept in the settings. Of the databases that were
/// not open for longest the state is dropped. Main thread.
class WindowStates {
public:
    static constexpr int limit = 50;

    /// @param settings not owned: outlives the object.
    explicit WindowStates(QSettings* settings) : m_settings(settings) {}

    /// @param database an absolute path.
    std::optional<WindowState> find(const QString& database) const;
    /// Of whichever database was stored last.
    std::optional<WindowState> newest() const;
    void store(const QString& database, const WindowState& state);

private:
    /// The keys of the databases, the one stored last first.
    QStringList order() const;
    std::optional<WindowState> read(const QString& key) const;

    QSettings* m_settings;  // not owned
};

}  // namespace QB::Desk
