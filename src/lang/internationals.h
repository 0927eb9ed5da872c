// The internationals record as the library itself reads it.
#pragma once

#include "vx/internationals.h"

namespace vx {

// The one record of the process. The formatters read it without a lock; only the rebuild and the
// language abbreviation's setter write it.
extern VxInternationals g_internationals;

// Reads the record anew from the system.
void RebuildInternationals();

// A decimal separator that begins with the thousands separator could not be told from it when text
// is read: "." replaces it, or "," where the thousands are separated by ".".
void KeepDecimalApartFromThousands(VxInternationals& record);

} // namespace vx
