// Templates with numbered inserts.
#include "platform/bounded_text.h"
#include "vx/platform/debug.h"
#include "vx/platform/format.h"
#include "vx/platform/lasterror.h"

#include <cstring>
#include <iterator>
#include <string_view>

namespace vxplatform {
namespace {

constexpr int kMostInserts = 99;
constexpr size_t kConversionRoom = 64; // of an insert's format with its stars written out

struct Insert
{
    int number = 0;             // 1 to 99
    std::u16string_view format; // without "%"; empty: a wide text
    size_t Stars() const { return size_t(std::count(format.begin(), format.end(), u'*')); }
    int LastNumber() const { return number + int(Stars()); }
};

bool IsDigit(char16_t c)
{
    return c >= u'0' && c <= u'9';
}

// text stands at the first digit, and behind the insert afterwards. False where its format has no end.
bool ParseInsert(const char16_t*& text, Insert& out)
{
    out.number = *text++ - u'0';
    if (IsDigit(*text))
        out.number = out.number * 10 + (*text++ - u'0');
    if (*text != u'!')
        return true;
    const std::u16string_view rest(text + 1);
    const size_t end = rest.find(u'!');
    if (end == rest.npos || end == 0)
        return false;
    out.format = rest.substr(0, end);
    text += end + 2;
    return out.LastNumber() <= kMostInserts;
}

// The arguments, read from the list in their order as far as they are needed.
class InsertArguments
{
public:
    explicit InsertArguments(va_list* list) : list_(list) {}

    bool Get(int number, uint64_t& value)
    {
        if (!list_)
            return false;
        while (read_ < number)
            values_[read_++] = va_arg(*list_, uint64_t);
        value = values_[number - 1];
        return true;
    }

private:
    va_list* list_;
    int read_ = 0;
    uint64_t values_[kMostInserts];
};

class Filler
{
public:
    Filler(WCHAR* buffer, size_t size, va_list* arguments)
        : buffer_(buffer), size_(size), arguments_(arguments)
    {}

    // Writes the filled template; ERROR_SUCCESS, or why not.
    DWORD Fill(const char16_t* text)
    {
        DWORD error = ERROR_SUCCESS;
        while (*text && !ended_ && error == ERROR_SUCCESS)
            error = *text == u'%' ? PutEscape(++text) : Put(*text++);
        buffer_[length_] = u'\0';
        return error;
    }

    size_t Length() const { return length_; }

private:
    DWORD Put(char16_t c)
    {
        if (length_ + 1 >= size_)
            return ERROR_INSUFFICIENT_BUFFER;
        buffer_[length_++] = c;
        return ERROR_SUCCESS;
    }

    DWORD PutEscape(const char16_t*& text)
    {
        if (*text >= u'1' && *text <= u'9') {
            Insert insert;
            return ParseInsert(text, insert) ? PutInsert(insert) : ERROR_INVALID_PARAMETER;
        }
        const char16_t c = *text;
        text += c != 0;
        switch (c) {
        case u'\0':
            return ERROR_INVALID_PARAMETER;
        case u'0':
            ended_ = true;
            return ERROR_SUCCESS;
        case u'n':
            return Put(u'\r') == ERROR_SUCCESS ? Put(u'\n') : ERROR_INSUFFICIENT_BUFFER;
        case u'r':
            return Put(u'\r');
        case u't':
            return Put(u'\t');
        case u'b':
            return Put(u' ');
        default:
            return Put(c);
        }
    }

    DWORD PutInsert(const Insert& insert)
    {
        char16_t conversion[kConversionRoom];
        uint64_t slot = 0;
        if (!WriteConversion(insert, conversion) || !arguments_.Get(insert.LastNumber(), slot))
            return ERROR_INVALID_PARAMETER;
        VxFormatValue value;
        const bool isText = insert.format.empty() || insert.format.back() == u's';
        value.kind = isText ? VxFormatKind_Text : VxFormatKind_Integer;
        static_assert(sizeof(value.as) == sizeof(slot));
        std::memcpy(&value.as, &slot, sizeof(slot));
        const int64_t length = VxPlatform_FormatValue(buffer_ + length_, size_ - length_, conversion, &value);
        if (length < 0)
            return ERROR_INVALID_PARAMETER;
        if (uint64_t(length) >= size_ - length_)
            return ERROR_INSUFFICIENT_BUFFER;
        length_ += std::char_traits<char16_t>::length(buffer_ + length_);
        return ERROR_SUCCESS;
    }

    // The insert's format with "%" in front and its stars replaced by their arguments, as digits.
    bool WriteConversion(const Insert& insert, char16_t (&conversion)[kConversionRoom])
    {
        BoundedText out(conversion, kConversionRoom - 1);
        out.Put(u'%');
        int number = insert.number;
        for (const char16_t c : insert.format.empty() ? std::u16string_view(u"s") : insert.format) {
            if (c != u'*') {
                out.Put(c);
                continue;
            }
            uint64_t argument = 0;
            if (!arguments_.Get(number++, argument))
                return false;
            VxFormatValue count;
            count.kind = VxFormatKind_Integer;
            count.as.integer = argument;
            char16_t digits[12]; // a negative width is the flag "-" and a width
            VxPlatform_FormatValue(digits, std::size(digits), u"%d", &count);
            out.Put(digits);
        }
        if (out.Length() >= kConversionRoom)
            return false;
        conversion[out.Length()] = u'\0';
        return true;
    }

    WCHAR* buffer_;
    size_t size_;
    InsertArguments arguments_;
    size_t length_ = 0;
    bool ended_ = false;
};

DWORD FailMessage(DWORD error)
{
    SetLastError(error);
    return 0;
}

} // namespace
} // namespace vxplatform

DWORD FormatMessageW(DWORD flags, const void* source, DWORD, DWORD, WCHAR* buffer, DWORD size,
                     va_list* arguments)
{
    using namespace vxplatform;
    if (flags != FORMAT_MESSAGE_FROM_STRING) {
        OutputDebugStringA("FormatMessageW: only FORMAT_MESSAGE_FROM_STRING is supported\n");
        return FailMessage(ERROR_INVALID_FLAGS);
    }
    if (!source || !buffer || size == 0)
        return FailMessage(source && buffer ? ERROR_INSUFFICIENT_BUFFER : ERROR_INVALID_PARAMETER);
    Filler filler(buffer, size, arguments);
    const DWORD error = filler.Fill(static_cast<const char16_t*>(source));
    if (error == ERROR_SUCCESS)
        return DWORD(filler.Length());
    buffer[0] = u'\0';
    return FailMessage(error);
}
