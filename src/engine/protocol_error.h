#pragma once

namespace QB {

/// Broken protocol, in the one form that hosts catch: throws `new std::runtime_error(text)`.
[[noreturn]] void throwProtocolError(const char* text);

}  // namespace QB
