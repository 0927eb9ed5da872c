// Where the registry keeps what belongs to an application.
#pragma once

#include "kernel/text.h"

namespace vx {

// Whose applications they are unless a call names another vendor.
inline constexpr const char16_t* kVendor = u"Vexmere Studio Works";
// What all of that vendor's applications share.
inline constexpr const char16_t* kSharedInformationKey =
    u"Software\\Vexmere Studio Works\\Shared Information";

// The application's key below a hive. The major number stands in the top 8 bits of the version, the minor one
// in the next 8; an application whose major number is 0 has one key for all its versions.
inline PathText ApplicationKey(const char16_t* vendor, const char16_t* app, uint32_t version)
{
    PathText key(u"Software\\");
    key.Add(ViewOf(vendor)).Add(u"\\").Add(ViewOf(app));
    const uint32_t major = version >> 24, minor = version >> 16 & 0xFF;
    if (major != 0)
        key.Add(u"\\").Add(major).Add(u".").Add(minor);
    return key;
}

} // namespace vx
