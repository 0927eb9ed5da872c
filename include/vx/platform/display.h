/* The display: monitors, and device contexts to ask about them.
 *
 * Without a desktop there is one monitor of 1920 by 1080 pixels with 32 bits each. Any thread. */
#ifndef VX_PLATFORM_DISPLAY_H
#define VX_PLATFORM_DISPLAY_H

#include "vx/platform/types.h"

typedef HANDLE HDC;
typedef HANDLE HMONITOR;
typedef HANDLE HWND;
typedef intptr_t LPARAM;

#define HORZRES 8    /* of GetDeviceCaps: width in pixels */
#define VERTRES 10   /* height in pixels */
#define BITSPIXEL 12 /* bits a pixel */
#define PLANES 14

#define MONITORINFOF_PRIMARY 1u

typedef struct MONITORINFOEXW
{
    DWORD cbSize; /* bytes of the record, set by the caller: these, or the first 40 without the name */
    RECT rcMonitor;
    RECT rcWork;
    DWORD dwFlags; /* MONITORINFOF_PRIMARY */
    WCHAR szDevice[32];
} MONITORINFOEXW;
VX_STATIC_ASSERT(sizeof(MONITORINFOEXW) == 104, "the published record has 104 bytes");
VX_STATIC_ASSERT(offsetof(MONITORINFOEXW, szDevice) == 40, "the published order of fields");

/* FALSE ends the enumeration. */
typedef BOOL (*MONITORENUMPROC)(HMONITOR monitor, HDC dc, RECT* rect, LPARAM data);

VX_EXTERN_C_BEGIN

/* A context of the whole screen, to be given back with ReleaseDC. Other windows than null have none yet:
 * null with ERROR_INVALID_HANDLE. */
VX_PLATFORM_API HDC GetDC(HWND window);
VX_PLATFORM_API int ReleaseDC(HWND window, HDC dc);

/* A context of a monitor, by driver name "DISPLAY" or by the monitor's own name, to be given back with
 * DeleteDC. Null with ERROR_INVALID_PARAMETER for any other. port and mode are null. */
VX_PLATFORM_API HDC CreateDCW(const WCHAR* driver, const WCHAR* device, const WCHAR* port, const void* mode);
VX_PLATFORM_API BOOL DeleteDC(HDC dc);

/* One of the values above; 0 for any other, and with ERROR_INVALID_HANDLE for what is no context. */
VX_PLATFORM_API int GetDeviceCaps(HDC dc, int index);

/* Calls back for each monitor; with an area, for those that it touches. FALSE with
 * ERROR_CALL_NOT_IMPLEMENTED where dc is not null, or where the callback ended it. */
VX_PLATFORM_API BOOL EnumDisplayMonitors(HDC dc, const RECT* area, MONITORENUMPROC callback, LPARAM data);

/* FALSE with ERROR_INVALID_HANDLE or, for another record size, ERROR_INVALID_PARAMETER. */
VX_PLATFORM_API BOOL GetMonitorInfoW(HMONITOR monitor, MONITORINFOEXW* info);

VX_EXTERN_C_END

#endif
