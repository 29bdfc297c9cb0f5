#include <string>
#include <unordered_map>

#include <QImage>

#include "platform/lumo/lumo_paint.h"

struct LumoImage::Files {
    QImage plain;
    QImage fine;  // null if there is none

    static std::unordered_map<std::string, std::shared_ptr<const Files>> kept;
};

std::unordered_map<std::string, std::shared_ptr<const LumoImage::Files>> LumoImage::Files::kept;

namespace {

LumoImageResourceProvider* currentProvider = nullptr;  // not owned: whoever sets it takes it out

/// "name" gives "name@2x", "a/name.png" gives "a/name@2x.png".
std::string fineName(const std::string& name) {
    const size_t slash = name.rfind('/');
    const size_t dot = name.rfind('.');
    const bool hasSuffix = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const size_t at = hasSuffix ? dot : name.size();
    return name.substr(0, at) + "@2x" + name.substr(at);
}

QImage load(const std::string& name) {
    char* data = nullptr;
    const unsigned long size = currentProvider->loadImage(name, &data);
    if (!data || size == 0) return {};
    const QImage image = QImage::fromData(reinterpret_cast<const uchar*>(data), int(size));
    return image.isNull() ? image : image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
}

}  // namespace

LumoImage::LumoImage() = default;
LumoImage::~LumoImage() = default;

bool LumoImage::loadFromFile(const std::string& name) {
    m_files.reset();
    if (!currentProvider) return false;
    const auto known = Files::kept.find(name);
    if (known != Files::kept.end()) {
        m_files = known->second;
        return true;
    }
    const QImage plain = load(name);
    if (plain.isNull()) return false;
    m_files = std::make_shared<Files>(Files{plain, load(fineName(name))});
    Files::kept.emplace(name, m_files);
    return true;
}

LumoSize LumoImage::getSize() const {
    return m_files ? LumoSize{m_files->plain.width(), m_files->plain.height()} : LumoSize{};
}

const QImage& LumoImage::image(double scale) const {
    static const QImage none;
    if (!m_files) return none;
    return scale > 1 && !m_files->fine.isNull() ? m_files->fine : m_files->plain;
}

void LumoImageResourceProvider::setCurrent(LumoImageResourceProvider* provider) {
    if (provider == currentProvider) return;
    currentProvider = provider;
    LumoImage::Files::kept.clear();
}

LumoImageResourceProvider* LumoImageResourceProvider::current() {
    return currentProvider;
}
