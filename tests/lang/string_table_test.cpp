#include "lang/host_module.h"
#include "lang/strings.h"

using namespace vxtest;

namespace {

// Its texts are the letters A to R.
struct Letters
{
    explicit Letters(uint16_t count) : table{VXLANG_MARK, count, 0, {}, 0}
    {
        for (int slot = 0; slot < VXLANG_SLOTS; ++slot) {
            texts[slot][0] = char16_t(u'A' + slot);
            table.text[slot] = texts[slot];
        }
    }
    char16_t In(HVXLANG handle) { return *VxGetString(handle, &table); }

    char16_t texts[VXLANG_SLOTS][2] = {};
    vxlang_t table;
};

} // namespace

TEST(StringTable, EveryLocaleHasItsSlot)
{
    constexpr uint32_t kLcids[] = {0x0409, 0x0411, 0x0407, 0x040A, 0x040C, 0x0804, 0x0404, 0x0406, 0x040B,
                                   0x0410, 0x0412, 0x0413, 0x0414, 0x0416, 0x0816, 0x0419, 0x041D, 0x0415};
    for (int slot = 0; slot < VXLANG_SLOTS; ++slot)
        EXPECT_EQ(Letters(18).In(Handle(nullptr, kLcids[slot])), u'A' + slot);
    const std::pair<uint32_t, char16_t> others[] = {{0x0809, u'A'}, {0x0C0A, u'D'}, {0x0C04, u'G'},
                                                    {0x1004, u'F'}, {0x0814, u'M'}, {0x040E, u'A'}};
    for (const auto& [lcid, want] : others)
        EXPECT_EQ(Letters(18).In(Handle(nullptr, lcid)), want) << std::hex << lcid;
    const std::pair<uint16_t, char16_t> counts[] = {{5, u'E'}, {0, u'A'}, {0x0105, u'E'}, {200, u'I'}};
    for (const auto& [count, want] : counts)
        EXPECT_EQ(Letters(count).In(Handle(nullptr, 0x040B)), want) << count;
    const OnlyLocale locale("fi-FI");
    EXPECT_EQ(Letters(18).In(Handle()), u'I'); // the user's
}

TEST(StringTable, BuiltInTablesLieTogetherAndFallBackToEnglish)
{
    EXPECT_EQ(std::u16string(VxGetString(Handle(nullptr, 0x0407), vx::strings::kRetry)), u"&Wiederholen");
    EXPECT_EQ(std::u16string(VxGetString(Handle(nullptr, 0x0412), vx::strings::kRetry)), u"다시 시도(&R)");
    EXPECT_EQ(std::u16string(VxGetString(Handle(nullptr, 0x0415), vx::strings::kTimeLabel)),
              u"godz%smin%ssc%sram.");
    EXPECT_EQ(vx::strings::kReasonMissing->text[0], std::u16string(u"\n\nError 0x%08x (message missing)"));
    for (vxlang_t& table : vx::strings::g_tables) {
        EXPECT_TRUE(IsVXLANGSTRINGID(nullptr, vx::AsTextArgument(&table)));
        EXPECT_EQ(table.count, VXLANG_SLOTS);
        for (const char16_t* text : table.text)
            EXPECT_TRUE(text && *text) << std::u16string(table.text[0]).size();
    }
    EXPECT_EQ(vx::g_kernelLanguage, nullptr);
    EXPECT_EQ(vx::KernelText(vx::strings::kRetry), vx::strings::kRetry->text[0]);
}

TEST(StringTable, ANumberIsResolvedOnceByATextThatIsTerminatedWhereItStands)
{
    using namespace std::string_literals;
    const Resources german = {
        Strings(16, 0x0407, {u"stored with its end\0"s, u"end"s, u""s, u"no end"s, u"x"s})};
    const HostModule host(german);
    const Handle handle(host.module, 0x0407);
    // By number; behind 17 the length 0 of an empty string serves as its end, and 40 is in no block.
    const std::pair<uint32_t, const char16_t*> cases[] = {
        {16, u"stored with its end"}, {17, u"end"}, {19, u"english"}, {40, u"english"}, {0, u"english"}};
    for (const auto& [id, want] : cases) {
        vxlang_t table = {VXLANG_MARK, 3, 0, {u"english", u"japanese", MAKEINTRESOURCEW(id)}, 0};
        const char16_t* text = VxGetString(handle, &table);
        EXPECT_EQ(std::u16string(text), want) << id;
        EXPECT_EQ(table.text[2], text);
        EXPECT_EQ(VxGetString(handle, &table), text);
    }
}

TEST(StringTable, ATextArgumentIsOneOfFourThings)
{
    const HostModule host({Strings(0, 0x0409, {u"", u"by number"})});
    const Handle handle(host.module);
    Letters letters(18);
    alignas(4) const char16_t shifted[] = {u'x', VXLANG_MARK, u'y', u'\0'};
    EXPECT_EQ(VxGetStringSmart(handle, nullptr), nullptr);
    EXPECT_EQ(std::u16string(VxGetStringSmart(handle, MAKEINTRESOURCEW(1))), u"by number");
    EXPECT_EQ(VxGetStringSmart(handle, vx::AsTextArgument(&letters.table)), letters.texts[0]);
    EXPECT_EQ(VxGetStringSmart(handle, shifted), shifted);
    EXPECT_EQ(VxGetStringSmart(handle, shifted + 1), shifted + 1); // a mark, but no multiple of 4
    EXPECT_FALSE(IsVXLANGSTRINGID(handle, nullptr));
    EXPECT_FALSE(IsVXLANGSTRINGID(handle, MAKEINTRESOURCEW(4)));
}
