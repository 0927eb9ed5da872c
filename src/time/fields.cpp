#include "time/fields.h"

#include "kernel/characters.h"

namespace vx {
namespace {

constexpr int kFieldDigits = 31; // a longer run of digits is the next field

} // namespace

TextFields::TextFields(const char16_t* text) : start_(text), at_(text), digitsEnd_(text)
{
    for (; *text; ++text)
        if (IsDigit(*text))
            digitsEnd_ = text + 1;
}

bool TextFields::Next(TextField& field)
{
    if (at_ < digitsEnd_) {
        while (!IsDigit(*at_))
            ++at_;
        TextField read{.first = at_};
        for (; IsDigit(*at_) && read.digits < kFieldDigits; ++at_, ++read.digits)
            read.value = read.value * 10 + uint32_t(*at_ - u'0');
        read.end = at_;
        field = read;
        return true;
    }
    while (*at_ == u' ')
        ++at_;
    if (*at_ == 0)
        return false;
    field = {.value = 0, .first = at_, .end = at_ + 1, .digits = 0};
    ++at_;
    return true;
}

RightAligned ReadRightAligned(const char16_t* text, int count)
{
    RightAligned result;
    result.end = text;
    TextFields fields(text);
    while (result.read < count && fields.Next(result.last)) {
        ++result.read;
        for (int i = 0; i < 3; ++i)
            result.places[i] = result.places[i + 1];
        result.places[3] = result.last.value;
        if (fields.HasDigits()) // else nothing of the text is a time
            result.end = result.last.end;
    }
    return result;
}

const char16_t* SkipSpace(const char16_t* text)
{
    while (IsSpace(*text))
        ++text;
    return text;
}

} // namespace vx
