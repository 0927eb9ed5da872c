// Text between UTF-16 and UTF-8. What is half of a surrogate pair, or no UTF-8, becomes U+FFFD.
#pragma once

#include <string>
#include <string_view>

namespace vxplatform {

std::string ToUtf8(std::u16string_view text);
std::u16string ToUtf16(std::string_view text);

} // namespace vxplatform
