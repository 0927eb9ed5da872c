#include "lang/kernel_language.h"

namespace vx {

HVXLANG g_kernelLanguage;

HRESULT OpenKernelLanguage(HMODULE module)
{
    return VxLang_Open(&g_kernelLanguage, module, 0, 0);
}

void CloseKernelLanguage()
{
    VxLang_Close(g_kernelLanguage);
    g_kernelLanguage = nullptr;
}

const char16_t* KernelText(vxlang_t* table)
{
    return g_kernelLanguage ? VxGetString(g_kernelLanguage, table) : table->text[0];
}

} // namespace vx
