/* The print engine: the language in which every text for a person is written.
 *
 * A format is text in which "%" or "$" begins a form. "%" shows a value for a machine, "$" for a
 * person: digits grouped, with the decimal separator of the user's locale.
 *
 *   %d %i %u %x %X %o   32-bit integers; $d, $i, $u are grouped. I64 before the letter, or I alone: 64
 *                       bits; I32: 32 bits. h and hh cut the value to 16 and 8 bits; l and ll change
 *                       nothing: the argument is read with 32 bits
 *   %e %E %f %g %G      doubles; $f grouped, $g with the locale's decimal separator
 *   %.Nz                a 32-bit integer in units of 10 to the -N, N at least 1: 12345 under $.2z is
 *                       123.45. The decimal separator is the locale's in both forms. Without N as %d
 *   %c %s               a character; a zero-terminated wide text, null for the empty one. hc and hs: of
 *                       8 bits, each byte a character
 *   $* $, $:            the locale's decimal, list and time separator
 *   $!: $!. $!,         separators of SMPTE times: whole fields, frames, frames of drop-frame
 *   $&: $&.             separators of music times: measures and beats, beats and ticks
 *   $(Name)             the value of a token that a host registered; as it stands where there is none
 *   $(1234.5)           a number literal, shown for a person
 *   $$ %% $%            a "$"; a "%"
 *
 * Flags (- + # 0 and blank), width and precision stand between introducer and letter as in C, and mean
 * the same. Without any of them %d, %i and %u are fastest. A form ends at the first of ! & * , : E G X
 * c d e f g i o s u x z, so a "%" in running text must be doubled, and * is no width. A form whose
 * flags and sizes make no sense comes out as it stands, but takes its argument; one that has no end
 * comes out as it stands, "%" first, and takes none. What has more decimals than are shown for a person
 * (9) or flags that leave no number at the end ($-5d) is shown as for a machine; where blanks or a "+"
 * stand before such a number, they are all that is shown. In a bounded text it is the last that is shown.
 *
 * Each argument is passed as in any C variadic call and takes one slot of 8 bytes.
 *
 * Text is UTF-16; lengths and capacities count characters, and a capacity includes the terminator.
 * The engines allocate nothing and run on the caller's thread, on many at once. Formats may come
 * from translators: a format alone never makes the engines read or write out of bounds, but its forms
 * must match the arguments that are passed. */
#ifndef VX_PRINT_H
#define VX_PRINT_H

#include "vx/types.h"

#include <stdarg.h>

/* Beside VX_E_BUFFERTOSMALL, which says that a grouped number or an unknown token did not fit, or that a number has no form
 * for a person: another conversion did not fit. */
#define VX_E_INSUFFICIENT_BUFFER ((HRESULT)0x8007007Au)

VX_EXTERN_C_BEGIN

/* Composes into a buffer that has room for the whole text; a single %s or %c writes at most 1024
 * characters, any other conversion at most 783 before grouping, which may add one separator for every
 * two of them. Returns the length. VxVPrintF uses the argument list up, as vprintf does. */
VX_EXPORT uint32_t VxPrintF(char16_t* text, const char16_t* format, ...);
VX_EXPORT uint32_t VxVPrintF(char16_t* text, const char16_t* format, va_list arguments);

/* Composes into a buffer of that capacity; the text is always terminated and never longer.
 *   outLength  receives the length of the text as it stands; may be null
 * Returns 0, also where plain text, a token, a separator or a conversion that is neither grouped nor a
 * text was cut; VX_E_BUFFERTOSMALL, VX_E_INSUFFICIENT_BUFFER; or E_INVALIDARG for a capacity above
 * 0x7FFFFFFF (with an empty text) or of 0 (with nothing written). A conversion whose text is longer
 * than 259 characters is left out. A later conversion can overwrite an earlier status. */
VX_EXPORT HRESULT VxCchPrintF(char16_t* text, uint32_t capacity, uint32_t* outLength, const char16_t* format,
                              ...);
VX_EXPORT HRESULT VxNVPrintF(char16_t* text, uint32_t capacity, uint32_t* outLength, const char16_t* format,
                             va_list arguments);

/* Fills numbered inserts: %1 is the first argument, a wide text unless %1!format! says otherwise
 * (a format as in C: %2!d!, %3!08X!, no doubles). %0 ends the text, %n is a line end (\r\n), %% a "%".
 * This is another language than the one above. Returns the characters written without terminator; 0
 * with an empty text where the text does not fit or the template is damaged. */
VX_EXPORT int32_t VxComposeStr(char16_t* text, int32_t capacity, const char16_t* templateText, ...);

/* Registers the value that $(name) stands for, replacing the one of that name, case aside. Both texts
 * are copied. Any thread. Returns 1; 0 without memory (an old value is then gone) or before the kernel
 * has started. */
VX_EXPORT int32_t VxPrintF_AddToken(const char16_t* name, const char16_t* value);

/* Returns 1, or 0 where there is no token of that name. */
VX_EXPORT int32_t VxPrintF_DeleteToken(const char16_t* name);

VX_EXTERN_C_END

#endif
