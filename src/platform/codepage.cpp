#include "vx/platform/codepage.h"

#include "vx/platform/locale.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <unicode/ucnv.h>
#include <unicode/ucnv_err.h>
#include <unicode/ucsdet.h>
#include <utility>
#include <vector>

namespace vxplatform {
namespace {

constexpr UINT kAscii = 20127, kUtf8 = 65001;
constexpr INT kSure = 100;

// How a code page is recognised, and with that what the detector's confidence means.
enum class Kind
{
    Wide,      // units of 16 or 32 bits, or of 7 with escapes
    Structure, // by which bytes may follow which
    Letters,   // any bytes are a text: by how many runs of three letters are common ones in a language
};

struct CodePage
{
    std::string_view name; // as the detector writes it
    UINT number;
    Kind kind;
};

// ISO-8859-1 and -9 are parts of 1252 and 1254, and texts that are said to be in them are in these.
constexpr CodePage kCodePages[] = {
    {"UTF-8", kUtf8, Kind::Structure},     {"UTF-16LE", 1200, Kind::Wide},
    {"UTF-16BE", 1201, Kind::Wide},        {"UTF-32LE", 12000, Kind::Wide},
    {"UTF-32BE", 12001, Kind::Wide},       {"ISO-2022-JP", 50220, Kind::Wide},
    {"ISO-2022-KR", 50225, Kind::Wide},    {"ISO-2022-CN", 50227, Kind::Wide},
    {"Shift_JIS", 932, Kind::Structure},   {"GB18030", 54936, Kind::Structure},
    {"EUC-KR", 949, Kind::Structure},      {"Big5", 950, Kind::Structure},
    {"EUC-JP", 51932, Kind::Structure},    {"ISO-8859-1", 1252, Kind::Letters},
    {"ISO-8859-2", 28592, Kind::Letters},  {"ISO-8859-5", 28595, Kind::Letters},
    {"ISO-8859-6", 28596, Kind::Letters},  {"ISO-8859-7", 28597, Kind::Letters},
    {"ISO-8859-8", 28598, Kind::Letters},  {"ISO-8859-8-I", 38598, Kind::Letters},
    {"ISO-8859-9", 1254, Kind::Letters},   {"windows-1250", 1250, Kind::Letters},
    {"windows-1251", 1251, Kind::Letters}, {"windows-1252", 1252, Kind::Letters},
    {"windows-1253", 1253, Kind::Letters}, {"windows-1254", 1254, Kind::Letters},
    {"windows-1255", 1255, Kind::Letters}, {"windows-1256", 1256, Kind::Letters},
    {"KOI8-R", 20866, Kind::Letters},
};

struct Closer
{
    void operator()(UCharsetDetector* detector) const { ucsdet_close(detector); }
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};

HRESULT StatusOf(UErrorCode code)
{
    if (U_SUCCESS(code))
        return S_OK;
    return code == U_MEMORY_ALLOCATION_ERROR ? E_OUTOFMEMORY : E_FAIL;
}

// Counts bytes that are no characters, and goes on behind them.
void CountInvalid(const void* context, UConverterToUnicodeArgs*, const char*, int32_t length,
                  UConverterCallbackReason reason, UErrorCode* status)
{
    if (reason > UCNV_IRREGULAR)
        return; // a reset or the end of the converter
    *static_cast<int64_t*>(const_cast<void*>(context)) += length;
    *status = U_ZERO_ERROR;
}

// Percentage of the bytes that are characters of the code page, below 100 unless all are.
INT ValidPercent(const char* name, std::string_view text, UErrorCode& status)
{
    const std::unique_ptr<UConverter, Closer> converter(ucnv_open(name, &status));
    int64_t invalid = 0;
    ucnv_setToUCallBack(converter.get(), CountInvalid, &invalid, nullptr, nullptr, &status);
    const char* at = text.data();
    while (U_SUCCESS(status)) {
        char16_t dropped[1024];
        char16_t* out = dropped;
        ucnv_toUnicode(converter.get(), &out, std::end(dropped), &at, text.data() + text.size(), nullptr,
                       false, &status);
        if (status != U_BUFFER_OVERFLOW_ERROR)
            break;
        status = U_ZERO_ERROR;
    }
    return INT((int64_t(text.size()) - invalid) * 100 / int64_t(text.size()));
}

UINT LanguageOf(std::string_view language)
{
    constexpr std::pair<std::string_view, UINT> kLanguages[] = {
        {"ar", 0x01}, {"cs", 0x05}, {"da", 0x06}, {"de", 0x07}, {"el", 0x08}, {"en", 0x09},
        {"es", 0x0A}, {"fr", 0x0C}, {"he", 0x0D}, {"hu", 0x0E}, {"it", 0x10}, {"ja", 0x11},
        {"ko", 0x12}, {"nl", 0x13}, {"no", 0x14}, {"pl", 0x15}, {"pt", 0x16}, {"ro", 0x18},
        {"ru", 0x19}, {"sv", 0x1D}, {"tr", 0x1F}, {"zh", 0x04},
    };
    const auto found = std::ranges::find(kLanguages, language, &std::pair<std::string_view, UINT>::first);
    return found == std::end(kLanguages) ? 0 : found->second;
}

struct Guess
{
    DetectEncodingInfo info; // with the detector's own confidence
    Kind kind;
};
using Guesses = std::vector<Guess>;

void AddGuess(Guesses& guesses, const UCharsetMatch* match, std::string_view text, UErrorCode& status)
{
    const char* name = ucsdet_getName(match, &status);
    const INT confidence = ucsdet_getConfidence(match, &status);
    const char* language = ucsdet_getLanguage(match, &status);
    if (U_FAILURE(status))
        return;
    const auto page = std::ranges::find(kCodePages, std::string_view(name), &CodePage::name);
    if (page == std::end(kCodePages))
        return;
    const INT percent = ValidPercent(name, text, status);
    guesses.push_back({{LanguageOf(language), page->number, percent, confidence}, page->kind});
}

// The share of common runs of letters says how plain a text is, not how sure the guess: that shows in its
// lead over the other code pages that the text could be in. Texts of a few words have leads by chance.
bool LeadsClearly(const Guesses& guesses, const Guess& guess, size_t bytes)
{
    constexpr size_t kFewBytes = 32;
    constexpr INT kFewRuns = 30;
    return bytes >= kFewBytes && guess.info.nConfidence >= kFewRuns &&
           std::ranges::none_of(guesses, [&](const Guess& other) {
               return &other != &guess && other.info.nDocPercent == 100 &&
                      other.info.nConfidence * 3 > guess.info.nConfidence * 2;
           });
}

bool IsSure(const Guesses& guesses, const Guess& guess, size_t bytes)
{
    if (guess.info.nDocPercent < 100)
        return false;
    if (guess.kind == Kind::Letters)
        return LeadsClearly(guesses, guess, bytes);
    // No other text has the form of UTF-8 by chance, however short it is.
    constexpr INT kSomeCharacters = 80;
    return guess.info.nConfidence >= (guess.info.nCodePage == kUtf8 ? kSomeCharacters : kSure);
}

HRESULT Detect(Guesses& guesses, std::string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, Closer> detector(ucsdet_open(&status));
    ucsdet_setText(detector.get(), text.data(), int32_t(text.size()), &status);
    int32_t found = 0;
    const UCharsetMatch** matches = ucsdet_detectAll(detector.get(), &found, &status);
    for (int32_t i = 0; U_SUCCESS(status) && i < found; ++i)
        AddGuess(guesses, matches[i], text, status);
    return StatusOf(status);
}

// What the caller is told, the surest first.
std::vector<DetectEncodingInfo> Results(const Guesses& guesses, DWORD flags, UINT preferred, size_t bytes)
{
    std::vector<DetectEncodingInfo> results;
    for (const Guess& guess : guesses) {
        if ((flags & MLDETECTCP_8BIT) && guess.kind == Kind::Wide)
            continue;
        results.push_back(guess.info);
        results.back().nConfidence =
            IsSure(guesses, guess, bytes) ? kSure : std::min(guess.info.nConfidence, kSure - 1);
    }
    std::ranges::stable_sort(results, std::greater(), [&](const DetectEncodingInfo& result) {
        return std::pair(result.nConfidence, result.nCodePage == preferred);
    });
    return results;
}

bool IsAscii(std::string_view text)
{
    // Escapes switch the characters in ISO 2022.
    return std::ranges::all_of(text, [](char c) { return c > 0 && c != '\x1B'; });
}

// ---- Double-byte code pages ----

struct ByteRange
{
    uint8_t first, last;
};

struct DoubleByte
{
    int number;
    ByteRange lead[2], trail[3]; // unused ones hold no byte but 0, which is none
    ByteRange single;            // beside ASCII
};

constexpr DoubleByte kNone{};
constexpr DoubleByte kDoubleByte[] = {
    {932, {{0x81, 0x9F}, {0xE0, 0xFC}}, {{0x40, 0x7E}, {0x80, 0xFC}}, {0xA1, 0xDF}},
    {936, {{0x81, 0xFE}}, {{0x40, 0x7E}, {0x80, 0xFE}}, {}},
    {949, {{0x81, 0xFE}}, {{0x41, 0x5A}, {0x61, 0x7A}, {0x81, 0xFE}}, {}},
    {950, {{0x81, 0xFE}}, {{0x40, 0x7E}, {0xA1, 0xFE}}, {}},
};

bool IsIn(std::span<const ByteRange> ranges, uint8_t byte)
{
    return byte != 0 && std::ranges::any_of(ranges, [&](const ByteRange& range) {
               return range.first <= byte && byte <= range.last;
           });
}

// Of the traditional Chinese countries, Taiwan, Hong Kong and Macao.
bool IsTraditional(LANGID language)
{
    return language == 0x0404 || language == 0x0C04 || language == 0x1404;
}

const DoubleByte& UserCodePage()
{
    const LANGID language = GetUserDefaultUILanguage();
    switch (language & 0x03FF) {
    case 0x11:
        return kDoubleByte[0];
    case 0x04:
        return kDoubleByte[IsTraditional(language) ? 3 : 1];
    case 0x12:
        return kDoubleByte[2];
    default:
        return kNone;
    }
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

HRESULT VxPlatform_DetectCodePages(DWORD flags, UINT preferred, const char* text, INT bytes,
                                   DetectEncodingInfo* results, INT* count)
try {
    if (!count)
        return E_INVALIDARG;
    const INT room = std::exchange(*count, 0);
    if (!text || !results || bytes < 0 || room < 0 || (flags & ~MLDETECTCP_8BIT))
        return E_INVALIDARG;
    const std::string_view whole(text, size_t(bytes));
    Guesses guesses;
    if (whole.empty())
        return S_FALSE;
    if (IsAscii(whole))
        guesses.push_back({{0, kAscii, 100, kSure}, Kind::Structure});
    else if (const HRESULT status = Detect(guesses, whole); FAILED(status))
        return status;
    const std::vector<DetectEncodingInfo> found = Results(guesses, flags, preferred, whole.size());
    *count = std::min(room, INT(found.size()));
    std::copy_n(found.begin(), *count, results);
    return found.empty() ? S_FALSE : S_OK;
} catch (const std::bad_alloc&) {
    return E_OUTOFMEMORY;
}

int _getmbcp()
{
    return UserCodePage().number;
}

int _mbbtype(unsigned char byte, int type)
{
    const DoubleByte& page = UserCodePage();
    if (type == _MBC_LEAD)
        return IsIn(page.trail, byte) ? _MBC_TRAIL : _MBC_ILLEGAL;
    if (IsIn(page.lead, byte))
        return _MBC_LEAD;
    const ByteRange printable[] = {{0x20, 0x7E}, page.single};
    return IsIn(printable, byte) ? _MBC_SINGLE : _MBC_ILLEGAL;
}
