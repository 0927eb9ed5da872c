// Lookups in tables of 256 bytes, as many at once as a vector has bytes. Included once for each target.
#if defined(VX_BYTE_TABLES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_BYTE_TABLES_INL_H
#undef VX_BYTE_TABLES_INL_H
#else
#define VX_BYTE_TABLES_INL_H
#endif

#include "primitives/byte_tables.h"

#include <hwy/highway.h>

// Targets whose lookups beat a loop over single bytes; VX_WIDE_BYTE_TABLES: at little cost.
#undef VX_VECTOR_BYTE_TABLES
#undef VX_WIDE_BYTE_TABLES
#define VX_WIDE_BYTE_TABLES (HWY_TARGET == HWY_AVX3_DL)
#define VX_VECTOR_BYTE_TABLES (VX_WIDE_BYTE_TABLES || HWY_TARGET == HWY_AVX3 || HWY_TARGET == HWY_AVX2)

#if VX_VECTOR_BYTE_TABLES

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {

using TableBytes = hwy::HWY_NAMESPACE::ScalableTag<uint8_t>;
using TableVec = hwy::HWY_NAMESPACE::Vec<TableBytes>;

#if VX_WIDE_BYTE_TABLES

// A two-register permutation reads 128 entries by the low seven bits of the index.
HWY_INLINE TableVec LookUpHalf(const uint8_t* half, TableVec index)
{
    const TableBytes bytes;
    const auto first = hwy::HWY_NAMESPACE::Load(bytes, half);
    const auto second = hwy::HWY_NAMESPACE::Load(bytes, half + 64);
    return TableVec{_mm512_permutex2var_epi8(first.raw, index.raw, second.raw)};
}

HWY_INLINE TableVec LookUpBytes(const uint8_t* table, TableVec index)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const auto upper = hn::MaskFromVec(index); // on this target, its top bits
    return hn::IfThenElse(upper, LookUpHalf(table + 128, index), LookUpHalf(table, index));
}

#else

// Sixteen lookups of 16 entries each: the index's high half says whose result counts.
HWY_INLINE TableVec LookUpBytes(const uint8_t* table, TableVec index)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const TableBytes bytes;
    const auto low = hn::And(index, hn::Set(bytes, 0x0F));
    const auto high = hn::And(index, hn::Set(bytes, 0xF0));
    auto result = hn::Zero(bytes);
    HWY_UNROLL(16)
    for (int row = 0; row < 256; row += 16) {
        const auto found = hn::TableLookupBytes(hn::LoadDup128(bytes, table + row), low);
        result = hn::IfThenElse(hn::Eq(high, hn::Set(bytes, uint8_t(row))), found, result);
    }
    return result;
}

#endif

// As many pixels as a vector has bytes, channel by channel. Their order is the same in each plane, and
// is not that of memory: putting them in order would cost more than the lookups.
struct PixelPlanes
{
    TableVec channel[4];
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
