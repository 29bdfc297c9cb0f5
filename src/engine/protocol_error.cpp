#include "engine/protocol_error.h"

#include <stdexcept>

namespace QB {

void throwProtocolError(const char* text) {
    throw new std::runtime_error(text);
}

}  // namespace QB
