// The scanner of print formats, which both engines run.
#include "vx/print.h"

#include "kernel/characters.h"
#include "text/print_output.h"
#include "text/tokens.h"
#include "vx/internationals.h"
#include "vx/numbers.h"
#include "vx/platform/format.h"

#include <cmath>
#include <cstdarg>
#include <cstring>
#include <iterator>

namespace vx {
namespace {

constexpr size_t kCollected = 260; // characters of a conversion, a token's name, a literal

constexpr double kPowersOf10[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                  1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

constexpr bool EndsConversion(char16_t c)
{
    constexpr uint64_t kBelow64 = [] {
        uint64_t set = 0;
        for (const char16_t end : {u'!', u'&', u'*', u',', u':'})
            set |= uint64_t(1) << end;
        return set;
    }();
    constexpr uint64_t kFrom64 = [] {
        uint64_t set = 0;
        for (const char16_t end :
             {u'E', u'G', u'X', u'c', u'd', u'e', u'f', u'g', u'i', u'o', u's', u'u', u'x', u'z'})
            set |= uint64_t(1) << (end - 64);
        return set;
    }();
    return c < 128 && ((c < 64 ? kBelow64 >> c : kFrom64 >> (c - 64)) & 1) != 0;
}

// The caller's arguments: each takes one 8-byte slot, whatever is read of it.
class Arguments
{
public:
    explicit Arguments(va_list list) { va_copy(list_, list); }
    ~Arguments() { va_end(list_); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    int32_t Signed() { return va_arg(list_, int32_t); }
    uint32_t Unsigned() { return va_arg(list_, uint32_t); }
    uint64_t Unsigned64() { return va_arg(list_, uint64_t); }
    double Double() { return va_arg(list_, double); }
    const void* Pointer() { return va_arg(list_, const void*); }

private:
    va_list list_;
};

VxFormatValue IntegerValue(uint64_t value)
{
    return {VxFormatKind_Integer, {.integer = value}};
}

VxFormatValue DoubleValue(double value)
{
    return {VxFormatKind_Double, {.number = value}};
}

// How a conversion's text is shown.
using ShowNumber = int32_t (*)(const char16_t*, char16_t*, int32_t);

int32_t ShowDecimals(const char16_t* source, char16_t* text, int32_t capacity)
{
    return VxFormatGroupDecimalNumber(source, text, capacity, VXNUM_COUNT_DECIMALS);
}

class Printer
{
public:
    Printer(PrintOutput& out, const char16_t* format, va_list arguments)
        : out_(out), next_(format), arguments_(arguments)
    {}

    void Run()
    {
        while (*next_ && out_.HasRoom()) {
            if (*next_ == u'$' || *next_ == u'%')
                PutForm(*next_ == u'$');
            else
                PutPlain();
        }
        out_.Terminate();
    }

private:
    struct Conversion
    {
        char16_t text[kCollected + 1]; // begins with "%" whatever the introducer
        size_t length;
        bool grouped;

        char16_t Letter() const { return text[length - 1]; }
        bool IsBare() const { return length == 2; }
        std::u16string_view View() const { return {text, length}; }
    };

    void PutPlain()
    {
        const char16_t* first = next_;
        while (*next_ && *next_ != u'$' && *next_ != u'%')
            ++next_;
        out_.PutCut({first, size_t(next_ - first)});
    }

    void PutForm(bool person)
    {
        const char16_t second = next_[1];
        if (person && second == u'(') {
            PutBracket();
        } else if (second == u'%' || (person && second == u'$')) {
            out_.PutCut({next_ + 1, 1});
            next_ += 2;
        } else {
            Conversion conversion;
            ++next_;
            if (Collect(conversion, person))
                PutConversion(conversion);
            else
                out_.PutCut(conversion.View());
        }
    }

    // Takes the characters up to the one that ends a conversion. False where none does.
    bool Collect(Conversion& out, bool grouped)
    {
        out.grouped = grouped;
        out.text[0] = u'%';
        out.length = 1;
        bool ended = false;
        while (!ended && *next_ && out.length < kCollected) {
            ended = EndsConversion(*next_);
            out.text[out.length++] = *next_++;
        }
        out.text[out.length] = u'\0';
        return ended;
    }

    void PutConversion(Conversion& conversion)
    {
        switch (conversion.Letter()) {
        case u'd':
        case u'i':
        case u'u':
            return conversion.IsBare() ? PutBareInteger(conversion)
                                       : Put(conversion, ReadInteger(conversion), VxFormatNumber);
        case u'x':
        case u'X':
        case u'o':
            return PutPlain(conversion, ReadInteger(conversion));
        case u'e':
        case u'E':
            return PutPlain(conversion, DoubleValue(arguments_.Double()));
        case u'f':
            return Put(conversion, DoubleValue(arguments_.Double()), ShowDecimals);
        case u'g':
        case u'G':
            return PutGeneral(conversion);
        case u'z':
            return PutFixedPoint(conversion);
        case u'c':
            return PutDirect(conversion, IntegerValue(arguments_.Unsigned()));
        case u's':
            return PutDirect(conversion, {VxFormatKind_Text, {.text = arguments_.Pointer()}});
        case u'*':
            return PutSeparator(VXINAT_DECIMAL_SEPARATOR);
        case u',':
            return PutSeparator(VXINAT_LIST_SEPARATOR);
        case u':':
            return PutSeparator(VXINAT_TIME_SEPARATOR);
        case u'!':
            return PutTimeSeparator(VXINAT_SMPTE_WHOLE_SEPARATOR, VXINAT_SMPTE_NONDROP_SEPARATOR,
                                    VXINAT_SMPTE_DROP_SEPARATOR);
        case u'&':
            return PutTimeSeparator(VXINAT_MUSIC_MEASURE_SEPARATOR, VXINAT_MUSIC_BEAT_SEPARATOR, 0);
        }
    }

    void PutBareInteger(const Conversion& conversion)
    {
        if (conversion.Letter() == u'u')
            out_.PutInteger(arguments_.Unsigned(), conversion.grouped);
        else
            out_.PutInteger(arguments_.Signed(), conversion.grouped);
    }

    // The first I decides, wherever it stands: 32 bits with a 3 behind it, else 64.
    VxFormatValue ReadInteger(const Conversion& conversion)
    {
        const std::u16string_view text = conversion.View();
        const size_t at = text.find(u'I');
        if (at != text.npos && text[at + 1] != u'3')
            return IntegerValue(arguments_.Unsigned64());
        if (conversion.Letter() == u'd' || conversion.Letter() == u'i')
            return IntegerValue(uint64_t(int64_t(arguments_.Signed())));
        return IntegerValue(arguments_.Unsigned());
    }

    // The conversion's text in scratch; false where it does not come or has been dealt with.
    bool Convert(const Conversion& conversion, const VxFormatValue& value,
                 char16_t (&scratch)[PrintOutput::kMostScratch])
    {
        const int64_t length = VxPlatform_FormatValue(scratch, out_.Scratch(), conversion.text, &value);
        if (length < 0)
            out_.PutCut(conversion.View());
        return length >= 0 && out_.TakeConversion(length);
    }

    void PutPlain(const Conversion& conversion, const VxFormatValue& value)
    {
        char16_t scratch[PrintOutput::kMostScratch];
        if (Convert(conversion, value, scratch))
            out_.PutCut(scratch);
    }

    void PutShown(const Conversion& conversion, const VxFormatValue& value, ShowNumber show)
    {
        char16_t scratch[PrintOutput::kMostScratch];
        if (Convert(conversion, value, scratch))
            out_.PutFormatted(scratch, show);
    }

    void Put(const Conversion& conversion, const VxFormatValue& value, ShowNumber showToPerson)
    {
        if (conversion.grouped)
            PutShown(conversion, value, showToPerson);
        else
            PutPlain(conversion, value);
    }

    // For a person the decimal separator is the locale's, but a text with an exponent stays as it is.
    void PutGeneral(const Conversion& conversion)
    {
        char16_t scratch[PrintOutput::kMostScratch];
        if (!Convert(conversion, DoubleValue(arguments_.Double()), scratch))
            return;
        const std::u16string_view text(scratch);
        if (conversion.grouped && text.find_first_of(u"eE") == text.npos)
            out_.PutFormatted(scratch, VxFormatDecimalNumber);
        else
            out_.PutCut(text);
    }

    // Straight into the buffer, so that a text may be of any length.
    void PutDirect(const Conversion& conversion, const VxFormatValue& value)
    {
        const bool written = out_.PutDirect([&](char16_t* text, size_t capacity) {
            return VxPlatform_FormatValue(text, capacity, conversion.text, &value);
        });
        if (!written)
            out_.PutCut(conversion.View());
    }

    // %.Nz: the argument counts units of 10 to the -N. Without such a precision z is a d.
    void PutFixedPoint(Conversion& conversion)
    {
        const bool hasDecimals =
            conversion.text[1] == u'.' && IsDigit(conversion.text[conversion.length - 2]);
        const uint32_t decimals = hasDecimals ? VxTextToDWordToken(conversion.text + 2, nullptr) : 0;
        const int32_t units = arguments_.Signed();
        if (decimals == 0) {
            conversion.text[conversion.length - 1] = u'd';
            return Put(conversion, IntegerValue(uint64_t(int64_t(units))), VxFormatNumber);
        }
        const double power =
            decimals < std::size(kPowersOf10) ? kPowersOf10[decimals] : std::pow(10.0, double(decimals));
        WriteDoubleConversion(conversion, decimals);
        char16_t scratch[PrintOutput::kMostScratch];
        if (!Convert(conversion, DoubleValue(units / power), scratch))
            return;
        if (!conversion.grouped)
            return out_.PutFormatted(scratch, VxFormatDecimalNumber);
        out_.PutFormatted(scratch, [=](const char16_t* source, char16_t* text, int32_t capacity) {
            return VxFormatGroupDecimalNumber(source, text, capacity, decimals);
        });
    }

    // "%.Nf"
    static void WriteDoubleConversion(Conversion& conversion, uint32_t decimals)
    {
        char16_t* letter = conversion.text + 2; // behind "%."
        letter += VxDWordToText(decimals, letter, 0);
        letter[0] = u'f';
        letter[1] = u'\0';
        conversion.length = size_t(letter + 1 - conversion.text);
    }

    void PutSeparator(uint32_t key) { out_.PutSeparator(key); }

    // The character behind chooses, and is taken where something was written. A key of 0: not known.
    void PutTimeSeparator(uint32_t colon, uint32_t point, uint32_t comma)
    {
        const char16_t c = *next_;
        const uint32_t key = c == u':' ? colon : c == u'.' ? point : c == u',' ? comma : 0;
        if (key != 0 && out_.PutSeparator(key) > 0)
            ++next_;
    }

    void PutBracket()
    {
        const char16_t c = next_[2];
        if (IsDigit(c) || c == u'-' || c == u'.')
            PutLiteral();
        else
            PutToken();
    }

    static bool IsOfLiteral(char16_t c) { return IsDigit(c) || c == u',' || c == u'.'; }

    void PutLiteral()
    {
        const char16_t* form = next_;
        const char16_t* first = form + 2;
        next_ = first + 1;
        while (IsOfLiteral(*next_) && size_t(next_ - first) < kCollected)
            ++next_;
        if (*next_ != u')')
            return out_.PutOpenLiteral({form, size_t(next_ - form)});
        char16_t literal[kCollected + 1];
        CopyText({first, size_t(next_ - first)}, literal);
        ++next_;
        out_.PutFormatted(literal, ShowDecimals);
    }

    void PutToken()
    {
        const char16_t* form = next_;
        const char16_t* first = form + 2;
        next_ = first;
        while (*next_ && *next_ != u')' && size_t(next_ - first) < kCollected)
            ++next_;
        const size_t length = size_t(next_ - first);
        if (*next_ != u')' || length == kCollected)
            return out_.PutForm({form, size_t(next_ - form)});
        char16_t name[kCollected + 1];
        CopyText({first, length}, name);
        ++next_;
        const TokenLookup token(name);
        if (token.Found())
            out_.PutCut(token.Value());
        else
            out_.PutForm({form, size_t(next_ - form)});
    }

    static void CopyText(std::u16string_view text, char16_t (&copy)[kCollected + 1])
    {
        copy[text.copy(copy, kCollected)] = u'\0';
    }

    PrintOutput& out_;
    const char16_t* next_;
    Arguments arguments_;
};

} // namespace
} // namespace vx

using namespace vx;

uint32_t VxVPrintF(char16_t* text, const char16_t* format, va_list arguments)
{
    PrintOutput out(text);
    Printer(out, format, arguments).Run();
    return out.Length();
}

uint32_t VxPrintF(char16_t* text, const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const uint32_t length = VxVPrintF(text, format, arguments);
    va_end(arguments);
    return length;
}

HRESULT VxNVPrintF(char16_t* text, uint32_t capacity, uint32_t* outLength, const char16_t* format,
                   va_list arguments)
{
    if (outLength)
        *outLength = 0;
    if (capacity == 0 || capacity > 0x7FFFFFFF) {
        if (capacity != 0)
            *text = u'\0';
        return E_INVALIDARG;
    }
    PrintOutput out(text, capacity);
    Printer(out, format, arguments).Run();
    if (outLength)
        *outLength = out.Length();
    return out.Status();
}

HRESULT VxCchPrintF(char16_t* text, uint32_t capacity, uint32_t* outLength, const char16_t* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    const HRESULT status = VxNVPrintF(text, capacity, outLength, format, arguments);
    va_end(arguments);
    return status;
}

int32_t VxComposeStr(char16_t* text, int32_t capacity, const char16_t* templateText, ...)
{
    if (capacity < 1)
        return 0;
    va_list arguments;
    va_start(arguments, templateText);
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_STRING, templateText, 0, 0, text, DWORD(capacity), &arguments);
    va_end(arguments);
    return int32_t(length);
}
