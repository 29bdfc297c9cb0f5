#include "canvas/base/image_resource_provider_linux.h"

#include <cstdlib>
#include <cstring>

#include <QBuffer>
#include <QImage>

namespace QB::DiagramLumo {

namespace {

QString pathOf(const std::string& name) {
    if (name == "ResID_BtnSubqueryEdit") return QStringLiteral(":/images/TB_Subquery_Edit.png");
    if (name == "ResID_BtnSubqueryEdit@2x")
        return QStringLiteral(":/images/TB_Subquery_Edit@2x.png");
    return QString::fromStdString(name);
}

}  // namespace

QBLumoImageResourceProvider_LINUX::~QBLumoImageResourceProvider_LINUX() {
    if (current() == this) setCurrent(nullptr);
    for (char* buffer : m_buffers)
        std::free(buffer);
}

unsigned long QBLumoImageResourceProvider_LINUX::loadImage(const std::string& name, char** data) {
    QBuffer encoded;
    encoded.open(QIODevice::WriteOnly);
    QImage(pathOf(name)).save(&encoded, "PNG");
    const auto size = size_t(encoded.data().size());
    // One byte for an empty image, so that there always is a buffer.
    auto* const buffer = static_cast<char*>(std::malloc(size + 1));
    std::memcpy(buffer, encoded.data().constData(), size);
    m_buffers.push_back(buffer);
    *data = buffer;
    return size;
}

}  // namespace QB::DiagramLumo
