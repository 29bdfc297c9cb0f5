#include "apps/joinery-desk/recent_files.h"

#include <QFileInfo>
#include <QSettings>

namespace QB::Desk {
namespace {

QString absolutePath(const QString& file) {
    return QFileInfo(file).absoluteFilePath();
}

}  // namespace

QStringList RecentFiles::files() const {
    return m_settings->value(m_key).toStringList();
}

void RecentFiles::add(const QString& file) {
    QStringList all = files();
    all.removeAll(absolutePath(file));
    all.prepend(absolutePath(file));
    store(all.mid(0, limit));
}

void RecentFiles::remove(const QString& file) {
    QStringList all = files();
    all.removeAll(absolutePath(file));
    store(all);
}

void RecentFiles::clear() {
    store(QStringList());
}

void RecentFiles::store(const QStringList& files) {
    m_settings->setValue(m_key, files);
}

}  // namespace QB::Desk
