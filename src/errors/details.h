// What the process keeps of its last failure.
#pragma once

#include "vx/errors.h"

#include <string_view>

namespace vx {

struct ErrorDetails
{
    HRESULT lastError; // the status of the last line
    char16_t messageText[VXERROR_MESSAGE_CHARS];
    uint32_t detailsThread; // who added the first line; 0 where nobody did
    int32_t detailsCount;   // lines
    char16_t detailsText[VXERROR_DETAILS_CHARS];
    char16_t linkUrl[2083];
    char16_t linkText[2048];
};

extern ErrorDetails g_errorDetails;

// What the next message shows of the record, which is cleared. A text is copied before that: it may be the record's.
struct ShownDetails
{
    char16_t text[VXERROR_MESSAGE_CHARS];
    char16_t details[VXERROR_DETAILS_CHARS]; // empty where there are none
    char16_t linkUrl[2083];
    char16_t linkText[2048];
};
void TakeDetails(std::u16string_view prefix, const char16_t* text, ShownDetails& shown);

// A message and its details as one text, to be freed with SysFreeString; null without memory.
BSTR JoinDetails(std::u16string_view message, std::u16string_view details);

// Texts without these are no formats: they stand as they are.
inline bool IsFormat(std::u16string_view text)
{
    return text.find_first_of(u"$%") != text.npos;
}

} // namespace vx
