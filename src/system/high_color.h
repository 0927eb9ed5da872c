#pragma once

namespace vx {

// Asks the display again: at first use, and where a host reports a change of it.
void RefreshHighColor();

} // namespace vx
