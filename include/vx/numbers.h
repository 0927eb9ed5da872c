/* Numbers to text and back.
 *
 * Text is zero-terminated UTF-16. Capacities count characters and include the terminator; lengths do
 * not. Nothing is allocated and nothing kept; pointers must not be null unless a function says so.
 *
 * The locale's separators come from the internationals record (internationals.h), which must have
 * been built: an empty record has no separators and no grouping. A minus sign is "-" in every locale,
 * written and read. Digits are 0 to 9. Any thread may call, except while the record is rebuilt.
 *
 * A bounded function never writes behind its capacity and terminates what it cuts; a capacity of 0 or
 * less writes nothing. */
#ifndef VX_NUMBERS_H
#define VX_NUMBERS_H

#include "vx/types.h"

#define VXNUM_COUNT_DECIMALS 0xFFFFFFFFu /* VxFormatGroupDecimalNumber: as many as the text has */

VX_EXTERN_C_BEGIN

/* ---- Integers to text
 *
 *   text   receives the text. The unbounded forms write at most 20 characters and a terminator, with
 *          group at most 64 in all
 *   group  nonzero: for a person, the digits grouped by the locale
 * Returns the length of the text. The N forms return 0 where it was cut. VxDWordToTextN,
 * VxLongToTextN and VxLongLongToTextN return 0 and write nothing for a capacity below 2. */
VX_EXPORT int32_t VxDWordToText(uint32_t value, char16_t* text, int32_t group);
VX_EXPORT int32_t VxDWordToTextN(uint32_t value, char16_t* text, int32_t capacity, int32_t group);
VX_EXPORT int32_t VxDWordLongToText(uint64_t value, char16_t* text, int32_t group);
VX_EXPORT int32_t VxLongToText(int32_t value, char16_t* text, int32_t group);
VX_EXPORT int32_t VxLongToTextN(int32_t value, char16_t* text, int32_t capacity, int32_t group);
VX_EXPORT int32_t VxLongLongToText(int64_t value, char16_t* text, int32_t group);
VX_EXPORT int32_t VxLongLongToTextN(int64_t value, char16_t* text, int32_t capacity, int32_t group);

/* The one that does not report a cut: it returns the length of the text as it stands in the buffer. */
VX_EXPORT int32_t VxDWordLongToTextN(uint64_t value, char16_t* text, int32_t capacity, int32_t group);

/* ---- Doubles to text
 *
 *   text      room for 64 characters in the unbounded form
 *   decimals  0 to 9; above 9 counts as 9, and so does a negative number
 *   group     nonzero: for a person, grouped and with the locale's decimal separator; else with "."
 * Half a unit of the last decimal is added to the magnitude, the rest is cut off. The unit is a
 * 32-bit float, so that 1.05 with one decimal gives 1.1. A value that shows as zero has no sign. A
 * NaN shows as 0, and magnitudes from 2^64 on show as 18446744073709551615.
 * Returns the length of the text as it stands in the buffer, cut or not. */
VX_EXPORT int32_t VxDoubleToText(char16_t* text, double value, uint32_t decimals, int32_t group);
VX_EXPORT int32_t VxDoubleToTextN(char16_t* text, int32_t capacity, double value, uint32_t decimals,
                                  int32_t group);

/* ---- A number given as text, for a person
 *
 *   source    optional text, then a number: [-]digits[.digits], up to the end. Everything before the
 *             first "-", ".", or digit that is not a leading zero is copied unchanged, so that zeros
 *             in front are kept and not grouped: 0012345 gives 0012,345
 *   text      may not overlap source
 *   capacity  characters at text
 * The number is rounded on its decimal digits, halves away from zero. Returns the length of the text,
 * 0 where it does not fit. Where no number follows the copied text ("a-b"), or one of more than 9
 * decimals is to be written, the copied text is all. */

