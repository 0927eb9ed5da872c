/* A host that has functions of its own under names of the library's: the library must not call them. */
#include <vx/pixel.h>

#include <stdio.h>

__attribute__((visibility("default"))) int32_t VxPixelTypeToBitAttribs(int32_t type, uint32_t* compression,
                                                                       VxBitAttribs* record, int32_t bytes,
                                                                       uint32_t* masks)
{
    (void)type, (void)compression, (void)record, (void)bytes, (void)masks;
    return 0;
}

__attribute__((visibility("default"))) HRESULT VxVideo_InitBitmapInfo(BITMAPINFOHEADER* info, int32_t type,
                                                                      int32_t width, int32_t height,
                                                                      const RGBQUAD* palette, int32_t count,
                                                                      uint32_t* bytes)
{
    (void)info, (void)type, (void)width, (void)height, (void)palette, (void)count, (void)bytes;
    return E_FAIL;
}

int main(void)
{
    uint32_t header = 0, image = 0;
    BITMAPINFOHEADER info;
    const HRESULT status = VxDibInfo(&header, &image, &info, VXPIXEL_RGB24, 3, 2, NULL, 0);
    printf("status %d, header %u bytes, image %u bytes\n", (int)status, (unsigned)header, (unsigned)image);
    return status == S_OK && header == 40 && image == 24 ? 0 : 1;
}
