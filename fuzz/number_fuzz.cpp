// Any text into all that reads numbers, and into the functions that format a number for a person.
//
// Input: a byte that chooses the locale, a byte of capacity, then UTF-16 text. Source and result lie
// in memory of exactly their size, so that the sanitizer sees any access behind them.
#include "text_fuzz.h"
#include "vx/numbers.h"

#include <algorithm>
#include <cstring>
#include <memory>

namespace {

using namespace vxfuzz;

// The value alone, and with a default and limits. The default is the minimum, and a 0 may become it.
template <class T, class Read, class ReadEx>
void ReadToken(const char16_t* text, const char16_t* textEnd, Read read, ReadEx readEx, T low, T high)
{
    const char16_t *end = nullptr, *endEx = nullptr;
    const T value = read(text, &end);
    Require(end >= text && end <= textEnd);
    const T limited = readEx(text, low, low, high, &endEx);
    Require(endEx == end && limited >= low && limited <= high);
    Require(value == 0 || value <= low || value >= high || limited == value);
}

void ReadAll(const char16_t* text, const char16_t* textEnd)
{
    ReadToken<uint32_t>(text, textEnd, VxTextToDWordToken, VxTextToDWordTokenEx, 10, 1000000);
    ReadToken<uint64_t>(text, textEnd, VxTextToDWordLongToken, VxTextToDWordLongTokenEx, 10, 1000000);
    ReadToken<int32_t>(text, textEnd, VxTextToLongToken, VxTextToLongTokenEx, -1000, 1000000);
    ReadToken<int64_t>(text, textEnd, VxTextToLongLongToken, VxTextToLongLongTokenEx, -1000, 1000000);
    ReadToken<uint32_t>(text, textEnd, VxHexToDWordToken, VxHexToDWordTokenEx, 10, 1000000);
    ReadToken<uint64_t>(text, textEnd, VxHexToDWordLongToken, VxHexToDWordLongTokenEx, 10, 1000000);
    for (const int32_t localised : {0, 1}) {
        const auto read = [=](const char16_t* t, const char16_t** end) {
            return VxTextToDoubleToken(t, end, localised);
        };
        const auto readEx = [=](const char16_t* t, double value, double low, double high,
                                const char16_t** end) {
            return VxTextToDoubleTokenEx(t, value, low, high, end, localised);
        };
        ReadToken<double>(text, textEnd, read, readEx, -1000.5, 1e6);
    }
}

void FormatAll(const char16_t* text, int32_t capacity)
{
    const auto result = std::make_unique<char16_t[]>(size_t(capacity));
    const auto check = [&](int32_t length) {
        Require(length >= 0 && length < std::max(capacity, 1));
        const char16_t* end = result.get() + capacity;
        const char16_t* terminator = std::find(result.get(), result.get() + capacity, u'\0');
        Require(capacity == 0 || terminator != end);
        Require(length == 0 || terminator == result.get() + length);
    };
    check(VxFormatNumber(text, result.get(), capacity));
    check(VxFormatDecimalNumber(text, result.get(), capacity));
    for (const uint32_t decimals : {0u, 1u, 9u, 10u, VXNUM_COUNT_DECIMALS})
        check(VxFormatGroupDecimalNumber(text, result.get(), capacity, decimals));
}

// What the library writes for a person it reads back.
void WriteAndRead(const char16_t* text)
{
    const int64_t value = VxTextToLongLongToken(text, nullptr);
    char16_t written[64];
    const char16_t* end = nullptr;
    const int32_t length = VxLongLongToText(value, written, 1);
    Require(VxTextToLongLongToken(written, &end) == value && end == written + length);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2)
        return 0;
    ChooseLocale(data[0]);
    const int32_t capacity = data[1];
    const size_t length = (size - 2) / sizeof(char16_t);
    const auto text = std::make_unique<char16_t[]>(length + 1); // its last character is the terminator
    std::memcpy(text.get(), data + 2, length * sizeof(char16_t));
    ReadAll(text.get(), text.get() + length);
    FormatAll(text.get(), capacity);
    WriteAndRead(text.get());
    return 0;
}
