// Any format into both print engines and the templates with numbered inserts.
//
// Input: a byte that chooses the locale, a byte of capacity, then the format. Every argument is a
// pointer to a text, or a double: whatever a form reads of its slot, a text is safe to follow.
#include "text_fuzz.h"
#include "vx/print.h"

#include "text/tokens.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <utility>

namespace {

using namespace vxfuzz;

constexpr size_t kSlots = 110;             // what %1 to %99 with their stars reach
constexpr size_t kMostFormat = kSlots * 2; // a form that takes an argument has two characters or more
constexpr size_t kMostOfForm = 1024;       // that the unbounded engine writes, but for tokens
constexpr char16_t kText[] = u"A text, 1,234.5";

// The doubles fill the registers that doubles are passed in, so that all slots hold pointers.
template <size_t... Index, class Call>
auto WithSlots(std::index_sequence<Index...>, Call call)
{
    return call(1e300, -1234.5, 0.1, 1e-300, 1234567.891, -0.0, 2.5, 1e15, ((void)Index, kText)...);
}

template <class Call>
auto WithArguments(Call call)
{
    return WithSlots(std::make_index_sequence<kSlots>(), call);
}

void PrintBounded(const char16_t* format, uint32_t capacity)
{
    const auto text = std::make_unique<char16_t[]>(capacity);
    uint32_t length = 1;
    const HRESULT status = WithArguments(
        [&](auto... arguments) { return VxCchPrintF(text.get(), capacity, &length, format, arguments...); });
    Require(status == S_OK || FAILED(status));
    Require(length < std::max(capacity, 1u));
    Require(capacity == 0 || std::find(text.get(), text.get() + capacity, u'\0') == text.get() + length);
}

void PrintUnbounded(const char16_t* format)
{
    static char16_t text[kMostFormat * kMostOfForm];
    const uint32_t length =
        WithArguments([&](auto... arguments) { return VxPrintF(text, format, arguments...); });
    Require(length < std::size(text) && text[length] == 0);
}

void Compose(const char16_t* format, uint32_t capacity)
{
    const auto text = std::make_unique<char16_t[]>(capacity);
    const int32_t length = WithArguments(
        [&](auto... arguments) { return VxComposeStr(text.get(), int32_t(capacity), format, arguments...); });
    Require(length >= 0 && uint32_t(length) < std::max(capacity, 1u));
    Require(capacity == 0 || text[size_t(length)] == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const bool ready =
        vx::CreatePrintTokens() && VxPrintF_AddToken(u"T", u"value %d") && VxPrintF_AddToken(u"", u"x");
    Require(ready);
    if (size < 2)
        return 0;
    ChooseLocale(data[0]);
    const uint32_t capacity = data[1];
    // One byte a character: the language is ASCII, and others are text.
    const size_t length = std::min(size - 2, kMostFormat);
    const auto format = std::make_unique<char16_t[]>(length + 1);
    std::copy_n(data + 2, length, format.get());
    PrintBounded(format.get(), capacity);
    PrintBounded(format.get(), capacity * 16);
    PrintUnbounded(format.get());
    Compose(format.get(), capacity);
    return 0;
}
