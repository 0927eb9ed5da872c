#pragma once

namespace vxplatform {

constexpr bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

} // namespace vxplatform
