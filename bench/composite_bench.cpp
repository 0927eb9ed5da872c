// Composite: the seven modes, at full and half opacity. What the peers do differently:
// - libyuv ARGBBlend takes the result as opaque and has no opacity; ARGBAdd, ARGBMultiply and
//   ARGBInterpolate treat alpha like a colour.
// - pixman weighs src by the mask before it mixes, where the library mixes first; its MULTIPLY, OVERLAY and
//   SCREEN are the full formulas of separable blending, which add what either frame shows outside the
//   other. Its float frames run on a general path.
// - OpenCV adds, multiplies and averages all four channels alike.
// On all threads the yardsticks are the library's own call on one thread and a copy shared likewise.
#include "families.h"
#include "peers.h"
#include "plain.h"
#include "vx/composite.h"

namespace vxbench {
namespace {

using enum Content;
using enum Answer;

constexpr struct
{
    VxCompositeMode mode;
    const char* name;
} kModes[] = {{VX_COMPOSITE_SOURCE_OVER, "source over"},
              {VX_COMPOSITE_DESTINATION_OVER, "destination over"},
              {VX_COMPOSITE_ADD, "add"},
              {VX_COMPOSITE_MULTIPLY, "multiply"},
              {VX_COMPOSITE_OVERLAY, "overlay"},
              {VX_COMPOSITE_SCREEN, "screen"},
              {VX_COMPOSITE_AVERAGE, "average"}};

struct Job
{
    Content content;
    VxCompositeMode mode;
    double opacity;

