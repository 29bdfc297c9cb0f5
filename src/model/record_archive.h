#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace QB {

/// The bytes of a record, as they are written. Numbers take as many bytes as they need.
class RecordWriter {
public:
    void number(std::int64_t value);
    template <typename Enum, typename = std::enable_if_t<std::is_enum_v<Enum>>>
    void number(Enum value) {
        number(static_cast<std::int64_t>(value));
    }
    void flag(bool value) { number(value ? 1 : 0); }
    void text(std::string_view value);
    void texts(const std::vector<std::string>& values);
    /// A mark before each value and another one after the last: what is appended to a list leaves
    /// the bytes before it alone.
    template <typename Values, typename Write>
    void list(Values& values, const Write& write) {
        for (auto& value : values) {
            flag(true);
            write(value);
        }
        flag(false);
    }

    std::string take() { return std::move(m_bytes); }

private:
    std::string m_bytes;
};

/// Reads what RecordWriter wrote, with the same calls. After bytes that cannot be read all values
/// are empty, and no list goes on.
class RecordReader {
public:
    explicit RecordReader(std::string_view bytes) : m_rest(bytes) {}

    std::int64_t readNumber();
    template <typename Number>
    void number(Number& value) {
        value = static_cast<Number>(readNumber());
    }
    void flag(bool& value) { value = readFlag(); }
    bool readFlag();
    void text(std::string& value) { value = readText(); }
    std::string_view readText();
    void texts(std::vector<std::string>& values);
    template <typename Values, typename Read>
    void list(Values& values, const Read& read) {
        while (readFlag()) {
            values.emplace_back();
            read(values.back());
        }
    }

    void fail();
    bool hasFailed() const { return m_hasFailed; }
    bool isAtEnd() const { return m_rest.empty(); }

private:
    std::string_view m_rest;
    bool m_hasFailed = false;
};

}  // namespace QB
