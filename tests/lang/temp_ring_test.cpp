#include "lang/host_module.h"
#include "lang/language.h"
#include "support/random.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/multibyte.h"

using namespace vxtest;

TEST(TempRing, PiecesFollowOneAnotherAndNeverLeaveTheRing)
{
    const std::pair<uint32_t, uint32_t> rings[] = {
        {0, 8192}, {1, 2048}, {2047, 2048}, {2049, 2049}, {5000, 5000}};
    Random random(1);
    for (const auto& [asked, capacity] : rings) {
        const Handle handle(nullptr, 0, asked);
        EXPECT_EQ(VxGetTempStringBuffer(handle, -1), nullptr);
        EXPECT_EQ(VxGetTempStringBuffer(handle, 0x7FFFFFFF), nullptr);
        const char16_t* const start = VxGetTempStringBuffer(handle, 0);
        EXPECT_EQ(*start, u'\0');
        uint32_t position = 2;
        for (int i = 0; i < 2000; ++i) {
            const uint32_t chars = uint32_t(random.Int(0, random.Int(0, 4) ? 60 : int32_t(capacity) + 2));
            const uint32_t taken = chars + 2 - chars % 2;
            char16_t* piece = VxGetTempStringBuffer(handle, int32_t(chars));
            if (taken > capacity) {
                EXPECT_EQ(piece, nullptr);
                continue;
            }
            if (position + 1024 > capacity || position + taken > capacity)
                position = 0;
            ASSERT_EQ(piece - start, ptrdiff_t(position)) << asked << ", " << chars;
            std::fill_n(piece, chars + 1, u'x'); // all of it is there
            position += taken;
        }
    }
}

TEST(TempRing, ConversionsKeepEveryCharacterAndTellDamage)
{
    const std::pair<const char*, const char16_t*> cases[] = {
        {"", u""}, {"plain", u"plain"}, {"é ß", u"é ß"}, {"再試行", u"再試行"}, {"𝄞a", u"𝄞a"}};
    const Handle handle;
    for (const auto& [bytes, wide] : cases) {
        EXPECT_EQ(std::u16string(VxGetPrintFromMultiByteString(handle, bytes)), wide);
        EXPECT_STREQ(VxGetMultiByteFromPrintString(handle, wide), bytes);
        EXPECT_EQ(VxGetPrintFromWideString(handle, wide), wide);
    }
    const char16_t half[] = {0xD800, u'a', 0};
    EXPECT_EQ(std::u16string(VxGetPrintFromMultiByteString(handle, "a\xFFz")), u"a\xFFFDz");
    EXPECT_STREQ(VxGetMultiByteFromPrintString(handle, half), "\xEF\xBF\xBD"
                                                              "a");
    EXPECT_EQ(*VxGetPrintFromMultiByteString(handle, nullptr), u'\0');
    EXPECT_EQ(*VxGetMultiByteFromPrintString(handle, nullptr), '\0');
    const std::u16string longText(4000, u'€'), tooLong(5000, u'€');
    EXPECT_EQ(std::string(VxGetMultiByteFromPrintString(handle, longText.c_str())).size(), 12000u);
    EXPECT_STREQ(VxGetMultiByteFromPrintString(handle, tooLong.c_str()), "");
}

TEST(MultiByte, EveryRoomIsKept)
{
    for (int room = 0; room <= 5; ++room) {
        char16_t wide[7] = {9, 9, 9, 9, 9, 9, 9};
        EXPECT_EQ(MultiByteToWideChar(CP_UTF8, 0, "aé€", -1, wide, room), room == 0 || room >= 4 ? 4 : 0);
        EXPECT_EQ(wide[room], 9);
        char bytes[7] = {9, 9, 9, 9, 9, 9, 9};
        EXPECT_EQ(WideCharToMultiByte(CP_ACP, 0, u"aé€", 2, bytes, room, nullptr, nullptr),
                  room == 0 || room >= 3 ? 3 : 0);
        EXPECT_EQ(bytes[room], 9);
    }
    EXPECT_EQ(MultiByteToWideChar(1252, 0, "a", -1, nullptr, 0), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}
