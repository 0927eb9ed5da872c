// Channels, fills, copies, tables and thresholds. What the peers do differently:
// - libyuv RGBColorTable leaves alpha alone and clamps nothing.
// - OpenCV threshold is one comparison: TOZERO is ThresholdClear with "above" for "not below"; TRUNC
//   stands in for ClipRestore and the soft step, of which it does a part.
// - No peer replaces whole pixels by table.
#include "families.h"
#include "peers.h"
#include "plain.h"
#include "vx/channels.h"

#include "support/random.h"

namespace vxbench {
namespace {

using enum Content;
using enum Answer;

constexpr int kAlpha = 3;

// ChannelCopy as the host calls it: pointers already at the channel.
void AddChannelCopy(Work& work, uint8_t* dst, int32_t dstStep, const uint8_t* src, int32_t srcStep)
{
    const int32_t width = work.size().width, height = work.size().height;
    work.Vx(
        [=] { ChannelCopy(dst, width * dstStep, dstStep, width, height, src, width * srcStep, srcStep); });
    work.Peer(
        "plain",
        [=, count = size_t(work.size().Pixels())] {
            plain::ChannelCopy(dst, size_t(dstStep), src, size_t(srcStep), count);
        },
        Same);
}

void AlphaToPlane(Work& work)
{
    Frame& dst = Destination(work, BytePlane);
    const Frame& src = Source(work, Bytes);
    work.CopyFloor({4, 1, false});
    AddChannelCopy(work, dst.Bytes(), 1, src.Bytes() + kAlpha, 4);
    IF_LIBYUV(work.Peer(
        "libyuv",
        [&, size = work.size()] {
            libyuv::ARGBExtractAlpha(src.Bytes(), src.Stride(), dst.Bytes(), dst.Stride(), size.width,
                                     size.height);
        },
        Same);)
    IF_OPENCV(work.Peer(
        "OpenCV", [d = MatOf(dst, CV_8UC1), s = MatOf(src, CV_8UC4)] { cv::extractChannel(s, d, kAlpha); },
        Same);)
}

void PlaneToAlpha(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& src = Source(work, BytePlane);
    work.CopyFloor({1, 4, true});
    AddChannelCopy(work, dst.Bytes() + kAlpha, 4, src.Bytes(), 1);
    IF_LIBYUV(work.Peer(
        "libyuv",
        [&, size = work.size()] {
            libyuv::ARGBCopyYToAlpha(src.Bytes(), src.Stride(), dst.Bytes(), dst.Stride(), size.width,
                                     size.height);
        },
        Same);)
    IF_OPENCV(work.Peer(
        "OpenCV", [d = MatOf(dst, CV_8UC4), s = MatOf(src, CV_8UC1)] { cv::insertChannel(s, d, kAlpha); },
        Same);)
}

void AlphaToAlpha(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& src = Source(work, Bytes);
    work.CopyFloor({4, 4, true});
    AddChannelCopy(work, dst.Bytes() + kAlpha, 4, src.Bytes() + kAlpha, 4);
    IF_LIBYUV(work.Peer(
        "libyuv",
        [&, size = work.size()] {
            libyuv::ARGBCopyAlpha(src.Bytes(), src.Stride(), dst.Bytes(), dst.Stride(), size.width,
                                  size.height);
        },
        Same);)
    IF_OPENCV(work.Peer(
        "OpenCV",
        [d = MatOf(dst, CV_8UC4), s = MatOf(src, CV_8UC4)]() mutable {
            constexpr int kFromTo[] = {kAlpha, kAlpha};
            cv::mixChannels(&s, 1, &d, 1, kFromTo, 1);
        },
        Same);)
}

void PlaneToPlane(Work& work)
{
    Frame& dst = Destination(work, BytePlane);
    const Frame& src = Source(work, BytePlane);
    work.CopyFloor({1, 1, false});
    AddChannelCopy(work, dst.Bytes(), 1, src.Bytes(), 1);
    IF_LIBYUV(work.Peer(
        "libyuv",
        [&, size = work.size()] {
            libyuv::CopyPlane(src.Bytes(), src.Stride(), dst.Bytes(), dst.Stride(), size.width, size.height);
        },
        Same);)
}

constexpr float kColour[] = {0.75f, 0.5f, 0.25f, 1.0f}; // blue, green, red, alpha
constexpr uint32_t kColourWord = 0xFF4080BF;

void AddFill(Work& work, Frame& frame)
{
    const int32_t width = work.size().width, height = work.size().height;
    work.Vx([&, width, height] {
        Fill(frame.Bytes(), frame.Stride(), frame.BytesPerPixel(), width, height, kColour[3], kColour[2],
             kColour[1], kColour[0]);
    });
}

void FillBytes(Work& work)
{
    Frame& frame = Destination(work, Bytes);
    work.CopyFloor({0, 4, false});
    AddFill(work, frame);
    const auto words = reinterpret_cast<uint32_t*>(frame.Bytes());
    work.Peer(
        "plain", [&frame, words] { plain::Fill(words, frame.Pixels(), kColourWord); }, Same);
    IF_LIBYUV(work.Peer(
        "libyuv",
        [&, size = work.size()] {
            libyuv::ARGBRect(frame.Bytes(), frame.Stride(), 0, 0, size.width, size.height, kColourWord);
        },
        Same);)
    IF_PIXMAN(work.Peer(
        "pixman",
        [words, size = work.size()] {
            pixman_fill(words, size.width, 32, 0, 0, size.width, size.height, kColourWord);
        },
        Same);)
    IF_OPENCV(work.Peer(
        "OpenCV", [m = MatOf(frame, CV_8UC4)]() mutable { m.setTo(cv::Scalar(0xBF, 0x80, 0x40, 0xFF)); },
        Same);)
}

void FillFloats(Work& work)
{
    Frame& frame = Destination(work, Floats);
    work.CopyFloor({0, 16, false});
    AddFill(work, frame);
    work.Peer(
        "plain", [&] { plain::Fill(frame.Floats(), frame.Pixels(), kColour); }, Same);
    IF_OPENCV(work.Peer(
        "OpenCV",
        [m = MatOf(frame, CV_32FC4)]() mutable {
            m.setTo(cv::Scalar(kColour[0], kColour[1], kColour[2], kColour[3]));
        },
        Same);)
}

IF_PIXMAN(void AddPixmanCopy(Work& work, Frame& dst, const Frame& src) {
    work.Peer(
        "pixman",
        [s = PixmanImage(src, PIXMAN_a8r8g8b8), d = PixmanImage(dst, PIXMAN_a8r8g8b8), size = work.size()] {
            PixmanComposite(PIXMAN_OP_SRC, s, nullptr, d, size);
        },
        Same);
})

void CopyFrame(Work& work, Content content)
{
    Frame& dst = Destination(work, content);
    const Frame& src = Source(work, content);
    const int32_t width = work.size().width, height = work.size().height;
    const int32_t bytes = dst.BytesPerPixel();
    work.CopyFloor({bytes, bytes, false});
    work.Vx([&, width, height, bytes] {
        BitmapCopy(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), width, bytes, height);
    });
    IF_LIBYUV(work.Peer(
        "libyuv",
        [&, width, height, bytes] {
            libyuv::CopyPlane(src.Bytes(), src.Stride(), dst.Bytes(), dst.Stride(), width * bytes, height);
        },
        Same);)
    IF_PIXMAN(if (content == Bytes) AddPixmanCopy(work, dst, src);)
    IF_OPENCV(const int type = content == Bytes ? CV_8UC4 : CV_32FC4; work.Peer(
        "OpenCV", [d = MatOf(dst, type), s = MatOf(src, type)] { s.copyTo(d); }, Same);)
}

template <class Entry>
std::vector<Entry>& RandomTable(Work& work, size_t entries)
{
    auto& table = work.Own(std::vector<Entry>(entries));
    vxtest::Random random;
    for (Entry& entry : table)
        entry = Entry(random.Next());
    return table;
}

void MapInPlace(Work& work)
{
    Frame& frame = Destination(work, Bytes);
    const auto& table = RandomTable<uint32_t>(work, 256);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kInPlaceBytes);
    work.Vx(
        [&, width, height] { ChannelMap(frame.Bytes(), frame.Stride(), 1, width, height, table.data()); });
    work.Peer(
        "plain", [&] { plain::ChannelMap(frame.Bytes(), 1, frame.Pixels(), table.data()); }, Same);
}

