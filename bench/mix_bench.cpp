// Mixing two frames and scaling one. What the peers do differently:
// - libyuv ARGBInterpolate and BlendPlane weigh in 8 bits and mix alpha like a colour; nothing is clamped
//   to alpha. BlendPlane rounds up. ARGBShade, ARGBMultiply round otherwise and clamp at 255.
// - pixman OVER under a component mask weighs dst by 1 - mask src alpha, alpha included; IN_REVERSE is a
//   frame times the alpha of another.
// - OpenCV weighs in float and rounds to nearest; all four channels alike.
#include "families.h"
#include "peers.h"
#include "plain.h"
#include "vx/blend.h"

#include "support/random.h"

namespace vxbench {
namespace {

using enum Content;
using enum Answer;

constexpr Traffic kBytesIntoBytes{4, 4, true};
constexpr Traffic kMaskIntoFloats{4, 16, true};

void BlendBytes(Work& work)
{
    constexpr double kFactor = 0.7;
    Frame& dst = Destination(work, Bytes);
    const Frame& src = Source(work, Bytes);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kBytesIntoBytes);
    work.Vx([&, width, height] {
        Blend(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), width, height, kFactor);
    });
    work.Peer(
        "plain", [&] { plain::Blend(dst.Bytes(), src.Bytes(), dst.Pixels(), kFactor); }, Same);
    IF_LIBYUV(work.Peer("libyuv", [&, width, height] {
        libyuv::ARGBInterpolate(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), dst.Bytes(),
                                dst.Stride(), width, height, 77);
    });)
    IF_OPENCV(work.Peer("OpenCV", [d = MatOf(dst, CV_8UC4), s = MatOf(src, CV_8UC4)] {
        cv::addWeighted(d, kFactor, s, 1.0 - kFactor, 0.0, d);
    });)
}

// The plane of all bytes, each with its own weight.
IF_LIBYUV(void AddBlendPlane(Work& work, Frame& dst, const Frame& src, const Frame& mask) {
    work.Peer("libyuv", [&] {
        libyuv::BlendPlane(src.Bytes(), src.Stride(), dst.Bytes(), dst.Stride(), mask.Bytes(), mask.Stride(),
                           dst.Bytes(), dst.Stride(), 4 * dst.size().width, dst.size().height);
    });
})

IF_PIXMAN(void AddComponentOver(Work& work, Frame& dst, const Frame& src, const Frame& mask) {
    const PixmanImage weights(mask, PIXMAN_a8r8g8b8);
    pixman_image_set_component_alpha(weights, true);
    work.Peer("pixman",
              [s = PixmanImage(src, PIXMAN_a8r8g8b8), weights, d = PixmanImage(dst, PIXMAN_a8r8g8b8),
               size = work.size()] { PixmanComposite(PIXMAN_OP_OVER, s, weights, d, size); });
})

void MaskedBlendBytes(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& mask = Source(work, ByteMask);
    const Frame& src = Source(work, Bytes);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor({8, 4, true});
    work.Vx([&, width, height] {
        MaskedBlend(dst.Bytes(), dst.Stride(), mask.Bytes(), mask.Stride(), src.Bytes(), src.Stride(), width,
                    height, nullptr);
    });
    work.Peer(
        "plain", [&] { plain::MaskedBlend(dst.Bytes(), mask.Bytes(), src.Bytes(), dst.Pixels()); }, Same);
    IF_LIBYUV(AddBlendPlane(work, dst, src, mask);)
    IF_PIXMAN(AddComponentOver(work, dst, src, mask);)
}

// No peer takes weights through a table.
void MaskedBlendTable(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& mask = Source(work, ByteMask);
    const Frame& src = Source(work, Bytes);
    auto& table = work.Own(std::vector<uint8_t>(1024));
    vxtest::Random random;
    for (uint8_t& entry : table)
        entry = random.Byte();
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor({8, 4, true});
    work.Vx([&, width, height] {
        MaskedBlend(dst.Bytes(), dst.Stride(), mask.Bytes(), mask.Stride(), src.Bytes(), src.Stride(), width,
                    height, table.data());
    });
    work.Peer(
        "plain",
        [&] {
            plain::MaskedBlendWithTable(dst.Bytes(), mask.Bytes(), src.Bytes(), dst.Pixels(), table.data());
        },
        Same);
}

void MaskedFadeBytes(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& src = Source(work, Bytes);
    const Frame& mask = Source(work, ByteMask);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor({8, 4, true});
    work.Vx([&, width, height] {
        MaskedFade(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), 4, mask.Bytes(), mask.Stride(),
                   width, height);
    });
    work.Peer(
        "plain", [&] { plain::MaskedFade(dst.Bytes(), src.Bytes(), mask.Bytes(), dst.Pixels()); }, Same);
    IF_LIBYUV(AddBlendPlane(work, dst, src, mask);)
    IF_PIXMAN(AddComponentOver(work, dst, src, mask);)
}

