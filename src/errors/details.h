// What the process keeps of its last failure.
#pragma once

#include "vx/errors.h"

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

} // namespace vx
