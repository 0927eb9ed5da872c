/* The list: a growable sequence, addressed by index, in one contiguous block of slots.
 *
 * A list is of one kind from its creation on:
 *   array list     VXLIST_OPT_ARRAY: items of one size stand in the block itself
 *   heap list      VXLIST_OPT_HEAPITEMS: each slot points at an item that the list allocates and frees
 *   pointer list   neither: each slot is a pointer-sized value, stored and compared but never owned
 *
 * Hosts read count, itemSize and items without a call: slot i is at items + i * itemSize. A pointer
 * into items is good until the next call that grows, shrinks or rearranges the block; an item pointer
 * of a heap list is good until that item is deleted or reallocated.
 *
 * The block grows by whole growth steps and never by more than is needed: a host that appends much
 * chooses a large step. It shrinks only where asked.
 *
 * Unless a function says otherwise it returns a status: 0, E_FAIL for a call that the list refuses,
 * E_OUTOFMEMORY; a call that fails leaves count, block and items as they were. A list pointer may be
 * null only where that is said, and is believed to be a list.
 *
 * Threads: with VXLIST_OPT_LOCKED every call runs inside the list's lock, callbacks included. The lock
 * is recursive, and a host may enter it itself around a find and the change that follows. Without it
 * the host keeps a list to one thread at a time. Functions marked "no lock" never wait. Where a host
 * has taken VXLIST_OPT_ANYTHREAD out of the options of a list without a lock, calls from any thread
 * but the owner are refused: status functions give E_FAIL, find functions -1, the user-data pair
 * 0xFFFFFFFF, VxList_IsValidIndexSlow and VxList_AllocSize 0. */
#ifndef VX_LIST_H
#define VX_LIST_H

#include "vx/platform/sync.h"
#include "vx/types.h"

#define VXLIST_OPT_HEAPITEMS 0x00000002u
#define VXLIST_OPT_ARRAY 0x00000004u       /* not together with VXLIST_OPT_HEAPITEMS */
#define VXLIST_OPT_INPLACE 0x00000008u     /* the record is the host's storage */
#define VXLIST_OPT_PRIVATEHEAP 0x10000000u /* items of a heap list have a heap of their own */
#define VXLIST_OPT_ANYTHREAD 0x40000000u   /* no owner check; set on every new list */
#define VXLIST_OPT_LOCKED 0x80000000u      /* every call takes the lock */

#define VXLIST_TAG 0x54534C56u /* the bytes "VLST" */

typedef struct tVXLIST
{
    int32_t count;         /* items in use */
    uint64_t itemSize;     /* bytes a slot: 8, or an array list's item size rounded up to 4 bytes */
    void* items;           /* the block */
    CRITICAL_SECTION lock; /* valid while VXLIST_OPT_LOCKED is set */
    uint32_t tag;          /* VXLIST_TAG while the list lives, then 0 */
    uint32_t options;      /* VXLIST_OPT_... */
    int64_t userData;      /* the host's word */
    int64_t sortCriteria;  /* the word last given to a sort, handed to comparisons */
    uint32_t ownerThread;  /* number of the thread that made the list, or that was set */
    int32_t allocated;     /* slots in the block, a multiple of growBy */
    int32_t growBy;        /* growth step in slots, 4 to 0x10400 */
    HANDLE heap;           /* a heap list's private heap, else null */
    uint32_t heapAllocFlags;
    uint32_t heapFreeFlags;
    void* pendingItem; /* allocated by VxList_AllocItem, not yet inserted */
    uint64_t reserved; /* 0 */
} tVXLIST;
VX_STATIC_ASSERT(sizeof(tVXLIST) == 136, "hosts provide this much storage");
VX_STATIC_ASSERT(offsetof(tVXLIST, count) == 0, "hosts read it");
VX_STATIC_ASSERT(offsetof(tVXLIST, itemSize) == 8, "hosts read it");
VX_STATIC_ASSERT(offsetof(tVXLIST, items) == 16, "hosts read it");
VX_STATIC_ASSERT(offsetof(tVXLIST, lock) == 24, "hosts enter it");
VX_STATIC_ASSERT(offsetof(tVXLIST, tag) == 64, "hosts recognise a list by it");

/* What callbacks get as an item: an array list's item is the address of its slot, that of the other
 * kinds the value in the slot. A callback must not change the list that it is called for. */

/* Above 0: left is the greater one; 0: equal; below 0: left is the lesser one. In a search left is the
 * key, as it was given, and right an item. */
typedef int32_t (*VxListCompare)(int64_t criteria, const void* left, const void* right);

/* 0 marks the item sought. */
typedef int32_t (*VxListMatch)(int64_t word, const void* item);

VX_EXTERN_C_BEGIN

/* ---- Life ---- */

