/* Language handles: the texts of a host and of the library, in the user's language.
 *
 * A handle serves two kinds of text.
 *   - String resources, by a number of 16 bits, from the module it was opened on and from that module's
 *     language file: a module of the same name with the extension LNG, beside it. English handles, and
 *     those without a language yet, read the module alone; all others try the language file first.
 *   - Tables of type vxlang_t, which hold one text for each of 18 languages in constant data, the
 *     library's own or a host's. They need no language file.
 * An argument called a text argument is null, a number below 0x10000 that stands for a string resource,
 * the address of a table, or a plain text; VxGetStringSmart tells them apart.
 *
 * The kernel language handle is the library's own, through which all its messages go. The kernel's start
 * opens it on the host's module. Until a host calls VxLang_UpdateKernelLCID no handle has a language that
 * it was not opened with: resources come from the module, tables in the user's interface language.
 *
 * A string resource that begins with "^*" loses these two characters when it is read. Rooms (dstChars) count
 * characters with the terminator, lengths without: a text is cut to its room and always terminated, and
 * with room below 1 nothing is written. A missing string is the empty text. Strings of resources are cut
 * at 1023 characters in the cached form.
 *
 * Handles may be used from any thread. Changing a handle's language, or closing it, while others read its
 * texts is the host's to exclude. Handles must be open; where a null handle is allowed it is said. */
#ifndef VX_LANG_H
#define VX_LANG_H

#include "vx/platform/module.h"
#include "vx/types.h"

typedef struct VxLanguage* HVXLANG;

/* VxLang_Open on a handle that is open already: a success, with nothing done. */
#define VX_S_ALREADY_OPEN ((HRESULT)0x0004E001)
/* No code page could be told from the text. */
#define VX_E_CODEPAGE_UNKNOWN ((HRESULT)0x8004E1FDu)

#define VXLANG_MARK 0xFFFEu
#define VXLANG_SLOTS \
    18 /* English, Japanese, German, Spanish, French, Chinese simplified and traditional,
                           Danish, Finnish, Italian, Korean, Dutch, Norwegian, Portuguese of Brazil and of
                           Portugal, Russian, Swedish, Polish */

/* A text in several languages, at an address that is a multiple of 4. Tables of hosts may have fewer
 * languages: the array then ends early. A language that a table does not have takes its last slot. */
typedef struct vxlang_t
{
    uint16_t mark;  /* VXLANG_MARK, which begins no text */
    uint16_t count; /* languages in the table, in the low 8 bits */
    uint32_t zero;
    const char16_t* text[VXLANG_SLOTS]; /* texts; or numbers of string resources, except in the first
                                           slot. Lookups replace a number by its text, or where it has
                                           none by the first slot's: tables must be writable */
    uint64_t end;                       /* 0 */
} vxlang_t;
VX_STATIC_ASSERT(sizeof(vxlang_t) == 160, "the published record has 160 bytes");
VX_STATIC_ASSERT(offsetof(vxlang_t, count) == 2, "the published order of fields");
VX_STATIC_ASSERT(offsetof(vxlang_t, text) == 8, "the published order of fields");
VX_STATIC_ASSERT(offsetof(vxlang_t, end) == 152, "the published order of fields");

VX_EXTERN_C_BEGIN

/* ---- Handles ---- */

/* Opens a handle on a module and looks for its language file. That there is none is no failure.
 *   handle     in: null, else VX_S_ALREADY_OPEN and nothing changes. Out: the handle; null stays on failure
 *   module     stays the caller's and must outlive the handle; null is the executable
 *   lcid       language for tables; resources go on coming from the module. 0: none yet
 *   tempChars  characters of the ring of temporary texts: 0: 8192; at least 2048
 * Returns 0, or E_OUTOFMEMORY. */
VX_EXPORT HRESULT VxLang_Open(HVXLANG* handle, HMODULE module, uint32_t lcid, uint32_t tempChars);

/* Closes a handle; null is no error. All its texts are gone, those that stand in tables excepted, and
 * so are its language file and a module that VxLang_ChangeLangInst handed to it. Returns 0. */
VX_EXPORT int32_t VxLang_Close(HVXLANG handle);

