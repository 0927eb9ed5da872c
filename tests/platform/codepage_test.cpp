#include "vx/platform/codepage.h"
#include "vx/platform/locale.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <iconv.h>
#include <string>
#include <vector>

namespace {

// The C library's own tables; empty where the text has a character that the code page lacks.
std::string Encode(const char* page, std::string text)
{
    const iconv_t converter = iconv_open(page, "UTF-8");
    EXPECT_NE(converter, iconv_t(-1)) << page;
    std::string out(text.size() * 4, '\0');
    char *from = text.data(), *to = out.data();
    size_t left = text.size(), room = out.size();
    const bool whole = iconv(converter, &from, &left, &to, &room) != size_t(-1);
    iconv_close(converter);
    out.resize(whole ? out.size() - room : 0);
    return out;
}

std::vector<DetectEncodingInfo> Detect(const std::string& text, UINT preferred = 0, INT room = 10)
{
    std::vector<DetectEncodingInfo> results(static_cast<size_t>(room));
    INT count = room;
    const HRESULT status = VxPlatform_DetectCodePages(MLDETECTCP_8BIT, preferred, text.data(),
                                                      INT(text.size()), results.data(), &count);
    EXPECT_TRUE(SUCCEEDED(status));
    EXPECT_EQ(status == S_FALSE, count == 0);
    results.resize(size_t(count));
    return results;
}

constexpr char kRussian[] =
    "Этот файл содержит список видеоклипов, которые были сняты в прошлом году, и время "
    "начала каждого из них. Не изменяйте его, пока открыт проект.";
constexpr char kJapanese[] =
    "このファイルには、去年撮影されたビデオクリップの一覧と開始時刻が含まれています。"
    "プロジェクトを開いている間は変更しないでください。";
constexpr char kKorean[] =
    "이 파일에는 작년에 촬영한 비디오 클립 목록과 각 클립의 시작 시간이 들어 있습니다. "
    "프로젝트가 열려 있는 동안에는 변경하지 마십시오.";
constexpr char kFrench[] =
    "Ce fichier contient la liste des clips vidéo qui ont été tournés l'année dernière, ainsi "
    "que l'heure de début de chacun.";
constexpr char kTraditional[] =
    "這個檔案包含去年拍攝的影片剪輯清單以及每個剪輯的開始時間。在專案開啟時請不要更改它。"
    "我們的電影在這裡。";

struct Known
{
    const char *page, *text;
    UINT number, language;
};
constexpr Known kKnown[] = {
    {"CP1252", kFrench, 1252, 0x0C},    {"CP1251", kRussian, 1251, 0x19},
    {"KOI8-R", kRussian, 20866, 0x19},  {"CP932", kJapanese, 932, 0x11},
    {"EUC-JP", kJapanese, 51932, 0x11}, {"GB18030", kTraditional, 54936, 0x04},
    {"EUC-KR", kKorean, 949, 0x12},     {"BIG5", kTraditional, 950, 0x04},
    {"UTF-8", kRussian, 65001, 0},      {"UTF-8", "M\xC3\xBCller", 65001, 0},
    {"ASCII", "Plain.\r\n", 20127, 0},
};

} // namespace

TEST(CodePages, AreDetectedWithTheirShare)
{
    for (const Known& known : kKnown) {
        const std::string text = Encode(known.page, known.text);
        ASSERT_FALSE(text.empty()) << known.page;
        const auto all = Detect(text);
        ASSERT_FALSE(all.empty()) << known.page;
        EXPECT_EQ(all[0].nCodePage, known.number) << known.page;
        EXPECT_EQ(all[0].nLangID, known.language) << known.page;
        EXPECT_EQ(all[0].nDocPercent, 100) << known.page;
        EXPECT_EQ(all[0].nConfidence, 100) << known.page;
        EXPECT_TRUE(std::ranges::is_sorted(all, std::greater(), &DetectEncodingInfo::nConfidence));
        EXPECT_EQ(Detect(text, 0, 1).size(), 1u);
    }
    for (const Known& unsure :
         {Known{"CP1252", "M\xC3\xBCller", 0, 0}, Known{"CP932", "\xE8\xA8\xAD\xE5\xAE\x9A", 0, 0}})
        for (const DetectEncodingInfo& guess : Detect(Encode(unsure.page, unsure.text)))
            EXPECT_LT(guess.nConfidence, 100) << unsure.page << " as " << guess.nCodePage;
    const auto equals = Detect("\x90\xDD\x92\xE8", 950);
    const auto first = std::ranges::find(equals, equals.back().nConfidence, &DetectEncodingInfo::nConfidence);
    EXPECT_EQ(first->nCodePage, 950u) << "the preferred one of those of equal confidence";
    // A character that is cut is whole, one that is broken is not.
    const std::string utf8 = kRussian;
    EXPECT_EQ(Detect(utf8.substr(0, 201))[0].nDocPercent, 100);
    std::string broken = utf8;
    broken[1] = 'x';
    const auto guesses = Detect(broken);
    const auto found = std::ranges::find(guesses, 65001u, &DetectEncodingInfo::nCodePage);
    ASSERT_NE(found, guesses.end());
    EXPECT_EQ(found->nDocPercent, 99);
}

// Every character of two bytes is a lead byte and a trail byte, every other one a single byte.
TEST(CodePages, DoubleBytesAreToldApart)
{
    constexpr std::tuple<const char*, const char*, int> kRows[] = {{"ja-JP", "CP932", 932},
                                                                   {"zh-CN", "GBK", 936},
                                                                   {"ko-KR", "CP949", 949},
                                                                   {"zh-TW", "BIG5", 950},
                                                                   {"zh-HK", "BIG5", 950}};
    for (const auto& [locale, page, number] : kRows) {
        ASSERT_TRUE(VxPlatform_SetUserLocale(locale));
        EXPECT_EQ(_getmbcp(), number);
        int pairs = 0;
        for (char32_t c = 0x3000; c < 0x10000; c += 3) {
            const char utf8[] = {char(0xE0 | c >> 12), char(0x80 | (c >> 6 & 0x3F)), char(0x80 | (c & 0x3F)),
                                 0};
            const std::string bytes = c >= 0xD800 && c < 0xE000 ? "" : Encode(page, utf8);
            const auto byte = [&](size_t at) { return static_cast<unsigned char>(bytes[at]); };
            if (bytes.size() == 1) {
                ASSERT_EQ(_mbbtype(byte(0), _MBC_SINGLE), _MBC_SINGLE) << page << ' ' << unsigned(c);
            }
            if (bytes.size() != 2)
                continue;
            ASSERT_EQ(_mbbtype(byte(0), _MBC_SINGLE), _MBC_LEAD) << page << ' ' << unsigned(c);
            ASSERT_EQ(_mbbtype(byte(1), _MBC_LEAD), _MBC_TRAIL) << page << ' ' << unsigned(c);
            ++pairs;
        }
        EXPECT_GT(pairs, 2000);
        EXPECT_EQ(_mbbtype('\n', _MBC_SINGLE), _MBC_ILLEGAL);
        EXPECT_EQ(_mbbtype(' ', _MBC_LEAD), _MBC_ILLEGAL);
        EXPECT_EQ(_mbbtype('~', _MBC_TRAIL), _MBC_SINGLE);
    }
    ASSERT_TRUE(VxPlatform_SetUserLocale("de-DE"));
    EXPECT_EQ(_getmbcp(), 0);
    EXPECT_EQ(_mbbtype(0x81, _MBC_SINGLE), _MBC_ILLEGAL);
    VxPlatform_SetUserLocale(nullptr);
}