/* Makes an empty list.
 *   list          receives the list, null on failure; with VXLIST_OPT_INPLACE it points at the host's
 *                 record and stays so
 *   itemSize      bytes of an array list's item, rounded up to a multiple of 4; else ignored
 *   initialSlots  below 1: 16; at least 4; rounded up to whole growth steps
 *   growBy        growth step: below 1: 16; 4 to 0x10400
 *   options       VXLIST_OPT_...; both kinds at once, or a null record in place, give E_FAIL
 *   unused1 to 3  ignored; pass zeros
 * The list is given back with VxList_Destroy. */
VX_EXPORT HRESULT VxList_CreateExZ(tVXLIST** list, uint64_t itemSize, int32_t initialSlots, int32_t growBy,
                                   uint32_t options, const void* unused1, int32_t unused2,
                                   const void* unused3);

/* Frees the list with all its items, and its record unless that is the host's; null is no error. A
 * pending item is freed only with a private heap: insert it or delete it first. */
VX_EXPORT HRESULT VxList_Destroy(tVXLIST* list);

/* Moves the record into the host's storage, which must outlive the list, frees the old record and
 * sets *list to null. The lock is made anew: no thread may hold it or wait for it. E_INVALIDARG for a
 * null or for what is no list, E_FAIL for a list that is in place already. */
VX_EXPORT HRESULT VxList_ConvertToInPlace(tVXLIST** list, tVXLIST* record);

/* ---- Recognition and the record's words ---- */

/* 1 where size is that of the record, its bytes can be read and the tag is right, else 0. Any pointer
 * may be asked about. No lock. */
VX_EXPORT int32_t VxList_IsList(const void* pointer, int32_t size);

/* 1 where the tag is right, which is read without any test of the pointer. No lock. */
VX_EXPORT int32_t VxList_IsListFast(const void* pointer);

/* 1 for an index from 0 to count - 1, else 0. */
VX_EXPORT int32_t VxList_IsValidIndexSlow(tVXLIST* list, int32_t index);

/* The options, with those that the library added. No lock. */
VX_EXPORT uint32_t VxList_GetCreateOptions(const tVXLIST* list);

/* Where the list was made is not recorded: empties the text, where one is given, and returns
 * 0xFFFFFFFF. No lock. */
VX_EXPORT uint32_t VxList_GetFileAndLine(const tVXLIST* list, char16_t* text);

/* The owner's thread number. No lock. */
VX_EXPORT uint32_t VxList_GetThreadOwner(const tVXLIST* list);

/* Sets the owner, 0 for the calling thread; returns 0. Any thread may take a list over. No lock. */
VX_EXPORT HRESULT VxList_SetThreadOwner(tVXLIST* list, uint32_t threadId);

/* Exchanges the host's word atomically and returns the one before. No lock. */
VX_EXPORT int64_t VxList_SetUserData(tVXLIST* list, int64_t value);

/* The host's word. No lock. */
VX_EXPORT int64_t VxList_GetUserData(const tVXLIST* list);

/* The word last given to a sort, 0 before the first. No lock. */
VX_EXPORT int64_t VxList_GetSortCriteria(const tVXLIST* list);

/* ---- Block ---- */

/* Adds room for extra slots, rounded up to whole growth steps; below 1: one step. */
VX_EXPORT HRESULT VxList_GrowAllocated(tVXLIST* list, int32_t extra);

/* Gives back `release` slots, rounded up to whole growth steps, but only whole steps that are spare;
 * negative: all of those. */
VX_EXPORT HRESULT VxList_ShrinkAllocated(tVXLIST* list, int32_t release);

/* Puts slots in front of the one at index; a negative index, or one past the end, appends. Without
 * enough room the block grows by as many slots as are inserted, rounded up to whole steps.
 *   source, n of 0 or more   copies n slots; E_FAIL for a heap list
 *   source, negative n       copies -n slots; a heap list takes the items that they point at over, and
 *                            frees them like its own
 *   null, -1                 inserts the pending item; E_FAIL without one
 *   null, any other n        E_FAIL
 * source must not lie in the list's own block. Nothing is pending after a success. */
VX_EXPORT HRESULT VxList_InsertList(tVXLIST* list, int32_t index, const void* source, int32_t n);

/* Deletes n items, fewer where the list ends; a heap list's items are freed.
 *   first, n   a negative n: all from first on; an n of 0: nothing, 0; both negative: frees the
 *              pending item, E_FAIL without one; else first must be an index of the list, or E_FAIL
 *   shrink     not 0: gives spare steps back where more than one step's slots are spare */
VX_EXPORT HRESULT VxList_DeleteList(tVXLIST* list, int32_t first, int32_t n, int32_t shrink);

/* Moves n items so that the first of them ends up at `to`; those in between close the gap.
 *   from   E_INVALIDARG if negative
 *   to     negative: 0
 *   n      negative: as many as fit behind the larger of from and to
 * E_FAIL where from + n or to + n is past the end; with nothing to move, 0. */
VX_EXPORT HRESULT VxList_MoveRange(tVXLIST* list, int32_t from, int32_t to, int32_t n);

