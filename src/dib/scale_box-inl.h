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
using Ints = hn::FixedTag<int32_t, 4>;
using IntVec = hn::Vec<Ints>;

template <class Value>
IntVec LoadQuad(const Value* pixel)
{
    return hn::PromoteTo(Ints(), hn::LoadU(hn::FixedTag<Value, 4>(), pixel));
}

// Sums over a span of a line: its inner pixels, and its edge pixels by their shares of a row's share.
template <class Value>
struct LineSums
{
    IntVec inner, edges;

    LineSums(const Value* line, const BoxSpan& x, int32_t firstColumn, int32_t rowShare)
        : inner(hn::Zero(Ints()))
    {
        const Value* const first = line + 4 * (x.first - firstColumn);
        const Value* const last = line + 4 * (x.last - firstColumn);
        for (const Value* at = first + 4; at < last; at += 4)
            inner = hn::Add(inner, LoadQuad(at));
        const auto product = [rowShare](const Value* at, int32_t share) {
            return hn::Mul(LoadQuad(at), hn::Set(Ints(), CoverageProduct(share, rowShare)));
        };
        edges = hn::Add(product(first, x.firstShare), product(last, x.lastShare));
    }
};

// The lanes of one pixel in doubles, or half of them where there is no room for four.
using Doubles = hn::CappedTag<double, 4>;
using PartInts = hn::Rebind<int32_t, Doubles>;

// What a box sums to along a row, as the plain form's 32-bit sums.
[[maybe_unused]] void StoreSumOfColumns(int32_t* sum, const uint8_t* row, const BoxSpan& x)
{
    const LineSums<uint8_t> sums(row, x, 0, kSubpixelOne);
    hn::StoreU(hn::Add(sums.edges, hn::ShiftLeft<kSubpixelBits>(sums.inner)), Ints(), sum);
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
