#include "vx/internationals.h"

#include "kernel/characters.h"
#include "lang/internationals.h"
#include "vx/platform/locale.h"

#include <algorithm>
#include <string_view>

namespace vx {

VxInternationals g_internationals;

namespace {

constexpr uint32_t kPrimaryLanguageMask = 0x3FF;
constexpr uint32_t kEnglish = 9, kPortuguese = 22, kChinese = 4;
constexpr uint32_t kTaiwan = 1, kHongKong = 3, kMacao = 5; // sublanguages of Chinese
constexpr uint32_t kFirstSublanguage = 0x400;

template <size_t Room>
void SetText(std::u16string_view from, char16_t (&text)[Room], uint32_t& length)
{
    length = uint32_t(from.copy(text, Room - 1));
    text[length] = u'\0';
}

// What does not fit its field stays empty.
template <size_t Room>
void ReadText(LCTYPE type, char16_t (&text)[Room], uint32_t& length)
{
    const int chars = GetLocaleInfoW(LOCALE_USER_DEFAULT, type, text, int(Room));
    length = chars > 0 ? uint32_t(chars - 1) : 0;
}

// The decimal digits at the start of a value: of a grouping 3;2;0 the first group.
uint32_t ReadNumber(LCTYPE type)
{
    char16_t text[32];
    uint32_t length = 0, number = 0;
    ReadText(type, text, length);
    for (uint32_t i = 0; i < length && IsDigit(text[i]); ++i)
        number = number * 10 + uint32_t(text[i] - u'0');
    return number;
}

void ReadNames(VxInternationals& record)
{
    record.lcid = GetSystemDefaultLCID();
    record.language = ReadNumber(LOCALE_ILANGUAGE);
    ReadText(LOCALE_SLANGUAGE, record.languageName, record.languageNameLength);
    ReadText(LOCALE_SENGLANGUAGE, record.languageEnglishName, record.languageEnglishNameLength);
    record.country = ReadNumber(LOCALE_ICOUNTRY);
    ReadText(LOCALE_SCOUNTRY, record.countryName, record.countryNameLength);
    ReadText(LOCALE_SENGCOUNTRY, record.countryEnglishName, record.countryEnglishNameLength);
}

void ReadNumberFormat(VxInternationals& record)
{
    ReadText(LOCALE_SNEGATIVESIGN, record.negativeSign, record.negativeSignLength);
    SetText(u"-", record.hyphen, record.hyphenLength);
    ReadText(LOCALE_STHOUSAND, record.thousandsSeparator, record.thousandsSeparatorLength);
    ReadText(LOCALE_SDECIMAL, record.decimalSeparator, record.decimalSeparatorLength);
    KeepDecimalApartFromThousands(record);
    record.grouping = ReadNumber(LOCALE_SGROUPING);
    record.digits = ReadNumber(LOCALE_IDIGITS);
    record.leadingZero = ReadNumber(LOCALE_ILZERO);
}

void ReadSeparators(VxInternationals& record)
{
    ReadText(LOCALE_STIME, record.timeSeparator, record.timeSeparatorLength);
    ReadText(LOCALE_SLIST, record.listSeparator, record.listSeparatorLength);
    record.measure = ReadNumber(LOCALE_IMEASURE);
    SetText(u":", record.smpteWholeSeparator, record.smpteWholeSeparatorLength);
    SetText(u".", record.smpteNonDropSeparator, record.smpteNonDropSeparatorLength);
    SetText(u",", record.smpteDropSeparator, record.smpteDropSeparatorLength);
    SetText(u".", record.musicMeasureSeparator, record.musicMeasureSeparatorLength);
    SetText(u".", record.musicBeatSeparator, record.musicBeatSeparatorLength);
}

// A value of the snapshot by its key: a text, or a number where text is null.
struct InatValue
{
    uint32_t number = 0;
    const char16_t* text = nullptr;
    uint32_t length = 0;
};

InatValue FindInat(uint32_t key)
{
    const VxInternationals& r = g_internationals;
    switch (key) {
    case VXINAT_LCID:
        return {r.lcid};
    case VXINAT_LANGUAGE:
        return {r.language};
    case VXINAT_LANGUAGE_NAME:
        return {0, r.languageName, r.languageNameLength};
    case VXINAT_LANGUAGE_ENGLISH_NAME:
        return {0, r.languageEnglishName, r.languageEnglishNameLength};
    case VXINAT_COUNTRY:
        return {r.country};
    case VXINAT_DECIMAL_SEPARATOR:
        return {0, r.decimalSeparator, r.decimalSeparatorLength};
    case VXINAT_LIST_SEPARATOR:
        return {0, r.listSeparator, r.listSeparatorLength};
    case VXINAT_TIME_SEPARATOR:
        return {0, r.timeSeparator, r.timeSeparatorLength};
    case VXINAT_SMPTE_WHOLE_SEPARATOR:
        return {0, r.smpteWholeSeparator, r.smpteWholeSeparatorLength};
    case VXINAT_SMPTE_NONDROP_SEPARATOR:
        return {0, r.smpteNonDropSeparator, r.smpteNonDropSeparatorLength};
    case VXINAT_SMPTE_DROP_SEPARATOR:
        return {0, r.smpteDropSeparator, r.smpteDropSeparatorLength};
    case VXINAT_MUSIC_MEASURE_SEPARATOR:
        return {0, r.musicMeasureSeparator, r.musicMeasureSeparatorLength};
    case VXINAT_MUSIC_BEAT_SEPARATOR:
        return {0, r.musicBeatSeparator, r.musicBeatSeparatorLength};
    default:
        return {};
    }
}

} // namespace

void RebuildInternationals()
{
    VxInternationals record = {};
    record.size = sizeof(record);
    ReadNames(record);
    ReadNumberFormat(record);
    ReadSeparators(record);
    g_internationals = record;
}

void KeepDecimalApartFromThousands(VxInternationals& record)
{
    const std::u16string_view thousands(record.thousandsSeparator, record.thousandsSeparatorLength);
    const std::u16string_view decimal(record.decimalSeparator, record.decimalSeparatorLength);
    if (!thousands.empty() && decimal.starts_with(thousands))
        SetText(thousands.front() == u'.' ? u"," : u".", record.decimalSeparator,
                record.decimalSeparatorLength);
}

} // namespace vx

