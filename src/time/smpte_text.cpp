// Typed timecode to a label.
#include "vx/smpte.h"

#include "kernel/characters.h"
#include "time/smpte_format.h"

#include <string_view>

namespace {

using namespace vx;

constexpr int kFields = 4;

// Takes the numbers in the order in which they were typed, so that the last one is the frames.
class FieldTaker
{
public:
    explicit FieldTaker(_smpteval& label) : label_(label) {}

    // False, with `first` kept as the place where reading stopped, once all fields are taken.
    bool Take(uint32_t number, char16_t first)
    {
        if (taken_ == kFields) {
            stop_ = first;
            return false;
        }
        ++taken_;
        label_.hours = label_.minutes;
        label_.minutes = label_.seconds;
        label_.seconds = label_.frames;
        label_.frames = number;
        return true;
    }
    char16_t Stop() const { return stop_; }

private:
    _smpteval& label_;
    int taken_ = 0;
    char16_t stop_ = 0;
};

// A run of digits, in pairs counted from its end: 12345 is 1, 23, 45.
bool TakeRun(std::u16string_view run, FieldTaker& taker)
{
    while (!run.empty()) {
        const size_t size = run.size() % 2 == 1 ? 1 : 2;
        uint32_t number = 0;
        for (const char16_t c : run.substr(0, size))
            number = number * 10 + uint32_t(c - u'0');
        if (!taker.Take(number, run[0]))
            return false;
        run.remove_prefix(size);
    }
    return true;
}

bool TakeRuns(std::u16string_view text, FieldTaker& taker)
{
    while (!text.empty()) {
        size_t size = 0;
        while (size < text.size() && IsDigit(text[size]))
            ++size;
        if (!TakeRun(text.substr(0, size), taker))
            return false;
        text.remove_prefix(size == 0 ? 1 : size);
    }
    return true;
}

void Carry(_smpteval& label, uint32_t nominal)
{
    if (nominal != 0) {
        label.seconds += label.frames / nominal;
        label.frames %= nominal;
    }
    label.minutes += label.seconds / 60;
    label.seconds %= 60;
    label.hours += label.minutes / 60;
    label.minutes %= 60;
    label.hours %= 24;
}

} // namespace

char16_t VXSMPTE_TextToSMPTE(const char16_t* text, _smpteval* label)
{
    *label = {label->format, 0, 0, 0, 0, 0};
    std::u16string_view rest = text ? std::u16string_view(text) : std::u16string_view();
    size_t emptyFields = 0; // one for each separator behind the last digit
    for (; !rest.empty() && !IsDigit(rest.back()); rest.remove_suffix(1))
        emptyFields += rest.back() != u' ';

    FieldTaker taker(*label);
    bool more = TakeRuns(rest, taker);
    for (; more && emptyFields > 0; --emptyFields)
        more = taker.Take(0, u'0');
    Carry(*label, FormatOf(*label).nominal);
    return taker.Stop();
}
