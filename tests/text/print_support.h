// Calls of both print engines on one form, with guards around what they write.
#pragma once

#include "vx/print.h"

#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string>

namespace vxtest {

// Also the width of the buffers: no text of these tests is longer.
constexpr size_t kPrintRoom = 3000;

struct Printed
{
    std::u16string text;
    HRESULT status;
    bool operator==(const Printed&) const = default;
};

inline std::string Visible(const std::u16string& text)
{
    std::string out;
    for (const char16_t c : text)
        if (c >= 32 && c < 127)
            out += char(c);
        else
            out += "\\" + std::to_string(unsigned(c));
    return out;
}

inline void PrintTo(const Printed& printed, std::ostream* out)
{
    *out << '"' << Visible(printed.text) << "\" (" << std::hex << uint32_t(printed.status) << ")";
}

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
    EXPECT_EQ(text.find(u'\0'), length) << Visible(form.format);
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
    EXPECT_EQ(text.find(u'\0'), length) << Visible(form.format) << ", capacity " << capacity;
    EXPECT_EQ(text.find_first_not_of(u'#', capacity), text.npos) << "written behind the capacity";
    return {text.substr(0, length), status};
}

// Both engines print it whole.
inline void ExpectPrints(const Form& form, const std::u16string& want)
{
    EXPECT_EQ(Visible(Print(form)), Visible(want)) << Visible(form.format);
    EXPECT_EQ(PrintBounded(form), (Printed{want, S_OK})) << Visible(form.format);
}

} // namespace vxtest
