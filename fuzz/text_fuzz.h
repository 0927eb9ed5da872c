// What the fuzz targets of text share.
#pragma once

#include "require.h"
#include "vx/internationals.h"
#include "vx/platform/locale.h"

#include <cstdint>
#include <iterator>

namespace vxfuzz {

inline constexpr const char* kLocales[] = {"en-US", "de-DE", "fr-FR", "hi-IN", "ar-SA", "sv-SE"};

inline void ChooseLocale(uint8_t choice)
{
    static int current = -1;
    const int wanted = choice % int(std::size(kLocales));
    if (wanted == current)
        return;
    Require(VxPlatform_SetUserLocale(kLocales[wanted]));
    VxLang_GetInternationals(nullptr, 0);
    current = wanted;
}

} // namespace vxfuzz
