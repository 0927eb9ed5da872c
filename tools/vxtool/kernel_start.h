// What the library needs before it writes or reads text.
#pragma once

#include "vxtool/options.h"

namespace vxtool {

inline constexpr Option kLocaleOption = {"--locale", "NAME",
                                         "the user's locale, as de-DE (default: that of the environment)"};

// Starts the kernel in the locale of --locale. Every command of text and time begins with it.
void StartKernel(const Arguments& arguments);

} // namespace vxtool
