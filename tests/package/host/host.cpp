/* The smallest host in C++: half of white over opaque black is gray. */
#include <vx/vxkernel.h>

#include <cstdio>

int main()
{
    uint32_t black = 0xFF000000u, white = 0xFFFFFFFFu;
    if (!Blend(&black, 4, &white, 4, 1, 1, 0.5))
        return 1;
    std::printf("%08X\n", unsigned(black));
    return black == 0xFF808080u ? 0 : 1;
}