/* Sets the count of an array list without touching items: slots that come into use hold what they held
 * before, zero if nothing. E_FAIL for the other kinds, E_INVALIDARG for a negative count. shrink as in
 * VxList_DeleteList. */
VX_EXPORT HRESULT VxList_ArrayForceItemCount(tVXLIST* list, int32_t n, int32_t shrink);

/* ---- Items of heap lists ---- */
/* A size is in bytes, 0 and up; a negative one gives E_OUTOFMEMORY. */

/* Allocates a zeroed item of so many bytes and keeps it pending: fill it, then insert it with
 * VxList_InsertList(list, index, NULL, -1) or drop it with VxList_DeleteList(list, -1, -1, 0). *item is
 * null on failure. E_FAIL while an item is pending, and for the other kinds. */
VX_EXPORT HRESULT VxList_AllocItem(tVXLIST* list, int32_t size, void** item);

/* Allocates an item of so many bytes and inserts it.
 *   source     size bytes that are copied into it; null: it stays zero
 *   index      as in VxList_InsertList
 *   outIndex   receives the item's index, -1 on failure; may be null
 * E_FAIL while an item is pending, which stays so, and for the other kinds. */
VX_EXPORT HRESULT VxList_AllocAndInsertItem(tVXLIST* list, const void* source, int32_t size, int32_t index,
                                            int32_t* outIndex);

/* Resizes an item, which may move it. With a private heap added bytes are zero, else they are
 * undefined. E_FAIL for the other kinds and for an index outside the list. */
VX_EXPORT HRESULT VxList_ReAllocItem(tVXLIST* list, int32_t index, int32_t size);

/* Bytes of one item: itemSize in an array list, 8 in a pointer list, what the allocator reports in a
 * heap list, 0 for an index outside that. With a negative index the bytes of record and block, and in a
 * heap list of all items. */
VX_EXPORT uint64_t VxList_AllocSize(tVXLIST* list, int32_t index);

/* Moves n items of src, a negative n: as many as src has, in front of dstIndex of dst, in their order;
 * a negative dstIndex, or one past the end, appends. The items themselves stay where they are, so both
 * lists must allocate from the same heap. Both locks are held, that of dst taken first: two threads
 * must not move between the same lists in opposite directions. E_FAIL where one is no heap list or dst
 * has a pending item; then, with nothing to move, 0; E_FAIL where both are the same, or for a range
 * outside src. Without memory the last items of the range may have moved already. */
VX_EXPORT HRESULT VxList_MoveItemsBetweenHeapLists(tVXLIST* dst, int32_t dstIndex, tVXLIST* src,
                                                   int32_t srcIndex, int32_t n);

/* ---- Search ---- */
/* A range is a first index, negative: 0, and a number of items; a negative number, or one past the
 * end, reaches to the end of the list. A search that finds nothing returns -1. */

/* Index of the first item in the range for which match returns 0. */
VX_EXPORT int32_t VxList_FindItemRange(tVXLIST* list, int32_t first, int32_t count, int64_t word,
                                       VxListMatch match);

/* Index of the first item in the range that has the bytes at `item` (array list) or that is the
 * pointer `item` (the other kinds). */
VX_EXPORT int32_t VxList_FindSpecificItemRange(tVXLIST* list, int32_t first, int32_t count, const void* item);

/* Index of an item that compares equal to the key, by halving a range that is in ascending order: any
 * one of several. compare gets the list's sort criteria. */
VX_EXPORT int32_t VxList_FindSortedItemRange(tVXLIST* list, const void* key, int32_t first, int32_t count,
                                             VxListCompare compare);

/* Index at which the key belongs in such a range: in front of the equal item that the halving meets
 * first, else in front of the first greater one. An empty range gives 0; a first past the end, -1. */
VX_EXPORT int32_t VxList_FindSortedInsertIndexRange(tVXLIST* list, const void* key, int32_t first,
                                                    int32_t count, VxListCompare compare);

/* ---- Sort ---- */
/* All store the criteria in the list; without a callback that is all. They sort ascending, take no
 * memory and are not stable. */

/* Selection sort: n (n - 1) / 2 comparisons, at most n - 1 swaps. */
VX_EXPORT HRESULT VxList_Sort(tVXLIST* list, int64_t criteria, VxListCompare compare);

/* Heap sort: about 2 n log2 n comparisons. */
VX_EXPORT HRESULT VxList_HeapSort(tVXLIST* list, int64_t criteria, VxListCompare compare);

/* Inserts each item of src, which stays as it is, at its place in dst: an array list or pointer list of
 * the same slot size, empty or in order. The criteria are stored in dst. Items for which there is no
 * memory are left out. src's lock is held throughout, dst's for each step. */
VX_EXPORT HRESULT VxList_SortTo(tVXLIST* dst, tVXLIST* src, int64_t criteria, VxListCompare compare);

VX_EXTERN_C_END

#endif
