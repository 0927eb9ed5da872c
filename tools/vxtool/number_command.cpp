// number: a locale's way to write and to read numbers.
#include "vx/numbers.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/kernel_start.h"
#include "vxtool/reading.h"
#include "vxtool/unicode.h"

#include <iostream>

namespace vxtool {
namespace {

constexpr size_t kRoom = 128; // characters; the library's own limit is 64

enum Kind : int32_t
{
    kInt32,
    kUint32,
    kInt64,
    kUint64,
    kDouble,
};
constexpr Choice kKinds[] = {
    {"i32", kInt32}, {"u32", kUint32}, {"i64", kInt64}, {"u64", kUint64}, {"double", kDouble},
};

struct Writing
{
    int32_t group;
    uint32_t decimals;
};

std::string Written(const std::string& text, Kind kind, Writing writing)
{
    char16_t wide[kRoom];
    switch (kind) {
    case kInt32:
        VxLongToText(ReadPlain<int32_t>("a whole number from -2147483648 to 2147483647", text), wide,
                     writing.group);
        break;
    case kUint32:
        VxDWordToText(ReadPlain<uint32_t>("a whole number from 0 to 4294967295", text), wide, writing.group);
        break;
    case kInt64:
        VxLongLongToText(ReadPlain<int64_t>("a whole number of 64 bits with a sign", text), wide,
                         writing.group);
        break;
    case kUint64:
        VxDWordLongToText(ReadPlain<uint64_t>("a whole number of 64 bits without a sign", text), wide,
                          writing.group);
        break;
    case kDouble:
        VxDoubleToText(wide, ReadPlain<double>("a number", text), writing.decimals, writing.group);
        break;
    }
    return Utf8Of(wide);
}

template <class T>
struct Read
{
    T value;
    const char16_t* end;
};

// Nothing fails inside the library, which takes what is no number for 0; here it is told.
template <class T>
std::string Shown(const std::u16string& text, const Read<T>& read)
{
    const size_t stop = size_t(read.end - text.c_str());
    if (OnlySpaceBehind(text, 0) || !OnlySpaceBehind(text, stop))
        FailReading("a number", text, stop);
    char shown[kRoom];
    return {shown, std::to_chars(shown, shown + kRoom, read.value).ptr};
}

std::string ReadHex(const std::u16string& text, Kind kind)
{
    const char16_t* end = nullptr;
    if (kind == kUint32)
        return Shown(text, Read<uint32_t>{VxHexToDWordToken(text.c_str(), &end), end});
    return Shown(text, Read<uint64_t>{VxHexToDWordLongToken(text.c_str(), &end), end});
}

std::string ReadNumber(const std::u16string& text, Kind kind)
{
    if (!HasDigit(text))
        FailReading("a number", text, 0);
    const char16_t* end = nullptr;
    switch (kind) {
    case kInt32:
        return Shown(text, Read<int32_t>{VxTextToLongToken(text.c_str(), &end), end});
    case kUint32:
        return Shown(text, Read<uint32_t>{VxTextToDWordToken(text.c_str(), &end), end});
    case kInt64:
        return Shown(text, Read<int64_t>{VxTextToLongLongToken(text.c_str(), &end), end});
    case kUint64:
        return Shown(text, Read<uint64_t>{VxTextToDWordLongToken(text.c_str(), &end), end});
    case kDouble:
        break;
    }
    return Shown(text, Read<double>{VxTextToDoubleToken(text.c_str(), &end, 1), end});
}

void WriteNumbers(const Arguments& arguments)
{
    const Writing writing = {arguments.Has("--group"), uint32_t(arguments.Integer("--decimals", 6, 0, 9))};
    for (size_t i = 0; i < arguments.OperandCount(); ++i) {
        const std::string& text = arguments.Operand(i);
        const bool fraction =
            arguments.Has("--decimals") || text.find_first_not_of("-0123456789") != text.npos;
        std::cout << Written(text, Kind(arguments.OneOf("--kind", kKinds, fraction ? kDouble : kInt64)),
                             writing)
                  << "\n";
    }
}

void ReadNumbers(const Arguments& arguments)
{
    if (arguments.Has("--group") || arguments.Has("--decimals"))
        FailArgument("--parse excludes --group and --decimals");
    const bool hex = arguments.Has("--hex");
    const Kind kind = Kind(arguments.OneOf("--kind", kKinds, hex ? kUint64 : kDouble));
    if (hex && kind != kUint32 && kind != kUint64)
        FailArgument("--hex reads u32 and u64 only");
    for (size_t i = 0; i < arguments.OperandCount(); ++i) {
        const std::u16string text = Utf16Of(arguments.Operand(i));
        std::cout << (hex ? ReadHex(text, kind) : ReadNumber(text, kind)) << "\n";
    }
}

void RunNumber(const Arguments& arguments)
{
    StartKernel(arguments);
    if (arguments.Has("--parse"))
        ReadNumbers(arguments);
    else if (arguments.Has("--hex"))
        FailArgument("--hex needs --parse");
    else
        WriteNumbers(arguments);
}

constexpr Option kNumberOptions[] = {
    {"--kind", "KIND",
     "i32, u32, i64, u64 or double (default: double, but i64 for a whole\n"
     "number to be written and u64 for a hexadecimal one)"},
    {"--group", nullptr, "write for a person: digits grouped, with the locale's decimal separator"},
    {"--decimals", "N", "decimals of a double, 0 to 9 (default 6)"},
    {"--parse", nullptr,
     "read numbers as the locale writes them, show them plain; too large ones\n"
     "stop at the ends of i32 and i64, wrap in u32 and u64"},
    {"--hex", nullptr, "with --parse: hexadecimal digits, behind 0x or not"},
    kLocaleOption,
};

} // namespace

const Command kNumber = {
    "number",       "write numbers for a person, or read them, in any locale",       "NUMBER...", 1, SIZE_MAX,
    kNumberOptions, "vxtool number 1234567.891 --group --decimals 2 --locale de-DE", RunNumber,
};

} // namespace vxtool
