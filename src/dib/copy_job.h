// What the pumps of VxDibCopy, the fills and the fields share: rectangles as rows in memory, and an
// exchange with all that it needs.
#pragma once

#include "dib/colour_table.h"
#include "dib/curves.h"
#include "dib/fixed.h"
#include "exchange/rows.h"
#include "vx/dib.h"
#include "vx/xchg.h"

#include <algorithm>
#include <optional>

namespace vx {

constexpr bool IsDibType(int32_t type)
{
    return type >= VXPIXEL_PAL1 && type <= VXPIXEL_RGBA128;
}

constexpr bool IsPaletteType(int32_t type)
{
    return type == VXPIXEL_PAL4 || type == VXPIXEL_PAL8;
}

constexpr uint32_t QualityOf(uint32_t flags)
{
    return flags & VXDIBF_QUALITY;
}

// From here on pixels are interpolated, and dithered.
constexpr uint32_t kFineQuality = 3;

inline int64_t WidthOf(const RECT& r)
{
    return int64_t(r.right) - r.left;
}

inline int64_t HeightOf(const RECT& r)
{
    return int64_t(r.bottom) - r.top;
}

inline RECT WholeBitmap(const BITMAPINFOHEADER* header)
{
    const BITMAPINFOHEADER h = ReadHeader(header);
    return {0, 0, h.biWidth, h.biHeight};
}

// Sub-pixel coordinates as pixels, cut toward 0.
inline RECT WholePixels(const RECT& r)
{
    return {r.left / kSubpixelOne, r.top / kSubpixelOne, r.right / kSubpixelOne, r.bottom / kSubpixelOne};
}

// The rectangle that an argument stands for, in pixels.
inline RECT PixelRect(const BITMAPINFOHEADER* header, const RECT* rect, uint32_t flags)
{
    if (!rect)
        return WholeBitmap(header);
    return (flags & VXDIBF_SUBPIXEL) ? WholePixels(*rect) : *rect;
}

// A rectangle inside a bitmap, whose rows count from the lowest one, which comes first in memory.
template <class Byte>
struct PixelRows
{
    Byte* first; // of the lowest row, at the bitmap's left edge
    int32_t stride;
    int32_t bits; // a pixel
    int64_t left; // bits from the bitmap's left edge to the rectangle's
    int32_t width, height;

    PixelRows(const DibRows<Byte>& rows, const BITMAPINFOHEADER* header, const RECT& rect, int32_t type)
        : first(rows.Row(ReadHeader(header).biHeight - rect.bottom)), stride(rows.stride),
          bits(PixelTypeInfoOf(type).bits), left(int64_t(rect.left) * bits), width(int32_t(WidthOf(rect))),
          height(int32_t(HeightOf(rect)))
    {}
    Byte* Row(int64_t y) const { return first + stride * y; }
    int64_t Bit(int64_t x) const { return left + x * bits; }
    // From the byte that holds the left edge on.
    Byte* Bytes(int64_t y) const { return Row(y) + left / 8; }
    int64_t RowBytes() const { return int64_t(width) * bits / 8; }
    int64_t AllBytes() const { return RowBytes() * height; }
    bool IsGapless() const { return int64_t(width) * bits == int64_t(stride) * 8; }
    void DropColumns(int32_t columns)
    {
        left += int64_t(columns) * bits;
        width -= columns;
    }
};

// Null pixels are those behind the header, which are the caller's to write.
inline DibRows<uint8_t> WritableRowsOf(const BITMAPINFOHEADER* header, void* pixels, int32_t stride)
{
    return RowsOf(const_cast<BITMAPINFOHEADER*>(header), pixels, stride);
}

// The map that writing a bitmap takes. Types without a palette need none, and get S_OK and null.
HRESULT MakeColourMap(int32_t type, const BITMAPINFOHEADER* header, GlobalBytes& map);

// An exchange with the table that it reads through, and its row kernels. It owns the tables of its
// curves.
class Exchange
{
public:
    struct Gammas
    {
        double dest, source;
    };

