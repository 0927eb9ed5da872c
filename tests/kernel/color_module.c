/* A module that owns colours. */
#include <stdint.h>

__attribute__((visibility("default"))) uint32_t VxGetUIColor(int32_t id)
{
    return 0x100u + (uint32_t)id;
}

__attribute__((visibility("default"))) uint32_t VxGetUIColorAbsolute(int32_t id)
{
    return 0x200u + (uint32_t)id;
}
