#include "platform/nuvo/nuvo_json.h"

#include <cmath>
#include <deque>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

struct NuvoJsonValue::Parts {
    // Both leave what they hold in its place.
    std::deque<NuvoJsonValue> elements;
    std::map<QString, NuvoJsonValue> members;
};

namespace {

/// The parser drops a byte order mark at the start of a string, too.
QString textOf(const std::string& bytes) {
    QString text = QString::fromUtf8(bytes.data(), int(bytes.size()));
    while (text.startsWith(QChar(QChar::ByteOrderMark)))
        text.remove(0, 1);
    return text;
}

}  // namespace

NuvoJsonValue::NuvoJsonValue() = default;

NuvoJsonValue::NuvoJsonValue(const QJsonValue& value) : m_value(value) {}

NuvoJsonValue::~NuvoJsonValue() {
    std::vector<std::unique_ptr<Parts>> waiting;
    const auto take = [&waiting](NuvoJsonValue& value) {
        if (value.m_parts) waiting.push_back(std::move(value.m_parts));
    };
    take(*this);
    while (!waiting.empty()) {
        const std::unique_ptr<Parts> last = std::move(waiting.back());
        waiting.pop_back();
        for (NuvoJsonValue& element : last->elements)
            take(element);
        for (auto& [name, member] : last->members)
            take(member);
    }
}

// ---- reading ----

bool NuvoJsonValue::isInteger() const {
    if (!m_value.isDouble()) return false;
    const double number = m_value.toDouble();
    using Limits = std::numeric_limits<std::int32_t>;
    return number >= Limits::min() && number <= Limits::max() && !(std::trunc(number) < number) &&
           !(std::trunc(number) > number);
}

const NuvoJsonValue* NuvoJsonValue::find(const std::string& name) const {
    if (!isObject()) return nullptr;
    const QString key = textOf(name);
    if (m_parts) {
        const auto found = m_parts->members.find(key);
        if (found != m_parts->members.end()) return &found->second;
    }
    const QJsonObject object = m_value.toObject();
    const auto member = object.constFind(key);
    if (member == object.constEnd()) return nullptr;
    return &parts().members.try_emplace(key, *member).first->second;
}

const NuvoJsonValue* NuvoJsonValue::at(std::size_t index) const {
    return index < size() ? &elements().elements[index] : nullptr;
}

std::size_t NuvoJsonValue::size() const {
    if (!isArray()) return 0;
    return m_parts ? m_parts->elements.size() : std::size_t(m_value.toArray().size());
}

std::string NuvoJsonValue::stringValue() const {
    return m_value.toString().toStdString();
}

std::int32_t NuvoJsonValue::integerValue() const {
    return isInteger() ? std::int32_t(m_value.toDouble()) : 0;
}

NuvoJsonValue::Parts& NuvoJsonValue::parts() const {
    if (!m_parts) m_parts = std::make_unique<Parts>();
    return *m_parts;
}

/// The parts, with those that an array holds.
NuvoJsonValue::Parts& NuvoJsonValue::elements() const {
    if (m_parts) return *m_parts;
    const QJsonArray array = m_value.toArray();
    for (int i = 0; i < array.size(); ++i)
        parts().elements.emplace_back(array.at(i));
    return parts();
}

// ---- writing ----

NuvoJsonValue* NuvoJsonValue::create(const std::string& name) {
    if (!isObject()) writeObject();
    find(name);  // takes it apart
    return &parts().members.try_emplace(textOf(name)).first->second;
}

NuvoJsonValue* NuvoJsonValue::append() {
    if (!isArray()) writeArray();
    return &elements().elements.emplace_back();
}

void NuvoJsonValue::appendCopy(const NuvoJsonValue* value) {
    const QJsonValue copied = value->whole();
    append()->write(copied);
}

void NuvoJsonValue::writeObject() {
    write(QJsonObject());
}

void NuvoJsonValue::writeArray() {
    write(QJsonArray());
}

void NuvoJsonValue::writeString(const std::string& text) {
    write(textOf(text));
}

void NuvoJsonValue::writeInteger(std::int32_t number) {
    write(number);
}

void NuvoJsonValue::writeBool(bool isTrue) {
    write(isTrue);
}

void NuvoJsonValue::write(const QJsonValue& value) {
    NuvoJsonValue former;  // destroys what this one held
    former.m_parts = std::move(m_parts);
    m_value = value;
}

QJsonValue NuvoJsonValue::whole(int depth) const {
    if (!m_parts) return m_value;
    if (depth == 0) return {};
    if (isArray()) {
        QJsonArray array;
        for (const NuvoJsonValue& element : m_parts->elements)
            array.append(element.whole(depth - 1));
        return array;
    }
    QJsonObject object = m_value.toObject();
    for (const auto& [name, member] : m_parts->members)
        object.insert(name, member.whole(depth - 1));
    return object;
}

// ---- documents ----

NuvoJson::NuvoJson() = default;

NuvoJson::NuvoJson(const std::string& text) {
    constexpr std::size_t longest = std::numeric_limits<int>::max() / 2;
    QJsonParseError error{0, QJsonParseError::DocumentTooLarge};
    QJsonDocument document;
    if (text.size() <= longest)
        document =
            QJsonDocument::fromJson(QByteArray::fromRawData(text.data(), int(text.size())), &error);
    m_isValid = error.error == QJsonParseError::NoError;
    if (document.isArray()) write(document.array());
    if (document.isObject()) write(document.object());
}

std::unique_ptr<NuvoJson> NuvoJson::copyOf(const NuvoJsonValue& value) {
    auto document = std::make_unique<NuvoJson>();
    document->write(value.whole());
    return document;
}

NuvoJson* NuvoJson::copy() const {
    return copyOf(*this).release();
}

std::string NuvoJson::serialise() const {
    // A text must begin with an object or an array; other values lend themselves an array.
    const QJsonValue value = whole();
    if (value.isObject())
        return QJsonDocument(value.toObject()).toJson(QJsonDocument::Compact).toStdString();
    if (value.isArray())
        return QJsonDocument(value.toArray()).toJson(QJsonDocument::Compact).toStdString();
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return text.mid(1, text.size() - 2).toStdString();
}

std::string NuvoJson::asStored(const std::string& text) {
    return textOf(text).toStdString();
}
