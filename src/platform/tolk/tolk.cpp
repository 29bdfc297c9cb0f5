#include "platform/tolk/tolk.h"

#include <QCoreApplication>
#include <array>
#include <cstdarg>

namespace Tolk {
namespace {

constexpr std::array<const char*, TextCount> sources = {
#define TOLK_TEXT(id, source) source,
#include "platform/tolk/texts.inc"
#undef TOLK_TEXT
};

}  // namespace

QString localize(unsigned id) {
    if (id >= sources.size()) return QString();
    return QCoreApplication::translate("Tolk", sources[id]);
}

QString localizeWithArgs(unsigned id, ...) {
    va_list args;
    va_start(args, id);
    const QString text = QString::vasprintf(localize(id).toUtf8().constData(), args);
    va_end(args);
    return text;
}

}  // namespace Tolk
