#include "lang/host_module.h"
#include "text/tokens.h"
#include "vx/print.h"

using namespace vxtest;

TEST(LocaleTools, ARebuildPublishesTheSeparatorsAndLabels)
{
    ASSERT_TRUE(vx::CreatePrintTokens());
    const HostModule host({});
    VxLang_UpdateKernelLCID(vx::g_kernelLanguage, 0x0407);
    VxLang_GetInternationals(nullptr, 0);
    const std::pair<const char16_t*, const char16_t*> cases[] = {
        {u"$(SMPTE.Whole)$(SMPTE.NonDrop)$(SMPTE.Drop) $(m.b)$(b.t)", u":., .."},
        {u"$(SMPTE.Label.NonDrop) $(SMPTE.Label.Drop)", u"hh:mm:ss.fr hh:mm:ss,fr"},
        {u"$(SMPTE.Label.NonDrop.Full)", u"hours:minutes:seconds.frames"},
        {u"$(SMPTE.Label.Drop.Full)", u"hours:minutes:seconds,frames"},
        {u"$(MusicTime.Label) $(MusicTime.Label.Full)", u"ms.bt.tk measures.beats.ticks"},
    };
    VxLang_UpdateKernelLCID(vx::g_kernelLanguage, 0x0415); // labels stay until the next rebuild
    for (const auto& [format, want] : cases) {
        char16_t text[100];
        VxPrintF(text, format);
        EXPECT_EQ(std::u16string(text), want);
    }
    vx::DestroyPrintTokens();
}

TEST(LocaleTools, DoubleBytesAndCodePagesAreTold)
{
    const struct
    {
        const char* locale;
        std::string bytes;
        uint32_t length;
        int32_t want;
    } cases[] = {
        {"ja-JP", "a\x83\x65", 3, 1},        {"ja-JP", "a\x83\x65", 2, 0}, {"ja-JP", "plain", 5, 0},
        {"ja-JP", {"a\0\x83\x65", 4}, 4, 0}, {"ja-JP", "\x83\x20", 2, 0},  {"en-US", "\x83\x65", 2, 0},
        {"ja-JP", {"\0\x83\x65", 3}, 3, 0},
    };
    for (const auto& c : cases) {
        const OnlyLocale locale(c.locale);
        EXPECT_EQ(VxLang_DetectMultiByteCharacters(c.bytes.c_str(), c.length), c.want) << c.bytes;
    }
    EXPECT_EQ(VxLang_DetectMultiByteCharacters(nullptr, 5), 0);
    uint32_t page = 77;
    EXPECT_EQ(VxLang_DetectPossibleCodepage("x", 0x80000000u, &page), E_INVALIDARG);
    EXPECT_EQ(page, 77u);
    EXPECT_EQ(VxLang_DetectPossibleCodepage("größer als süß", 17, &page), S_OK);
    EXPECT_EQ(page, 65001u);
    EXPECT_EQ(VxLang_DetectPossibleCodepage("\xE9", 1, &page), VX_E_CODEPAGE_UNKNOWN);
    EXPECT_EQ(page, 0u);
}
