#include "support/scale_model.h"

#include "vx/scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

namespace vxtest {
namespace {

constexpr int64_t kOne = 16384;

int64_t FloorPixel(int64_t c)
{
    return int64_t(std::floor(double(c) / double(kOne)));
}

int64_t CeilingPixel(int64_t c)
{
    return int64_t(std::ceil(double(c) / double(kOne)));
}

// One axis of the preparation. Sides of a rectangle are first and last.
struct Axis
{
    int64_t destFirst, destLast, sourceFirst, sourceLast, ratio, step, sourceSize;
    bool nothing;
};

Axis Prepare(int64_t destSize, int64_t destFirst, int64_t destLast, int64_t sourceSize, int64_t sourceFirst,
             int64_t sourceLast)
{
    Axis a{};
    a.sourceSize = sourceSize;
    const int64_t boundsFirst = std::max<int64_t>(sourceFirst, 0);
    const int64_t boundsLast = std::min(sourceLast, sourceSize * kOne);
    a.nothing = boundsLast - boundsFirst < kOne || destLast - destFirst < kOne / 16;
    if (a.nothing)
        return a;
    a.ratio = int64_t(std::trunc(double(boundsLast - boundsFirst) * 16384.0 / double(destLast - destFirst)));
    a.destFirst = std::max<int64_t>(destFirst, 0);
    a.destLast = std::min(destLast, destSize * kOne);
    a.nothing = a.destLast - a.destFirst < kOne / 16;
    if (a.nothing)
        return a;
    int64_t first = a.destFirst, last = a.destLast;
    if (a.ratio != 0) {
        const int64_t mapped =
            int64_t(std::trunc(double(boundsLast - boundsFirst) * 16384.0 / double(a.ratio)));
        first = std::max(destFirst, a.destFirst);
        last = std::min(destFirst + mapped, a.destLast);
    }
    a.sourceFirst = std::max(boundsFirst, boundsFirst + (first - destFirst) * a.ratio / kOne);
    a.sourceLast = std::min(boundsLast, boundsFirst + (last - destFirst) * a.ratio / kOne);
    const int64_t width = a.sourceLast - a.sourceFirst, destWidth = a.destLast - a.destFirst;
    if (destWidth >= 2 * kOne)
        a.step = std::max<int64_t>(0, int64_t(double(width - kOne) * 16384.0 / double(destWidth - kOne)));
    return a;
}

// A destination column or row.
struct Place
{
    int64_t pixel, coverage, position, span;
};

enum class Walk
{
    Linear,        // both axes
    Cubic,         // both axes
    Box,           // any box axis
    LinearBesideX, // rows, box along X
    LinearBesideY, // columns, box along Y
    CubicBesideX,  // rows, box along X
    CubicBesideY,  // columns, box along Y
};

std::vector<Place> Places(const Axis& a, Walk walk)
{
    const int64_t first = FloorPixel(a.destFirst), count = CeilingPixel(a.destLast) - first;
    std::vector<Place> places;
    for (int64_t k = 0; k < count; ++k) {
        const int64_t left = std::max(a.destFirst, (first + k) * kOne);
        const int64_t right = std::min(a.destLast, (first + k + 1) * kOne);
        places.push_back({first + k, right - left, 0, 0});
    }
    const bool centred = walk == Walk::Cubic || walk == Walk::CubicBesideX || walk == Walk::CubicBesideY;
    const bool stepped = walk == Walk::Linear || walk == Walk::LinearBesideX || walk == Walk::LinearBesideY;
    const int64_t step = stepped ? a.step : a.ratio;
    const auto cut = [step](int64_t coverage) { return step * coverage / kOne; };
    int64_t position = a.sourceFirst + (centred ? 8192 + a.ratio / 2 : 0);
    for (int64_t k = 0; k < count; ++k) {
        Place& p = places[size_t(k)];
        const bool lastButOne = k == count - 2;
        if (walk == Walk::Linear && k == count - 1 && count > 2)
            position = position - step + cut(p.coverage);
        p.position = position;
        p.span = cut(p.coverage);
        switch (walk) {
        case Walk::Linear:
            position += k == 0 ? cut(p.coverage) : step;
            break;
        case Walk::Cubic:
            position += k == 0 ? cut(p.coverage) : lastButOne ? cut(places.back().coverage) : step;
            break;
        case Walk::Box:
        case Walk::CubicBesideY:
            position += cut(p.coverage);
            break;
        case Walk::LinearBesideX:
        case Walk::CubicBesideX:
            position += lastButOne ? cut(p.coverage) : step;
            break;
        case Walk::LinearBesideY:
            position += lastButOne ? cut(places.front().coverage) : step;
            break;
        }
    }
    return places;
}

// What a place samples: pixels of the source with their weights. The meaning of weights is the kernel's.
struct Tap
{
    int64_t pixel, weight;
};
using Taps = std::vector<Tap>;

Taps LinearTaps(const Axis& a, const Place& p, bool besideBox)
{
    const int64_t last = std::max(CeilingPixel(a.sourceLast) - 1, FloorPixel(a.sourceFirst));
    int64_t position = p.position;
    const bool stays = besideBox && position >= last * kOne;
    if (stays)
        position = last * kOne;
    const int64_t i = position / kOne, f = position % kOne;
    return {{i, kOne - f}, {i == last ? i : i + 1, f}};
}

// Weights are the rows of the table, 0 to 4095, with the tap's number in the low bits.
Taps CubicTaps(const Axis& a, const Place& p, bool columns)
{
    const int64_t last = std::max(CeilingPixel(a.sourceLast) - 1, FloorPixel(a.sourceFirst));
    const int64_t i = p.position / kOne, row = p.position % kOne / 4;
    const bool asTheyAre = columns && i - 2 >= 0 && i + 2 <= a.sourceSize;
    Taps taps;
    for (int64_t t = 0; t < 4; ++t) {
        const int64_t pixel = i - 2 + t;
        taps.push_back({asTheyAre ? pixel : std::clamp(pixel, FloorPixel(a.sourceFirst), last), row * 4 + t});
    }
    return taps;
}

Taps BoxTaps(const Place& p)
{
    Taps taps;
    for (int64_t at = p.position; at < p.position + p.span;) {
        const int64_t next = std::min((at / kOne + 1) * kOne, p.position + p.span);
        taps.push_back({at / kOne, next - at});
        at = next;
    }
    return taps;
}

// Keys' kernel in his own form, a = -1/2, in single precision by its two polynomials.
float CubicFloat(int64_t tableIndex)
{
    const float t = 0.00024414063f * float(tableIndex / 4);
    const float distance[4] = {1.0f + t, t, 1.0f - t, 2.0f - t};
    const float s = distance[tableIndex % 4];
    if (tableIndex % 4 == 0 || tableIndex % 4 == 3)
        return ((s * -0.5f + 2.5f) * s - 4.0f) * s + 2.0f;
    return (s * 1.5f - 2.5f) * s * s + 1.0f;
}

int64_t CubicInteger(int64_t tableIndex)
{
    return int64_t(CubicFloat(tableIndex) * 16384.0f);
}

// (c - v) a / 255, rounded where c is above v, and up to one unit above that where it is below.
uint8_t BlendedByte(int64_t v, int64_t c, int64_t a)
{
    const auto floorOf256th = [](int64_t x) { return int64_t(std::floor(double(x) / 256.0)); };
    const int64_t x = (c - v) * a + 128;
    return uint8_t(std::clamp<int64_t>(v + floorOf256th(x + floorOf256th(x)), 0, 255));
}

// A source whose channels are read as any number.
template <class Channel>
struct Source
{
    const Frame& frame;
    Channel operator()(int64_t x, int64_t y, int32_t c) const
    {
        EXPECT_TRUE(x >= 0 && x < frame.Width() && y >= 0 && y < frame.Height());
        return frame.Get<Channel>(int32_t(x) * 4 + c, int32_t(y));
    }
};

enum class Kernel
{
    Linear,
    Cubic,
    Box,
    BoxXLinear,
    BoxYLinear,
    BoxXCubic,
    BoxYCubic,
};

Kernel KernelOf(const ScaleCall& call, const Axis& x, const Axis& y)
{
    const bool shrinksX = call.area && x.ratio > kOne, shrinksY = call.area && y.ratio > kOne;
    if (shrinksX && shrinksY)
        return Kernel::Box;
    if (shrinksX)
        return call.cubic ? Kernel::BoxXCubic : Kernel::BoxXLinear;
    if (shrinksY)
        return call.cubic ? Kernel::BoxYCubic : Kernel::BoxYLinear;
    return call.cubic ? Kernel::Cubic : Kernel::Linear;
}

// One pixel of any kernel: where it stands on the two axes, and whether it blends.
struct Pixel
{
    const Axis &ax, &ay;
    Place x, y;
    bool blends; // covered in part, and asked to blend
};

// None leaves the pixel.
std::optional<int64_t> ModelByte(Kernel kernel, const Pixel& p, const Source<uint8_t>& s, int32_t c)
{
    const auto cubicOf = [](const Taps& taps, const std::function<int64_t(int64_t)>& value) {
        int64_t sum = 0;
        for (const Tap& t : taps)
            sum += value(t.pixel) * CubicInteger(t.weight);
        return (sum + 8192) / kOne;
    };
    switch (kernel) {
    case Kernel::Linear: {
        const Taps x = LinearTaps(p.ax, p.x, false), y = LinearTaps(p.ay, p.y, false);
        int64_t sum = 0x800000;
        for (const Tap& ty : y)
            for (const Tap& tx : x)
                sum += s(tx.pixel, ty.pixel, c) * (ty.weight * tx.weight >> 4);
        return {sum >> 24};
    }
    case Kernel::Cubic: {
        const Taps x = CubicTaps(p.ax, p.x, true), y = CubicTaps(p.ay, p.y, false);
        const auto column = [&](int64_t i) { return cubicOf(y, [&](int64_t j) { return s(i, j, c); }); };
        return {std::clamp<int64_t>(cubicOf(x, column), 0, 255)};
    }
    case Kernel::Box: {
        int64_t sum = 0;
        for (const Tap& ty : BoxTaps(p.y))
            for (const Tap& tx : BoxTaps(p.x))
                sum += s(tx.pixel, ty.pixel, c) * (tx.weight * ty.weight / kOne);
        if (!p.blends)
            return {int64_t(
                std::nearbyint(double(sum) * (1.0 / double(p.ax.ratio * p.ay.ratio / kOne)) + 1.5e-8))};
        const int64_t area = p.x.span * p.y.span / kOne;
        return area < 1 ? std::nullopt : std::optional(std::min<int64_t>(sum / area, 255));
    }
    default:
        break;
    }
    const bool alongX = kernel == Kernel::BoxXLinear || kernel == Kernel::BoxXCubic;
    const int64_t divisor = p.blends ? (alongX ? p.x.span : p.y.span) : (alongX ? p.ax.ratio : p.ay.ratio);
    if (divisor < 1)
        return {};
    const auto sumAcross = [&](int64_t line) { // of the box, at a pixel of the other axis
        int64_t sum = 0;
        for (const Tap& t : BoxTaps(alongX ? p.x : p.y))
            sum += t.weight * (alongX ? s(t.pixel, line, c) : s(line, t.pixel, c));
        return sum;
    };
    if (kernel == Kernel::BoxXLinear) {
        int64_t sum = 0;
        for (const Tap& t : LinearTaps(p.ay, p.y, true))
            sum += t.weight * sumAcross(t.pixel);
        return {sum / kOne / divisor};
    }
    if (kernel == Kernel::BoxYLinear) {
        const Taps x = LinearTaps(p.ax, p.x, true);
        int64_t sum = 0;
        for (const Tap& ty : BoxTaps(p.y))
            sum += ty.weight *
                   ((s(x[0].pixel, ty.pixel, c) * x[0].weight + s(x[1].pixel, ty.pixel, c) * x[1].weight) /
                    kOne);
        return {sum / divisor};
    }
    int64_t sum = 8192;
    for (const Tap& t : alongX ? CubicTaps(p.ay, p.y, false) : CubicTaps(p.ax, p.x, true))
        sum += sumAcross(t.pixel) * CubicInteger(t.weight) / kOne;
    return {std::clamp<int64_t>(sum / divisor, 0, 255)};
}

// Linear and cubic in the very steps that single precision takes; boxes in double.
std::optional<float> ModelFloat(Kernel kernel, const Pixel& p, const Source<float>& s, int32_t c)
{
    const auto limited = [c](float v) { return c == 3 ? std::min(std::max(v, 0.0f), 1.0f) : v; };
    const auto part = [](int64_t weight) { return float(weight) * 6.1035156e-5f; };
    switch (kernel) {
    case Kernel::Linear: {
        const Taps x = LinearTaps(p.ax, p.x, false), y = LinearTaps(p.ay, p.y, false);
        float sum = 0.0f;
        for (size_t j = 0; j < 2; ++j)
            for (size_t i = 0; i < 2; ++i) {
                const float product = s(x[i].pixel, y[j].pixel, c) * (part(y[j].weight) * part(x[i].weight));
                sum = i + j == 0 ? product : sum + product;
            }
        return sum;
    }
    case Kernel::Cubic: {
        const auto cubicOf = [](const Taps& taps, const std::function<float(int64_t)>& value) {
            float sum = value(taps[0].pixel) * CubicFloat(taps[0].weight);
            for (size_t t = 1; t < 4; ++t)
                sum += value(taps[t].pixel) * CubicFloat(taps[t].weight);
            return sum;
        };
        const Taps x = CubicTaps(p.ax, p.x, true), y = CubicTaps(p.ay, p.y, false);
        const auto column = [&](int64_t i) { return cubicOf(y, [&](int64_t j) { return s(i, j, c); }); };
        return limited(cubicOf(x, column));
    }
    case Kernel::Box: {
        double sum = 0.0;
        for (const Tap& ty : BoxTaps(p.y))
            for (const Tap& tx : BoxTaps(p.x))
                sum += s(tx.pixel, ty.pixel, c) * double(tx.weight * ty.weight / kOne);
        const int64_t area = p.blends ? p.x.span * p.y.span / kOne : p.ax.ratio * p.ay.ratio / kOne;
        return area < 1 ? std::nullopt : std::optional<float>(float(sum / double(area)));
    }
    default:
        break;
    }
    const bool alongX = kernel == Kernel::BoxXLinear || kernel == Kernel::BoxXCubic;
    const bool cubic = kernel == Kernel::BoxXCubic || kernel == Kernel::BoxYCubic;
    const int64_t divisor = p.blends ? (alongX ? p.x.span : p.y.span) : (alongX ? p.ax.ratio : p.ay.ratio);
    if (divisor < 1)
        return std::nullopt;
    const Taps across = !cubic ? (alongX ? LinearTaps(p.ay, p.y, true) : LinearTaps(p.ax, p.x, true))
                               : (alongX ? CubicTaps(p.ay, p.y, false) : CubicTaps(p.ax, p.x, true));
    double sum = 0.0;
    for (const Tap& t : across)
        for (const Tap& b : BoxTaps(alongX ? p.x : p.y)) {
            const double weight = cubic ? double(CubicFloat(t.weight)) : double(t.weight) / double(kOne);
            sum += weight * double(b.weight) * (alongX ? s(b.pixel, t.pixel, c) : s(t.pixel, b.pixel, c));
        }
    const float value = float(sum / double(divisor));
    return cubic ? limited(value) : value;
}

// By the kernel.
constexpr struct
{
    Walk x, y;
} kWalks[] = {{Walk::Linear, Walk::Linear},     {Walk::Cubic, Walk::Cubic},
              {Walk::Box, Walk::Box},           {Walk::Box, Walk::LinearBesideX},
              {Walk::LinearBesideY, Walk::Box}, {Walk::Box, Walk::CubicBesideX},
              {Walk::CubicBesideY, Walk::Box}};

RECT Whole(const Frame& frame, const ScaleCall& call)
{
    const int32_t unit = call.subPixel ? int32_t(kOne) : 1;
    return {0, 0, frame.Width() * unit, frame.Height() * unit};
}

} // namespace

std::ostream& operator<<(std::ostream& out, const ScaleCall& call)
{
    const auto rect = [&out](const char* name, const std::optional<RECT>& r) {
        if (r)
            out << ", " << name << " " << r->left << " " << r->top << " " << r->right << " " << r->bottom;
    };
    out << (call.cubic ? "cubic" : "linear") << (call.subPixel ? ", sub-pixel" : "")
        << (call.area ? ", area" : "") << (call.noEdgeBlend ? ", no edge blend" : "") << ", "
        << call.bytesPerPixel << " bytes";
    rect("dest", call.destRect);
    rect("source", call.sourceRect);
    return out;
}

void Scale(const ScaleCall& call, Frame& dest, const Frame& source)
{
    const auto function = call.subPixel
                              ? (call.cubic ? VxDibScale_BiCubicSubPixel : VxDibScale_BilinearSubPixel)
                              : (call.cubic ? VxDibScale_BiCubic : VxDibScale_Bilinear);
    const SIZE destSize{dest.Width(), dest.Height()}, sourceSize{source.Width(), source.Height()};
    EXPECT_EQ(function(dest.Data(), &destSize, dest.Stride(), call.destRect ? &*call.destRect : nullptr,
                       source.Data(), &sourceSize, source.Stride(),
                       call.sourceRect ? &*call.sourceRect : nullptr, call.bytesPerPixel, call.area,
                       call.noEdgeBlend),
              S_OK);
}

void ModelScale(const ScaleCall& call, Frame& dest, const Frame& source)
{
    const RECT d = call.destRect ? *call.destRect : Whole(dest, call);
    const RECT s = call.sourceRect ? *call.sourceRect : Whole(source, call);
    const int64_t unit = call.subPixel ? 1 : kOne;
    const Axis ax =
        Prepare(dest.Width(), d.left * unit, d.right * unit, source.Width(), s.left * unit, s.right * unit);
    const Axis ay =
        Prepare(dest.Height(), d.top * unit, d.bottom * unit, source.Height(), s.top * unit, s.bottom * unit);
    if (ax.nothing || ay.nothing)
        return;
    if (!call.subPixel && ax.ratio == kOne && ay.ratio == kOne) {
        for (int64_t y = ay.destFirst / kOne; y < ay.destLast / kOne; ++y)
            for (int64_t x = ax.destFirst / kOne; x < ax.destLast / kOne; ++x)
                std::memcpy(dest.Pixel(int32_t(x), int32_t(y)),
                            source.Pixel(int32_t(x + (ax.sourceFirst - ax.destFirst) / kOne),
                                         int32_t(y + (ay.sourceFirst - ay.destFirst) / kOne)),
                            size_t(call.bytesPerPixel));
        return;
    }
    const Kernel kernel = KernelOf(call, ax, ay);
    const auto& walks = kWalks[size_t(kernel)];
    const bool boxed = kernel != Kernel::Linear && kernel != Kernel::Cubic;
    for (const Place& y : Places(ay, walks.y))
        for (const Place& x : Places(ax, walks.x))
            for (int32_t c = 0; c < 4; ++c) {
                const int32_t element = int32_t(x.pixel) * 4 + c, row = int32_t(y.pixel);
                const int64_t coverage = x.coverage * y.coverage / kOne;
                const Pixel p{ax, ay, x, y, !call.noEdgeBlend && coverage != kOne};
                if (call.bytesPerPixel == 4) {
                    const auto v = ModelByte(kernel, p, {source}, c);
                    if (!v)
                        continue;
                    const uint8_t old = dest.Get<uint8_t>(element, row);
                    dest.Set(element, row,
                             p.blends ? BlendedByte(old, *v, coverage * 255 / kOne) : uint8_t(*v));
                } else {
                    const std::optional<float> v = ModelFloat(kernel, p, {source}, c);
                    if (!v)
                        continue;
                    const float old = dest.Get<float>(element, row);
                    const float f = boxed ? float(coverage) / 16384.0f
                                          : (float(x.coverage) / 16384.0f) * (float(y.coverage) / 16384.0f);
                    dest.Set(element, row, p.blends ? old + (*v - old) * f : *v);
                }
            }
}

} // namespace vxtest