uint32_t VxGetInat(int32_t key, char16_t* dst)
{
    const vx::InatValue value = vx::FindInat(uint32_t(key));
    if (dst)
        std::copy_n(value.text ? value.text : u"", value.length + 1, dst);
    return value.text ? value.length : value.number;
}

uint32_t VxGetInatN(uint32_t key, char16_t* dst, uint32_t dstChars)
{
    const vx::InatValue value = vx::FindInat(key);
    const uint32_t kept = dstChars > 0 ? std::min(value.length, dstChars - 1) : 0;
    if (dst && dstChars > 0) {
        std::copy_n(value.text ? value.text : u"", kept, dst);
        dst[kept] = u'\0';
    }
    return value.text ? kept : value.number;
}

uint32_t VxLang_GetConditionedLCID(uint32_t lcid)
{
    const uint32_t language = lcid & vx::kPrimaryLanguageMask;
    const uint32_t sublanguage = (lcid & 0xFFFF) >> 10;
    if (language == vx::kPortuguese)
        return lcid;
    if (language == vx::kChinese) {
        const bool traditional =
            sublanguage == vx::kTaiwan || sublanguage == vx::kHongKong || sublanguage == vx::kMacao;
        return traditional ? 0x0404 : 0x0804;
    }
    return language | vx::kFirstSublanguage;
}

int32_t VxLang_IsLCIDEnglish(uint32_t lcid)
{
    return (lcid & vx::kPrimaryLanguageMask) == vx::kEnglish;
}
