// Vector helpers of the box kernels, for one pixel at a time. Included once for each target.
#if defined(VX_DIB_SCALE_BOX_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef VX_DIB_SCALE_BOX_INL_H
#undef VX_DIB_SCALE_BOX_INL_H
#else
#define VX_DIB_SCALE_BOX_INL_H
#endif

#include "dib/scale_box.h"

#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace vx {
namespace HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The lanes of one pixel.
using QuadInts = hn::FixedTag<int32_t, 4>;
using QuadVec = hn::Vec<QuadInts>;

template <class Value>
QuadVec LoadQuad(const Value* pixel)
{
    return hn::PromoteTo(QuadInts(), hn::LoadU(hn::FixedTag<Value, 4>(), pixel));
}

// A row's share, and what of it falls to the first and the last pixel of a span.
struct EdgeWeights
{
    QuadVec inner, first, last;

    EdgeWeights(const BoxSpan& x, int32_t rowShare) : inner(hn::Set(QuadInts(), rowShare))
    {
        first = hn::ShiftRight<kSubpixelBits>(hn::Mul(hn::Set(QuadInts(), x.firstShare), inner));
        last = hn::ShiftRight<kSubpixelBits>(hn::Mul(hn::Set(QuadInts(), x.lastShare), inner));
    }
};

template <class Value>
QuadVec SumOfEdges(const Value* first, const Value* last, const EdgeWeights& w)
{
    return hn::Add(hn::Mul(LoadQuad(first), w.first), hn::Mul(LoadQuad(last), w.last));
}

template <class Value>
QuadVec SumOfInner(const Value* first, const Value* last)
{
    QuadVec sum = hn::Zero(QuadInts());
    for (const Value* at = first + 4; at < last; at += 4)
        sum = hn::Add(sum, LoadQuad(at));
    return sum;
}

// The lanes of one pixel in doubles, or half of them where there is no room for four.
using Doubles = hn::CappedTag<double, 4>;
using PartInts = hn::Rebind<int32_t, Doubles>;

// What a box sums to along a row, as the plain form's 32-bit sums.
[[maybe_unused]] void StoreSumOfColumns(int32_t* sum, const uint8_t* row, const BoxSpan& x)
{
    const uint8_t *const first = row + 4 * int64_t(x.first), *const last = row + 4 * int64_t(x.last);
    const QuadVec inner = hn::ShiftLeft<kSubpixelBits>(SumOfInner(first, last));
    hn::StoreU(hn::Add(SumOfEdges(first, last, EdgeWeights(x, kSubpixelOne)), inner), QuadInts(), sum);
}

// Writes a part of a pixel: sums over a divisor, truncated and limited to a byte. Half a unit more
// keeps exact quotients, up to 2^15 in sums up to 2^43, off the truncation's edge.
[[maybe_unused]] void WriteQuotients(uint8_t* dest, hn::Vec<Doubles> sums, double reciprocal)
{
    const Doubles lanes;
    const hn::Rebind<uint8_t, Doubles> bytes;
    const auto quotients = hn::Mul(hn::Add(sums, hn::Set(lanes, 0.5)), hn::Set(lanes, reciprocal));
    hn::StoreU(hn::DemoteTo(bytes, hn::DemoteTo(PartInts(), quotients)), bytes, dest);
}

} // namespace
} // namespace HWY_NAMESPACE
} // namespace vx
HWY_AFTER_NAMESPACE();

#endif
