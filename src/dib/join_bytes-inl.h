// The bytes of four vectors joined into one. Included once for each target.
#if defined(VX_DIB_JOIN_BYTES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_DIB_JOIN_BYTES_INL_H
#undef VX_DIB_JOIN_BYTES_INL_H
#else
#define VX_DIB_JOIN_BYTES_INL_H
#endif

#include "exchange/pixels24-inl.h"
#include "kernel/pack_lanes-inl.h"

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

using Lanes32 = hwy::HWY_NAMESPACE::Repartition<int32_t, Lanes8>;

// Each block has four bytes of each of four vectors: gives these vectors' bytes one after the other.
HWY_INLINE Vector8 BlocksInOrder(Vector8 blocks)
{
    alignas(64) static constexpr int32_t kRows16[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
    alignas(32) static constexpr int32_t kRows8[8] = {0, 4, 1, 5, 2, 6, 3, 7};
    return MoveLanes(blocks, kPixels24 == 16 ? kRows16 : kRows8);
}

// Each lane has one byte of each of four vectors, the first one's in the low byte: gives these vectors' bytes one after
// the other.
HWY_INLINE Vector8 InOrder(hwy::HWY_NAMESPACE::Vec<Lanes32> lanes)
{
    namespace hn = hwy::HWY_NAMESPACE;
    alignas(16) static constexpr uint8_t kColumns[16] = {0, 4, 8,  12, 1, 5, 9,  13,
                                                         2, 6, 10, 14, 3, 7, 11, 15};
    return BlocksInOrder(
        hn::TableLookupBytes(hn::BitCast(Lanes8(), lanes), hn::LoadDup128(Lanes8(), kColumns)));
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
