#pragma once

#include "engine/modification_check.h"

namespace QB::Test {

/// While it lives, every modification of every engine also checks that the text of the statement,
/// read again, says what the statement says; else the program ends with the difference on stderr.
///
///     const TextCheck textCheck;
///     ... random edits through the engine ...
///     EXPECT_GT(textCheck.accepted(), 10 * textCheck.refused());
///
/// A debug build is needed for that; others count nothing.
class TextCheck {
public:
    TextCheck() { setTextCheck(true); }
    ~TextCheck() { setTextCheck(false); }
    TextCheck(const TextCheck&) = delete;
    TextCheck& operator=(const TextCheck&) = delete;

    /// How many texts the parser took since then.
    long accepted() const { return textCheckCounts().accepted - m_before.accepted; }
    /// How many it refused, as those of queries that are not finished; nothing is known of these.
    long refused() const { return textCheckCounts().refused - m_before.refused; }

private:
    const TextCheckCounts m_before = textCheckCounts();
};

}  // namespace QB::Test
