// Scaling a 1080p frame. What the peers do differently:
// - OpenCV weighs bytes in 11 bits, samples at pixel centres, and has a cubic kernel of a = -0.75.
// - libyuv weighs bytes in 7 bits. It has no cubic kernel and no floats.
// - zimg works planes, four of which it is given, in 14 bits, and widens its kernels where it shrinks:
//   the triangle of the linear one then covers twice what the library's mean does.
// The floor reads the source and writes the destination.
#include "families.h"
#include "peers.h"
#include "plain.h"
#include "vx/scale.h"

#if VX_BENCH_LIBYUV
#include <libyuv/scale_argb.h>
#endif

namespace vxbench {
namespace {

using enum Content;

constexpr Size kSmaller{1280, 720}, kLarger{3840, 2160}, kQuarter{480, 270}, kOdd{800, 450};

enum class Kernel
{
    Linear,
    Cubic,
    Area,
};

struct Job
{
    Content content;
    Kernel kernel;
};

struct Frames
{
    Frame& dest;
    const Frame& source;
};

SIZE InPixels(Size size)
{
    return {size.width, size.height};
}

Call LibraryCall(const Frames& frames, Job job)
{
    const auto scale = job.kernel == Kernel::Cubic ? VxDibScale_BiCubic : VxDibScale_Bilinear;
    return [frames, job, scale] {
        auto& [dest, source] = frames;
        const SIZE destSize = InPixels(dest.size()), sourceSize = InPixels(source.size());
        scale(dest.Bytes(), &destSize, dest.Stride(), nullptr, source.Bytes(), &sourceSize, source.Stride(),
              nullptr, dest.BytesPerPixel(), job.kernel == Kernel::Area, 0);
    };
}

#if VX_BENCH_OPENCV
void AddOpenCv(Work& work, const Frames& frames, Job job)
{
    const int type = job.content == Bytes ? CV_8UC4 : CV_32FC4;
    const int kernel = job.kernel == Kernel::Linear  ? cv::INTER_LINEAR
                       : job.kernel == Kernel::Cubic ? cv::INTER_CUBIC
                                                     : cv::INTER_AREA;
    work.Peer("OpenCV", [dest = MatOf(frames.dest, type), source = MatOf(frames.source, type), kernel] {
        cv::resize(source, dest, dest.size(), 0, 0, kernel);
    });
}
#endif

#if VX_BENCH_LIBYUV
void AddLibyuv(Work& work, const Frames& frames, Job job)
{
    if (job.content != Bytes || job.kernel == Kernel::Cubic)
        return;
    const auto filter = job.kernel == Kernel::Linear ? libyuv::kFilterBilinear : libyuv::kFilterBox;
    work.Peer("libyuv", [frames, filter] {
        auto& [dest, source] = frames;
        libyuv::ARGBScale(source.Bytes(), source.Stride(), source.size().width, source.size().height,
                          dest.Bytes(), dest.Stride(), dest.size().width, dest.size().height, filter);
    });
}
#endif

#if VX_BENCH_ZIMG
void AddZimg(Work& work, const Frames& frames, Job job)
{
    const auto filter = job.kernel == Kernel::Cubic ? ZIMG_RESIZE_BICUBIC : ZIMG_RESIZE_BILINEAR;
    const auto type = job.content == Bytes ? ZIMG_PIXEL_BYTE : ZIMG_PIXEL_FLOAT;
    work.Peer("zimg", [planes = std::make_shared<ZimgPlanes>(ZimgPlanes::Side{frames.dest.size(), type},
                                                             ZimgPlanes::Side{frames.source.size(), type},
                                                             filter)] { planes->Process(); });
}
#endif

void ScaleOnOneThread(Work& work, Job job)
{
    const Frames frames{Destination(work, job.content), work.Own(Frame(kFullHd, job.content, 3))};
    const auto copy = [frames, copied = std::make_shared<Frame>(work.size(), job.content, 4)] {
        const size_t read = frames.source.ByteCount() / copied->Pixels();
        plain::Copy(copied->Bytes(), size_t(copied->BytesPerPixel()), false, frames.source.Bytes(), read,
                    copied->Pixels());
    };
    work.Floor("copy", copy);
    work.Vx(LibraryCall(frames, job));
    IF_OPENCV(AddOpenCv(work, frames, job);)
    IF_LIBYUV(AddLibyuv(work, frames, job);)
    IF_ZIMG(AddZimg(work, frames, job);)
}

} // namespace

void AddScaleWorks(Suite& suite)
{
    const std::vector<Size> sampled{kSmaller, kLarger, kQuarter}, averaged{kSmaller, kOdd, kQuarter};
    for (const Content content : {Bytes, Floats}) {
        const std::string end = content == Bytes ? " 8-bit to" : " float to";
        const auto add = [&](const char* name, const std::vector<Size>& sizes, Kernel kernel) {
            const Job job{content, kernel};
            suite.Add(name + end, sizes, [job](Work& work) { ScaleOnOneThread(work, job); });
        };
        add("Scale linear", sampled, Kernel::Linear);
        add("Scale cubic", sampled, Kernel::Cubic);
        add("Scale area", averaged, Kernel::Area);
    }
}

} // namespace vxbench
