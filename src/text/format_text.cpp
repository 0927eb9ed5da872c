#include "vx/formattext.h"

#include "vx/numbers.h"
#include "vx/pixel.h"
#include "vx/print.h"

HRESULT VxVideo_GetFormatText(uint32_t compression, char16_t* text, int32_t capacity)
{
    char16_t fourCC[5];
    const char16_t* name = fourCC;
    switch (compression) {
    case BI_RGB:
        name = u"RGB";
        break;
    case BI_BITFIELDS:
        name = u"RGB (bitfields)";
        break;
    case VXCOMPRESSION_VXDB:
        name = u"RGBA";
        break;
    case VXCOMPRESSION_VXGS:
        name = u"Grayscale";
        break;
    default:
        VxFourCCToString(compression, fourCC);
    }
    if (text && capacity >= 1)
        VxCchPrintF(text, uint32_t(capacity), nullptr, u"%s", name);
    return S_OK;
}

HRESULT VxVideo_GetAttribsText(const BITMAPINFOHEADER* header, char16_t* text, int32_t capacity)
{
    if (text && capacity >= 1)
        VxCchPrintF(text, uint32_t(capacity), nullptr, u"%dx%dx%d", header->biWidth, header->biHeight,
                    int(header->biBitCount));
    return S_OK;
}

HRESULT VxVideo_GetAttribsTextEx(const BITMAPINFOHEADER* header, const void*, char16_t* text,
                                 int32_t capacity)
{
    return VxVideo_GetAttribsText(header, text, capacity);
}
