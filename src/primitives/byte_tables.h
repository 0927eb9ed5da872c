// Tables of 256 four-byte entries, as the lookups in bytes want them.
#pragma once

#include <cstdint>

namespace vx {

// The entries' bytes, split by their place: column c holds byte c of each entry.
struct ByteTables
{
    explicit ByteTables(const void* entries)
    {
        const uint8_t* byte = static_cast<const uint8_t*>(entries);
        for (int v = 0; v < 256; ++v, byte += 4)
            for (int c = 0; c < 4; ++c)
                column[c][v] = byte[c];
    }

    alignas(64) uint8_t column[4][256];
};

} // namespace vx
