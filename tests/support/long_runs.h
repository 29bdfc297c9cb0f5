#pragma once

#include <cstdlib>

namespace QB::Test {

/// True in `./test --long`.
inline bool isLongRun() {
    return std::getenv("JOINERY_LONG") != nullptr;
}

/// How often a random test repeats itself: @p usual times, or 50 times as often in `./test --long`,
/// which sets JOINERY_LONG.
inline int repetitions(int usual) {
    return isLongRun() ? usual * 50 : usual;
}

}  // namespace QB::Test
