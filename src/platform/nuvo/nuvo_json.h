#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include <QJsonValue>

/// A value in a JSON document: object, array, text, number, truth value or null.
///
/// A pointer that a function gives lives as long as the value that gave it, until that value is
/// written as something else; members and elements that come later do not move it. Ownership: all
/// belong to the document. What a value holds is taken apart only where somebody looks, so that a
/// large document costs little more than its parsing. Destroyed by a loop, however deep.
///
/// Strings are UTF-8; what is not becomes U+FFFD, and a byte order mark in front goes: asStored().
/// Thread: one at a time, since looking takes apart.
class NuvoJsonValue {
public:
    NuvoJsonValue();  // null
    explicit NuvoJsonValue(const QJsonValue& value);
    virtual ~NuvoJsonValue();
    NuvoJsonValue(const NuvoJsonValue&) = delete;
    NuvoJsonValue& operator=(const NuvoJsonValue&) = delete;

    bool isObject() const { return m_value.isObject(); }
    bool isArray() const { return m_value.isArray(); }
    bool isString() const { return m_value.isString(); }
    /// True for numbers without a fraction that fit into 32 bits: 3.0 is one, 3.5 and 9999999999
    /// are not.
    bool isInteger() const;
    bool isBool() const { return m_value.isBool(); }

    /// The member of that name; null if there is none, or this is no object. Of several with one
    /// name in a text, one is there.
    const NuvoJsonValue* find(const std::string& name) const;
    /// The element at @p index; null beyond the end, or if this is no array.
    const NuvoJsonValue* at(std::size_t index) const;
    /// Elements of an array; 0 for anything else.
    std::size_t size() const;
    // "", 0 and false if this is something else.
    std::string stringValue() const;
    std::int32_t integerValue() const;
    bool boolValue() const { return m_value.toBool(); }
    /// This value as Qt's; what nests deeper than @p depth is null.
    QJsonValue whole(int depth = deepest) const;
    /// What a text may nest.
    static constexpr int deepest = 1024;

    /// The member of that name, null at first. What is no object becomes an empty one.
    NuvoJsonValue* create(const std::string& name);
    /// Another element, null at first. What is no array becomes an empty one.
    NuvoJsonValue* append();
    void appendCopy(const NuvoJsonValue* value);
    void writeObject();
    void writeArray();
    void writeString(const std::string& text);
    void writeInteger(std::int32_t number);
    void writeBool(bool isTrue);

protected:
    /// Turns this one into @p value.
    void write(const QJsonValue& value);

private:
    struct Parts;
    Parts& parts() const;
    Parts& elements() const;

    /// As parsed or written. Once there are parts, those of an array stand for all of its elements,
    /// and those of an object for its members of the same names.
    QJsonValue m_value;
    mutable std::unique_ptr<Parts> m_parts;
};

/// A JSON document and its text.
class NuvoJson : public NuvoJsonValue {
public:
    /// Null, until it is written.
    NuvoJson();
    /// Parses @p text: an object or an array, at most 1024 deep. Any text may be given; one that is
    /// not valid gives a null value.
    explicit NuvoJson(const std::string& text);
    bool getIsValidJson() const { return m_isValid; }

    /// A deep copy of @p value as a document of its own.
    static std::unique_ptr<NuvoJson> copyOf(const NuvoJsonValue& value);
    /// A deep copy. Ownership: passes to the caller.
    NuvoJson* copy() const;
    /// The text, in one line.
    std::string serialise() const;

    /// What @p text reads as after it was written: equal to the text, unless that is not UTF-8.
    static std::string asStored(const std::string& text);

private:
    bool m_isValid = true;
};
