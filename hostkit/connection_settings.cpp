#include "hostkit/connection_settings.h"

#include <QFileInfo>
#include <QUrl>

namespace QB::HostKit {
namespace {

const QLatin1String stars("***");

}  // namespace

QString Password::scrub(QString text) const {
    if (m_text.isEmpty()) return text;
    text.replace(m_text, stars);
    const QString encoded = QString::fromLatin1(QUrl::toPercentEncoding(m_text));
    if (encoded != m_text) text.replace(encoded, stars);
    return text;
}

QDebug operator<<(QDebug debug, const Password& password) {
    const QDebugStateSaver saver(debug);
    debug.nospace() << "Password(" << (password.isEmpty() ? "" : "***") << ")";
    return debug;
}

ConnectionSettings ConnectionSettings::sqliteFile(const QString& file) {
    ConnectionSettings settings;
    settings.family = DatabaseTypeSQLite;
    settings.databaseFile = file;
    return settings;
}

QString ConnectionSettings::displayName() const {
    // Scrubbed first: the end of a path may be the end of the password.
    if (!databaseFile.isEmpty()) return QFileInfo(password.scrub(databaseFile)).fileName();
    const QString place = socket.isEmpty() ? host : socket;
    return password.scrub(place.isEmpty() ? database : database + QLatin1Char('@') + place);
}

QDebug operator<<(QDebug debug, const ConnectionSettings& settings) {
    const QDebugStateSaver saver(debug);
    // Options may carry the password by mistake, so every text is scrubbed.
    const auto clean = [&settings](const QString& text) {
        return settings.password.scrub(text);
    };
    debug.nospace() << "ConnectionSettings(family " << int(settings.family) << ", file "
                    << clean(settings.databaseFile) << ", host " << clean(settings.host)
                    << ", port " << settings.port << ", socket " << clean(settings.socket)
                    << ", database " << clean(settings.database) << ", user "
                    << clean(settings.user) << ", " << settings.password << ", options (";
    for (auto option = settings.options.begin(); option != settings.options.end(); ++option)
        debug << option.key() << "=" << clean(option.value()) << ";";
    for (const AttachedFile& file : settings.attached)
        debug << " attached " << file.schema << "=" << clean(file.file);
    debug << "), read only " << settings.readOnly << ")";
    return debug;
}

}  // namespace QB::HostKit
