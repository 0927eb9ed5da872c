// The arithmetic of the operations at 8 and at 16 bits, for the kernels and for drivers that work on
// runs. vx/xchg.h says what each operation does.
#pragma once

#include "exchange/filter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace vx {

// What a depth makes of the fields of an operation. A weight is in units of 1 / kOne.
struct Depth16
{
    using Channel = uint16_t;
    using Scaled = uint16_t; // what becomes of a scaled channel before it is mixed
    static constexpr int64_t kOne = 65536;
    static constexpr int64_t kMax = 65535;

    static int64_t Mix(int64_t x, int64_t y, int64_t w) { return x + ((y - x) * w >> 16); }
    static int64_t Premultiplied(uint32_t a, uint32_t b, uint32_t alpha)
    {
        return int32_t(a * (65536 - alpha) + b) / 65536; // the sum wraps into the sign
    }
    static Pixel16 Key(const VxXchgOperation& op) { return {op.keyBlue16, op.keyGreen16, op.keyRed16, 0}; }
    static int64_t Tolerance(const VxXchgOperation& op) { return op.tolerance16; }
    static int64_t Weight(const VxXchgOperation& op) { return op.weight16; }
    static int64_t WeightB(const VxXchgOperation& op) { return op.weight16b; }
    static const Channel* Lut(const tVXXCHG& x) { return x.lut16; }
};

struct Depth8
{
    using Channel = uint8_t;
    using Scaled = int16_t;
    static constexpr int64_t kOne = 256;
    static constexpr int64_t kMax = 255;

    static int64_t Mix(int64_t x, int64_t y, int64_t w) { return x + (y - x) * w / 256; }
    static int64_t Premultiplied(uint32_t a, uint32_t b, uint32_t alpha)
    {
        return (a * (256 - alpha) + b) >> 8;
    }
    static Pixel8 Key(const VxXchgOperation& op) { return {op.keyBlue8, op.keyGreen8, op.keyRed8, 0}; }
    static int64_t Tolerance(const VxXchgOperation& op) { return op.tolerance8; }
    static int64_t Weight(const VxXchgOperation& op) { return op.weight8; }
    static int64_t WeightB(const VxXchgOperation& op) { return op.weight8b; }
    static const Channel* Lut(const tVXXCHG& x) { return x.lut8; }
};

// The operation's fields at a depth, read once a kernel call.
template <class Depth>
struct OperationFields
{
    Pixel<typename Depth::Channel> key;
    int64_t tolerance, weight, weightB;
    const typename Depth::Channel* lut;

    explicit OperationFields(const tVXXCHG& x)
        : key(Depth::Key(x.op)), tolerance(Depth::Tolerance(x.op)), weight(Depth::Weight(x.op)),
          weightB(Depth::WeightB(x.op)), lut(Depth::Lut(x))
    {}
};

// Applies a function of channels to blue, green and red of two pixels; the others take alpha.
template <class Channel, class Function>
Pixel<Channel> MapColours(const Pixel<Channel>& a, const Pixel<Channel>& b, Channel alpha, const Function& f)
{
    return {Channel(f(a.blue, b.blue)), Channel(f(a.green, b.green)), Channel(f(a.red, b.red)), alpha};
}

template <class Channel, class Function>
Pixel<Channel> MapChannels(const Pixel<Channel>& a, const Pixel<Channel>& b, const Function& f)
{
    return MapColours(a, b, Channel(f(a.alpha, b.alpha)), f);
}

template <class Channel>
int64_t Brightest(const Pixel<Channel>& p)
{
    return std::max({p.blue, p.green, p.red});
}

template <class Depth, class Working>
bool IsNearKey(const Working& p, const OperationFields<Depth>& fields)
{
    const int64_t distance = std::abs(p.blue - fields.key.blue) + std::abs(p.green - fields.key.green) +
                             std::abs(p.red - fields.key.red);
    return distance <= fields.tolerance;
}

// VXXCHG_OP_FADE, also by weights that change from pixel to pixel.
template <class Depth, class Working>
Working FadePixel(const Working& a, const Working& b, int64_t weight)
{
    return MapChannels(a, b, [weight](int64_t x, int64_t y) { return Depth::Mix(x, y, weight); });
}

// The fade at 8 bits without VXXCHGF_EXACT_FADE: 15 parts of 4-bit channels, so that 225 is the most.
inline Pixel8 RoughFadePixel(const Pixel8& a, const Pixel8& b, int64_t weight)
{
    const int64_t w = weight >> 4;
    return MapChannels(a, b, [w](int32_t x, int32_t y) { return (x >> 4) * (15 - w) + (y >> 4) * w; });
}

} // namespace vx
