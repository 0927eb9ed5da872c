/* Types of the operating-system interface that the library is written against.
 *
 * LONG, DWORD, BOOL and their kin are 32 bits wide on every platform and WCHAR is a 16-bit
 * character, so that records have one layout everywhere. Usable from C11 and from C++. */
#ifndef VX_PLATFORM_TYPES_H
#define VX_PLATFORM_TYPES_H

#include <stddef.h>
#include <stdint.h>
#ifndef __cplusplus
#include <stdbool.h>
#include <uchar.h>
#endif

#ifdef __cplusplus
#define VX_EXTERN_C extern "C"
#define VX_EXTERN_C_BEGIN extern "C" {
#define VX_EXTERN_C_END }
#else
#define VX_EXTERN_C extern
#define VX_EXTERN_C_BEGIN
#define VX_EXTERN_C_END
#endif

/* Checks a record's layout at compile time, in C and in C++. */
#ifdef __cplusplus
#define VX_STATIC_ASSERT(condition, text) static_assert(condition, text)
#else
#define VX_STATIC_ASSERT(condition, text) _Static_assert(condition, text)
#endif

/* What a shared library shows: everything else stays hidden. */
#define VX_VISIBLE __attribute__((visibility("default")))
#define VX_PLATFORM_API VX_VISIBLE

typedef int32_t BOOL;
typedef int32_t LONG;
typedef int32_t INT;
typedef uint32_t UINT;
typedef uint32_t DWORD;
typedef uint32_t ULONG;
typedef uint16_t WORD;
typedef uint8_t BYTE;
typedef int64_t LONGLONG;
typedef uint64_t ULONGLONG;
typedef size_t SIZE_T;
typedef uintptr_t DWORD_PTR;
typedef char16_t WCHAR;
typedef uint32_t COLORREF; /* 0x00BBGGRR */
typedef uint32_t LCID;
typedef int32_t HRESULT;

typedef void* HANDLE;
typedef HANDLE HGLOBAL;
typedef HANDLE HMODULE;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

/* Status codes: 0 and positive values are success, negative values failures. */
#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_NOTIMPL ((HRESULT)0x80004001u)
#define E_POINTER ((HRESULT)0x80004003u)
#define E_FAIL ((HRESULT)0x80004005u)
#define E_OUTOFMEMORY ((HRESULT)0x8007000Eu)
#define E_INVALIDARG ((HRESULT)0x80070057u)
#define SUCCEEDED(status) ((HRESULT)(status) >= 0)
#define FAILED(status) ((HRESULT)(status) < 0)

/* A rectangle in pixels; right and bottom are exclusive. */
typedef struct RECT
{
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
} RECT;
VX_STATIC_ASSERT(sizeof(RECT) == 16, "RECT is four 32-bit words");

typedef struct POINT
{
    LONG x;
    LONG y;
} POINT;

/* Width and height. */
typedef struct SIZE
{
    LONG cx;
    LONG cy;
} SIZE;
VX_STATIC_ASSERT(sizeof(SIZE) == 8, "SIZE is two 32-bit words");

/* One entry of a bitmap's colour table. */
typedef struct RGBQUAD
{
    BYTE rgbBlue;
    BYTE rgbGreen;
    BYTE rgbRed;
    BYTE rgbReserved;
} RGBQUAD;

/* One entry of a display palette: the same colours in the other order. */
typedef struct PALETTEENTRY
{
    BYTE peRed;
    BYTE peGreen;
    BYTE peBlue;
    BYTE peFlags;
} PALETTEENTRY;

/* Head of a device-independent bitmap; the library's pixel.h says how the rest follows. */
typedef struct BITMAPINFOHEADER
{
    DWORD biSize;
    LONG biWidth;
    LONG biHeight;
    WORD biPlanes;
    WORD biBitCount;
    DWORD biCompression;
    DWORD biSizeImage;
    LONG biXPelsPerMeter;
    LONG biYPelsPerMeter;
    DWORD biClrUsed;
    DWORD biClrImportant;
} BITMAPINFOHEADER;
VX_STATIC_ASSERT(sizeof(BITMAPINFOHEADER) == 40, "the published header has 40 bytes");
VX_STATIC_ASSERT(offsetof(BITMAPINFOHEADER, biCompression) == 16, "the published order of fields");
VX_STATIC_ASSERT(offsetof(BITMAPINFOHEADER, biClrUsed) == 32, "the published order of fields");

typedef struct BITMAPINFO
{
    BITMAPINFOHEADER bmiHeader;
    RGBQUAD bmiColors[1];
} BITMAPINFO;

#define BI_RGB 0u
#define BI_BITFIELDS 3u

#endif
