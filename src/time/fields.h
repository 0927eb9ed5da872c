// The number fields of a typed time: digits between any other characters.
#pragma once

#include <cstdint>

namespace vx {

struct TextField
{
    uint32_t value = 0;              // wraps beyond 32 bits
    const char16_t* first = nullptr; // its digits; at the separator for an empty field
    const char16_t* end = nullptr;   // the first character behind it
    int digits = 0;                  // 0 for an empty field, whose value is 0
};

// Walks the fields of a text from its start. A separator (neither digit nor blank) behind the last
// digit stands for an empty field, so that "5:" has two fields; a text without digits has as many as
// it has separators.
class TextFields
{
public:
    explicit TextFields(const char16_t* text);

    // False, with the field unchanged, where there is no further one.
    bool Next(TextField& field);
    bool HasDigits() const { return digitsEnd_ != start_; }

private:
    const char16_t* start_;
    const char16_t* at_;
    const char16_t* digitsEnd_; // behind the last digit of the text
};

// Reads the fields of a text into the last of `count` places: each field pushes those before it up, so
// that the last one typed is the smallest unit. Unused places are 0.
struct RightAligned
{
    uint32_t places[4] = {}; // the last one read is in places[3]
    int read = 0;
    TextField last;
    const char16_t* end = nullptr; // the first character that was not used
};
RightAligned ReadRightAligned(const char16_t* text, int count);

const char16_t* SkipSpace(const char16_t* text);

} // namespace vx
