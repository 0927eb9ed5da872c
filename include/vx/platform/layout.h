/* The direction in which the process's windows are laid out. */
#ifndef VX_PLATFORM_LAYOUT_H
#define VX_PLATFORM_LAYOUT_H

#include "vx/platform/types.h"

#define LAYOUT_RTL 0x00000001u /* from right to left */

VX_EXTERN_C_BEGIN

/* The layout of top-level windows that are made from now on: LAYOUT_RTL or 0, which it is at first. FALSE
 * with ERROR_INVALID_PARAMETER for anything else. Any thread. */
VX_PLATFORM_API BOOL SetProcessDefaultLayout(DWORD layout);

/* Reads it; FALSE with ERROR_INVALID_PARAMETER for null. */
VX_PLATFORM_API BOOL GetProcessDefaultLayout(DWORD* layout);

VX_EXTERN_C_END

#endif
