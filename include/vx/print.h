/* The print engine: the language in which every text for a person is written.
 *
 * A format is text in which "%" or "$" begins a form. "%" shows a value for a machine, "$" for a
 * person: digits grouped, with the decimal separator of the user's locale.
 *
 *   %d %i %u %x %X %o   32-bit integers; $d, $i, $u are grouped. I64 before the letter: 64 bits;
 *                       I32: 32 bits; I: 64 bits; h, l, ll as in C, flags, width and precision too
 *   %e %E %f %g %G      doubles; $f grouped, $g with the locale's decimal separator
 *   %.Nz                a 32-bit integer in units of 10 to the -N, N at least 1: 12345 under $.2z is
 *                       123.45. The decimal separator is the locale's in both forms
 *   %c %s               a character; a zero-terminated wide text (hs: 8-bit, hc likewise)
 *   $* $, $:            the locale's decimal, list and time separator
 *   $!: $!. $!,         separators of SMPTE times: whole fields, frames, frames of drop-frame
 *   $&: $&.             separators of music times: measures and beats, beats and ticks
 *   $(Name)             the value of a token that a host registered; as it stands where there is none
 *   $(1234.5)           a number literal, shown for a person
 *   $$ %% $%            a "$"; a "%"
 *
 * A form ends at the first of ! & * , : E G X c d e f g i o s u x z, so a "%" in running text must be
 * doubled. What is no form comes out as plain text and takes no argument. Each argument is passed as
 * in any C variadic call.
 *
 * Text is UTF-16; lengths and capacities count characters, and a capacity includes the terminator.
 * The engines allocate nothing and run on the caller's thread, on many at once. Formats may come
 * from translators: a format alone never makes the engines read or write out of bounds, but its forms
 * must match the arguments that are passed. */
#ifndef VX_PRINT_H
#define VX_PRINT_H

#include "vx/types.h"

#include <stdarg.h>

#define VX_E_BUFFERTOSMALL ((HRESULT)0x8004E03Cu)       /* a grouped number or an unknown token did not fit */
#define VX_E_INSUFFICIENT_BUFFER ((HRESULT)0x8007007Au) /* another conversion did not fit */

VX_EXTERN_C_BEGIN

/* Composes into a buffer that has room for the whole text; a single %s writes at most 1024
 * characters. Returns the length. VxVPrintF uses the argument list up, as vprintf does. */
VX_EXPORT uint32_t VxPrintF(char16_t* text, const char16_t* format, ...);
VX_EXPORT uint32_t VxVPrintF(char16_t* text, const char16_t* format, va_list arguments);

/* Composes into a buffer of that capacity; the text is always terminated and never longer.
 *   outLength  receives the length of the text as it stands; may be null
 * Returns 0, also where plain text, a token or a separator was cut; VX_E_BUFFERTOSMALL,
 * VX_E_INSUFFICIENT_BUFFER; or E_INVALIDARG for a capacity above 0x7FFFFFFF (with an empty text) or of
 * 0 (with nothing written). A later conversion can overwrite an earlier status. */
VX_EXPORT HRESULT VxCchPrintF(char16_t* text, uint32_t capacity, uint32_t* outLength, const char16_t* format,
                              ...);
VX_EXPORT HRESULT VxNVPrintF(char16_t* text, uint32_t capacity, uint32_t* outLength, const char16_t* format,
                             va_list arguments);

/* Fills numbered inserts: %1 is the first argument, a wide text unless %1!format! says otherwise
 * (a format as in C: %2!d!, %3!08X!). %0 ends the text, %n is a line end, %% a "%". This is another
 * language than the one above. Returns the characters written without terminator; 0 where the text
 * does not fit or the template is damaged. */
VX_EXPORT int32_t VxComposeStr(char16_t* text, int32_t capacity, const char16_t* templateText, ...);

/* Registers the value that $(name) stands for, replacing the one of that name, case aside. Both texts
 * are copied. Any thread. Returns 1; 0 without memory (an old value is then gone) or before the kernel
 * has started. */
VX_EXPORT int32_t VxPrintF_AddToken(const char16_t* name, const char16_t* value);

/* Returns 1, or 0 where there is no token of that name. */
VX_EXPORT int32_t VxPrintF_DeleteToken(const char16_t* name);

VX_EXTERN_C_END

#endif
