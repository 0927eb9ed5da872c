// Pixels of four bytes apart by channel, for lookups in byte_look_up-inl.h. Included once for each target.
#if defined(VX_BYTE_TABLES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_BYTE_TABLES_INL_H
#undef VX_BYTE_TABLES_INL_H
#else
#define VX_BYTE_TABLES_INL_H
#endif

#include "kernel/byte_look_up-inl.h"
#include "primitives/byte_tables.h"

#if VX_VECTOR_BYTE_TABLES

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {

// As many pixels as a vector has bytes, channel by channel. Their order is the same in each plane, and
// is not that of memory: putting them in order would cost more than the lookups.
struct PixelPlanes
{
    TableVec channel[4];
};

// The columns of a table of four-byte entries.
struct ColumnLookUps
{
    ByteLookUp column[4];

    HWY_INLINE explicit ColumnLookUps(const ByteTables& tables)
        : column{ByteLookUp(tables.column[0]), ByteLookUp(tables.column[1]), ByteLookUp(tables.column[2]),
                 ByteLookUp(tables.column[3])}
    {}
};

// Both steps are transpositions of 4 x 4, of the bytes of four pixels and of the groups of four vectors,
// so that doing them again in the other order undoes them.
HWY_INLINE TableVec TransposePixels(TableVec pixels)
{
    namespace hn = hwy::HWY_NAMESPACE;
    alignas(16) constexpr uint8_t kOrder[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    return hn::TableLookupBytes(pixels, hn::LoadDup128(TableBytes(), kOrder));
}

HWY_INLINE PixelPlanes TransposeGroups(const PixelPlanes& rows)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const TableBytes bytes;
    const hn::Repartition<uint32_t, TableBytes> groups;
    const hn::Repartition<uint64_t, TableBytes> pairs;
    const auto row0 = hn::BitCast(groups, rows.channel[0]), row1 = hn::BitCast(groups, rows.channel[1]);
    const auto row2 = hn::BitCast(groups, rows.channel[2]), row3 = hn::BitCast(groups, rows.channel[3]);
    const auto low01 = hn::BitCast(pairs, hn::InterleaveLower(groups, row0, row1));
    const auto low23 = hn::BitCast(pairs, hn::InterleaveLower(groups, row2, row3));
    const auto high01 = hn::BitCast(pairs, hn::InterleaveUpper(groups, row0, row1));
    const auto high23 = hn::BitCast(pairs, hn::InterleaveUpper(groups, row2, row3));
    return {{hn::BitCast(bytes, hn::InterleaveLower(pairs, low01, low23)),
             hn::BitCast(bytes, hn::InterleaveUpper(pairs, low01, low23)),
             hn::BitCast(bytes, hn::InterleaveLower(pairs, high01, high23)),
             hn::BitCast(bytes, hn::InterleaveUpper(pairs, high01, high23))}};
}

HWY_INLINE PixelPlanes LoadPlanes(const uint8_t* from)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const TableBytes bytes;
    PixelPlanes rows;
    for (int i = 0; i < 4; ++i)
        rows.channel[i] = TransposePixels(hn::LoadU(bytes, from + hn::Lanes(bytes) * size_t(i)));
    return TransposeGroups(rows);
}

HWY_INLINE void StorePlanes(const PixelPlanes& planes, uint8_t* to)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const TableBytes bytes;
    const PixelPlanes rows = TransposeGroups(planes);
    for (int i = 0; i < 4; ++i)
        hn::StoreU(TransposePixels(rows.channel[i]), bytes, to + hn::Lanes(bytes) * size_t(i));
}

} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif // VX_VECTOR_BYTE_TABLES

#endif
