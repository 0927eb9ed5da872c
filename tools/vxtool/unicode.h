// The command line's UTF-8 and the library's UTF-16.
#pragma once

#include <string>
#include <string_view>

namespace vxtool {

// Fails with a sentence on what is not UTF-8.
std::u16string Utf16Of(std::string_view text);

// A surrogate without its partner shows as U+FFFD.
std::string Utf8Of(std::u16string_view text);

// Columns of UTF-8 text, counted in characters; too long a text stands whole.
std::string PaddedLeft(const std::string& text, size_t width);
std::string PaddedRight(const std::string& text, size_t width);

} // namespace vxtool