/* The module for dialogs, menus and other resources in the handle's language: the language file where there
 * is one and the language is not English, else the module that the handle was opened on. */
VX_EXPORT HMODULE VxLang_InstFromLang(HVXLANG handle);

/* Puts a module in the place of the language file, for this handle and the kernel's.
 *   module  handed over with one load (FreeLibrary), to the given handle alone: closing it frees the
 *           module, and the kernel's handle then goes back to its own language file. What the handle was
 *           opened on, or has as its language file, is not handed over. A module that is replaced by a
 *           later call goes back to the caller. Null: nothing changes
 * Cached texts of the old module stay. Returns 1, or 0 where handle is null or the kernel's is not open. */
VX_EXPORT int32_t VxLang_ChangeLangInst(HVXLANG handle, HMODULE module);

/* The handle's language, 0 where it has none yet, and for null. */
VX_EXPORT uint32_t VxLang_GetLCID(HVXLANG handle);

/* Sets the language of this handle and the kernel's, and the process's reading direction for windows. Texts
 * of string resources that either of them returned are gone; one that was opened with this language, or has it
 * already, keeps them.
 *   lcid  0: US English
 * Returns 1, or 0 where handle is null or the kernel's is not open. */
VX_EXPORT int32_t VxLang_UpdateKernelLCID(HVXLANG handle, uint32_t lcid);

/* Gives the calling thread, and the common controls where there are any, the handle's language (0 for null:
 * the user's). */
VX_EXPORT void VxLang_UpdateThreadLocale(HVXLANG handle);

/* The three letters of the handle's language, as "DEU". Returns 1; 0 with an empty text where the system has
 * none or they do not fit; 0 with nothing written for null. */
VX_EXPORT int32_t VxLang_GetLangAbbrev(HVXLANG handle, char16_t* dst, int32_t dstChars);

/* The tag of the handle's language: zh-CN (for both forms of Chinese), de-DE, es-ES, fr-FR, ja-JP, pl-PL or
 * ru-RU. Returns 0; 1 with an empty text for all others, and for null. */
VX_EXPORT int32_t VxLang_GetLangllCC(HVXLANG handle, char16_t* dst, int32_t dstChars);

/* 1 where the language is written from right to left (Arabic, Hebrew, Urdu, Farsi), else 0; null: 0. */
VX_EXPORT int32_t VxLang_UseRTL(HVXLANG handle);

/* New top-level windows of the process are laid out from right to left, or from left to right. */
VX_EXPORT void VxLang_EnableProcessMirroring(void);
VX_EXPORT void VxLang_DisableProcessMirroring(void);

/* Lists the languages of a version resource of the language file by their three letters, as "DEU,FRA".
 * Returns the length; 0 with an empty text for an English handle and one without a language. */
VX_EXPORT int32_t VxEnumResourceLanguages(HVXLANG handle, uint16_t resourceId, char16_t* dst,
                                          int32_t dstChars);

/* ---- Texts ---- */

/* The text of a text argument in the handle's language: null for null, the cached string of a number, the
 * text of a table; a plain text as it stands. handle is read for numbers and tables only. */
VX_EXPORT const char16_t* VxGetStringSmart(HVXLANG handle, const char16_t* text);

/* 1 where a text argument is a table, else 0. handle is not read. */
VX_EXPORT int32_t IsVXLANGSTRINGID(HVXLANG handle, const char16_t* text);

/* ---- The ring of temporary texts ---- */

/* Room for a text of so many characters and its terminator, in the handle's ring, where it stays until as
 * much again as the ring holds, about, has been asked for. 0 gives an empty text. What was there before is
 * in it still. Null for a negative number, and for more than the ring has room for in all. */
VX_EXPORT char16_t* VxGetTempStringBuffer(HVXLANG handle, int32_t chars);

/* Texts for printing are wide: these return their argument, or the empty text where there is no ring. */
VX_EXPORT const char16_t* VxGetPrintFromWideString(HVXLANG handle, const char16_t* text);
VX_EXPORT const char16_t* VxGetWideFromPrintString(HVXLANG handle, const char16_t* text);

/* Converts between wide text and the system's 8-bit text (vx/platform/multibyte.h) into the ring. Null is
 * the empty text; so is the result for what the ring has no room for. */
