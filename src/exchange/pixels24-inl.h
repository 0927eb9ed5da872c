// Pixels of three bytes in vectors, as pixels of four. Included once for each target.
#if defined(VX_EXCHANGE_PIXELS24_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_EXCHANGE_PIXELS24_INL_H
#undef VX_EXCHANGE_PIXELS24_INL_H
#else
#define VX_EXCHANGE_PIXELS24_INL_H
#endif

#include <cstdint>
#include <cstring>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

using Lanes8 = hwy::HWY_NAMESPACE::ScalableTag<uint8_t>;
using Vector8 = hwy::HWY_NAMESPACE::Vec<Lanes8>;
constexpr int32_t kPixels24 = int32_t(hwy::HWY_NAMESPACE::MaxLanes(Lanes8())) / 4; // in a vector

// A whole vector is loaded and stored where only three quarters of it are pixels: a row must have so many more from the
// first of them on.
constexpr int32_t kReach24 = (4 * kPixels24 + 2) / 3;

// Moves the 32-bit lanes of `bytes`; of a single block none move.
HWY_INLINE Vector8 MoveLanes(Vector8 bytes, const int32_t* places)
{
    namespace hn = hwy::HWY_NAMESPACE;
    const hn::Repartition<int32_t, Lanes8> lanes;
    if constexpr (kPixels24 == 4)
        return bytes;
    else
        return hn::BitCast(
            Lanes8(), hn::TableLookupLanes(hn::BitCast(lanes, bytes), hn::SetTableIndices(lanes, places)));
}

// kPixels24 pixels, with 0 in their fourth bytes.
HWY_INLINE Vector8 LoadPixels24(const uint8_t* from)
{
    namespace hn = hwy::HWY_NAMESPACE;
    alignas(64) static constexpr int32_t kBlocks[16] = {0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12};
    alignas(16) static constexpr uint8_t kSpread[16] = {0, 1, 2, 0x80, 3, 4,  5,  0x80,
                                                        6, 7, 8, 0x80, 9, 10, 11, 0x80};
    const Lanes8 lanes;
    return hn::TableLookupBytesOr0(MoveLanes(hn::LoadU(lanes, from), kBlocks),
                                   hn::LoadDup128(lanes, kSpread));
}

// Leaves out the fourth bytes. Bytes of any value follow the pixels.
HWY_INLINE void StorePixels24(Vector8 pixels, uint8_t* to)
{
    namespace hn = hwy::HWY_NAMESPACE;
    alignas(64) static constexpr int32_t kBlocks16[16] = {0,  1,  2,  4,  5, 6, 8,  9,
                                                          10, 12, 13, 14, 3, 7, 11, 15};
    alignas(32) static constexpr int32_t kBlocks8[8] = {0, 1, 2, 4, 5, 6, 3, 7};
    alignas(16) static constexpr uint8_t kClose[16] = {0,  1,  2,  4,  5,    6,    8,    9,
                                                       10, 12, 13, 14, 0x80, 0x80, 0x80, 0x80};
    const Lanes8 lanes;
    const auto closed = hn::TableLookupBytesOr0(pixels, hn::LoadDup128(lanes, kClose));
    hn::StoreU(MoveLanes(closed, kPixels24 == 16 ? kBlocks16 : kBlocks8), lanes, to);
}

// The same within the pixels' own bytes, for the last ones of a row.
constexpr size_t kBytes24 = 3 * size_t(kPixels24);

HWY_INLINE Vector8 LoadLastPixels24(const uint8_t* from)
{
    HWY_ALIGN uint8_t part[4 * kPixels24];
    std::memcpy(part, from, kBytes24);
    return LoadPixels24(part);
}

HWY_INLINE void StoreLastPixels24(Vector8 pixels, uint8_t* to)
{
    HWY_ALIGN uint8_t part[4 * kPixels24];
    StorePixels24(pixels, part);
    std::memcpy(to, part, kBytes24);
}

// Calls whole(x) for each vector of a row's pixels that have kReach24 with them, and last(x) for the one behind where there
// is one; returns the pixel that comes next.
template <class Whole, class Last>
HWY_INLINE int32_t ForPixels24(int32_t width, const Whole& whole, const Last& last)
{
    int32_t x = 0;
    for (; x + kReach24 <= width; x += kPixels24)
        whole(x);
    for (; x + kPixels24 <= width; x += kPixels24)
        last(x);
    return x;
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
