#pragma once

#include <QElapsedTimer>
#include <QTimer>
#include <functional>

namespace QB {

/// Long work on the main thread, done in slices between which the event loop turns.
class SlicedWork {
public:
    /// Does one piece, well below a millisecond; false if nothing was left to do.
    using Step = std::function<bool()>;

    /// How long a slice goes on taking pieces, in milliseconds: a frame must also hold the layout
    /// and the painting that the slice sets off.
    static constexpr int sliceBudget = 4;

    explicit SlicedWork(Step step);

    /// Runs a first slice now and the others, if work is left, from the event loop. While a slice
    /// runs the call does nothing: the slice goes on anyway.
    void run();

private:
    void slice();

    const Step m_step;
    QTimer m_timer;
    bool m_isInSlice = false;
};

}  // namespace QB
