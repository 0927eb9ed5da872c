// Status codes for the codes of the system and of its dialogs.
#include "vx/errors.h"

#include <algorithm>
#include <span>

namespace {

struct Pair
{
    uint32_t error, status;
};

constexpr Pair kSystemErrors[] = {
    {0, 0},            // ERROR_SUCCESS
    {1, 0x80070057},   // ERROR_INVALID_FUNCTION: a bad argument
    {2, 0x8004E00A},   // ERROR_FILE_NOT_FOUND
    {3, 0x8004E00A},   // ERROR_PATH_NOT_FOUND
    {4, 0x8004E026},   // ERROR_TOO_MANY_OPEN_FILES
    {5, 0x80070005},   // ERROR_ACCESS_DENIED
    {6, 0x80070006},   // ERROR_INVALID_HANDLE
    {14, 0x8007000E},  // ERROR_OUTOFMEMORY
    {15, 0x800404B0},  // ERROR_INVALID_DRIVE
    {32, 0x8004E05A},  // ERROR_SHARING_VIOLATION
    {39, 0x8004E002},  // ERROR_HANDLE_DISK_FULL
    {80, 0x8004E032},  // ERROR_FILE_EXISTS
    {84, 0x8007000E},  // ERROR_OUT_OF_STRUCTURES
    {110, 0x8004E007}, // ERROR_OPEN_FAILED
    {112, 0x8004E002}, // ERROR_DISK_FULL
    {120, 0x80004001}, // ERROR_CALL_NOT_IMPLEMENTED
    {123, 0x8004E00D}, // ERROR_INVALID_NAME
    {126, 0x8004E00A}, // ERROR_MOD_NOT_FOUND
    {127, 0x8004E00A}, // ERROR_PROC_NOT_FOUND
    {170, 0x8004E005}, // ERROR_BUSY
    {183, 0x8004E170}, // ERROR_ALREADY_EXISTS
};

constexpr Pair kDialogErrors[] = {
    {0, 0},
    {1, 0x80070057},      // CDERR_STRUCTSIZE
    {2, 0x8007000E},      // CDERR_INITIALIZATION
    {3, 0x80070057},      // CDERR_NOTEMPLATE
    {4, 0x80070057},      // CDERR_NOHINSTANCE
    {5, 0x8007000E},      // CDERR_LOADSTRFAILURE
    {6, 0x8004E00E},      // CDERR_FINDRESFAILURE
    {7, 0x8007000E},      // CDERR_LOADRESFAILURE
    {8, 0x8007000E},      // CDERR_LOCKRESFAILURE
    {9, 0x8007000E},      // CDERR_MEMALLOCFAILURE
    {10, 0x8007000E},     // CDERR_MEMLOCKFAILURE
    {11, 0x80070057},     // CDERR_NOHOOK
    {0x3001, 0x8007000E}, // FNERR_SUBCLASSFAILURE
    {0x3002, 0x8004E00D}, // FNERR_INVALIDFILENAME
    {0x3003, 0x80070057}, // FNERR_BUFFERTOOSMALL
    {0x4001, 0x80070057}, // FRERR_BUFFERLENGTHZERO
    {0xFFFF, 0x80070057}, // CDERR_DIALOGFAILURE
};

HRESULT Translated(std::span<const Pair> pairs, uint32_t error)
{
    const auto found = std::ranges::lower_bound(pairs, error, {}, &Pair::error);
    return found != pairs.end() && found->error == error ? HRESULT(found->status) : E_FAIL;
}

static_assert(std::ranges::is_sorted(kSystemErrors, {}, &Pair::error));
static_assert(std::ranges::is_sorted(kDialogErrors, {}, &Pair::error));

} // namespace

HRESULT VxErrorHandler_TranslateWin32Error(uint32_t error)
{
    return Translated(kSystemErrors, error);
}

HRESULT VxErrorHandler_TranslateCommDlgError(uint32_t error)
{
    return Translated(kDialogErrors, error);
}
