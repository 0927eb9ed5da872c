// Conversions by VxDibCopy. The floor reads and writes as many bytes. What the peers do differently:
// - OpenCV rounds floats to the nearest byte; its 16-bit gray takes two steps.
// - zimg converts planes, four of which it is given; its ordered dither has 16 by 16 pixels.
// - libyuv has no RGB24 from RGB565 and makes 32 bits of it.
#include "bitmap.h"
#include "families.h"
#include "peers.h"
#include "plain.h"
#include "vx/dibcopy.h"
#include "vx/vxkernel.h"

#include <vector>

#if VX_BENCH_LIBYUV
#include <libyuv/convert_argb.h>
#include <libyuv/convert_from_argb.h>
#endif

namespace vxbench {
namespace {

constexpr uint32_t kPickQuality = 1, kFineQuality = 3;
constexpr double kGeneralGoal = 6.0; // times the copy, for pairs without a path of their own
constexpr Size kEightK{7680, 4320};

struct Job
{
    int32_t sourceType, destType;
    uint32_t quality = kFineQuality;
    double sourceGamma = 0.0;
};

struct Bitmaps
{
    Bitmap& dest;
    Bitmap& source;
};

constexpr struct
{
    int32_t type;
    const char* name;
    int32_t bits;
} kTypes[] = {
    {VXPIXEL_GRAY1, "GRAY1", 1},    {VXPIXEL_GRAY4, "GRAY4", 4},      {VXPIXEL_GRAY8, "GRAY8", 8},
    {VXPIXEL_GRAY16, "GRAY16", 16}, {VXPIXEL_GRAY32, "GRAY32", 32},   {VXPIXEL_PAL8, "PAL8", 8},
    {VXPIXEL_RGB555, "RGB555", 16}, {VXPIXEL_RGB565, "RGB565", 16},   {VXPIXEL_RGB24, "RGB24", 24},
    {VXPIXEL_RGB32, "RGB32", 32},   {VXPIXEL_RGBA32, "RGBA32", 32},   {VXPIXEL_RGB101010, "RGB101010", 32},
    {VXPIXEL_RGBA64, "RGBA64", 64}, {VXPIXEL_RGBA128, "RGBA128", 128}};

const auto& TypeOf(int32_t type)
{
    return *std::find_if(std::begin(kTypes), std::end(kTypes), [type](auto& t) { return t.type == type; });
}

std::string NameOf(const Job& job)
{
    return std::string("Convert ") + TypeOf(job.sourceType).name + " to " + TypeOf(job.destType).name;
}

Bitmap& RandomBitmap(Work& work, int32_t type, Size size)
{
    vxtest::Random random(uint64_t(type) + 1);
    auto& bitmap = *work.Own(
        std::make_shared<Bitmap>(type, size.width, size.height, type == VXPIXEL_PAL8 ? 256u : 0u, random));
    if (type == VXPIXEL_GRAY32 || type == VXPIXEL_RGBA128)
        for (int64_t i = 0; i < size.Pixels() * TypeOf(type).bits / 32; ++i) {
            const auto x = float(random.Unit());
            std::memcpy(bitmap.Pixels() + 4 * i, &x, sizeof(x));
        }
    return bitmap;
}

Bitmaps BitmapsOf(Work& work, const Job& job, Size size)
{
    return {RandomBitmap(work, job.destType, size), RandomBitmap(work, job.sourceType, size)};
}

Call LibraryCall(const Bitmaps& bitmaps, const Job& job)
{
    return [bitmaps, job] {
        auto& [dest, source] = bitmaps;
        VxDibCopy(dest.Header(), dest.Pixels(), nullptr, dest.Stride(), source.Header(), source.Pixels(),
                  nullptr, source.Stride(), job.quality, 0.0, job.sourceGamma);
    };
}

// Bytes of eight pixels are as many as bits of one.
void CopyFloor(Work& work, const Bitmaps& bitmaps, const Job& job, double goal)
{
    const auto read = size_t(TypeOf(job.sourceType).bits), written = size_t(TypeOf(job.destType).bits);
    const auto copy = [source = &bitmaps.source, read, written, groups = size_t(work.size().Pixels() / 8),
                       dest = std::make_shared<Memory>(size_t(work.size().Pixels() / 8) * written, 1)] {
        plain::Copy(dest->Bytes(), written, false, source->Pixels(), read, groups);
    };
    work.Floor("copy", copy, goal);
}

void Convert(Work& work, const Job& job, double goal)
{
    const Bitmaps bitmaps = BitmapsOf(work, job, work.size());
    CopyFloor(work, bitmaps, job, goal);
    work.Vx(LibraryCall(bitmaps, job));
}

#if VX_BENCH_OPENCV
cv::Mat MatOf(Bitmap& bitmap, Size size, int type)
{
    return {size.height, size.width, type, bitmap.Pixels(), size_t(bitmap.Stride())};
}

void AddOpenCv(Work& work, const Bitmaps& bitmaps, const Job& job)
{
    const auto mats = [&](int sourceType, int destType) {
        return std::pair(MatOf(bitmaps.source, work.size(), sourceType),
                         MatOf(bitmaps.dest, work.size(), destType));
    };
    const auto cut = [&](double scale, int sourceType, int destType) {
        work.Peer("OpenCV", [m = mats(sourceType, destType), scale]() mutable {
            m.first.convertTo(m.second, m.second.type(), scale);
        });
    };
    const auto recode = [&](int code, int sourceType, int destType) {
        work.Peer("OpenCV",
                  [m = mats(sourceType, destType), code] { cv::cvtColor(m.first, m.second, code); });
    };
    const auto is = [&](int32_t from, int32_t to) { return job.sourceType == from && job.destType == to; };
    if (is(VXPIXEL_RGBA128, VXPIXEL_RGBA32) && job.sourceGamma == 0.0)
        cut(255.0, CV_32FC4, CV_8UC4);
    else if (is(VXPIXEL_RGBA32, VXPIXEL_RGBA128) && job.sourceGamma == 0.0)
        cut(1.0 / 255.0, CV_8UC4, CV_32FC4);
    else if (is(VXPIXEL_RGBA32, VXPIXEL_RGBA128))
        work.Peer("OpenCV", [m = mats(CV_8UC4, CV_32FC4), table = cv::Mat(1, 256, CV_32F, 0.5)] {
            cv::LUT(m.first, table, m.second);
        });
    else if (is(VXPIXEL_RGB24, VXPIXEL_RGBA32))
        recode(cv::COLOR_BGR2BGRA, CV_8UC3, CV_8UC4);
    else if (is(VXPIXEL_RGBA32, VXPIXEL_RGB24))
        recode(cv::COLOR_BGRA2BGR, CV_8UC4, CV_8UC3);
    else if (is(VXPIXEL_RGB565, VXPIXEL_RGB24))
        recode(cv::COLOR_BGR5652BGR, CV_8UC2, CV_8UC3);
    else if (is(VXPIXEL_RGBA32, VXPIXEL_RGB565))
        recode(cv::COLOR_BGRA2BGR565, CV_8UC4, CV_8UC2);
    else if (is(VXPIXEL_GRAY16, VXPIXEL_RGBA32))
        work.Peer("OpenCV", [m = mats(CV_16UC1, CV_8UC4), gray = cv::Mat()]() mutable {
            m.first.convertTo(gray, CV_8U, 1.0 / 257.0);
            cv::cvtColor(gray, m.second, cv::COLOR_GRAY2BGRA);
        });
}
#endif

#if VX_BENCH_LIBYUV
using YuvConvert = int (*)(const uint8_t*, int, uint8_t*, int, int, int);

YuvConvert YuvConvertOf(const Job& job)
{
    if (job.sourceType == VXPIXEL_RGB24 && job.destType == VXPIXEL_RGBA32)
        return libyuv::RGB24ToARGB;
    if (job.sourceType == VXPIXEL_RGBA32 && job.destType == VXPIXEL_RGB24)
        return libyuv::ARGBToRGB24;
    if (job.sourceType == VXPIXEL_RGB565 && job.destType == VXPIXEL_RGBA32)
        return libyuv::RGB565ToARGB;
    if (job.sourceType == VXPIXEL_RGBA32 && job.destType == VXPIXEL_RGB565)
        return libyuv::ARGBToRGB565;
    if (job.sourceType == VXPIXEL_RGBA32 && job.destType == VXPIXEL_RGB101010)
        return libyuv::ARGBToAR30;
    return nullptr;
}

void AddLibyuv(Work& work, const Bitmaps& bitmaps, const Job& job)
{
    if (const YuvConvert convert = YuvConvertOf(job))
        work.Peer("libyuv", [bitmaps, convert, size = work.size()] {
            convert(bitmaps.source.Pixels(), bitmaps.source.Stride(), bitmaps.dest.Pixels(),
                    bitmaps.dest.Stride(), size.width, size.height);
        });
}
#endif

#if VX_BENCH_ZIMG
void AddZimg(Work& work, const Job& job)
{
    if (job.sourceType != VXPIXEL_RGBA128 || job.destType != VXPIXEL_RGBA32 || job.sourceGamma != 0.0)
        return;
    const auto dither = job.quality == kFineQuality ? ZIMG_DITHER_ORDERED : ZIMG_DITHER_NONE;
    work.Peer("zimg",
              [planes = std::make_shared<ZimgPlanes>(ZimgPlanes::Side{work.size(), ZIMG_PIXEL_BYTE},
                                                     ZimgPlanes::Side{work.size(), ZIMG_PIXEL_FLOAT},
                                                     ZIMG_RESIZE_POINT, dither)] { planes->Process(); });
}
#endif

void ConvertBesidePeers(Work& work, const Job& job)
{
    const Bitmaps bitmaps = BitmapsOf(work, job, work.size());
    CopyFloor(work, bitmaps, job, kNoGoal);
    work.Vx(LibraryCall(bitmaps, job));
    IF_OPENCV(AddOpenCv(work, bitmaps, job);)
    IF_LIBYUV(AddLibyuv(work, bitmaps, job);)
    IF_ZIMG(AddZimg(work, job);)
}

// The cost of a pixel, set against that of one in many tiles, which fill as much memory.
void ConvertBesideTiles(Work& work, const Job& job)
{
    work.Vx(LibraryCall(BitmapsOf(work, job, work.size()), job));
    std::vector<Call> tiles;
    for (int64_t i = 0; i < work.size().Pixels() / kTile.Pixels(); ++i)
        tiles.push_back(LibraryCall(BitmapsOf(work, job, kTile), job));
    work.Floor("tiles", [tiles = std::move(tiles)] {
        for (const Call& tile : tiles)
            tile();
    });
}

const std::pair<const char*, Job> kPeerJobs[] = {
    {", dithered", {VXPIXEL_RGBA128, VXPIXEL_RGBA32}},
    {", cut", {VXPIXEL_RGBA128, VXPIXEL_RGBA32, kPickQuality}},
    {" with a curve, dithered", {VXPIXEL_RGBA128, VXPIXEL_RGBA32, kFineQuality, 0.5}},
    {" with a curve, picked", {VXPIXEL_RGBA128, VXPIXEL_RGBA32, kPickQuality, 0.5}},
    {"", {VXPIXEL_RGBA32, VXPIXEL_RGBA128}},
    {" with a curve", {VXPIXEL_RGBA32, VXPIXEL_RGBA128, kFineQuality, 0.5}},
    {"", {VXPIXEL_RGB24, VXPIXEL_RGBA32}},
    {"", {VXPIXEL_RGBA32, VXPIXEL_RGB24}},
    {"", {VXPIXEL_RGB565, VXPIXEL_RGB24}},
    {"", {VXPIXEL_RGB565, VXPIXEL_RGBA32}},
    {"", {VXPIXEL_RGBA32, VXPIXEL_RGB565}},
    {"", {VXPIXEL_GRAY16, VXPIXEL_RGBA32}},
    {"", {VXPIXEL_RGBA32, VXPIXEL_RGB101010}},
    {"", {VXPIXEL_RGBA32, VXPIXEL_PAL8}},
};

constexpr std::pair<int32_t, int32_t> kGeneralPairs[] = {
    {VXPIXEL_GRAY1, VXPIXEL_RGBA32},      {VXPIXEL_GRAY8, VXPIXEL_RGB24},
    {VXPIXEL_GRAY8, VXPIXEL_RGBA32},      {VXPIXEL_RGBA32, VXPIXEL_GRAY8},
    {VXPIXEL_RGB24, VXPIXEL_GRAY4},       {VXPIXEL_GRAY32, VXPIXEL_GRAY8},
    {VXPIXEL_PAL8, VXPIXEL_RGBA32},       {VXPIXEL_PAL8, VXPIXEL_RGB565},
    {VXPIXEL_RGB555, VXPIXEL_RGB565},     {VXPIXEL_RGBA32, VXPIXEL_RGB555},
    {VXPIXEL_RGB565, VXPIXEL_RGBA64},     {VXPIXEL_RGBA64, VXPIXEL_RGB24},
    {VXPIXEL_RGB101010, VXPIXEL_RGBA32},  {VXPIXEL_RGBA32, VXPIXEL_RGBA64},
    {VXPIXEL_RGBA64, VXPIXEL_RGBA32},     {VXPIXEL_RGBA64, VXPIXEL_RGBA128},
    {VXPIXEL_RGBA128, VXPIXEL_RGBA64},    {VXPIXEL_RGBA128, VXPIXEL_RGB565},
    {VXPIXEL_RGB101010, VXPIXEL_RGBA128}, {VXPIXEL_RGB32, VXPIXEL_RGBA32},
};

constexpr std::pair<int32_t, int32_t> kPixelCostPairs[] = {{VXPIXEL_RGBA32, VXPIXEL_RGBA32},
                                                           {VXPIXEL_RGB24, VXPIXEL_RGBA32},
                                                           {VXPIXEL_RGB565, VXPIXEL_RGB24},
                                                           {VXPIXEL_RGBA32, VXPIXEL_GRAY8}};

} // namespace

void AddConvertWorks(Suite& suite)
{
    for (const auto& [mode, job] : kPeerJobs)
        suite.Add(NameOf(job) + mode, kFrameSizes,
                  [job = job](Work& work) { ConvertBesidePeers(work, job); });
    for (const auto& [from, to] : kGeneralPairs) {
        const Job job{from, to};
        suite.Add(NameOf(job) + ", general", {kFullHd},
                  [job](Work& work) { Convert(work, job, kGeneralGoal); });
    }
    for (const int32_t type : {VXPIXEL_GRAY8, VXPIXEL_RGB24, VXPIXEL_RGBA32, VXPIXEL_RGBA128}) {
        const Job job{type, type};
        suite.Add(NameOf(job) + ", equal types", kFrameSizes,
                  [job](Work& work) { Convert(work, job, kCopyGoal); });
    }
    for (const auto& [from, to] : kPixelCostPairs) {
        const Job job{from, to};
        suite.Add(NameOf(job) + ", a pixel", {kFullHd, kEightK},
                  [job](Work& work) { ConvertBesideTiles(work, job); });
    }
}

} // namespace vxbench
