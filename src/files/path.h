// What the families of files and paths share.
#pragma once

#include "kernel/text.h"

#include <string_view>

namespace vx {

constexpr bool IsPathSeparator(char16_t c)
{
    return c == u':' || c == u'\\';
}

// Where the file name of a path begins, and the extension of a name.
size_t FileNameStart(std::u16string_view path);
size_t ExtensionStart(std::u16string_view name);

} // namespace vx
