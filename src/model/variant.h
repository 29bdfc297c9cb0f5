#pragma once

#include <cstdint>
#include <string>

#include "model/export.h"

namespace QB {

/// The tagged value of a notification parameter.
///
/// A getter reads the payload without looking at the tag; asking for the wrong kind is a caller's
/// error. Only a text payload is owned, and it is copied deeply; a pointer payload is not owned.
class QB_EXPORT QBVariant {
public:
    enum Type : std::int32_t {
        TypeEmpty = 0,
        TypeString = 1,
        TypeInt = 2,
        TypeFloat = 3,
        TypeDouble = 4,
        TypePointer = 5,
    };

    QBVariant() = default;
    QBVariant(int value);
    QBVariant(float value);
    QBVariant(double value);
    QBVariant(void* value);
    QBVariant(const std::string& value);
    QBVariant(const QBVariant& other);
    QBVariant& operator=(const QBVariant& other);
    ~QBVariant();

    bool isEmpty() const { return m_type == TypeEmpty; }
    Type type() const { return m_type; }

    const std::string& toString() const { return *m_value.text; }
    int toInt() const { return m_value.integer; }
    float toFloat() const { return m_value.single; }
    double toDouble() const { return m_value.number; }
    void* toPointer() const { return m_value.pointer; }

    /// Safe with the variant's own text.
    void setString(const std::string& value);
    void setInt(int value);
    void setFloat(float value);
    void setDouble(double value);
    void setPointer(void* value);

private:
    union Value {
        std::string* text;  // owned while the tag is TypeString
        std::int32_t integer;
        float single;
        double number;
        void* pointer;  // not owned: the sender of the notification
    };

    void freeText();

    Type m_type = TypeEmpty;
    Value m_value = {nullptr};
};

}  // namespace QB
