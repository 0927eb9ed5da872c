// The kernel language handle, and the library's own messages, which go through it. lang/strings.h, made from
// strings/*.po, names the messages: KernelText(strings::kRetry).
#pragma once

#include "vx/lang.h"

namespace vx {

// Null outside a run of the kernel. The kernel's start and end write it, through the two calls below.
extern HVXLANG g_kernelLanguage;

// Opens the handle on the host's module; one that is left from an earlier start is kept, which is a success.
HRESULT OpenKernelLanguage(HMODULE module);
void CloseKernelLanguage();

// A message of the library in the user's language; in English outside a run of the kernel.
const char16_t* KernelText(vxlang_t* table);

// A table as a text argument, as tables of errors and message boxes take it.
inline const char16_t* AsTextArgument(const vxlang_t* table)
{
    return reinterpret_cast<const char16_t*>(table);
}

} // namespace vx
