// Vector helpers of the kernels that work several pixels at a time. Included once for each target.
#if defined(VX_DIB_SCALE_TAPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_DIB_SCALE_TAPS_INL_H
#undef VX_DIB_SCALE_TAPS_INL_H
#else
#define VX_DIB_SCALE_TAPS_INL_H
#endif

#include <cstdint>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

using Floats = hn::ScalableTag<float>;
using Ints = hn::RebindToSigned<Floats>;
using Words = hn::Repartition<int16_t, Ints>;
using Bytes = hn::Repartition<uint8_t, Ints>;
constexpr int32_t kLanes = int32_t(hn::MaxLanes(Floats()));
constexpr int32_t kVectorPixels = kLanes / 4;

// 16 bytes for each pixel of the vector: from every `every`th place, at multiples of `scale` values.
template <int32_t every, class D, class T>
HWY_INLINE hn::Vec<D> GatherBlocks(D d, const T* from, const int32_t* places, int64_t scale)
{
    if constexpr (hn::MaxLanes(d) * sizeof(T) == 16) {
        return hn::LoadU(d, from + scale * places[0]);
    } else {
        const hn::Half<D> half;
        constexpr int32_t kNextHalf = every * int32_t(hn::MaxLanes(half) * sizeof(T) / 16);
        return hn::Combine(d, GatherBlocks<every>(half, from, places + kNextHalf, scale),
                           GatherBlocks<every>(half, from, places, scale));
    }
}

// One value a pixel, each in the four lanes of its pixel.
HWY_INLINE hn::Vec<Ints> SpreadPixels(const int32_t* values)
{
    const Ints ints;
    if constexpr (kVectorPixels == 1)
        return hn::Set(ints, values[0]);
    else if constexpr (kVectorPixels == 2)
        return hn::Combine(ints, hn::Set(hn::Half<Ints>(), values[1]), hn::Set(hn::Half<Ints>(), values[0]));
    else {
        const Bytes bytes;
        const auto four = hn::LoadDup128(ints, values);
        const auto lane = hn::ShiftRight<2>(hn::Iota(ints, 0));
        // 4 i to 4 i + 3 in each lane of pixel i
        const auto places = hn::Add(hn::Mul(lane, hn::Set(ints, 0x04040404)), hn::Set(ints, 0x03020100));
        return hn::BitCast(ints, hn::TableLookupBytes(hn::BitCast(bytes, four), hn::BitCast(bytes, places)));
    }
}

// sum + a0 b0 + a1 b1 in each lane, of the 16-bit halves of the lanes.
HWY_INLINE hn::Vec<Ints> AddMulPairs(hn::Vec<Ints> sum, hn::Vec<Words> a, hn::Vec<Words> b)
{
    const Ints lanes;
#if HWY_ARCH_X86
    auto unused = hn::Zero(lanes);
    return hn::ReorderWidenMulAccumulate(lanes, a, b, sum, unused);
#else
    const auto a0 = hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(lanes, a)));
    const auto b0 = hn::ShiftRight<16>(hn::ShiftLeft<16>(hn::BitCast(lanes, b)));
    const auto a1 = hn::ShiftRight<16>(hn::BitCast(lanes, a)), b1 = hn::ShiftRight<16>(hn::BitCast(lanes, b));
    return hn::Add(sum, hn::Add(hn::Mul(a0, b0), hn::Mul(a1, b1)));
#endif
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
