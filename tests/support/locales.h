// Changing the user's locale in a test.
#pragma once

#include "vx/internationals.h"
#include "vx/platform/locale.h"

#include <gtest/gtest.h>

namespace vxtest {

constexpr const char* kLocales[] = {"en-US", "de-DE", "fr-FR", "fr-CH", "hi-IN", "ja-JP", "ar-SA",
                                    "pt-PT", "pl-PL", "sv-SE", "fa-IR", "C",     "POSIX"};

// While it lives, the user's locale is this one, and the internationals record is built from it.
class OnlyLocale
{
public:
    explicit OnlyLocale(const char* name)
    {
        EXPECT_TRUE(VxPlatform_SetUserLocale(name)) << name;
        VxLang_GetInternationals(nullptr, 0);
    }
    ~OnlyLocale() { VxPlatform_SetUserLocale(nullptr); }
    OnlyLocale(const OnlyLocale&) = delete;
    OnlyLocale& operator=(const OnlyLocale&) = delete;
};

} // namespace vxtest
