/* System strings: wide texts that one party allocates and another frees. The number of bytes of the text stands
 * in the 32 bits in front of it, and a zero character behind it. Any thread may call. */
#ifndef VX_PLATFORM_SYSSTRING_H
#define VX_PLATFORM_SYSSTRING_H

#include "vx/platform/types.h"

typedef WCHAR* BSTR;

VX_EXTERN_C_BEGIN

/* A copy of a zero-terminated text; null for null or without memory. SysFreeString frees it. */
VX_PLATFORM_API BSTR SysAllocString(const WCHAR* text);

/* A string of `length` characters, copied from a text that may hold zero characters, or not filled where text is
 * null; null without memory and for more than 0x7FFFFFFF characters. SysFreeString frees it. */
VX_PLATFORM_API BSTR SysAllocStringLen(const WCHAR* text, uint32_t length);

/* Frees a string that one of the above made; null is no error. */
VX_PLATFORM_API void SysFreeString(BSTR string);

/* Characters of a string, without the terminator; 0 for null. */
VX_PLATFORM_API uint32_t SysStringLen(BSTR string);

VX_EXTERN_C_END

#endif
