// The library's 18 languages, by the names of their message files, as de or pt_BR.
#pragma once

#include "vxtool/options.h"

namespace vxtool {

// A language's place in tables of texts; fails with a sentence for a name that is none.
int32_t SlotNamed(const std::string& name);

inline constexpr Option kLangOption = {"--lang", "NAME",
                                       "the language, as de or pt_BR (default: the user's)"};

// Starts the kernel, in the language of --lang where it is given.
void StartKernelInLanguage(const Arguments& arguments);

} // namespace vxtool
