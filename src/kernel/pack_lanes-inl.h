// Wider lanes packed into bytes. Included once for each target.
#if defined(VX_PACK_LANES_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_PACK_LANES_INL_H
#undef VX_PACK_LANES_INL_H
#else
#define VX_PACK_LANES_INL_H
#endif

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The lanes of two vectors, 0 to 255, as bytes in the order from which the lower and upper halves of each
// 16-byte block made these vectors. On x86 signed lanes of any value are held to 0 to 255.
template <class D, class V>
HWY_INLINE hn::Vec<D> PackPairs(D bytes, V lower, V upper)
{
#if HWY_TARGET <= HWY_SSSE3 && HWY_ARCH_X86
    if constexpr (sizeof(V) == 16)
        return hn::BitCast(bytes, V{_mm_packus_epi16(lower.raw, upper.raw)});
#if HWY_TARGET <= HWY_AVX2
    else if constexpr (sizeof(V) == 32)
        return hn::BitCast(bytes, V{_mm256_packus_epi16(lower.raw, upper.raw)});
#endif
#if HWY_TARGET <= HWY_AVX3
    else
        return hn::BitCast(bytes, V{_mm512_packus_epi16(lower.raw, upper.raw)});
#endif
#else // a vector is one block
    return hn::ConcatEven(bytes, hn::BitCast(bytes, upper), hn::BitCast(bytes, lower));
#endif
}

// The same from four vectors of 32-bit lanes: a block of the result holds four bytes of each.
template <class D, class V>
HWY_INLINE hn::Vec<D> PackLongs(D bytes, V v0, V v1, V v2, V v3)
{
    const hn::Repartition<int16_t, D> words;
    return PackPairs(bytes, hn::ReorderDemote2To(words, v0, v1), hn::ReorderDemote2To(words, v2, v3));
}

} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
