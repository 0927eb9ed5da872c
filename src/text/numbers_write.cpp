#include "vx/numbers.h"

#include "kernel/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>

namespace vx {
namespace {

constexpr int32_t kIntegerRoom = 22; // sign, 20 digits, terminator
constexpr int32_t kScratchRoom = 64; // bound of a grouped text whose buffer has no known size
constexpr uint32_t kMaxDecimals = 9;
constexpr double kTwoTo64 = 0x1p64;

constexpr std::array<uint64_t, 20> kPowersOf10 = [] {
    std::array<uint64_t, 20> powers{};
    uint64_t power = 1;
    for (uint64_t& entry : powers) {
        entry = power;
        power *= 10; // wraps behind the last entry, where it is not used
    }
    return powers;
}();

struct DigitPair
{
    char16_t tens, ones;
};

constexpr std::array<DigitPair, 100> kDigitPairs = [] {
    std::array<DigitPair, 100> pairs{};
    for (int i = 0; i < 100; ++i)
        pairs[i] = {char16_t(u'0' + i / 10), char16_t(u'0' + i % 10)};
    return pairs;
}();

int32_t DigitCount(uint64_t value)
{
    value |= 1; // zero has a digit too
    // 1233 / 4096 is a little above log10(2): the estimate is right or one too low.
    const uint32_t estimate = uint32_t(std::bit_width(value)) * 1233 >> 12;
    return int32_t(estimate + (value >= kPowersOf10[estimate]));
}

void PutPairBefore(char16_t*& end, uint32_t pair)
{
    end -= 2;
    std::memcpy(end, &kDigitPairs[pair], sizeof(DigitPair));
}

void PutDigitsBefore(char16_t* end, uint32_t value)
{
    for (; value >= 100; value /= 100)
        PutPairBefore(end, value % 100);
    if (value >= 10)
        PutPairBefore(end, value);
    else
        *--end = char16_t(u'0' + value);
}

// Eight digits at a time, so that most divisions have 32 bits.
void PutDigitsBefore(char16_t* end, uint64_t value)
{
    constexpr uint32_t kEightDigits = 100000000;
    for (; value > UINT32_MAX; value /= kEightDigits) {
        uint32_t low = uint32_t(value % kEightDigits);
        for (int i = 0; i < 4; ++i, low /= 100)
            PutPairBefore(end, low % 100);
    }
    PutDigitsBefore(end, uint32_t(value));
}

// An integer taken apart: the magnitude of the smallest signed value has no signed form.
template <class T>
struct Integer
{
    T magnitude;
    bool negative = false;
};

Integer<uint32_t> Split(int32_t value)
{
    return {value < 0 ? 0u - uint32_t(value) : uint32_t(value), value < 0};
}

Integer<uint64_t> Split(int64_t value)
{
    return {value < 0 ? uint64_t(0) - uint64_t(value) : uint64_t(value), value < 0};
}

// Writes and terminates; returns the length.
template <class T>
int32_t Put(Integer<T> value, char16_t* text)
{
    const int32_t length = DigitCount(value.magnitude) + value.negative;
    text[0] = u'-';
    PutDigitsBefore(text + length, value.magnitude);
    text[length] = u'\0';
    return length;
}

template <class T>
int32_t ToText(Integer<T> value, char16_t* text, int32_t group)
{
    if (!group)
        return Put(value, text);
    char16_t scratch[kIntegerRoom];
    Put(value, scratch);
    return VxFormatNumber(scratch, text, kScratchRoom);
}

template <class T>
int32_t ToTextN(Integer<T> value, char16_t* text, int32_t capacity, int32_t group)
{
    if (capacity < 2)
        return 0;
    if (!group && capacity >= kIntegerRoom)
        return Put(value, text);
    char16_t scratch[kIntegerRoom];
    const int32_t length = Put(value, scratch);
    if (group)
        return VxFormatNumber(scratch, text, capacity);
    return CopyCut({scratch, size_t(length)}, text, capacity) == length ? length : 0;
}

int32_t LengthOf(const char16_t* text)
{
    return int32_t(std::char_traits<char16_t>::length(text));
}

// A double as its rounded parts: whole + fraction / 10^decimals.
struct RoundedDouble
{
    uint64_t whole = 0;
    uint64_t fraction = 0;
    bool negative = false;
};

RoundedDouble Round(double value, uint32_t decimals)
{
    // The unit is a float: its error is what rounds 1.05 up to 1.1.
    static constexpr float kUnits[] = {1e0f, 1e-1f, 1e-2f, 1e-3f, 1e-4f, 1e-5f, 1e-6f, 1e-7f, 1e-8f, 1e-9f};
    static_assert(std::size(kUnits) == kMaxDecimals + 1);
    const double magnitude = std::fabs(value) + 0.5 * double(kUnits[decimals]);
    RoundedDouble parts;
    if (magnitude >= kTwoTo64)
        parts.whole = UINT64_MAX;
    else if (magnitude > 0) { // not for a NaN
        parts.whole = uint64_t(magnitude);
        // Both factors are exact and the rest is below 1, so the product stays below 10^decimals.
        parts.fraction = uint64_t((magnitude - double(parts.whole)) * double(kPowersOf10[decimals]));
    }
    parts.negative = value < 0 && (parts.whole != 0 || parts.fraction != 0);
    return parts;
}

// With a plain "."; at most 32 characters with the terminator.
int32_t PutDouble(double value, uint32_t decimals, char16_t* text)
{
    const RoundedDouble parts = Round(value, decimals);
    int32_t length = Put(Integer<uint64_t>{parts.whole, parts.negative}, text);
    if (decimals == 0)
        return length;
    // The leading 1 keeps the zeros of the fraction, and gives its place to the point.
    const int32_t point = length;
    length += Put(Integer<uint64_t>{kPowersOf10[decimals] + parts.fraction}, text + point);
    text[point] = u'.';
    return length;
}

} // namespace
} // namespace vx

