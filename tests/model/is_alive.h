#pragma once

#include "model/liveness.h"

namespace QB::Test {

inline bool isAlive(const long id) {
    bool result = false;
    runIfAlive(id, [&result](bool alive) { result = alive; });
    return result;
}

}  // namespace QB::Test
