#include "model/variant.h"

namespace QB {

QBVariant::QBVariant(int value) {
    setInt(value);
}
QBVariant::QBVariant(float value) {
    setFloat(value);
}
QBVariant::QBVariant(double value) {
    setDouble(value);
}
QBVariant::QBVariant(void* value) {
    setPointer(value);
}
QBVariant::QBVariant(const std::string& value) {
    setString(value);
}
QBVariant::QBVariant(const QBVariant& other) {
    *this = other;
}
QBVariant::~QBVariant() {
    freeText();
}

QBVariant& QBVariant::operator=(const QBVariant& other) {
    if (this == &other) return *this;
    if (other.m_type == TypeString) {
        setString(other.toString());
        return *this;
    }
    freeText();
    m_value = other.m_value;
    m_type = other.m_type;
    return *this;
}

void QBVariant::setString(const std::string& value) {
    auto* copy = new std::string(value);  // before the old text goes: value may be that text
    freeText();
    m_value.text = copy;
    m_type = TypeString;
}

void QBVariant::setInt(int value) {
    freeText();
    m_value.integer = value;
    m_type = TypeInt;
}

void QBVariant::setFloat(float value) {
    freeText();
    m_value.single = value;
    m_type = TypeFloat;
}

void QBVariant::setDouble(double value) {
    freeText();
    m_value.number = value;
    m_type = TypeDouble;
}

void QBVariant::setPointer(void* value) {
    freeText();
    m_value.pointer = value;
    m_type = TypePointer;
}

void QBVariant::freeText() {
    if (m_type == TypeString) delete m_value.text;
    m_type = TypeEmpty;
}

}  // namespace QB
