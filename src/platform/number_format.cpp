#include "platform/bounded_text.h"
#include "platform/locale_data.h"

#include <algorithm>
#include <iterator>

namespace vxplatform {
namespace {

constexpr UINT kMaxDecimals = 9;
constexpr UINT kMaxGrouping = 9999;

// A number given as text, taken apart: [-]digits[.digits].
struct DecimalText
{
    bool negative = false;
    std::u16string_view integer; // without leading zeros
    std::u16string_view fraction;
};

bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

std::u16string_view TakeDigits(const char16_t*& text)
{
    const char16_t* first = text;
    while (IsDigit(*text))
        ++text;
    return {first, size_t(text - first)};
}

// False for what is no number.
bool Parse(const char16_t* text, DecimalText& number)
{
    number.negative = *text == u'-';
    text += number.negative;
    number.integer = TakeDigits(text);
    if (*text == u'.')
        number.fraction = TakeDigits(++text);
    if (*text || (number.integer.empty() && number.fraction.empty()))
        return false;
    number.integer.remove_prefix(std::min(number.integer.find_first_not_of(u'0'), number.integer.size()));
    return true;
}

// The digits of a number rounded to some decimals, counted from the left, without a copy of them: a
// carry out of the last one turns a run of nines into zeros and raises the digit before them.
class RoundedDigits
{
public:
    RoundedDigits(const DecimalText& number, size_t decimals) : number_(number), decimals_(decimals)
    {
        const size_t count = number.integer.size() + decimals;
        raised_ = kNone;
        if (decimals < number.fraction.size() && number.fraction[decimals] >= u'5') {
            raised_ = count;
            while (raised_ > 0 && Kept(raised_ - 1) == u'9')
                --raised_;
            carriesOut_ = raised_ == 0;
            --raised_; // kNone where it carries out
            zerosFrom_ = raised_ + 1;
        } else {
            zerosFrom_ = count;
        }
    }

    size_t IntegerDigits() const { return number_.integer.size() + carriesOut_; }
    size_t Count() const { return IntegerDigits() + decimals_; }

    char16_t operator[](size_t index) const
    {
        if (carriesOut_)
            return index == 0 ? u'1' : u'0';
        return index >= zerosFrom_ ? u'0' : char16_t(Kept(index) + (index == raised_));
    }

    bool IsZero() const
    {
        for (size_t i = 0; i < Count(); ++i)
            if ((*this)[i] != u'0')
                return false;
        return true;
    }

private:
    static constexpr size_t kNone = size_t(-1);

    char16_t Kept(size_t index) const
    {
        if (index < number_.integer.size())
            return number_.integer[index];
        index -= number_.integer.size();
        return index < number_.fraction.size() ? number_.fraction[index] : u'0';
    }

    const DecimalText& number_;
    size_t decimals_;
    size_t raised_;        // index of the digit that is one higher
    size_t zerosFrom_ = 0; // index from which all digits are zero
    bool carriesOut_ = false;
};

// The sizes of groups, from the decimal separator on.
class Groups
{
public:
    explicit Groups(UINT grouping)
    {
        UINT divisor = 1;
        while (grouping / divisor >= 10)
            divisor *= 10;
        for (; divisor > 0 && (grouping / divisor) % 10 != 0; divisor /= 10)
            sizes_[count_++] = (grouping / divisor) % 10;
        repeats_ = divisor == 0; // no 0 behind the sizes
    }

    // Whether a separator stands in front of that many digits.
    bool EndBefore(size_t digits) const
    {
        if (count_ == 0 || digits == 0)
            return false;
        for (size_t i = 0; i < count_; ++i) {
            if (digits <= sizes_[i])
                return digits == sizes_[i];
            digits -= sizes_[i];
        }
        return repeats_ && digits % sizes_[count_ - 1] == 0;
    }

private:
    size_t sizes_[4] = {};
    size_t count_ = 0;
    bool repeats_ = false;
};

void PutDigits(BoundedText& out, const RoundedDigits& digits, const NUMBERFMTW& format)
{
    const Groups groups(format.Grouping);
    const size_t integerDigits = digits.IntegerDigits();
    // A number without decimals has at least one digit.
    if (integerDigits == 0 && (format.LeadingZero || format.NumDigits == 0))
        out.Put(u'0');
    for (size_t i = 0; i < integerDigits; ++i) {
        out.Put(digits[i]);
        if (groups.EndBefore(integerDigits - 1 - i))
            out.Put(format.lpThousandSep);
    }
    if (format.NumDigits == 0)
        return;
    out.Put(format.lpDecimalSep);
    for (size_t i = integerDigits; i < digits.Count(); ++i)
        out.Put(digits[i]);
}

// By NegativeOrder: n is the number, - the locale's sign.
constexpr const char16_t* kNegativePatterns[] = {u"(n)", u"-n", u"- n", u"n-", u"n -"};

void PutNumber(BoundedText& out, const DecimalText& number, const NUMBERFMTW& format, const char16_t* sign)
{
    const RoundedDigits digits(number, format.NumDigits);
    const bool negative = number.negative && !digits.IsZero();
    for (const char16_t* part = negative ? kNegativePatterns[format.NegativeOrder] : u"n"; *part; ++part) {
        if (*part == u'n')
            PutDigits(out, digits, format);
        else if (*part == u'-')
            out.Put(sign);
        else
            out.Put(*part);
    }
}

bool IsUsable(const NUMBERFMTW& format)
{
    return format.NumDigits <= kMaxDecimals && format.LeadingZero <= 1 && format.Grouping <= kMaxGrouping &&
           format.NegativeOrder < std::size(kNegativePatterns) && format.lpDecimalSep && format.lpThousandSep;
}

NUMBERFMTW OwnFormat(const LocaleFacts& facts)
{
    return {kLocaleDecimals,
            facts.leadingZero,
            facts.grouping,
            const_cast<char16_t*>(facts.decimal),
            const_cast<char16_t*>(facts.thousands),
            facts.negativeOrder};
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

int GetNumberFormatW(LCID locale, DWORD flags, const WCHAR* value, const NUMBERFMTW* format, WCHAR* text,
                     int textChars)
{
    if (flags & (format ? ~0u : ~LOCALE_NOUSEROVERRIDE))
        return Fail(ERROR_INVALID_FLAGS);
    const LocaleFacts* facts = FactsOf(locale);
    DecimalText number;
    if (!facts || !value || textChars < 0 || (textChars > 0 && !text) || (format && !IsUsable(*format)) ||
        !Parse(value, number))
        return Fail(ERROR_INVALID_PARAMETER);
    const size_t room = textChars > 0 ? size_t(textChars) - 1 : 0;
    BoundedText out(text, room);
    PutNumber(out, number, format ? *format : OwnFormat(*facts), facts->negative);
    if (textChars == 0)
        return int(out.Length()) + 1;
    text[std::min(out.Length(), room)] = u'\0';
    return out.Length() <= room ? int(out.Length()) + 1 : Fail(ERROR_INSUFFICIENT_BUFFER);
}
