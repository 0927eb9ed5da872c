#include "vxtool/labels.h"

#include "vx/print.h"
#include "vxtool/reading.h"
#include "vxtool/unicode.h"

namespace vxtool {
namespace {

constexpr size_t kFields = 4;

bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

// Where the fields of a typed label begin: in runs of digits at each pair from the run's end, and at each
// separator behind the last digit.
std::vector<size_t> FieldStarts(std::u16string_view text)
{
    std::vector<size_t> starts;
    const size_t digitsEnd = text.find_last_of(u"0123456789") + 1;
    for (size_t at = 0; at < digitsEnd;) {
        size_t end = at;
        while (end < digitsEnd && IsDigit(text[end]))
            ++end;
        for (size_t digit = at; digit < end; ++digit)
            if (digit == at || (end - digit) % 2 == 0)
                starts.push_back(digit);
        at = end + 1;
    }
    for (size_t at = digitsEnd; at < text.size(); ++at)
        if (text[at] != u' ')
            starts.push_back(at);
    return starts;
}

} // namespace

_smpteval ReadLabel(std::string_view text, uint32_t format)
{
    constexpr std::string_view kWhat = "a timecode of at most four fields";
    const std::u16string wide = Utf16Of(text);
    if (!HasDigit(wide))
        FailReading(kWhat, wide, 0);
    _smpteval label = {format, 0, 0, 0, 0, 0};
    if (VXSMPTE_TextToSMPTE(wide.c_str(), &label) != 0)
        FailReading(kWhat, wide, FieldStarts(wide)[kFields]);
    return label;
}

std::string ShowLabel(const _smpteval& label)
{
    char16_t text[64];
    const bool drop = label.format == VXSMPTE_FORMAT_2997DROP;
    VxPrintF(text, drop ? u"%02u:%02u:%02u;%02u" : u"%02u:%02u:%02u:%02u", label.hours, label.minutes,
             label.seconds, label.frames);
    return Utf8Of(text);
}

} // namespace vxtool
