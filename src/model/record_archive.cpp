#include "model/record_archive.h"

namespace QB {
namespace {

constexpr unsigned digitBits = 7;  // of a number, in each byte; the eighth: another byte follows
constexpr std::uint64_t digitMask = (1U << digitBits) - 1;
constexpr unsigned numberBits = 64;

/// Small numbers of either sign become small ones without.
std::uint64_t unsignedOf(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? ~(bits << 1) : bits << 1;
}

std::int64_t signedOf(std::uint64_t bits) {
    return static_cast<std::int64_t>(bits & 1 ? ~(bits >> 1) : bits >> 1);
}

}  // namespace

void RecordWriter::number(std::int64_t value) {
    std::uint64_t rest = unsignedOf(value);
    for (; rest > digitMask; rest >>= digitBits)
        m_bytes.push_back(static_cast<char>((rest & digitMask) | (1U << digitBits)));
    m_bytes.push_back(static_cast<char>(rest));
}

void RecordWriter::text(std::string_view value) {
    number(static_cast<std::int64_t>(value.size()));
    m_bytes.append(value);
}

void RecordWriter::texts(const std::vector<std::string>& values) {
    list(values, [this](const std::string& value) { text(value); });
}

std::int64_t RecordReader::readNumber() {
    std::uint64_t value = 0;
    for (unsigned shift = 0; shift < numberBits && !m_rest.empty(); shift += digitBits) {
        const auto byte = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        value |= (byte & digitMask) << shift;
        if (byte <= digitMask) return signedOf(value);
    }
    fail();
    return 0;
}

bool RecordReader::readFlag() {
    const std::int64_t value = readNumber();
    if (value != 0 && value != 1) fail();
    return value == 1 && !m_hasFailed;
}

std::string_view RecordReader::readText() {
    const std::int64_t size = readNumber();
    if (size < 0 || static_cast<std::uint64_t>(size) > m_rest.size()) {
        fail();
        return {};
    }
    const std::string_view value = m_rest.substr(0, static_cast<std::size_t>(size));
    m_rest.remove_prefix(value.size());
    return value;
}

void RecordReader::texts(std::vector<std::string>& values) {
    list(values, [this](std::string& value) { text(value); });
}

void RecordReader::fail() {
    m_hasFailed = true;
    m_rest = {};
}

}  // namespace QB
