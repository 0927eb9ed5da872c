// Lookups in tables of 256 bytes, as many at once as a vector has bytes. Included once for each target.
#if defined(VX_BYTE_LOOK_UP_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_BYTE_LOOK_UP_INL_H
#undef VX_BYTE_LOOK_UP_INL_H
#else
#define VX_BYTE_LOOK_UP_INL_H
#endif

#include <cstdint>
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

// A table in registers: made before a loop, since stores in it might change what memory holds.
class ByteLookUp
{
public:
    HWY_INLINE explicit ByteLookUp(const uint8_t* table) // at a multiple of 64
        : first_(Load(table)), second_(Load(table + 64)), third_(Load(table + 128)),
          fourth_(Load(table + 192))
    {}
    HWY_INLINE TableVec operator()(TableVec index) const
    {
        namespace hn = hwy::HWY_NAMESPACE;
        const auto upper = hn::MaskFromVec(index); // on this target, its top bits
        return hn::IfThenElse(upper, Half(third_, fourth_, index), Half(first_, second_, index));
    }

private:
    HWY_INLINE static TableVec Load(const uint8_t* quarter)
    {
        return hwy::HWY_NAMESPACE::Load(TableBytes(), quarter);
    }
    // A permutation of two registers reads 128 entries by the low seven bits of the index.
    HWY_INLINE static TableVec Half(TableVec lower, TableVec higher, TableVec index)
    {
        return TableVec{_mm512_permutex2var_epi8(lower.raw, index.raw, higher.raw)};
    }

    TableVec first_, second_, third_, fourth_;
};

#else

// Sixteen lookups of 16 entries each: the index's high half says whose result counts.
class ByteLookUp
{
public:
    HWY_INLINE explicit ByteLookUp(const uint8_t* table) : table_(table) {}
    HWY_INLINE TableVec operator()(TableVec index) const
    {
        namespace hn = hwy::HWY_NAMESPACE;
        const TableBytes bytes;
        const auto low = hn::And(index, hn::Set(bytes, 0x0F));
        const auto high = hn::And(index, hn::Set(bytes, 0xF0));
        auto result = hn::Zero(bytes);
        HWY_UNROLL(16)
        for (int row = 0; row < 256; row += 16) {
            const auto found = hn::TableLookupBytes(hn::LoadDup128(bytes, table_ + row), low);
            result = hn::IfThenElse(hn::Eq(high, hn::Set(bytes, uint8_t(row))), found, result);
        }
        return result;
    }

private:
    const uint8_t* table_;
};

#endif

} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif // VX_VECTOR_BYTE_TABLES

#endif
