#include "lang/host_module.h"
#include "lang/strings.h"

using namespace vxtest;

namespace {

constexpr const char16_t* kTexts[VXLANG_SLOTS] = {u"1",  u"2",  u"3",  u"4",  u"5",  u"6",
                                                  u"7",  u"8",  u"9",  u"10", u"11", u"12",
                                                  u"13", u"14", u"15", u"16", u"17", u"18"};

vxlang_t TableOf(uint16_t count)
{
    vxlang_t table = {VXLANG_MARK, count, 0, {}, 0};
    std::copy_n(kTexts, VXLANG_SLOTS, table.text);
    return table;
}

} // namespace

TEST(StringTable, EveryLocaleHasItsSlot)
{
    const struct
    {
        uint32_t lcid;
        uint16_t count;
        const char16_t* want;
    } cases[] = {
        {0x0409, 18, u"1"},     {0x0809, 18, u"1"},  {0x0411, 18, u"2"},
        {0x0407, 18, u"3"},     {0x0807, 18, u"3"},  {0x040A, 18, u"4"},
        {0x0C0A, 18, u"4"},     {0x040C, 18, u"5"},  {0x0804, 18, u"6"},
        {0x1004, 18, u"6"},     {0x0404, 18, u"7"},  {0x0C04, 18, u"7"},
        {0x0406, 18, u"8"},     {0x040B, 18, u"9"},  {0x0410, 18, u"10"},
        {0x0412, 18, u"11"},    {0x0413, 18, u"12"}, {0x0414, 18, u"13"},
        {0x0814, 18, u"13"},    {0x0416, 18, u"14"}, {0x0816, 18, u"15"},
        {0x0419, 18, u"16"},    {0x041D, 18, u"17"}, {0x0415, 18, u"18"},
        {0x040E, 18, u"1"},     {0x040B, 5, u"5"},   {0x040B, 0, u"1"},
        {0x040B, 0x0105, u"5"}, // the low 8 bits count
    };
    for (const auto& c : cases) {
        vxlang_t table = TableOf(c.count);
        const Handle handle(nullptr, c.lcid);
        EXPECT_EQ(std::u16string(VxGetString(handle, &table)), c.want) << std::hex << c.lcid;
    }
    const OnlyLocale locale("fi-FI");
    vxlang_t table = TableOf(18);
    EXPECT_EQ(std::u16string(VxGetString(Handle(), &table)), u"9"); // the user's
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
    vxlang_t table = TableOf(18);
    alignas(4) const char16_t shifted[] = {u'x', VXLANG_MARK, u'y', u'\0'};
    EXPECT_EQ(VxGetStringSmart(handle, nullptr), nullptr);
    EXPECT_EQ(std::u16string(VxGetStringSmart(handle, MAKEINTRESOURCEW(1))), u"by number");
    EXPECT_EQ(VxGetStringSmart(handle, vx::AsTextArgument(&table)), kTexts[0]);
    EXPECT_EQ(VxGetStringSmart(handle, shifted), shifted);
    EXPECT_EQ(VxGetStringSmart(handle, shifted + 1), shifted + 1); // a mark, but no multiple of 4
    EXPECT_FALSE(IsVXLANGSTRINGID(handle, nullptr));
    EXPECT_FALSE(IsVXLANGSTRINGID(handle, MAKEINTRESOURCEW(4)));
}