    Exchange(int32_t destType, int32_t sourceType, uint32_t flags, Gammas gammas, const uint8_t* map,
             const BITMAPINFOHEADER* sourceHeader);
    ~Exchange();
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    tVXXCHG record;
    RunKernels runs;

private:
    std::optional<ColourTable> table_; // a kilobyte that only palette sources need
};

// Gammas with which a second record reads the destination as the working pixels that a copy writes to
// it. A copy into float writes its source's coding through a curve, and the second record takes that
// curve back; from float to float the working pixels are coded as the destination is.
inline Exchange::Gammas GammasBack(int32_t destType, int32_t sourceType, Exchange::Gammas gammas)
{
    const auto isFloat = [](int32_t type) { return type == VXPIXEL_GRAY32 || type == VXPIXEL_RGBA128; };
    if (isFloat(destType) && isFloat(sourceType))
        return {VX_GAMMA_DEFAULT, VX_GAMMA_DEFAULT};
    return {gammas.source, gammas.dest};
}

// What VxDibCopy was called with, the default rectangles and pixels resolved.
struct CopyCall
{
    const BITMAPINFOHEADER *destHeader, *sourceHeader;
    void* destPixels;
    const void* sourcePixels;
    int32_t destStride, sourceStride;
    int32_t destType, sourceType;
    uint32_t flags;
    Exchange::Gammas gammas;

    bool IsFine() const { return QualityOf(flags) >= kFineQuality; }
};

// How the pixels of one axis of a scaled copy lie in the source.
struct StepAxis
{
    int64_t step;            // in sub-pixel units
    int32_t last;            // the source's last pixel
    int32_t destinationLast; // which always takes the source's last

    StepAxis(int32_t source, int32_t destination, bool fine)
        : step(fine ? (int64_t(source) - 1) * kSubpixelOne / std::max(destination - 1, 1)
                    : int64_t(source) * kSubpixelOne / destination),
          last(source - 1), destinationLast(destination - 1)
    {}
    int64_t Position(int32_t i) const
    {
        return i == destinationLast ? int64_t(last) * kSubpixelOne : i * step;
    }
};

// A copy of a clipped rectangle, by the plain pump or with soft edges.
struct CopyJob
{
    PixelRows<uint8_t> dest;
    PixelRows<const uint8_t> source;
    RECT clip; // how far the sides of the source rectangle moved inwards
    uint32_t flags;
    Exchange::Gammas gammas;
    StepAxis x, y;
    const BITMAPINFOHEADER* destHeader;

    CopyJob(const CopyCall& call, const DibRows<uint8_t>& destRows, const RECT& destRect,
            const DibRows<const uint8_t>& sourceRows, const RECT& sourceRect, const RECT& clipAmounts);
    bool IsScaled() const { return dest.width != source.width || dest.height != source.height; }
    // Unscaled, and rows begin with a byte on both sides.
    bool IsByBytes() const { return !IsScaled() && dest.left % 8 == 0 && source.left % 8 == 0; }
    // Rows that follow each other without a gap in both bitmaps as one; else the copy as it is.
    CopyJob Joined() const;
    // An unscaled copy from a column on.
    CopyJob From(int32_t column) const
    {
        CopyJob rest = *this;
        rest.dest.DropColumns(column);
        rest.source.DropColumns(column);
        return rest;
    }
};

// The source's pixels as working pixels, a run of a destination row at a time.
class SourceReader
{
public:
    SourceReader(const CopyJob& job, const Exchange& exchange);
    void StartRow(int32_t y);
    void Read(void* pixels, int32_t x, int32_t count) const;

private:
    void Sample(void* pixels, int64_t position, int32_t count) const;

    const CopyJob& job_;
    const Exchange& exchange_;
    const bool scaled_;
    SampleRow from_{};
};

// The pumps. Each writes the whole destination rectangle.
void CopyPlain(const CopyJob& job, Exchange& exchange);
void CopySoft(const CopyJob& job, const CopyCall& call, const uint8_t* map);
// False where no direct path serves the pair.
bool CopyDirect(const CopyJob& job, Exchange& exchange);
// Unscaled, from pixels of at most a byte. False where a table would not pay.
bool CopyByTable(const CopyJob& job, const Exchange& exchange);
// Any copy but with soft edges, by runs of pixels.
void CopyRuns(const CopyJob& job, const Exchange& exchange);
// Rectangles in sub-pixel coordinates, null for whole bitmaps.
void CopySubpixel(const CopyCall& call, const RECT* destRect, const RECT* sourceRect);

} // namespace vx
