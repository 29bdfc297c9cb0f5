#pragma once

#include <QDateTime>
#include <QObject>
#include <QString>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "apps/joinery-desk/query_file.h"

class QLockFile;

namespace QB::Desk {

/// A journal whose process ended without taking it away. Held by a lock: nobody else offers it.
struct LeftJournal {
    LeftJournal();
    LeftJournal(LeftJournal&&) noexcept;
    LeftJournal& operator=(LeftJournal&&) noexcept;
    ~LeftJournal();

    QString path;
    QDateTime written;
    QueryDocument document;
    QString error;  ///< why it cannot be read; it is then no longer offered, see movedTo
    QString movedTo;
    std::unique_ptr<QLockFile> lock;
};

/// What the window has that lies in no file, kept on disk in a file of its own, so that it outlives
/// a crash. The file goes at an orderly end, which the destructor is, and when nothing is unsaved.
/// Windows, and programs, share a folder: each holds a lock beside its file while it lives.
///
/// The disk is only written to on workers, one document at a time, the newest. Main thread.
class Journal : public QObject {
    Q_OBJECT

public:
    static constexpr int delayMs = 2000;  ///< from an edit until it is asked for the document

    /// @param folder made when it is needed; empty: nothing is ever kept.
    explicit Journal(const QString& folder, QObject* parent = nullptr);
    ~Journal() override;

    /// Something was edited: due() follows within delayMs.
    void noteEdit();
    void write(const QueryDocument& document);
    /// Nothing is unsaved: the file goes.
    void clear();

    /// The next one that another process has left, the newest first; with an error it is damaged,
    /// and was moved aside. Reads the disk.
    std::optional<LeftJournal> takeLeft();
    /// Makes a file that was left the one of this window, until it is written anew or cleared.
    void continueWith(LeftJournal journal);
    static void remove(LeftJournal journal);

Q_SIGNALS:
    /// The document is wanted: write() or clear().
    void due();
    /// It could not be written. Once, until it could again.
    void failed(const QString& message);

private:
    struct File;

    bool prepareFile();
    void report(const QString& error);
    void post(std::function<QString(const QString& path)> work);

    const QString m_folder;
    std::shared_ptr<File> m_file;  // shared with the workers; null until it is needed
    QTimer m_delay;
    quint64 m_number = 0;      ///< of the order given last
    bool m_isWritten = false;  ///< there is something to clear
    bool m_hasFailed = false;
};

}  // namespace QB::Desk