/* Grouped, rounded to an integer. */
VX_EXPORT int32_t VxFormatNumber(const char16_t* source, char16_t* text, int32_t capacity);
/* All its decimals with the locale's decimal separator, not grouped. */
VX_EXPORT int32_t VxFormatDecimalNumber(const char16_t* source, char16_t* text, int32_t capacity);
/* Grouped, with that many decimals (up to 9, or VXNUM_COUNT_DECIMALS). */
VX_EXPORT int32_t VxFormatGroupDecimalNumber(const char16_t* source, char16_t* text, int32_t capacity,
                                             uint32_t decimals);

/* ---- Text to number
 *
 * A token is cut out of a longer text: white space is skipped, then a "-", then all digits and
 * separators, in any order. The thousands separator is dropped, the decimal separator taken for the
 * point; "1,2,3" reads as 123. The first character of any other kind is the end.
 *
 *   text     where to start
 *   outEnd   receives the end, which points into text; may be null
 *   defaultValue, minimum, maximum
 *            the Ex forms: a 0 that is not followed by white space or the end of the text becomes the
 *            default, so that text which is no number gives it; an empty text gives 0. Then the value
 *            is raised to the minimum, or else lowered to the maximum, the default too
 * Nothing fails: what is no number is 0. Only the first 63 characters of a token count; the end lies
 * behind all of it. The integers read and drop decimals. The unsigned ones give 0 for a negative
 * number and wrap; the signed ones stop at the ends of their range. */
VX_EXPORT uint32_t VxTextToDWordToken(const char16_t* text, const char16_t** outEnd);
VX_EXPORT uint32_t VxTextToDWordTokenEx(const char16_t* text, uint32_t defaultValue, uint32_t minimum,
                                        uint32_t maximum, const char16_t** outEnd);
VX_EXPORT uint64_t VxTextToDWordLongToken(const char16_t* text, const char16_t** outEnd);
VX_EXPORT uint64_t VxTextToDWordLongTokenEx(const char16_t* text, uint64_t defaultValue, uint64_t minimum,
                                            uint64_t maximum, const char16_t** outEnd);
VX_EXPORT int32_t VxTextToLongToken(const char16_t* text, const char16_t** outEnd);
VX_EXPORT int32_t VxTextToLongTokenEx(const char16_t* text, int32_t defaultValue, int32_t minimum,
                                      int32_t maximum, const char16_t** outEnd);
VX_EXPORT int64_t VxTextToLongLongToken(const char16_t* text, const char16_t** outEnd);
VX_EXPORT int64_t VxTextToLongLongTokenEx(const char16_t* text, int64_t defaultValue, int64_t minimum,
                                          int64_t maximum, const char16_t** outEnd);

/* Hexadecimal digits of either case behind white space and an optional 0x, without a limit of their
 * number: the high bits fall off. No sign, no separators. */
VX_EXPORT uint32_t VxHexToDWordToken(const char16_t* text, const char16_t** outEnd);
VX_EXPORT uint32_t VxHexToDWordTokenEx(const char16_t* text, uint32_t defaultValue, uint32_t minimum,
                                       uint32_t maximum, const char16_t** outEnd);
VX_EXPORT uint64_t VxHexToDWordLongToken(const char16_t* text, const char16_t** outEnd);
VX_EXPORT uint64_t VxHexToDWordLongTokenEx(const char16_t* text, uint64_t defaultValue, uint64_t minimum,
                                           uint64_t maximum, const char16_t** outEnd);

/*   localised  nonzero: the locale's separators; else "," is dropped and "." is the point
 * The nearest double to the decimal text, up to a second point; an exponent is not read. */
VX_EXPORT double VxTextToDoubleToken(const char16_t* text, const char16_t** outEnd, int32_t localised);
VX_EXPORT double VxTextToDoubleTokenEx(const char16_t* text, double defaultValue, double minimum,
                                       double maximum, const char16_t** outEnd, int32_t localised);

/* ---- FourCC
 *
 * The four bytes of the code, low byte first, as four characters and a terminator; a byte outside 32
 * to 126 shows as ".".
 *   text  room for 5 characters */
VX_EXPORT void VxFourCCToString(uint32_t fourCC, char16_t* text);

VX_EXTERN_C_END

#endif
