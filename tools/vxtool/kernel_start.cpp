#include "vxtool/kernel_start.h"

#include "vx/kernel.h"
#include "vx/platform/locale.h"
#include "vxtool/failure.h"

namespace vxtool {

void StartKernel(const Arguments& arguments)
{
    if (const std::string* locale = arguments.Text("--locale"))
        if (!VxPlatform_SetUserLocale(locale->c_str()))
            FailArgument("--locale takes a name as de-DE, not '", *locale, "'");
    if (!VxKernel_EarlyInitialize(nullptr, 0))
        FailFile("there is not enough memory to start");
}

} // namespace vxtool
