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
    /// As run(), without the slice now.
    void schedule() { m_timer.start(); }

    /// For a step that has a piece of several milliseconds before it: whether this slice comes from
    /// the event loop and has done nothing yet. If not, the step ends it and does its piece in the
    /// next one.
    bool isFresh() const { return m_isFresh; }
    void endSlice() { m_isEnding = true; }

private:
    void slice(bool isFromEventLoop);

    const Step m_step;
    QTimer m_timer;
    bool m_isInSlice = false;
    bool m_isFresh = false;
    bool m_isEnding = false;
};

}  // namespace QB
