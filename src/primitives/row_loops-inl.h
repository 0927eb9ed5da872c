// The loop of a vector row worker. Included once for each target.
#if defined(VX_PRIMITIVES_ROW_LOOPS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_PRIMITIVES_ROW_LOOPS_INL_H
#undef VX_PRIMITIVES_ROW_LOOPS_INL_H
#else
#define VX_PRIMITIVES_ROW_LOOPS_INL_H
#endif

#include <cstdint>

#include <hwy/highway.h>

// Marks a lambda that works on vectors: compiled for the target, and part of the loop that it is for.
#ifndef VX_LANES
#define VX_LANES HWY_ATTR __attribute__((always_inline))
#endif

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {

namespace hn = hwy::HWY_NAMESPACE;

// The same vector, of which the compiler knows no more than that it stands in a register.
template <class V>
HWY_INLINE V Unseen(V v)
{
    asm("" : "+v"(v.raw));
    return v;
}

// EitherFloat (rows.h) for vectors.
template <class M, class V>
HWY_INLINE V EitherFloats(M first, V a, V b)
{
    return hn::IfThenElse(first, Unseen(a), b);
}

// A vector at any address, read once. g++ puts a load that has several uses into each of them as an operand
// in memory, and reading the same bytes two or three times costs the short loops up to half of their
// speed.
template <class D>
HWY_INLINE hn::Vec<D> LoadOnce(D lanes, const uint8_t* from)
{
    const auto v = hn::LoadU(hn::Repartition<uint8_t, D>(), from);
    return hn::BitCast(lanes, HWY_COMPILER_GCC_ACTUAL ? Unseen(v) : v);
}

template <class V>
HWY_INLINE void StoreBytes(V v, uint8_t* to)
{
    const hn::Repartition<uint8_t, hn::DFromV<V>> bytes;
    hn::StoreU(hn::BitCast(bytes, v), bytes, to);
}

// Replaces the vectors of a row, two a turn, by op of each and of those that stand at its place in other
// rows. Returns how many bytes were done: what is left is less than a vector.
template <class D, class Op, class... Others>
HWY_INLINE int64_t ReplaceVectors(D lanes, uint8_t* row, int64_t bytes, const Op& op, const Others*... others)
{
    const int64_t step = int64_t(hn::Lanes(hn::Repartition<uint8_t, D>()));
    int64_t i = 0;
    for (; i + 2 * step <= bytes; i += 2 * step) {
        const auto first = op(LoadOnce(lanes, row + i), LoadOnce(lanes, others + i)...);
        const auto second = op(LoadOnce(lanes, row + i + step), LoadOnce(lanes, others + i + step)...);
        StoreBytes(first, row + i);
        StoreBytes(second, row + i + step);
    }
    if (i + step <= bytes) {
        StoreBytes(op(LoadOnce(lanes, row + i), LoadOnce(lanes, others + i)...), row + i);
        i += step;
    }
    return i;
}

} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