// No peer fades float frames by an 8-bit mask.
void MaskedFadeFloats(Work& work)
{
    Frame& dst = Destination(work, Floats);
    const Frame& src = Source(work, Floats);
    const Frame& mask = Source(work, ByteMask);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor({20, 16, true});
    work.Vx([&, width, height] {
        MaskedFade(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), 16, mask.Bytes(), mask.Stride(),
                   width, height);
    });
    work.Peer(
        "plain", [&] { plain::MaskedFade(dst.Floats(), src.Floats(), mask.Bytes(), dst.Pixels()); }, Same);
}

constexpr double kHalf = 0.5;

void AddMultiply(Work& work, Frame& frame, bool premultiplied)
{
    const int32_t width = work.size().width, height = work.size().height;
    work.Vx([&, width, height, premultiplied] {
        Multiply(frame.Bytes(), frame.Stride(), frame.BytesPerPixel(), width, height, kHalf, premultiplied);
    });
}

void MultiplyBytes(Work& work, bool premultiplied)
{
    Frame& frame = Destination(work, Bytes);
    work.CopyFloor(kInPlaceBytes);
    AddMultiply(work, frame, premultiplied);
    work.Peer(
        "plain",
        [&frame, premultiplied] { plain::Multiply(frame.Bytes(), frame.Pixels(), kHalf, premultiplied); },
        Same);
    IF_LIBYUV(work.Peer("libyuv", [&frame, size = work.size()] {
        libyuv::ARGBShade(frame.Bytes(), frame.Stride(), frame.Bytes(), frame.Stride(), size.width,
                          size.height, 0x80808080u);
    });)
    IF_OPENCV(work.Peer("OpenCV", [m = MatOf(frame, CV_8UC4)] { m.convertTo(m, -1, kHalf); });)
}

void MultiplyFloats(Work& work, bool premultiplied)
{
    Frame& frame = Destination(work, Floats);
    work.CopyFloor(kInPlaceFloats);
    AddMultiply(work, frame, premultiplied);
    work.Peer(
        "plain",
        [&frame, premultiplied] { plain::Multiply(frame.Floats(), frame.Pixels(), kHalf, premultiplied); },
        Same);
    IF_OPENCV(work.Peer("OpenCV", [m = MatOf(frame, CV_32FC4)] { m.convertTo(m, -1, kHalf); });)
}

constexpr double kScale = 0.8;
constexpr double kOffset = 0.1;

// No peer works on one channel of packed pixels without taking the frame apart.
void MultiplyChannelBytes(Work& work, double scale, double offset)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& src = Source(work, Bytes);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kBytesIntoBytes);
    work.Vx([&, width, height, scale, offset] {
        MultiplyChannel(dst.Bytes(), dst.Stride(), 4, 3, src.Bytes(), src.Stride(), 1, width, height, scale,
                        offset);
    });
    if (scale == 1.0)
        work.Peer(
            "plain", [&] { plain::MultiplyChannel(dst.Bytes(), 3, src.Bytes(), 1, dst.Pixels()); }, Same);
    else
        work.Peer(
            "plain",
            [&, scale, offset] {
                plain::MultiplyChannelScaled(dst.Bytes(), 3, src.Bytes(), 1, dst.Pixels(), scale, offset);
            },
            Same);
}

void MultiplyChannelFloats(Work& work)
{
    Frame& dst = Destination(work, Floats);
    const Frame& src = Source(work, ByteMask);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kMaskIntoFloats);
    work.Vx([&, width, height] {
        MultiplyChannel(dst.Bytes(), dst.Stride(), 16, 3, src.Bytes(), src.Stride(), 1, width, height, kScale,
                        kOffset);
    });
    work.Peer(
        "plain",
        [&] { plain::MultiplyChannel(dst.Floats(), 3, src.Bytes(), 1, dst.Pixels(), kScale, kOffset); },
        Same);
}

constexpr int32_t kEachByItsOwn = -1;
constexpr int32_t kAlpha = 3;

void AddMaskMultiply(Work& work, Frame& dst, const Frame& mask, int32_t channel, double scale, double offset)
{
    const int32_t width = work.size().width, height = work.size().height;
    work.Vx([&, width, height, channel, scale, offset] {
        MaskMultiply(dst.Bytes(), dst.Stride(), dst.BytesPerPixel(), mask.Bytes(), mask.Stride(), width,
                     height, channel, scale, offset);
    });
}

