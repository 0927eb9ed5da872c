#include "exchange/operations.h"

#include "exchange/kernels.h"

#include <array>

namespace vx {
namespace {

// An operation is a function of the pixels A and B that gives the new A, for a depth D.
// Alpha is A's where an operation says nothing of it.

template <class D>
using Of = Pixel<typename D::Channel>;
template <class D>
using Fields = OperationFields<D>;

template <class D>
Of<D> Copy(const Of<D>&, const Of<D>& b, const Fields<D>&)
{
    return b;
}

template <class D>
Of<D> Alpha(const Of<D>& a, const Of<D>& b, const Fields<D>&)
{
    return FadePixel<D>(a, b, b.alpha);
}

template <class D>
Of<D> AlphaPremultiplied(const Of<D>& a, const Of<D>& b, const Fields<D>&)
{
    return MapChannels(a, b, [&b](uint32_t x, uint32_t y) { return D::Premultiplied(x, y, b.alpha); });
}

template <class D>
Of<D> Fade(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    return FadePixel<D>(a, b, fields.weight);
}

Of<Depth8> RoughFade(const Of<Depth8>& a, const Of<Depth8>& b, const Fields<Depth8>& fields)
{
    return RoughFadePixel(a, b, fields.weight);
}

template <class D>
Of<D> KeyCopy(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    return IsNearKey(b, fields) ? a : b;
}

template <class D>
Of<D> KeyFade(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    return IsNearKey(b, fields) ? a : Fade<D>(a, b, fields);
}

// A channel scaled by a quotient, cut to 16 bits, before it is mixed: it wraps where it is too bright.
template <class D>
int64_t Scale(int64_t channel, int64_t numerator, int64_t denominator)
{
    return typename D::Scaled(uint64_t(channel) * uint64_t(numerator) / uint64_t(denominator));
}

template <class D>
Of<D> KeyShadow(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    if (!IsNearKey(b, fields))
        return Fade<D>(a, b, fields);
    const int64_t light = 1 + Brightest(b);
    return MapColours(a, b, a.alpha, [&](int64_t x, int64_t) {
        return D::Mix(x, Scale<D>(x, light, D::kMax), fields.weightB);
    });
}

template <class D>
Of<D> KeyScale(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    if (IsNearKey(b, fields))
        return a;
    const int64_t lightA = 1 + Brightest(a), lightB = 1 + Brightest(b);
    return MapColours(a, b, a.alpha, [&](int64_t x, int64_t y) {
        return D::Mix(y, Scale<D>(x, lightA, lightB), fields.weightB);
    });
}

template <class D>
Of<D> Difference(const Of<D>& a, const Of<D>& b, const Fields<D>&)
{
    return MapChannels(a, b, [](int32_t x, int32_t y) { return std::abs(x - y); });
}

template <class D>
Of<D> Tint(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    return MapColours(b, fields.key, a.alpha,
                      [&](int64_t x, int64_t key) { return D::Mix(x, key, fields.weight); });
}

template <class D>
Of<D> InvertFade(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    return MapChannels(a, b, [&](int64_t x, int64_t y) { return D::Mix(x, D::kMax - y, fields.weight); });
}

template <class D>
Of<D> GrayFade(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    const auto gray = typename D::Channel((b.blue + b.green + b.red) / 3);
    return Fade<D>(a, {gray, gray, gray, b.alpha}, fields);
}

template <class D>
Of<D> Matte(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    const auto channel = [&](int64_t x, int64_t y, int64_t key) {
        const int64_t sum = (key - x) * b.alpha / D::kOne + y - key + x;
        return typename D::Channel(std::clamp<int64_t>(sum, 0, D::kMax));
    };
    return {channel(a.blue, b.blue, fields.key.blue), channel(a.green, b.green, fields.key.green),
            channel(a.red, b.red, fields.key.red), a.alpha};
}

template <class D>
Of<D> GrayThroughLut(typename D::Channel value, typename D::Channel alpha, const Fields<D>& fields)
{
    const typename D::Channel gray = fields.lut ? fields.lut[value] : value;
    return {gray, gray, gray, alpha};
}

// Opposite corners of the cube are one full channel apart.
template <class D>
Of<D> Distance(const Of<D>& a, const Of<D>&, const Fields<D>& fields)
{
    const double blue = double(a.blue) - fields.key.blue;
    const double green = double(a.green) - fields.key.green;
    const double red = double(a.red) - fields.key.red;
    const double distance = std::sqrt(blue * blue + green * green + red * red);
    const auto value = typename D::Channel(int32_t(distance / std::sqrt(3.0f)));
    return GrayThroughLut<D>(value, a.alpha, fields);
}

// Levels from the second weight up, over the width of the tolerance. A width of 0 has one value
// between its ends, which is 0.
template <class D>
Of<D> Level(const Of<D>& a, const Of<D>&, const Fields<D>& fields)
{
    const double mean = double(int32_t(a.blue) + a.green + a.red) / 3.0;
    const double above = mean - double(fields.weightB);
    int64_t value = 0;
    if (above > double(fields.tolerance))
        value = above >= 0.0 ? D::kMax : 0;
    else if (above > 0.0)
        value = int64_t(above * double(D::kMax) / double(fields.tolerance));
    return GrayThroughLut<D>(typename D::Channel(value), a.alpha, fields);
}

template <class D>
Of<D> Add(const Of<D>& a, const Of<D>& b, const Fields<D>& fields)
{
    return MapChannels(a, b, [&](int64_t x, int64_t y) { return x + y * fields.weight / D::kOne; });
}

template <class D>
using Operation = Of<D> (*)(const Of<D>&, const Of<D>&, const Fields<D>&);

template <class D, Operation<D> kOperation>
void OperatePixel(tVXXCHG* x)
{
    StoreSlot(*x, 0, kOperation(LoadSlot<Of<D>>(*x, 0), LoadSlot<Of<D>>(*x, 1), Fields<D>(*x)));
}

template <class D, Operation<D> kOperation>
void OperateQuad(tVXXCHG* x, const tVXXCHG* second)
{
    const Fields<D> fields(*second);
    for (size_t i = 0; i < 4; ++i)
        StoreSlot(*x, i, kOperation(LoadSlot<Of<D>>(*x, i), LoadSlot<Of<D>>(*second, i), fields));
}

void LeavePixel(tVXXCHG*) {}
void LeaveQuad(tVXXCHG*, const tVXXCHG*) {}

// Blue and green full where the second pixel is another colour than the key, all zero where it is not.
template <class D>
void MarkPixel(tVXXCHG* x)
{
    const auto full = typename D::Channel(IsNearKey(LoadSlot<Of<D>>(*x, 1), Fields<D>(*x)) ? 0 : D::kMax);
    StoreSlot(*x, 0, Of<D>{full, full, 0, 0});
}

// The key colour spreads over the block; a block without it is interpolated.
template <class D>
void MarkQuad(tVXXCHG* x)
{
    const Fields<D> fields(*x);
    Of<D> pixels[4];
    for (size_t i = 0; i < 4; ++i) {
        pixels[i] = LoadSlot<Of<D>>(*x, i);
        if (IsNearKey(pixels[i], fields)) {
            StoreSlot(*x, 0, pixels[i]);
            return;
        }
    }
    const IntegerWeights weights(x->fractionX, x->fractionY);
    StoreSlot(*x, 0, MixBlock(pixels[0], pixels[1], pixels[2], pixels[3], weights));
}

template <class D, Operation<D> kOperation>
constexpr OperationKernels kBoth{OperatePixel<D, kOperation>, OperateQuad<D, kOperation>, nullptr, nullptr};

template <class D, Operation<D> kOperation>
constexpr OperationKernels kMarking{OperatePixel<D, kOperation>, OperateQuad<D, kOperation>, MarkPixel<D>,
                                    MarkQuad<D>};

// Operations that make a single pixel from itself have no form for groups.
template <class D, Operation<D> kOperation>
constexpr OperationKernels kSingle{OperatePixel<D, kOperation>, LeaveQuad, nullptr, nullptr};

constexpr OperationKernels kNothing{LeavePixel, LeaveQuad, nullptr, nullptr};

template <class D, Operation<D> kFade>
constexpr std::array<OperationKernels, VXXCHG_OP_COUNT> kOperationsOf{
    kBoth<D, Copy<D>>,
    kBoth<D, Alpha<D>>,
    kBoth<D, AlphaPremultiplied<D>>,
    kBoth<D, kFade>,
    kMarking<D, KeyCopy<D>>,
    kMarking<D, KeyFade<D>>,
    kBoth<D, KeyShadow<D>>,
    kBoth<D, KeyScale<D>>,
    kBoth<D, Difference<D>>,
    kBoth<D, Copy<D>>,
    kBoth<D, Copy<D>>,
    kBoth<D, Tint<D>>,
    kBoth<D, InvertFade<D>>,
    kBoth<D, GrayFade<D>>,
    kBoth<D, Matte<D>>,
    kSingle<D, Distance<D>>,
    kNothing,
    kSingle<D, Level<D>>,
    kNothing,
    kBoth<D, Add<D>>,
};

constexpr std::array<std::array<OperationKernels, VXXCHG_OP_COUNT>, kOperationRows> kOperations{
    kOperationsOf<Depth16, Fade<Depth16>>,
    kOperationsOf<Depth16, Fade<Depth16>>,
    kOperationsOf<Depth8, RoughFade>,
    kOperationsOf<Depth8, Fade<Depth8>>,
};

constexpr OperationKernels kNoKernels{};

} // namespace

const OperationKernels& OperationKernelsOf(int32_t row, uint32_t number)
{
    return number < VXXCHG_OP_COUNT ? kOperations[size_t(row)][number] : kNoKernels;
}

} // namespace vx
