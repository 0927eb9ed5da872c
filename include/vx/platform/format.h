/* Text composed by formats: one conversion of the C runtime's kind, and templates with numbered
 * inserts. Text is zero-terminated UTF-16; capacities count characters and include the terminator.
 * Nothing is allocated. Any thread may call. */
#ifndef VX_PLATFORM_FORMAT_H
#define VX_PLATFORM_FORMAT_H

#include "vx/platform/types.h"

#include <stdarg.h>

#define FORMAT_MESSAGE_FROM_STRING 0x400u

/* What a value is, and so which conversions take it. */
typedef enum VxFormatKind
{
    VxFormatKind_Integer, /* d i u x X o c */
    VxFormatKind_Double,  /* e E f g G */
    VxFormatKind_Text     /* s */
} VxFormatKind;

typedef struct VxFormatValue
{
    VxFormatKind kind;
    union
    {
        uint64_t integer; /* without I64, I or ll only its low 32 bits count */
        double number;
        const void* text; /* char16_t, or char with h; null reads as the empty text */
    } as;
} VxFormatValue;

VX_EXTERN_C_BEGIN

/* Formats one value.
 *   text        receives the text, cut to the capacity and terminated; with a capacity of 0 nothing
 *   conversion  %[flags][width][.precision][size]letter and nothing else. Flags are - + # 0 and blank,
 *               all as in C; sizes are h, hh, l (32 bits), ll, I64, I32, I (64 bits), L and w. c and
 *               s are wide unless h stands in front; an 8-bit text gives a character a byte. The flag
 *               0 pads texts too. The decimal point is "." in every locale
 * A zero character is no character. With a precision a text is not read behind it.
 * Returns the length of the whole text, cut or not; -1, with nothing written, for what is no such
 * conversion or does not take values of that kind. */
VX_PLATFORM_API int64_t VxPlatform_FormatValue(WCHAR* text, SIZE_T capacity, const WCHAR* conversion,
                                               const VxFormatValue* value);

/* Fills a template: %1 to %99 are the arguments, wide texts unless a format follows as in %1!08X! (a
 * conversion as above without its %, no doubles; a * for width or precision takes an argument, the
 * first one that of the number, and moves those behind it up by one). %0 ends the text, %n is a line
 * end (\r\n), %r a \r, %t a tab, %b a blank; any other character behind a % stands for itself.
 *   flags      FORMAT_MESSAGE_FROM_STRING; all others fail with ERROR_INVALID_FLAGS and a debug text
 *   source     the template
 *   messageId, languageId  not read
 *   arguments  8-byte slots: the highest number that the template names, at least; may be null where
 *              it names none. The list is used up
 * Returns the length of the text. 0 with an empty text and ERROR_INSUFFICIENT_BUFFER where it does not
 * fit, with ERROR_INVALID_PARAMETER for a damaged template. */
VX_PLATFORM_API DWORD FormatMessageW(DWORD flags, const void* source, DWORD messageId, DWORD languageId,
                                     WCHAR* buffer, DWORD size, va_list* arguments);

VX_EXTERN_C_END

#endif
