// The fields of interlaced pictures, of a working type (see conversion.h).
#pragma once

#include "vxtool/dib.h"

namespace vxtool {

// As the library counts the fields of whole pictures.
enum FieldNumber
{
    kBottomField = 0, // the rows 1, 3, 5
    kTopField = 1,    // the rows 0, 2, 4
};

// A whole picture of one field; the rows between are means.
Dib Deinterlaced(const Dib& frame, FieldNumber field);

// The rows of one field, a picture of half the height. The frame is not changed.
Dib OneField(Dib& frame, FieldNumber field);

// The frame of two such pictures, which must be of one type and fit each other.
Dib Woven(const Dib& top, const Dib& bottom);

// The frame with another one's bottom field; both must be of one type and size.
Dib Merged(Dib frame, const Dib& other);

} // namespace vxtool
