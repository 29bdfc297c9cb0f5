#pragma once

namespace QB {

/// Makes screen readers meet a clickable QBLabel as a button that can be pressed. To be called
/// before the first label is shown; later calls do nothing. Main thread.
void installLabelAccessibility();

}  // namespace QB
