/* The internationals record: what number and time text needs of the user's locale.
 *
 * One process-wide snapshot holds separators, signs, digit grouping and names, so that formatters
 * ask the system for nothing. It is all zeros until VxLang_GetInternationals(NULL, 0) builds it from
 * the system; a host builds it again after a change of the locale. Each text field is zero-terminated
 * and followed by its length in characters.
 *
 * The snapshot has no lock: any thread may read it at any time, but not while it is rebuilt. */
#ifndef VX_INTERNATIONALS_H
#define VX_INTERNATIONALS_H

#include "vx/types.h"

typedef struct VxInternationals
{
    uint32_t size;     /* bytes of this record; of a shortened copy, the bytes copied */
    uint32_t lcid;     /* the system's default locale; all else is of the user's */
    uint32_t language; /* language id: its four hexadecimal digits read as decimal ones up to the first
                          letter, so 0x0409 gives 409 and 0x0c0a gives 0 */
    char16_t languageName[64]; /* language with its country, in the user's language */
    uint32_t languageNameLength;
    char16_t languageEnglishName[64]; /* "German" */
    uint32_t languageEnglishNameLength;
    uint32_t country; /* telephone code */
    char16_t countryName[64];
    uint32_t countryNameLength;
    char16_t countryEnglishName[64];
    uint32_t countryEnglishNameLength;
    char16_t negativeSign[8]; /* the locale's own sign, which may be more than one character */
    uint32_t negativeSignLength;
    char16_t hyphen[8]; /* "-", the sign of all text that the library writes and reads */
    uint32_t hyphenLength;
    char16_t thousandsSeparator[8];
    uint32_t thousandsSeparatorLength;
    char16_t decimalSeparator[8]; /* never begins with a thousandsSeparator that is not empty */
    uint32_t decimalSeparatorLength;
    uint32_t grouping;    /* digits of the group next to the decimal separator */
    uint32_t digits;      /* decimals */
    uint32_t leadingZero; /* 1: 0.7, 0: .7 */
    char16_t timeSeparator[8];
    uint32_t timeSeparatorLength;
    char16_t listSeparator[8];
    uint32_t listSeparatorLength;
    uint32_t measure; /* 0 metric, 1 inches and miles */
    char16_t smpteWholeSeparator[8];
    uint32_t smpteWholeSeparatorLength;
    char16_t smpteNonDropSeparator[8];
    uint32_t smpteNonDropSeparatorLength;
    char16_t smpteDropSeparator[8];
    uint32_t smpteDropSeparatorLength;
    char16_t langId[4]; /* the application's language abbreviation, as "ENU"; a rebuild empties it */
    uint32_t langIdLength;
    uint32_t langIdReserved; /* always 0 */
    char16_t musicMeasureSeparator[8];
    uint32_t musicMeasureSeparatorLength;
    char16_t musicBeatSeparator[8];
    uint32_t musicBeatSeparatorLength;
} VxInternationals;
VX_STATIC_ASSERT(offsetof(VxInternationals, languageName) == 12, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxInternationals, country) == 276, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxInternationals, negativeSign) == 544, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxInternationals, grouping) == 624, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxInternationals, measure) == 676, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxInternationals, langId) == 740, "the published order of fields");
VX_STATIC_ASSERT(offsetof(VxInternationals, musicMeasureSeparator) == 756, "the published order of fields");
VX_STATIC_ASSERT(sizeof(VxInternationals) == 796, "the published record has 796 bytes");

/* Keys of VxGetInat and VxGetInatN. */
#define VXINAT_LCID 0
#define VXINAT_LANGUAGE 1
#define VXINAT_LANGUAGE_NAME 2
#define VXINAT_LANGUAGE_ENGLISH_NAME 3
#define VXINAT_COUNTRY 4
#define VXINAT_DECIMAL_SEPARATOR 24
#define VXINAT_LIST_SEPARATOR 40
#define VXINAT_TIME_SEPARATOR 60
#define VXINAT_SMPTE_WHOLE_SEPARATOR 100
#define VXINAT_SMPTE_NONDROP_SEPARATOR 101
#define VXINAT_SMPTE_DROP_SEPARATOR 102
#define VXINAT_MUSIC_MEASURE_SEPARATOR 120
#define VXINAT_MUSIC_BEAT_SEPARATOR 121

VX_EXTERN_C_BEGIN

/* Copies the snapshot, or builds it again.
 *   record  receives the first min(size, 796) bytes, its field `size` holding that number. Null: the
 *           snapshot is rebuilt from the system, and no other thread may read it meanwhile. The print
 *           tokens (print.h) of its separators are set anew: $(SMPTE.Whole), $(SMPTE.NonDrop),
 *           $(SMPTE.Drop), $(m.b), $(b.t), and those of the labels above times, in the language of the
 *           kernel's handle: $(SMPTE.Label.NonDrop), $(SMPTE.Label.Drop), $(MusicTime.Label), each also
 *           with .Full
 *   size    bytes of room at record; not read when record is null
 * Returns 0. */
VX_EXPORT int32_t VxLang_GetInternationals(VxInternationals* record, uint32_t size);

/* One value of the snapshot.
 *   key  VXINAT_...
 *   dst  room for the whole text, 64 characters for the names; set to empty for any other key. May
 *        be null
 * Returns the value of a numeric key, the length of a text key's text, 0 for an unknown key. */
VX_EXPORT uint32_t VxGetInat(int32_t key, char16_t* dst);

/* The same with a limit: dstChars characters of room, terminator included. The text is cut to the
 * room and always terminated; the result is the length that was copied. With no room nothing is
 * written, and a text key gives 0. */
VX_EXPORT uint32_t VxGetInatN(uint32_t key, char16_t* dst, uint32_t dstChars);

/* Reduces any locale to the one by which the string tables know its language: the language with its
 * first sublanguage. Portuguese stays as it is, and Chinese becomes 0x0404 (traditional: Taiwan, Hong
 * Kong, Macao) or 0x0804 (all others). */
VX_EXPORT uint32_t VxLang_GetConditionedLCID(uint32_t lcid);

/* 1 where the locale's language is English, whatever its country; else 0. */
VX_EXPORT int32_t VxLang_IsLCIDEnglish(uint32_t lcid);

VX_EXTERN_C_END

#endif
