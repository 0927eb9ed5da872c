#include "peers.h"

namespace vxbench {

void SetUpPeers()
{
    IF_OPENCV(cv::setNumThreads(1);)
}

std::string PeersText()
{
    std::string found;
    IF_OPENCV(found += " OpenCV " CV_VERSION;)
    IF_LIBYUV(found += " libyuv";)
    IF_PIXMAN(found += " pixman " PIXMAN_VERSION_STRING;)
    IF_FMT(found += " fmt " + std::to_string(FMT_VERSION / 10000);)
    return found.empty() ? "peers: plain loops only" : "peers:" + found + ", plain loops";
}

#if VX_BENCH_OPENCV
cv::Mat MatOf(const Frame& frame, int type)
{
    return {frame.size().height, frame.size().width, type, const_cast<uint8_t*>(frame.Bytes()),
            size_t(frame.Stride())};
}
#endif

#if VX_BENCH_PIXMAN
PixmanImage::PixmanImage(const Frame& frame, pixman_format_code_t format)
    : image_(pixman_image_create_bits(format, frame.size().width, frame.size().height,
                                      reinterpret_cast<uint32_t*>(const_cast<uint8_t*>(frame.Bytes())),
                                      frame.Stride()),
             pixman_image_unref)
{}

PixmanImage::PixmanImage(double alpha)
{
    const pixman_color_t colour{0, 0, 0, uint16_t(alpha * 65535.0)};
    image_.reset(pixman_image_create_solid_fill(&colour), pixman_image_unref);
}

void PixmanComposite(pixman_op_t op, pixman_image_t* src, pixman_image_t* mask, pixman_image_t* dst,
                     Size size)
{
    pixman_image_composite32(op, src, mask, dst, 0, 0, 0, 0, 0, 0, size.width, size.height);
}
#endif

} // namespace vxbench
