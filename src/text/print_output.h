// Where the print engine writes: a buffer without a known size, or one of a capacity. What happens where
// something does not fit is said here and nowhere else.
#pragma once

#include "vx/types.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

namespace vx {

class PrintOutput
{
public:
    static constexpr size_t kMostScratch = 784; // characters of a conversion's text, in either kind

    // A buffer that has room for all.
    explicit PrintOutput(char16_t* text);
    // capacity is 1 to 0x7FFFFFFF
    PrintOutput(char16_t* text, uint32_t capacity);

    // Where there is none, the rest of the format is dropped.
    bool HasRoom() const { return room_ >= 1; }
    HRESULT Status() const { return status_; }
    uint32_t Length() const { return uint32_t(end_ - text_); }
    void Terminate() { *end_ = u'\0'; }

    // Cut to the room, which is no error.
    void PutCut(std::u16string_view text);
    // A form that names nothing, as it stands. One that does not fit well is left out, is an error and
    // takes up its room all the same.
    void PutForm(std::u16string_view form);
    // A number literal without its end, as it stands; left out where it does not fit.
    void PutOpenLiteral(std::u16string_view form);
    // The text of a key of VxGetInatN; returns its length.
    uint32_t PutSeparator(uint32_t key);

    // Bare integers. One that does not fit stays cut and uses the room up.
    void PutInteger(int32_t value, bool grouped);
    void PutInteger(uint32_t value, bool grouped);

    // A conversion's text, in a scratch of Scratch() characters: how long it should have been.
    // False where it is left out because the scratch was too small.
    size_t Scratch() const { return limits_.scratch; }
    bool TakeConversion(int64_t length);

    // A number's text as `format` shows it to a person: a function like VxFormatNumber. What it refuses
    // or what does not fit comes as it is.
    template <class Format>
    void PutFormatted(const char16_t* text, Format format)
    {
        const std::u16string_view whole(text);
        if (whole.empty())
            return;
        const int32_t length = format(text, end_, Capacity());
        if (length > 0)
            Advance(size_t(length));
        else
            PutUnformatted(whole);
    }

    // A text that `write(buffer, capacity)` puts in place and of whose whole length it tells, or -1
    // where it wrote nothing. False for that.
    template <class Write>
    bool PutDirect(Write write)
    {
        const size_t room = size_t(std::min(room_, limits_.text));
        const int64_t length = write(end_, room + 1);
        if (length < 0)
            return false;
        const bool fits = uint64_t(length) <= room;
        Advance(fits ? size_t(length) : room);
        TakeDirect(fits);
        return true;
    }

private:
    struct Limits
    {
        size_t scratch; // characters, terminator included
        int64_t text;   // characters that one %s or %c writes
        bool bounded;
    };
    static constexpr Limits kUnbounded{kMostScratch, 1024, false};
    static constexpr Limits kBounded{260, 0x7FFFFFFF, true};

    int32_t Capacity() const;
    void Advance(size_t length)
    {
        end_ += length;
        room_ -= int64_t(length);
    }
    void Refuse(HRESULT status);
    void TakeInteger(int32_t length);
    void TakeDirect(bool fits);
    void PutUnformatted(std::u16string_view text);

    char16_t* const text_;
    char16_t* end_ = text_;
    int64_t room_; // characters, without terminator; may be less than there really are, and below 0
    const Limits& limits_;
    HRESULT status_ = S_OK;
};

} // namespace vx
