#pragma once

#include <tuple>

namespace QB {

/// Names a value of a condition over refreshes: by the id of the condition and the side on which
/// the value stands. A condition that is a value itself has only a left side.
struct QBConditionSide {
    enum Side { Left, Right };

    long conditionId = -1;
    Side side = Left;
};

inline bool operator<(const QBConditionSide& a, const QBConditionSide& b) {
    return std::tie(a.conditionId, a.side) < std::tie(b.conditionId, b.side);
}

}  // namespace QB