void MapFrame(Work& work)
{
    Frame& dst = Destination(work, Bytes);
    const Frame& src = Source(work, Bytes);
    const auto& table = RandomTable<uint32_t>(work, 256);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor({4, 4, false});
    work.Vx([&, width, height] {
        ChannelMapEx(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), 1, width, height, table.data());
    });
    work.Peer(
        "plain", [&] { plain::ChannelMapEx(dst.Bytes(), src.Bytes(), 1, dst.Pixels(), table.data()); }, Same);
}

// A table that the inner cache holds beside the rows, or not.
void MapFloatFrame(Work& work, int32_t entries)
{
    Frame& dst = Destination(work, Floats);
    const Frame& src = Source(work, Floats);
    auto& table = work.Own(std::vector<float>(size_t(entries) * 4));
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = float(i);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor({16, 16, false});
    work.Vx([&, width, height, entries] {
        ChannelMapExFloat(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), 1, width, height,
                          table.data(), entries);
    });
    work.Peer(
        "plain",
        [&, entries] {
            plain::ChannelMapExFloat(dst.Floats(), src.Floats(), 1, dst.Pixels(), table.data(), entries);
        },
        Same);
}

void MergeChannels(Work& work)
{
    Frame& frame = Destination(work, Bytes);
    const auto& table = RandomTable<uint32_t>(work, 256);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kInPlaceBytes);
    work.Vx([&, width, height] {
        ChannelMergeLut(frame.Bytes(), frame.Stride(), 3, width, height, table.data());
    });
    work.Peer(
        "plain", [&] { plain::ChannelMergeLut(frame.Bytes(), 3, frame.Pixels(), table.data()); }, Same);
}