    bool Full() const { return opacity == 1.0; }
};

Call LibraryCall(Frame& dst, const Frame& src, Job job)
{
    return [&dst, &src, job] {
        const auto [width, height] = dst.size();
        Composite(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), dst.BytesPerPixel(), width, height,
                  job.mode, job.opacity);
    };
}

Call PlainCall(Frame& dst, const Frame& src, Job job)
{
    if (job.content == Bytes)
        return [&dst, &src, job] {
            plain::Composite(dst.Bytes(), src.Bytes(), dst.Pixels(), job.mode, job.opacity);
        };
    return [&dst, &src, job] {
        plain::Composite(dst.Floats(), src.Floats(), dst.Pixels(), job.mode, job.opacity);
    };
}

#if VX_BENCH_LIBYUV
using YuvMix = int (*)(const uint8_t*, int, const uint8_t*, int, uint8_t*, int, int, int);

YuvMix YuvMixOf(VxCompositeMode mode)
{
    switch (mode) {
    case VX_COMPOSITE_SOURCE_OVER:
        return libyuv::ARGBBlend;
    case VX_COMPOSITE_ADD:
        return libyuv::ARGBAdd;
    case VX_COMPOSITE_MULTIPLY:
        return libyuv::ARGBMultiply;
    default:
        return nullptr;
    }
}

void AddLibyuv(Work& work, Frame& dst, const Frame& src, Job job)
{
    const int32_t width = work.size().width, height = work.size().height;
    if (job.content != Bytes)
        return;
    if (job.mode == VX_COMPOSITE_AVERAGE) // halfway to the average is a quarter of src
        work.Peer("libyuv", [&dst, &src, width, height, part = job.Full() ? 128 : 64] {
            libyuv::ARGBInterpolate(dst.Bytes(), dst.Stride(), src.Bytes(), src.Stride(), dst.Bytes(),
                                    dst.Stride(), width, height, part);
        });
    const YuvMix mix = YuvMixOf(job.mode);
    if (mix && job.Full())
        work.Peer("libyuv", [&dst, &src, width, height, mix] {
            mix(src.Bytes(), src.Stride(), dst.Bytes(), dst.Stride(), dst.Bytes(), dst.Stride(), width,
                height);
        });
}
#endif

#if VX_BENCH_PIXMAN
pixman_op_t PixmanOperator(VxCompositeMode mode)
{
    switch (mode) {
    case VX_COMPOSITE_DESTINATION_OVER:
        return PIXMAN_OP_OVER_REVERSE;
    case VX_COMPOSITE_ADD:
        return PIXMAN_OP_ADD;
    case VX_COMPOSITE_MULTIPLY:
        return PIXMAN_OP_MULTIPLY;
    case VX_COMPOSITE_OVERLAY:
        return PIXMAN_OP_OVERLAY;
    case VX_COMPOSITE_SCREEN:
        return PIXMAN_OP_SCREEN;
    case VX_COMPOSITE_SOURCE_OVER:
    case VX_COMPOSITE_AVERAGE: // over with half a mask
        break;
    }
    return PIXMAN_OP_OVER;
}

void AddPixman(Work& work, Frame& dst, const Frame& src, Job job)
{
    const auto format = job.content == Bytes ? PIXMAN_a8r8g8b8 : PIXMAN_rgba_float;
    const double opacity = job.mode == VX_COMPOSITE_AVERAGE ? job.opacity / 2 : job.opacity;
    const bool masked = opacity != 1.0;
    work.Peer("pixman",
              [d = PixmanImage(dst, format), s = PixmanImage(src, format), mask = PixmanImage(opacity),
               op = PixmanOperator(job.mode), masked, size = work.size()] {
                  PixmanComposite(op, s, masked ? static_cast<pixman_image_t*>(mask) : nullptr, d, size);
              });
}
#endif

#if VX_BENCH_OPENCV
void AddOpenCv(Work& work, Frame& dst, const Frame& src, Job job)
{
    const int type = job.content == Bytes ? CV_8UC4 : CV_32FC4;
    const double unit = job.content == Bytes ? 1.0 / 255.0 : 1.0;
    const cv::Mat d = MatOf(dst, type), s = MatOf(src, type);
    if (job.mode == VX_COMPOSITE_AVERAGE)
        work.Peer("OpenCV", [d, s, w = job.opacity / 2] { cv::addWeighted(d, 1.0 - w, s, w, 0.0, d); });
    else if (job.mode == VX_COMPOSITE_ADD && job.Full())
        work.Peer("OpenCV", [d, s] { cv::add(d, s, d); });
    else if (job.mode == VX_COMPOSITE_ADD)
        work.Peer("OpenCV", [d, s, opacity = job.opacity] { cv::scaleAdd(s, opacity, d, d); });
    else if (job.mode == VX_COMPOSITE_MULTIPLY && job.Full())
        work.Peer("OpenCV", [d, s, unit] { cv::multiply(d, s, d, unit); });
}
#endif

Traffic TrafficOf(Content content)
{
    return content == Bytes ? Traffic{4, 4, true} : Traffic{16, 16, true};
}

void CompositeOnOneThread(Work& work, Job job)
{
    Frame& dst = Destination(work, job.content);
    const Frame& src = Source(work, job.content);
    work.CopyFloor(TrafficOf(job.content));
    work.Vx(LibraryCall(dst, src, job));
    work.Peer("plain", PlainCall(dst, src, job), Same);
    IF_LIBYUV(AddLibyuv(work, dst, src, job);)
    IF_PIXMAN(AddPixman(work, dst, src, job);)
    IF_OPENCV(AddOpenCv(work, dst, src, job);)
}

void CompositeOnAllThreads(Work& work, Job job)
{
    Frame& dst = Destination(work, job.content);
    const Frame& src = Source(work, job.content);
    work.Use(Threads::All);
    work.CopyFloor(TrafficOf(job.content));
    work.Vx(LibraryCall(dst, src, job));
    work.Peer(
        "one thread",
        [call = LibraryCall(dst, src, job)] {
            const OnOneThread limit;
            call();
        },
        Same);
}

std::string NameOf(const char* mode, Job job)
{
    return std::string("Composite ") + (job.content == Bytes ? "8-bit, " : "float, ") + mode +
           (job.Full() ? "" : " at half");
}

} // namespace

void AddCompositeWorks(Suite& suite)
{
    for (const Content content : {Bytes, Floats})
        for (const auto& [mode, name] : kModes)
            for (const double opacity : {1.0, 0.5}) {
                const Job job{content, mode, opacity};
                suite.Add(NameOf(name, job), kFrameSizes,
                          [job](Work& work) { CompositeOnOneThread(work, job); });
                suite.Add(NameOf(name, job) + ", all threads", kFrameSizes,
                          [job](Work& work) { CompositeOnAllThreads(work, job); });
            }
}

} // namespace vxbench
