#pragma once

#include <QString>
#include <QStringList>

class QSettings;

namespace QB::Desk {

/// The files opened last, newest first, each once, kept in the settings. Main thread.
class RecentFiles {
public:
    static constexpr int limit = 10;

    /// @param settings not owned: outlives the list. @param key where it lies in them.
    RecentFiles(QSettings* settings, const QString& key) : m_settings(settings), m_key(key) {}

    QStringList files() const;
    /// Puts @p file to the front, by its absolute path.
    void add(const QString& file);
    void remove(const QString& file);
    void clear();

private:
    void store(const QStringList& files);

    QSettings* m_settings;  // not owned
    const QString m_key;
};

}  // namespace QB::Desk
