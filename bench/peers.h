// The peer libraries: each is optional, and its calls stand inside IF_OPENCV, IF_LIBYUV, IF_PIXMAN,
// IF_ZIMG or IF_FMT, which leave nothing where the library is missing.
#pragma once

#include "frames.h"

#include <string>

#if VX_BENCH_OPENCV
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>
#define IF_OPENCV(...) __VA_ARGS__
#else
#define IF_OPENCV(...)
#endif

#if VX_BENCH_LIBYUV
#include <libyuv/planar_functions.h>
#define IF_LIBYUV(...) __VA_ARGS__
#else
#define IF_LIBYUV(...)
#endif

#if VX_BENCH_PIXMAN
#include <pixman.h>
#define IF_PIXMAN(...) __VA_ARGS__
#else
#define IF_PIXMAN(...)
#endif

#if VX_BENCH_ZIMG
#include <zimg.h>
#define IF_ZIMG(...) __VA_ARGS__
#else
#define IF_ZIMG(...)
#endif

#if VX_BENCH_FMT
#include <fmt/format.h>
#define IF_FMT(...) __VA_ARGS__
#else
#define IF_FMT(...)
#endif

namespace vxbench {

// Peers stay on the calling thread.
void SetUpPeers();

// One line that says which peers took part.
std::string PeersText();

#if VX_BENCH_OPENCV
// The frame's own pixels, as CV_8UC4, CV_32FC4 or a plane. OpenCV has no constant view: sources are
// only read.
cv::Mat MatOf(const Frame& frame, int type);
#endif

#if VX_BENCH_PIXMAN
class PixmanImage
{
public:
    PixmanImage(const Frame& frame, pixman_format_code_t format);
    // One colour of that alpha, as a mask.
    explicit PixmanImage(double alpha);

    operator pixman_image_t*() const { return image_.get(); }

private:
    std::shared_ptr<pixman_image_t> image_;
};

// src over dst, in the sense of the operator, under a mask that may be null.
void PixmanComposite(pixman_op_t op, pixman_image_t* src, pixman_image_t* mask, pixman_image_t* dst,
                     Size size);
#endif

#if VX_BENCH_ZIMG
// Four planes scaled or converted, one after the other. Their pictures are the same.
class ZimgPlanes
{
public:
    struct Side
    {
        Size size;
        zimg_pixel_type_e type;
    };

    ZimgPlanes(Side dest, Side source, zimg_resample_filter_e filter,
               zimg_dither_type_e dither = ZIMG_DITHER_NONE);
    void Process();

private:
    static constexpr size_t kPlanes = 4;

    std::shared_ptr<zimg_filter_graph> graph_;
    std::vector<Frame> dest_, source_;
    Memory scratch_;
};
#endif

} // namespace vxbench
