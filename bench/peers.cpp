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
    IF_ZIMG(found += " zimg";)
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

#if VX_BENCH_ZIMG
namespace {

zimg_image_format FormatOf(ZimgPlanes::Side side)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = unsigned(side.size.width);
    format.height = unsigned(side.size.height);
    format.pixel_type = side.type;
    format.depth = side.type == ZIMG_PIXEL_BYTE ? 8 : 32;
    format.pixel_range = ZIMG_RANGE_FULL;
    return format;
}

// Its rows start cache lines, as zimg asks.
Frame PlaneOf(ZimgPlanes::Side side, uint64_t seed)
{
    const Size padded{(side.size.width + 63) / 64 * 64, side.size.height};
    return Frame(padded, side.type == ZIMG_PIXEL_BYTE ? Content::BytePlane : Content::FloatPlane, seed);
}

std::shared_ptr<zimg_filter_graph> GraphOf(ZimgPlanes::Side dest, ZimgPlanes::Side source,
                                           zimg_resample_filter_e filter, zimg_dither_type_e dither)
{
    const zimg_image_format from = FormatOf(source), to = FormatOf(dest);
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter = filter;
    params.dither_type = dither;
    if (filter == ZIMG_RESIZE_BICUBIC) {
        params.filter_param_a = 0.0;
        params.filter_param_b = 0.5;
    }
    return {zimg_filter_graph_build(&from, &to, &params), zimg_filter_graph_free};
}

size_t ScratchBytes(const zimg_filter_graph& graph)
{
    size_t bytes = 0;
    zimg_filter_graph_get_tmp_size(&graph, &bytes);
    return bytes;
}

} // namespace

ZimgPlanes::ZimgPlanes(Side dest, Side source, zimg_resample_filter_e filter, zimg_dither_type_e dither)
    : graph_(GraphOf(dest, source, filter, dither)), scratch_(ScratchBytes(*graph_))
{
    for (uint64_t seed = 0; seed < kPlanes; ++seed) {
        dest_.push_back(PlaneOf(dest, seed));
        source_.push_back(PlaneOf(source, seed));
    }
}

void ZimgPlanes::Process()
{
    for (size_t i = 0; i < kPlanes; ++i) {
        const zimg_image_buffer_const from{ZIMG_API_VERSION,
                                           {{source_[i].Bytes(), source_[i].Stride(), ZIMG_BUFFER_MAX}}};
        const zimg_image_buffer to{ZIMG_API_VERSION,
                                   {{dest_[i].Bytes(), dest_[i].Stride(), ZIMG_BUFFER_MAX}}};
        zimg_filter_graph_process(graph_.get(), &from, &to, scratch_.Bytes(), nullptr, nullptr, nullptr,
                                  nullptr);
    }
}
#endif

} // namespace vxbench