void LutBytes(Work& work)
{
    Frame& frame = Destination(work, Bytes);
    const auto& table = RandomTable<uint8_t>(work, 1024);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kInPlaceBytes);
    work.Vx([&, width, height] { Lut(frame.Bytes(), frame.Stride(), width, height, table.data()); });
    work.Peer(
        "plain", [&] { plain::Lut(frame.Bytes(), frame.Pixels(), table.data()); }, Same);
    IF_LIBYUV(work.Peer(
        "libyuv",
        [&, width, height] {
            libyuv::ARGBColorTable(frame.Bytes(), frame.Stride(), table.data(), 0, 0, width, height);
        },
        Same);)
    IF_OPENCV(const cv::Mat columns(1, 256, CV_8UC4, const_cast<uint8_t*>(table.data())); work.Peer(
        "OpenCV", [m = MatOf(frame, CV_8UC4), columns] { cv::LUT(m, columns, m); }, Same);)
}

void LutClamped(Work& work)
{
    Frame& frame = Destination(work, Bytes);
    const auto& table = RandomTable<uint8_t>(work, 1024);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kInPlaceBytes);
    work.Vx([&, width, height] {
        LutWithAlphaClamp(frame.Bytes(), frame.Stride(), width, height, table.data());
    });
    work.Peer(
        "plain", [&] { plain::LutWithAlphaClamp(frame.Bytes(), frame.Pixels(), table.data()); }, Same);
    IF_LIBYUV(work.Peer("libyuv", [&, width, height] {
        libyuv::RGBColorTable(frame.Bytes(), frame.Stride(), table.data(), 0, 0, width, height);
    });)
}

constexpr double kLow = 0.25;
constexpr double kHigh = 0.75;

