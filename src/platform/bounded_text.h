// Text written into a buffer of limited room.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <type_traits>

namespace vxplatform {

// Counts all that is put and keeps what fits. The terminator is the caller's.
class BoundedText
{
public:
    BoundedText(char16_t* text, size_t room) : text_(text), room_(room) {}

    void Put(char16_t c)
    {
        if (length_ < room_)
            text_[length_] = c;
        ++length_;
    }
    void Put(const char16_t* text)
    {
        while (*text)
            Put(*text++);
    }
    // 8-bit characters are widened, byte by byte.
    template <class Char>
    void Put(std::basic_string_view<Char> text)
    {
        char16_t* out = text_ + std::min(length_, room_);
        for (const Char c : text.substr(0, Left()))
            *out++ = char16_t(std::make_unsigned_t<Char>(c));
        length_ += text.size();
    }
    void Fill(char16_t c, uint64_t count)
    {
        std::fill_n(text_ + std::min(length_, room_), std::min<uint64_t>(count, Left()), c);
        length_ += count;
    }
    size_t Length() const { return length_; }

private:
    size_t Left() const { return room_ - std::min(length_, room_); }

    char16_t* text_;
    size_t room_;
    size_t length_ = 0;
};

} // namespace vxplatform
