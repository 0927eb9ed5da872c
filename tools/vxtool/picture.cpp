#include "vxtool/picture.h"

#include "vxtool/conversion.h"
#include "vxtool/failure.h"
#include "vxtool/files.h"
#include "vxtool/formats.h"
#include "vxtool/size_limits.h"

#include <filesystem>

namespace vxtool {
namespace {

enum class Format
{
    None,
    Png,
    Bmp,
};

Format FormatOf(const std::string& path)
{
    std::string extension = std::filesystem::path(path).extension().string();
    for (char& c : extension)
        c = c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c;
    return extension == ".png" ? Format::Png : extension == ".bmp" ? Format::Bmp : Format::None;
}

VxPixelType ShownType(VxPixelType type)
{
    if (PngHolds(type))
        return type;
    if (type == VXPIXEL_GRAY32)
        return VXPIXEL_GRAY16;
    return WorkingType(type) == VXPIXEL_RGBA32 ? VXPIXEL_RGB24 : VXPIXEL_RGBA64;
}

} // namespace

void CheckSize(const std::string& name, int64_t width, int64_t height, int64_t bitsPerPixel)
{
    if (width == 0 || height == 0)
        FailFile(name, " has no pixels: its size is ", width, "x", height);
    if (!SizeAllowed(width, height, bitsPerPixel))
        FailFile(name, " is too large: ", width, "x", height, " pixels of ", bitsPerPixel,
                 " bits; the limits are ", kLargestSide, " pixels a side, ", kMostPixels,
                 " pixels and 2 GiB");
}

Picture ParsePicture(std::span<const uint8_t> bytes, const std::string& name)
{
    if (LooksLikePng(bytes))
        return ParsePng(bytes, name);
    if (LooksLikeBmp(bytes))
        return ParseBmp(bytes, name);
    FailFile(name, bytes.empty() ? " is empty" : " is neither a PNG nor a BMP picture");
}

Picture ReadPicture(const std::string& path)
{
    return ParsePicture(ReadWholeFile(path), path);
}

VxPixelType CheckOutput(const std::string& path, VxPixelType type, VxPixelType wanted)
{
    const Format format = FormatOf(path);
    if (format == Format::None)
        FailArgument("the name of the written picture must end in .png or .bmp, unlike ", path);
    const bool isPng = format == Format::Png;
    if (type == 0)
        return isPng && !PngHolds(wanted) ? VXPIXEL_RGBA32 : wanted;
    if (isPng && !PngHolds(type))
        FailArgument("a PNG picture cannot hold the type ", NameOfType(type),
                     ", only gray1 to gray16, rgb24, rgba32 and rgba64");
    return type;
}

void WriteShown(const std::string& path, Dib dib)
{
    const VxPixelType type = FormatOf(path) == Format::Png ? ShownType(dib.Type()) : dib.Type();
    WritePicture(path, Converted(std::move(dib), type));
}

void WritePicture(const std::string& path, const Dib& dib)
{
    WriteWholeFile(path, FormatOf(path) == Format::Png ? EncodePng(dib) : EncodeBmp(dib));
}

} // namespace vxtool
