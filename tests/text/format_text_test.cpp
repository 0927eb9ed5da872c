#include "vx/formattext.h"

#include "vx/pixel.h"

#include <gtest/gtest.h>
#include <string>

TEST(FormatText, NamesCompressionsAndSizes)
{
    const struct
    {
        uint32_t compression;
        std::u16string want;
    } cases[] = {
        {BI_RGB, u"RGB"},
        {BI_BITFIELDS, u"RGB (bitfields)"},
        {VXCOMPRESSION_VXDB, u"RGBA"},
        {VXCOMPRESSION_VXGS, u"Grayscale"},
        {0x32595559, u"YUY2"},
        {0x7F7E1F20, u" .~."}, // what is no character of ASCII is a point
    };
    for (const auto& c : cases)
        for (int32_t capacity = -1; capacity < 18; ++capacity) {
            std::u16string text(20, u'#'), want = text;
            const size_t kept = std::min(c.want.size(), size_t(std::max(capacity - 1, 0)));
            if (capacity > 0)
                want.replace(0, kept + 1, c.want.substr(0, kept) + u'\0');
            EXPECT_EQ(VxVideo_GetFormatText(c.compression, text.data(), capacity), 0);
            EXPECT_EQ(text, want) << c.compression << ", capacity " << capacity;
        }
    EXPECT_EQ(VxVideo_GetFormatText(BI_RGB, nullptr, 5), 0);

    BITMAPINFOHEADER header = {};
    header.biWidth = 720;
    header.biHeight = -576;
    header.biBitCount = 32;
    char16_t text[20];
    EXPECT_EQ(VxVideo_GetAttribsText(&header, text, 20), 0);
    EXPECT_EQ(std::u16string(text), u"720x-576x32");
    EXPECT_EQ(VxVideo_GetAttribsTextEx(&header, nullptr, text, 4), 0);
    EXPECT_EQ(std::u16string(text), u"720");
    EXPECT_EQ(VxVideo_GetAttribsText(&header, nullptr, 4), 0);
}