void MaskMultiplyBytes(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& mask = Source(work, ByteMask);
    work.CopyFloor(kBytesIntoBytes);
    AddMaskMultiply(work, dst, mask, kEachByItsOwn, 1.0, 0.0);
    work.Peer(
        "plain", [&] { plain::MaskMultiply(dst.Bytes(), mask.Bytes(), dst.Pixels()); }, Same);
    IF_LIBYUV(work.Peer("libyuv", [&, size = work.size()] {
        libyuv::ARGBMultiply(dst.Bytes(), dst.Stride(), mask.Bytes(), mask.Stride(), dst.Bytes(),
                             dst.Stride(), size.width, size.height);
    });)
    IF_OPENCV(work.Peer("OpenCV", [d = MatOf(dst, CV_8UC4), m = MatOf(mask, CV_8UC4)] {
        cv::multiply(d, m, d, 1.0 / 255.0);
    });)
}

void MaskMultiplyBytesByAlpha(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& mask = Source(work, ByteMask);
    work.CopyFloor(kBytesIntoBytes);
    AddMaskMultiply(work, dst, mask, kAlpha, 1.0, 0.0);
    work.Peer(
        "plain", [&] { plain::MaskMultiplyBy(kAlpha, dst.Bytes(), mask.Bytes(), dst.Pixels()); }, Same);
    IF_PIXMAN(work.Peer(
        "pixman", [m = PixmanImage(mask, PIXMAN_a8r8g8b8), d = PixmanImage(dst, PIXMAN_a8r8g8b8),
                   size = work.size()] { PixmanComposite(PIXMAN_OP_IN_REVERSE, m, nullptr, d, size); });)
}

void MaskMultiplyBytesScaled(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& mask = Source(work, ByteMask);
    work.CopyFloor(kBytesIntoBytes);
    AddMaskMultiply(work, dst, mask, kEachByItsOwn, kScale, kOffset);
    work.Peer(
        "plain", [&] { plain::MaskMultiplyScaled(dst.Bytes(), mask.Bytes(), dst.Pixels(), kScale, kOffset); },
        Same);
}

void MaskMultiplyFloats(Work& work, int32_t channel)
{
    Frame& dst = Destination(work, Floats);
    const Frame& mask = Source(work, ByteMask);
    work.CopyFloor(kMaskIntoFloats);
    AddMaskMultiply(work, dst, mask, channel, kScale, kOffset);
    if (channel == kEachByItsOwn)
        work.Peer(
            "plain", [&] { plain::MaskMultiply(dst.Floats(), mask.Bytes(), dst.Pixels(), kScale, kOffset); },
            Same);
    else
        work.Peer(
            "plain",
            [&, channel] {
                plain::MaskMultiplyBy(channel, dst.Floats(), mask.Bytes(), dst.Pixels(), kScale, kOffset);
            },
            Same);
}

void MultiplyTwoMasks(Work& work)
{
    Frame& dst = Destination(work, FloatPlane);
    const Frame& src = Source(work, FloatPlane);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kBytesIntoBytes);
    work.Vx([&, width, height] {
        MultiplyMasks(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), width, height);
    });
    work.Peer(
        "plain", [&] { plain::MultiplyMasks(dst.Floats(), src.Floats(), dst.Pixels()); }, Same);
    IF_OPENCV(
        work.Peer("OpenCV", [d = MatOf(dst, CV_32FC1), s = MatOf(src, CV_32FC1)] { cv::multiply(d, s, d); });)
}

} // namespace

void AddMixWorks(Suite& suite)
{
    const auto add = [&suite](const char* name, Suite::Build build) { suite.Add(name, kFrameSizes, build); };
    add("Blend 8-bit", BlendBytes);
    add("MaskedBlend 8-bit", MaskedBlendBytes);
    add("MaskedBlend 8-bit, table", MaskedBlendTable);
    add("MaskedFade 8-bit", MaskedFadeBytes);
    add("MaskedFade float", MaskedFadeFloats);
    add("Multiply 8-bit", [](Work& work) { MultiplyBytes(work, false); });
    add("Multiply 8-bit, premultiplied", [](Work& work) { MultiplyBytes(work, true); });
    add("Multiply float", [](Work& work) { MultiplyFloats(work, false); });
    add("Multiply float, premultiplied", [](Work& work) { MultiplyFloats(work, true); });
    add("MultiplyChannel 8-bit", [](Work& work) { MultiplyChannelBytes(work, 1.0, 0.0); });
    add("MultiplyChannel 8-bit, scaled", [](Work& work) { MultiplyChannelBytes(work, kScale, kOffset); });
    add("MultiplyChannel float", MultiplyChannelFloats);
    add("MaskMultiply 8-bit", MaskMultiplyBytes);
    add("MaskMultiply 8-bit, by alpha", MaskMultiplyBytesByAlpha);
    add("MaskMultiply 8-bit, scaled", MaskMultiplyBytesScaled);
    add("MaskMultiply float", [](Work& work) { MaskMultiplyFloats(work, kEachByItsOwn); });
    add("MaskMultiply float, by alpha", [](Work& work) { MaskMultiplyFloats(work, kAlpha); });
    add("MultiplyMasks float", MultiplyTwoMasks);
}

} // namespace vxbench