VX_EXPORT const char16_t* VxGetPrintFromMultiByteString(HVXLANG handle, const char* text);
VX_EXPORT const char* VxGetMultiByteFromPrintString(HVXLANG handle, const char16_t* text);

/* ---- The language that a user chose, kept in the registry ---- */

/* Reads or writes the user's language for an application.
 *   app            its name
 *   version        major number in the top 8 bits, minor in the next 8; with major 0 one language serves all
 *                  versions
 *   lcid           receives the language; untouched on failure. Saved is a language id, 16 bits of it
 *   ignoreVersion  not 0: as if version were 0
 *   vendor         whose application it is; the forms without it are for the library's own maker
 * Loading looks in the user's settings, then in the machine's; saving writes the user's. Return 1, or 0. */
VX_EXPORT int32_t VxLang_LoadUserLCIDMetric(const char16_t* app, uint32_t version, uint32_t* lcid,
                                            int32_t ignoreVersion);
VX_EXPORT int32_t VxLang_LoadUserLCIDMetricAppReg(const char16_t* app, uint32_t version, uint32_t* lcid,
                                                  const char16_t* vendor);
VX_EXPORT int32_t VxLang_SaveUserLCIDMetric(const char16_t* app, uint32_t version, uint16_t lcid,
                                            int32_t ignoreVersion);
VX_EXPORT int32_t VxLang_SaveUserLCIDMetricAppReg(const char16_t* app, uint32_t version, uint16_t lcid,
                                                  const char16_t* vendor);

/* Keeps three letters of the application's language in the internationals record (internationals.h); null
 * or an empty text: "ENU". Not while other threads read it. */
VX_EXPORT void VxSetLangID(const char16_t* abbreviation);

/* ---- What a locale brings with it ---- */

/* 1 where family names come first: the handle's language is Japanese of Japan (0x0411); null: 0. */
VX_EXPORT int32_t VxLang_IsNameOrderReversed(HVXLANG handle);

/* Joins a person's names by a blank in the handle's order; null: first name first. Null names are empty.
 * Returns the length. */
VX_EXPORT int32_t VxLang_LocalizeUserName(HVXLANG handle, const char16_t* first, const char16_t* last,
                                          char16_t* dst, int32_t dstChars);

/* 1 where a text holds a character of two bytes in the user's double-byte code page (Japanese, Chinese,
 * Korean), else 0. Ends at a zero byte or behind length bytes; null: 0. */
VX_EXPORT int32_t VxLang_DetectMultiByteCharacters(const char* bytes, uint32_t length);

/* The code page of a text of length bytes, where there is no doubt left about it (platform/codepage.h).
 * Returns 0; VX_E_CODEPAGE_UNKNOWN with *codepage 0; a failure of the detector, with *codepage untouched. */
VX_EXPORT HRESULT VxLang_DetectPossibleCodepage(const char* text, uint32_t length, uint32_t* codepage);

/* Stores a locale for all of the machine's applications. Returns 0, or E_FAIL. */
VX_EXPORT HRESULT VxSetLocale(uint32_t lcid);

/* Always 0: what VxSetLocale stored is for others to read. */
VX_EXPORT uint32_t VxGetLocale(void);

VX_EXTERN_C_END

/* Two forms each, so of C++ linkage; from C, VxGetStringSmart serves both forms of VxGetString. A literal 0 is
 * no number here: write 0u. */
#ifdef __cplusplus

/* The string resource with this number, or the empty text. Owned by the handle: good until its language
 * changes or it closes. */
VX_EXPORT const char16_t* VxGetString(HVXLANG handle, uint32_t id);

/* The table's text in the handle's language, or in English. Never gone but for one that a number stands for: that
 * lies in the module and goes with it, and the table is not to be read in that language afterwards. */
VX_EXPORT const char16_t* VxGetString(HVXLANG handle, vxlang_t* table);

/* Copy the same; a leading "^*" of a table's text goes too. Return the length that was copied. */
VX_EXPORT int32_t VxLoadString(HVXLANG handle, uint32_t id, char16_t* dst, int32_t dstChars);
VX_EXPORT int32_t VxLoadString(HVXLANG handle, vxlang_t* table, char16_t* dst, int32_t dstChars);

#endif

#endif
