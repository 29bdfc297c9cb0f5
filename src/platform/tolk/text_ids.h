#pragma once

namespace Tolk {

/// The ids of all texts; the texts themselves stand in texts.inc, in the same order.
enum TextId : unsigned {
#define TOLK_TEXT(id, source) id,
#include "platform/tolk/texts.inc"
#undef TOLK_TEXT
    TextCount
};

}  // namespace Tolk
