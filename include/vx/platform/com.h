/* Objects that are counted and asked for their interfaces, whatever language they are written in.
 *
 * An object is a pointer to a record whose first field points to a table of functions, in the order of the
 * members below. C calls object->lpVtbl->Member(object, ...), C++ object->Member(...). */
#ifndef VX_PLATFORM_COM_H
#define VX_PLATFORM_COM_H

#include "vx/platform/types.h"

#ifdef __cplusplus
#include <string.h>
#endif

#define E_UNEXPECTED ((HRESULT)0x8000FFFFu)
#define E_NOINTERFACE ((HRESULT)0x80004002u)

typedef struct GUID
{
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;
VX_STATIC_ASSERT(sizeof(GUID) == 16, "the published record has 16 bytes");

typedef GUID IID;
typedef GUID CLSID;

#ifdef __cplusplus

inline bool operator==(const GUID& a, const GUID& b)
{
    return memcmp(&a, &b, sizeof a) == 0;
}

/* No virtual destructor: it would take room in the table. An object ends with its last Release. */
struct IUnknown
{
    /* Another interface of the object, which is counted once more, or E_NOINTERFACE and null. */
    virtual HRESULT QueryInterface(const IID* iid, void** object) = 0;
    /* Both return the new count. */
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
};

#else

typedef struct IUnknown IUnknown;
typedef struct IUnknownVtbl
{
    HRESULT (*QueryInterface)(IUnknown* self, const IID* iid, void** object);
    ULONG (*AddRef)(IUnknown* self);
    ULONG (*Release)(IUnknown* self);
} IUnknownVtbl;
struct IUnknown
{
    const IUnknownVtbl* lpVtbl;
};

#endif

VX_EXTERN_C_BEGIN

VX_PLATFORM_API extern const IID IID_IUnknown; /* {00000000-0000-0000-C000-000000000046} */

VX_EXTERN_C_END

#endif
