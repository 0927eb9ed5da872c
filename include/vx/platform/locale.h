/* Locales: their numbers for callers, their values, and numbers as text.
 *
 * A locale is named by an LCID, or by a BCP 47 name such as "de-DE". The user's locale, which is the
 * user-interface language and the system's default too, is read once at first use: from the
 * environment variable VX_LOCALE, else from the first of LC_ALL, LC_NUMERIC and LANG that is set; "C"
 * and "POSIX" are en-US, and so is everything that names no known language.
 *
 * Values are those of CLDR for the digits 0 to 9, also where the locale's habit is other digits.
 * Text is zero-terminated UTF-16; counts of characters include the terminator. A failing function
 * returns 0 and sets the last error (lasterror.h). Any thread may call at any time. */
#ifndef VX_PLATFORM_LOCALE_H
#define VX_PLATFORM_LOCALE_H

#include "vx/platform/types.h"

typedef DWORD LCTYPE;
typedef WORD LANGID;

#define LOCALE_NEUTRAL 0x0000u /* the user's, in all functions that take an LCID */
#define LOCALE_INVARIANT 0x007Fu
#define LOCALE_USER_DEFAULT 0x0400u
#define LOCALE_SYSTEM_DEFAULT 0x0800u
#define LOCALE_CUSTOM_UNSPECIFIED 0x1000u /* a locale that has a name but no LCID; not accepted back */
#define LOCALE_NAME_MAX_LENGTH 85

/* What GetLocaleInfoW tells. Types with I are numbers, in decimal digits. */
#define LOCALE_ILANGUAGE 0x0001u       /* four hexadecimal digits of the LCID, as 0409 */
#define LOCALE_SLANGUAGE 0x0002u       /* language with its country, in the user's language */
#define LOCALE_SABBREVLANGNAME 0x0003u /* three letters, as ENU */
#define LOCALE_SNATIVELANGNAME 0x0004u
#define LOCALE_ICOUNTRY 0x0005u        /* telephone code */
#define LOCALE_SCOUNTRY 0x0006u        /* in the user's language */
#define LOCALE_SABBREVCTRYNAME 0x0007u /* ISO 3166, three letters */
#define LOCALE_SNATIVECTRYNAME 0x0008u
#define LOCALE_SLIST 0x000Cu
#define LOCALE_IMEASURE 0x000Du /* 0 metric, 1 inches and miles */
#define LOCALE_SDECIMAL 0x000Eu
#define LOCALE_STHOUSAND 0x000Fu
#define LOCALE_SGROUPING 0x0010u /* 3;0: threes; 3;2;0: three, then twos; 0: none */
#define LOCALE_IDIGITS 0x0011u   /* decimals */
#define LOCALE_ILZERO 0x0012u    /* 1: 0.7, 0: .7 */
#define LOCALE_SDATE 0x001Du
#define LOCALE_STIME 0x001Eu
#define LOCALE_SPOSITIVESIGN 0x0050u
#define LOCALE_SNEGATIVESIGN 0x0051u
#define LOCALE_SISO639LANGNAME 0x0059u
#define LOCALE_SISO3166CTRYNAME 0x005Au
#define LOCALE_SNAME 0x005Cu        /* BCP 47 */
#define LOCALE_SENGLANGUAGE 0x1001u /* language alone */
#define LOCALE_SENGCOUNTRY 0x1002u
#define LOCALE_INEGNUMBER 0x1010u /* NegativeOrder of NUMBERFMTW */

#define LOCALE_RETURN_NUMBER 0x20000000u  /* with a number: a DWORD instead of digits */
#define LOCALE_USE_CP_ACP 0x40000000u     /* without effect */
#define LOCALE_NOUSEROVERRIDE 0x80000000u /* without effect: users have no settings beside the locale */

/* How GetNumberFormatW writes. */
typedef struct _numberfmtW
{
    UINT NumDigits;   /* decimals, 0 to 9 */
    UINT LeadingZero; /* 0: .7, 1: 0.7 */
    UINT Grouping;    /* decimal digits are group sizes from the decimal separator on, the last one
                         repeating unless a 0 follows it: 3: 1,234,567; 32: 12,34,567; 30: 1234,567;
                         0: none. At most 9999 */
    WCHAR* lpDecimalSep;
    WCHAR* lpThousandSep;
    UINT NegativeOrder; /* 0: (1), 1: -1, 2: - 1, 3: 1-, 4: 1 -, with the locale's sign */
} NUMBERFMTW;
VX_STATIC_ASSERT(sizeof(NUMBERFMTW) == 40, "the published record has 40 bytes");
VX_STATIC_ASSERT(offsetof(NUMBERFMTW, lpDecimalSep) == 16, "the published order of fields");
VX_STATIC_ASSERT(offsetof(NUMBERFMTW, NegativeOrder) == 32, "the published order of fields");

VX_EXTERN_C_BEGIN

VX_PLATFORM_API LCID GetUserDefaultLCID(void);
VX_PLATFORM_API LCID GetSystemDefaultLCID(void);
VX_PLATFORM_API LANGID GetUserDefaultUILanguage(void);

/* The calling thread's locale; the user's until it is set. Nothing else here reads it. */
VX_PLATFORM_API LCID GetThreadLocale(void);
VX_PLATFORM_API BOOL SetThreadLocale(LCID locale);

/* The name of a locale; a language alone gets its most usual country.
 *   name      may be null where nameChars is 0: then the room needed is returned
 *   flags     0
 * Returns the characters written. */
VX_PLATFORM_API int LCIDToLocaleName(LCID locale, WCHAR* name, int nameChars, DWORD flags);
/* The reverse. name null is the user's locale, an empty name LOCALE_INVARIANT. */
VX_PLATFORM_API LCID LocaleNameToLCID(const WCHAR* name, DWORD flags);

/* A value of a locale.
 *   type       LOCALE_I... or LOCALE_S..., with flags
 *   data       receives the text, or with LOCALE_RETURN_NUMBER a DWORD (two characters)
 *   dataChars  0: only the room needed is returned
 * Returns the characters written. ERROR_INVALID_PARAMETER for an unknown locale,
 * ERROR_INVALID_FLAGS for an unknown type or a number asked of a text, ERROR_INSUFFICIENT_BUFFER,
 * with nothing written. */
VX_PLATFORM_API int GetLocaleInfoW(LCID locale, LCTYPE type, WCHAR* data, int dataChars);

/* Writes a number, given as text, the way of a locale.
 *   flags   0 with a format; without one, LOCALE_NOUSEROVERRIDE has no effect
 *   value   [-]digits[.digits], at least one digit, nothing else; of any length
 *   format  null: the locale's own values
 *   text    may be null where textChars is 0: then the room needed is returned
 * Rounds on the decimal digits, halves away from zero; a number that rounds to zero has no sign.
 * Returns the characters written. ERROR_INSUFFICIENT_BUFFER: the text is cut to the room and
 * terminated. ERROR_INVALID_PARAMETER, for what is no number and for a format out of its ranges, and
 * ERROR_INVALID_FLAGS write nothing. */
VX_PLATFORM_API int GetNumberFormatW(LCID locale, DWORD flags, const WCHAR* value, const NUMBERFMTW* format,
                                     WCHAR* text, int textChars);

/* Changes the user's locale of this process, as a settings dialog would; null reads the environment
 * again. What others hold of the old one (the internationals record) is theirs to rebuild.
 *   name  BCP 47, in ASCII */
VX_PLATFORM_API BOOL VxPlatform_SetUserLocale(const char* name);

VX_EXTERN_C_END

#endif
