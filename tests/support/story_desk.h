#pragma once

#include "support/from_clause.h"
#include "support/panel_desk.h"
#include "support/qt_animations.h"
#include "support/text_check.h"

namespace QB::Test {

/// Tells the story of this row of a test at a desk of its host; each text is read back.
template <typename Desk, std::size_t count>
void tellStory(const Story (&stories)[count]) {
    const TextCheck textCheck;
    Desk desk(hostOfTest());
    desk.tell(storyOfTest(stories));
}

}  // namespace QB::Test
