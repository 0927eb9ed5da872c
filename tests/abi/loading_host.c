/* A host that loads the library, shares rows among threads, and unloads it, several times over. */
#include <vx/types.h>

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

typedef bool (*CompositeFn)(void*, int32_t, const void*, int32_t, int32_t, int32_t, int32_t, int32_t, double);

static int LoadAndWork(const char* path)
{
    enum
    {
        kWidth = 800,
        kHeight = 700,
        kStride = kWidth * 16
    };
    void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        puts(dlerror());
        return 1;
    }
    CompositeFn composite;
    *(void**)&composite = dlsym(library, "Composite");
    float* frame = calloc(kHeight, kStride);
    const bool done =
        composite && frame && composite(frame, kStride, frame, kStride, 16, kWidth, kHeight, 1, 1.0);
    dlclose(library);
    free(frame);
    usleep(20000); /* workers that were left behind would run into unmapped code now */
    return done ? 0 : 1;
}

int main(int argc, char** argv)
{
    for (int round = 0; round < 5; ++round)
        if (argc != 2 || LoadAndWork(argv[1]) != 0)
            return 1;
    return 0;
}
