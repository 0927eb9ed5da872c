/* Code pages of 8-bit text: which one a text may be in, and the double-byte one of the user.
 *
 * Code pages are named by number: 1252 for Western European, 932 for Japanese, 65001 for UTF-8. The text
 * of this layer itself is UTF-8 wherever it is 8-bit; what stands here is for files of other origin. Any
 * thread may call at any time. */
#ifndef VX_PLATFORM_CODEPAGE_H
#define VX_PLATFORM_CODEPAGE_H

#include "vx/platform/types.h"

#define MLDETECTCP_NONE 0u
#define MLDETECTCP_8BIT 2u

#define _MBC_SINGLE 0
#define _MBC_LEAD 1
#define _MBC_TRAIL 2
#define _MBC_ILLEGAL (-1)

/* A code page that a text may be in. */
typedef struct DetectEncodingInfo
{
    UINT nLangID;    /* primary language that this code page suggests, 0x0011 for 932; 0: none */
    UINT nCodePage;  /* its number */
    INT nDocPercent; /* how much of the text it can be, in bytes; 100 only where that is all */
    INT nConfidence; /* 0 to 100; 100 only where there is no doubt left that the text tells */
} DetectEncodingInfo;
VX_STATIC_ASSERT(sizeof(DetectEncodingInfo) == 16, "the published record has 16 bytes");
VX_STATIC_ASSERT(offsetof(DetectEncodingInfo, nDocPercent) == 8, "the published order of fields");

VX_EXTERN_C_BEGIN

/* Guesses the code page of a text from its bytes, by how often letters and their runs come in languages;
 * the first 8,000 bytes or so decide, the percentage is of all. A character that is cut at the end counts
 * as whole. There is no doubt (nConfidence 100) about a text of ASCII alone, which is 20127; one that has
 * the form of UTF-8; one of some ten double-byte characters, their frequent ones among them; and one of 32
 * bytes or more whose letters fit a code page half as well again as any other.
 *   flags      MLDETECTCP_8BIT: the text has units of 8 bits; no UTF-16, UTF-32 or ISO 2022. 0: any
 *   preferred  code page that comes first among those of equal confidence; 0: none
 *   text       bytes, need not be terminated
 *   bytes      their number
 *   results    receives the code pages, the surest first; what is not used stays as it is
 *   count      room at results in, number of results out, 0 on failure
 * Returns S_OK; S_FALSE where there is no guess, as for 0 bytes; E_INVALIDARG for a null or negative
 * argument and other flags; E_OUTOFMEMORY; E_FAIL where the detector itself fails. */
VX_PLATFORM_API HRESULT VxPlatform_DetectCodePages(DWORD flags, UINT preferred, const char* text, INT bytes,
                                                   DetectEncodingInfo* results, INT* count);

/* The double-byte code page that goes with the language of the user's locale (locale.h): 932 Japanese,
 * 936 simplified Chinese, 949 Korean, 950 traditional Chinese; 0 for all others. */
VX_PLATFORM_API int _getmbcp(void);

/* What a byte is in that code page.
 *   type  what the byte before it was: behind _MBC_LEAD this one is _MBC_TRAIL or _MBC_ILLEGAL, else
 *         _MBC_LEAD, _MBC_SINGLE for a printable character of its own, or _MBC_ILLEGAL */
VX_PLATFORM_API int _mbbtype(unsigned char byte, int type);

VX_EXTERN_C_END

#endif
