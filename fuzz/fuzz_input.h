#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "model/vocabulary.h"

namespace QB::Fuzz {

/// What a fuzzer's bytes stand for: the first chooses the setting, the others are the text. All
/// targets read it alike, so that they share their corpora.
struct Input {
    DatabaseType family;
    bool isAlwaysQuoted;  ///< by the host
    std::string schema;   ///< the current one; may be empty
    std::string text;

    int dialect() const { return parserDialect(family); }
};

inline Input inputOf(const std::uint8_t* data, std::size_t size) {
    static const char* const schemas[] = {"s", "", "main"};
    const unsigned setting = size ? data[0] : 0;
    Input input{static_cast<DatabaseType>(1 + setting % 6),
                setting / 6 % 2 == 1,
                schemas[setting / 12 % 3],
                {}};
    if (size > 1) input.text.assign(reinterpret_cast<const char*>(data) + 1, size - 1);
    return input;
}

/// Says what is broken and stops the fuzzer, which then keeps the input. With the environment
/// variable JOINERY_FUZZ_GATHER=FILE it writes to that file instead, and the fuzzer goes on.
void stopIfBroken(const std::string& fault, const Input& input);

}  // namespace QB::Fuzz
