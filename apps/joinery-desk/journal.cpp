#include "apps/joinery-desk/journal.h"

#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QPointer>
#include <QUuid>
#include <cstring>
#include <mutex>
#include <utility>

#include "hostkit/threads.h"

namespace QB::Desk {
namespace {

const char* const suffix = ".joinery";
const char* const lockSuffix = ".lock";

std::unique_ptr<QLockFile> lockOf(const QString& path) {
    auto lock = std::make_unique<QLockFile>(path + QLatin1String(lockSuffix));
    lock->setStaleLockTime(0);  // age says nothing: a window may stay open for weeks
    return lock;
}

/// Aside, so that it is not offered again and a person can still look at it.
QString movedAside(const QString& path) {
    const QString target = path + QLatin1String(".damaged");
    return QFile::rename(path, target) ? target : path;
}

/// Of programs that crashed with nothing unsaved.
void removeLeftLocks(const QString& folder) {
    const QString ending = QLatin1String(suffix) + QLatin1String(lockSuffix);
    const QStringList names = QDir(folder).entryList({QLatin1Char('*') + ending}, QDir::Files);
    for (const QString& name : names) {
        const QString path = QDir(folder).filePath(name.chopped(int(std::strlen(lockSuffix))));
        const auto lock = lockOf(path);
        if (!QFileInfo::exists(path) && lock->tryLock(0)) lock->unlock();
    }
}

}  // namespace

LeftJournal::LeftJournal() = default;
LeftJournal::LeftJournal(LeftJournal&&) noexcept = default;
LeftJournal& LeftJournal::operator=(LeftJournal&&) noexcept = default;
LeftJournal::~LeftJournal() = default;

struct Journal::File {
    File(QString filePath, std::unique_ptr<QLockFile> fileLock)
        : path(std::move(filePath)), lock(std::move(fileLock)) {}

    const QString path;
    const std::unique_ptr<QLockFile> lock;
    /// What still waits for a worker comes too late.
    void end() {
        const std::lock_guard guard(mutex);
        newest = ~quint64(0);
        QFile::remove(path);
        lock->unlock();
    }

    std::mutex mutex;    ///< held while the disk is written to; guards the one below
    quint64 newest = 0;  ///< number of the order that the disk shows, or beyond all when it ended
};

Journal::Journal(const QString& folder, QObject* parent) : QObject(parent), m_folder(folder) {
    m_delay.setSingleShot(true);
    m_delay.setInterval(delayMs);
    connect(&m_delay, &QTimer::timeout, this, &Journal::due);
}

Journal::~Journal() {
    if (m_file) m_file->end();
}

/// The timer is not started anew: who never pauses is written down, too.
void Journal::noteEdit() {
    if (!m_folder.isEmpty() && !m_delay.isActive()) m_delay.start();
}

bool Journal::prepareFile() {
    if (m_file) return true;
    if (m_folder.isEmpty()) return false;
    const QString name = QUuid::createUuid().toString(QUuid::WithoutBraces);
    const QString path = QDir(m_folder).filePath(name + QLatin1String(suffix));
    auto lock = lockOf(path);
    if (!QDir().mkpath(m_folder) || !lock->tryLock(0)) {
        report(tr("Unsaved work cannot be kept in \"%1\", in case the program crashes.")
                   .arg(QDir::toNativeSeparators(m_folder)));
        return false;
    }
    m_file = std::make_shared<File>(path, std::move(lock));
    return true;
}

void Journal::report(const QString& error) {
    const bool isNews = !error.isEmpty() && !m_hasFailed;
    m_hasFailed = !error.isEmpty();
    if (isNews) Q_EMIT failed(error);
}

/// Workers may come in any order; one that was overtaken does nothing.
void Journal::post(std::function<QString(const QString& path)> work) {
    HostKit::postToWorker(
        [journal = QPointer(this), file = m_file, number = ++m_number, work = std::move(work)] {
            QString error;
            {
                const std::lock_guard lock(file->mutex);
                if (number < file->newest) return;
                file->newest = number;
                error = work(file->path);
            }
            HostKit::postToMainThread([journal, error] {
                if (journal) journal->report(error);
            });
        });
}

void Journal::write(const QueryDocument& document) {
    if (!prepareFile()) return;
    m_isWritten = true;
    post([document](const QString& path) { return writeQueryFile(path, document); });
}

void Journal::clear() {
    m_delay.stop();
    if (!std::exchange(m_isWritten, false)) return;
    post([](const QString& path) {
        QFile::remove(path);
        return QString();
    });
}

// ---- What others have left

std::optional<LeftJournal> Journal::takeLeft() {
    const QStringList names = QDir(m_folder).entryList({QLatin1Char('*') + QLatin1String(suffix)},
                                                       QDir::Files, QDir::Time);
    if (m_folder.isEmpty()) return std::nullopt;
    removeLeftLocks(m_folder);
    for (const QString& name : names) {
        LeftJournal journal;
        journal.path = QDir(m_folder).filePath(name);
        journal.lock = lockOf(journal.path);
        const bool isOurs = m_file && m_file->path == journal.path;
        if (isOurs || !journal.lock->tryLock(0)) continue;
        // Another program may have dealt with it before we had the lock.
        if (!QFileInfo::exists(journal.path)) continue;
        journal.written = QFileInfo(journal.path).lastModified();
        journal.error = readQueryFile(journal.path, journal.document);
        if (!journal.error.isEmpty()) journal.movedTo = movedAside(journal.path);
        return journal;
    }
    return std::nullopt;
}

void Journal::continueWith(LeftJournal journal) {
    m_isWritten = true;
    const std::shared_ptr<File> earlier =
        std::exchange(m_file, std::make_shared<File>(journal.path, std::move(journal.lock)));
    if (earlier) earlier->end();
}

void Journal::remove(LeftJournal journal) {
    QFile::remove(journal.path);
    journal.lock->unlock();
}

}  // namespace QB::Desk