// Colours of 0.0 to 1.0 lie on both sides of a limit of 0.4 in 255ths.
void ClipRestoreFloats(Work& work)
{
    constexpr double kLimit = 0.4 / 255.0;
    constexpr double kFloor = 0.3 / 255.0;
    Frame& frame = Destination(work, Floats);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kInPlaceFloats);
    work.Vx(
        [&, width, height] { ClipRestore(frame.Bytes(), frame.Stride(), width, height, kLimit, kFloor); });
    work.Peer(
        "plain", [&] { plain::ClipRestore(frame.Floats(), frame.Pixels(), kLimit, kFloor); }, Same);
    IF_OPENCV(work.Peer("OpenCV",
                        [m = MatOf(frame, CV_32FC4)] { cv::threshold(m, m, 0.4, 0.0, cv::THRESH_TRUNC); });)
}

void SoftThreshold(Work& work)
{
    Frame& frame = Destination(work, Floats);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(kInPlaceFloats);
    work.Vx(
        [&, width, height] { ThresholdFloat(frame.Bytes(), frame.Stride(), width, height, kLow, kHigh); });
    work.Peer(
        "plain", [&] { plain::ThresholdFloat(frame.Floats(), frame.Pixels(), kLow, kHigh); }, Same);
    IF_OPENCV(work.Peer("OpenCV",
                        [m = MatOf(frame, CV_32FC4)] { cv::threshold(m, m, kHigh, 0.0, cv::THRESH_TRUNC); });)
}

void ClearBelow(Work& work, Content content)
{
    Frame& frame = Destination(work, content);
    const int32_t width = work.size().width, height = work.size().height;
    work.CopyFloor(content == Bytes ? kInPlaceBytes : kInPlaceFloats);
    work.Vx([&, width, height] {
        ThresholdClear(frame.Bytes(), frame.Stride(), frame.BytesPerPixel(), width, height, float(kLow));
    });
    if (content == Bytes)
        work.Peer(
            "plain", [&] { plain::ThresholdClear(frame.Bytes(), frame.Pixels(), float(kLow)); }, Same);
    else
        work.Peer(
            "plain", [&] { plain::ThresholdClear(frame.Floats(), frame.Pixels(), float(kLow)); }, Same);
    IF_OPENCV(const double level = content == Bytes ? 63.0 : kLow;
              work.Peer("OpenCV", [m = MatOf(frame, content == Bytes ? CV_8UC4 : CV_32FC4), level] {
                  cv::threshold(m, m, level, 0.0, cv::THRESH_TOZERO);
              });)
}

} // namespace

void AddChannelWorks(Suite& suite)
{
    const auto add = [&suite](const char* name, Suite::Build build) { suite.Add(name, kFrameSizes, build); };
    add("ChannelCopy, alpha to plane", AlphaToPlane);
    add("ChannelCopy, plane to alpha", PlaneToAlpha);
    add("ChannelCopy, alpha to alpha", AlphaToAlpha);
    add("ChannelCopy, plane to plane", PlaneToPlane);
    add("Fill 8-bit", FillBytes);
    add("Fill float", FillFloats);
    add("BitmapCopy 8-bit", [](Work& work) { CopyFrame(work, Bytes); });
    add("BitmapCopy float", [](Work& work) { CopyFrame(work, Floats); });
    add("ChannelMap 8-bit", MapInPlace);
    add("ChannelMapEx 8-bit", MapFrame);
    add("ChannelMapExFloat, 256 entries", [](Work& work) { MapFloatFrame(work, 256); });
    add("ChannelMapExFloat, 4096 entries", [](Work& work) { MapFloatFrame(work, 4096); });
    add("ChannelMergeLut 8-bit", MergeChannels);
    add("Lut 8-bit", LutBytes);
    add("LutWithAlphaClamp 8-bit", LutClamped);
    add("ClipRestore float", ClipRestoreFloats);
    add("ThresholdFloat", SoftThreshold);
    add("ThresholdClear 8-bit", [](Work& work) { ClearBelow(work, Bytes); });
    add("ThresholdClear float", [](Work& work) { ClearBelow(work, Floats); });
}

} // namespace vxbench
