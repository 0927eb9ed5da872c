#include "vxtool/dib.h"

#include "vxtool/failure.h"
#include "vxtool/size_limits.h"

#include <algorithm>
#include <utility>

namespace vxtool {
namespace {

struct TypeName
{
    VxPixelType type;
    const char* name;
};

constexpr TypeName kTypeNames[] = {
    {VXPIXEL_PAL1, "pal1"},     {VXPIXEL_PAL4, "pal4"},       {VXPIXEL_PAL8, "pal8"},
    {VXPIXEL_GRAY1, "gray1"},   {VXPIXEL_GRAY2, "gray2"},     {VXPIXEL_GRAY4, "gray4"},
    {VXPIXEL_GRAY8, "gray8"},   {VXPIXEL_GRAY16, "gray16"},   {VXPIXEL_GRAY32, "gray32"},
    {VXPIXEL_RGB555, "rgb555"}, {VXPIXEL_RGB565, "rgb565"},   {VXPIXEL_RGB24, "rgb24"},
    {VXPIXEL_RGB32, "rgb32"},   {VXPIXEL_RGBA32, "rgba32"},   {VXPIXEL_RGB101010, "rgb101010"},
    {VXPIXEL_RGBA64, "rgba64"}, {VXPIXEL_RGBA128, "rgba128"},
};

} // namespace

Dib::Dib(VxPixelType type, int32_t width, int32_t height, std::span<const RGBQUAD> palette) : type_(type)
{
    const uint32_t bits = uint32_t(VxPixelTypeToBitAttribs(type, nullptr, nullptr, 0, nullptr));
    if (!SizeAllowed(width, height, bits))
        FailFile("a picture of ", width, "x", height, " pixels of ", bits, " bits is too large");
    BITMAPINFOHEADER* made = nullptr;
    if (FAILED(VxDibAlloc(&made, type, width, height, palette.empty() ? nullptr : palette.data(),
                          int32_t(palette.size()), VXDIBALLOC_ZERO, 0)))
        FailFile("there is not enough memory for ", width, "x", height, " pixels of ", bits, " bits");
    dib_.reset(made);
    rowBytes_ = (uint32_t(width) * bits + 31) / 32 * 4;
    pixelOffset_ = made->biCompression == BI_BITFIELDS ? 52 : 40 + 4 * made->biClrUsed;
}

void Dib::Freer::operator()(BITMAPINFOHEADER* dib) const
{
    VxDibFree(dib, 0);
}

std::span<const RGBQUAD> Dib::Palette() const
{
    if (!IsPaletteType(type_))
        return {};
    return {reinterpret_cast<const RGBQUAD*>(dib_.get() + 1), dib_->biClrUsed};
}

std::span<const uint8_t> Dib::Block() const
{
    return {reinterpret_cast<const uint8_t*>(dib_.get()), size_t(pixelOffset_) + dib_->biSizeImage};
}

const uint8_t* Dib::Row(int32_t y) const
{
    return Block().data() + pixelOffset_ + size_t(rowBytes_) * size_t(Height() - 1 - y);
}

uint8_t* Dib::Row(int32_t y)
{
    return const_cast<uint8_t*>(std::as_const(*this).Row(y));
}

VxPixelType TypeNamed(std::string_view name)
{
    const auto found = std::ranges::find(kTypeNames, name, &TypeName::name);
    return found == std::end(kTypeNames) ? VxPixelType(0) : found->type;
}

const char* NameOfType(VxPixelType type)
{
    const auto found = std::ranges::find(kTypeNames, type, &TypeName::type);
    return found == std::end(kTypeNames) ? nullptr : found->name;
}

std::string AllTypeNames()
{
    std::string names;
    for (const TypeName& t : kTypeNames)
        names += (names.empty() ? "" : ", ") + std::string(t.name);
    return names;
}

bool HasAlpha(VxPixelType type)
{
    return type == VXPIXEL_RGBA32 || type == VXPIXEL_RGBA64 || type == VXPIXEL_RGBA128;
}

bool IsPaletteType(VxPixelType type)
{
    return type == VXPIXEL_PAL1 || type == VXPIXEL_PAL4 || type == VXPIXEL_PAL8;
}

bool IsFloatType(VxPixelType type)
{
    return type == VXPIXEL_GRAY32 || type == VXPIXEL_RGBA128;
}

} // namespace vxtool
