// What stands on the internationals record and the language handles: print tokens, names, code pages.
#include "lang/internationals.h"
#include "lang/kernel_language.h"
#include "lang/language.h"
#include "lang/strings.h"
#include "vx/platform/codepage.h"
#include "vx/print.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace vx {
namespace {

constexpr uint32_t kJapaneseOfJapan = 0x0411;
constexpr uint32_t kLabelChars = 64;
constexpr int kCertain = 100; // per cent of a text, and confidence

// The format of a label with the separators between its units, of which it takes as many as it has.
void AddLabelToken(const char16_t* name, vxlang_t* label, const char16_t* first, const char16_t* second,
                   const char16_t* third = kEmptyText)
{
    char16_t text[kLabelChars];
    VxCchPrintF(text, kLabelChars, nullptr, KernelText(label), first, second, third);
    VxPrintF_AddToken(name, text);
}

void PublishPrintTokens()
{
    const VxInternationals& r = g_internationals;
    const char16_t *whole = r.smpteWholeSeparator, *nonDrop = r.smpteNonDropSeparator,
                   *drop = r.smpteDropSeparator;
    const char16_t *measure = r.musicMeasureSeparator, *beat = r.musicBeatSeparator;
    VxPrintF_AddToken(u"SMPTE.Whole", whole);
    VxPrintF_AddToken(u"SMPTE.NonDrop", nonDrop);
    VxPrintF_AddToken(u"SMPTE.Drop", drop);
    AddLabelToken(u"SMPTE.Label.NonDrop", strings::kTimeLabel, whole, whole, nonDrop);
    AddLabelToken(u"SMPTE.Label.Drop", strings::kTimeLabel, whole, whole, drop);
    AddLabelToken(u"SMPTE.Label.NonDrop.Full", strings::kTimeLabelFull, whole, whole, nonDrop);
    AddLabelToken(u"SMPTE.Label.Drop.Full", strings::kTimeLabelFull, whole, whole, drop);
    VxPrintF_AddToken(u"m.b", measure);
    VxPrintF_AddToken(u"b.t", beat);
    AddLabelToken(u"MusicTime.Label", strings::kMusicLabel, measure, beat);
    AddLabelToken(u"MusicTime.Label.Full", strings::kMusicLabelFull, measure, beat);
}

} // namespace
} // namespace vx

using namespace vx;

int32_t VxLang_GetInternationals(VxInternationals* record, uint32_t size)
{
    if (!record) {
        RebuildInternationals();
        PublishPrintTokens();
        return 0;
    }
    // The caller's room may be smaller than the record: bytes, not fields, are copied.
    VxInternationals copy = g_internationals;
    copy.size = std::min<uint32_t>(size, sizeof(copy));
    std::memcpy(static_cast<void*>(record), &copy, copy.size);
    return 0;
}

void VxSetLangID(const char16_t* abbreviation)
{
    const std::u16string_view given = ViewOf(abbreviation);
    g_internationals.langIdLength = uint32_t(CopyCut(given.empty() ? u"ENU" : given, g_internationals.langId,
                                                     int32_t(std::size(g_internationals.langId))));
}

int32_t VxLang_IsNameOrderReversed(HVXLANG handle)
{
    return VxLang_GetLCID(handle) == kJapaneseOfJapan;
}

int32_t VxLang_LocalizeUserName(HVXLANG handle, const char16_t* first, const char16_t* last, char16_t* dst,
                                int32_t dstChars)
{
    if (VxLang_IsNameOrderReversed(handle))
        std::swap(first, last);
    int32_t length = 0;
    for (const std::u16string_view part : {ViewOf(first), std::u16string_view(u" "), ViewOf(last)})
        length += CopyCut(part, dst + length, dstChars - length);
    return length;
}

int32_t VxLang_DetectMultiByteCharacters(const char* bytes, uint32_t length)
{
    if (!bytes || length < 2 || _getmbcp() == 0)
        return 0;
    bool behindLead = false;
    for (uint32_t i = 0; i < length && bytes[i]; ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (behindLead && _mbbtype(byte, _MBC_LEAD) == _MBC_TRAIL)
            return 1;
        behindLead = _mbbtype(byte, _MBC_SINGLE) == _MBC_LEAD;
    }
    return 0;
}

HRESULT VxLang_DetectPossibleCodepage(const char* text, uint32_t length, uint32_t* codepage)
{
    DetectEncodingInfo guesses[10] = {};
    INT count = INT(std::size(guesses));
    const HRESULT status = VxPlatform_DetectCodePages(MLDETECTCP_8BIT, 0, text, INT(length), guesses, &count);
    if (FAILED(status))
        return status;
    *codepage = 0;
    const auto* found = std::find_if(guesses, guesses + count, [](const DetectEncodingInfo& guess) {
        return guess.nDocPercent == kCertain && guess.nConfidence >= kCertain;
    });
    if (found == guesses + count)
        return VX_E_CODEPAGE_UNKNOWN;
    *codepage = found->nCodePage;
    return S_OK;
}
