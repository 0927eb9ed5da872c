// Calls of both print engines on one form, with guards around what they write.
#pragma once

#include "vx/print.h"

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace vxtest {

// Also the width of the buffers: no text of these tests is longer.
constexpr size_t kPrintRoom = 3000;

using Printed = std::pair<std::u16string, HRESULT>;

// A format with its arguments, to be printed many times.
struct Form
{
    template <class... Arguments>
    Form(const char16_t* text, Arguments... arguments)
        : format(text), unbounded([=](char16_t* out) { return VxPrintF(out, text, arguments...); }),
          bounded([=](char16_t* out, uint32_t capacity, uint32_t* length) {
              return VxCchPrintF(out, capacity, length, text, arguments...);
          })
    {}

    std::u16string format;
    std::function<uint32_t(char16_t*)> unbounded;
    std::function<HRESULT(char16_t*, uint32_t, uint32_t*)> bounded;
};

inline std::u16string Print(const Form& form)
{
    std::u16string text(kPrintRoom, u'#');
    const uint32_t length = form.unbounded(text.data());
    EXPECT_EQ(text.find(u'\0'), length) << testing::PrintToString(form.format);
    return text.substr(0, length);
}

inline Printed PrintBounded(const Form& form, uint32_t capacity = kPrintRoom)
{
    std::u16string text(kPrintRoom + 1, u'#');
    uint32_t length = 12345;
    const HRESULT status = form.bounded(text.data(), capacity, &length);
    if (capacity == 0) {
        EXPECT_EQ(text.find_first_not_of(u'#'), text.npos);
        EXPECT_EQ(length, 0u);
        return {u"", status};
    }
    EXPECT_EQ(text.find(u'\0'), length);
    EXPECT_EQ(text.find_first_not_of(u'#', capacity), text.npos) << "written behind " << capacity;
    return {text.substr(0, length), status};
}

// Both engines print it whole.
inline void ExpectPrints(const Form& form, const std::u16string& want)
{
    const auto trace = testing::PrintToString(form.format);
    EXPECT_EQ(Print(form), want) << trace;
    EXPECT_EQ(PrintBounded(form), Printed(want, S_OK)) << trace;
}

} // namespace vxtest
