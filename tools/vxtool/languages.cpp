#include "vxtool/languages.h"

#include "lang/strings.h"
#include "vx/lang.h"
#include "vxtool/failure.h"
#include "vxtool/kernel_start.h"

#include <algorithm>

namespace vxtool {

namespace strings = vx::strings;

int32_t SlotNamed(const std::string& name)
{
    const auto* found = std::ranges::find(strings::kSlotLanguages, name);
    if (found != std::end(strings::kSlotLanguages))
        return int32_t(found - strings::kSlotLanguages);
    std::string all;
    for (const char* language : strings::kSlotLanguages)
        all += Join(all.empty() ? "" : ", ", language);
    FailArgument("--lang takes one of ", all, ", not '", name, "'");
}

void StartKernelInLanguage(const Arguments& arguments)
{
    const std::string* const name = arguments.Text("--lang");
    const uint32_t lcid = name ? strings::kSlotLcids[SlotNamed(*name)] : 0;
    StartKernel(arguments);
    HVXLANG handle = nullptr; // a host's, through which it tells the kernel of its language
    if (lcid == 0)
        return;
    if (VxLang_Open(&handle, nullptr, lcid, 0) != S_OK)
        FailFile("there is not enough memory for a language");
    VxLang_UpdateKernelLCID(handle, lcid);
    VxLang_Close(handle);
}

} // namespace vxtool
