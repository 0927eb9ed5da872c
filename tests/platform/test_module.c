/* A shared object for the tests of modules. With VX_TEST_SECTION it has a compiled-resource image: the
 * empty resource at the head, then the number 7 as raw data (type 10), name 1, in language 0x0409. */
#include "vx/platform/module.h"

VX_VISIBLE intptr_t TestModuleAnswer(void);
VX_VISIBLE HMODULE TestModuleOwnHandle(void);

intptr_t TestModuleAnswer(void)
{
    return 42;
}

/* As a module without its loader's help finds itself. */
HMODULE TestModuleOwnHandle(void)
{
    HMODULE module;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       (const WCHAR*)(uintptr_t)&TestModuleOwnHandle, &module);
    return module;
}

#ifdef VX_TEST_SECTION
__attribute__((section(".vxres"), used)) static const uint32_t image[] = {
    0, 32, 0x0000FFFF, 0x0000FFFF, 0, 0,          0, 0, /* head */
    4, 32, 0x000AFFFF, 0x0001FFFF, 0, 0x04090000, 0, 0, 7,
};
#endif