int32_t VxDWordToText(uint32_t value, char16_t* text, int32_t group)
{
    return vx::ToText(vx::Integer<uint32_t>{value}, text, group);
}

int32_t VxDWordToTextN(uint32_t value, char16_t* text, int32_t capacity, int32_t group)
{
    return vx::ToTextN(vx::Integer<uint32_t>{value}, text, capacity, group);
}

int32_t VxDWordLongToText(uint64_t value, char16_t* text, int32_t group)
{
    return vx::ToText(vx::Integer<uint64_t>{value}, text, group);
}

int32_t VxDWordLongToTextN(uint64_t value, char16_t* text, int32_t capacity, int32_t group)
{
    if (capacity < 1)
        return 0;
    text[0] = u'\0';
    const int32_t length = vx::ToTextN(vx::Integer<uint64_t>{value}, text, capacity, group);
    return length ? length : vx::LengthOf(text);
}

int32_t VxLongToText(int32_t value, char16_t* text, int32_t group)
{
    return vx::ToText(vx::Split(value), text, group);
}

int32_t VxLongToTextN(int32_t value, char16_t* text, int32_t capacity, int32_t group)
{
    return vx::ToTextN(vx::Split(value), text, capacity, group);
}

int32_t VxLongLongToText(int64_t value, char16_t* text, int32_t group)
{
    return vx::ToText(vx::Split(value), text, group);
}

int32_t VxLongLongToTextN(int64_t value, char16_t* text, int32_t capacity, int32_t group)
{
    return vx::ToTextN(vx::Split(value), text, capacity, group);
}

int32_t VxDoubleToText(char16_t* text, double value, uint32_t decimals, int32_t group)
{
    decimals = std::min(decimals, vx::kMaxDecimals);
    if (!group)
        return vx::PutDouble(value, decimals, text);
    char16_t scratch[vx::kScratchRoom];
    vx::PutDouble(value, decimals, scratch);
    const int32_t length = VxFormatGroupDecimalNumber(scratch, text, vx::kScratchRoom, decimals);
    return length ? length : vx::LengthOf(text);
}

int32_t VxDoubleToTextN(char16_t* text, int32_t capacity, double value, uint32_t decimals, int32_t group)
{
    if (capacity < 1)
        return 0;
    char16_t scratch[vx::kScratchRoom];
    const int32_t length = VxDoubleToText(scratch, value, decimals, group);
    return vx::CopyCut({scratch, size_t(length)}, text, capacity);
}

void VxFourCCToString(uint32_t fourCC, char16_t* text)
{
    for (int i = 0; i < 4; ++i) {
        const uint32_t byte = (fourCC >> (8 * i)) & 0xFF;
        text[i] = byte >= 32 && byte <= 126 ? char16_t(byte) : u'.';
    }
    text[4] = u'\0';
}
