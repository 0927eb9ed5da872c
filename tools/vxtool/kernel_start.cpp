#include "vxtool/kernel_start.h"

#include "text/tokens.h"
#include "vx/internationals.h"
#include "vx/platform/locale.h"
#include "vxtool/failure.h"

namespace vxtool {

void StartKernel(const Arguments& arguments)
{
    if (const std::string* locale = arguments.Text("--locale"))
        if (!VxPlatform_SetUserLocale(locale->c_str()))
            FailArgument("--locale takes a name as de-DE, not '", *locale, "'");
    VxLang_GetInternationals(nullptr, 0);
    // No exported call makes the token list yet; for this one line the tool links the library's objects.
    if (!vx::CreatePrintTokens())
        FailFile("there is not enough memory to start");
}

} // namespace vxtool
