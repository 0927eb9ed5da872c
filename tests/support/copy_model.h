// Slow models of copying, filling, fading and field work on bitmaps: a pixel at a time, each from its
// formula. Pixels of the exchange go through its published one-pixel kernels, which have a model of their
// own; scaling by vx/scale.h is left out, as that has one too.
#pragma once

#include "support/frames.h"
#include "support/random.h"
#include "vx/dib.h"
#include "vx/dibcopy.h"
#include "vx/fields.h"

#include <cstdint>
#include <optional>
#include <ostream>
#include <vector>

namespace vxtest {

// A bitmap whose header and pixels stand apart. All memory takes part in comparisons: guards, the gaps
// between rows, and the bits that no pixel has.
class Picture
{
public:
    // Palette types get `entries` colours. Floats are about 0.0 to 1.0; with `hard` some of them are not
    // numbers, infinite, or in another way their own.
    Picture(int32_t type, int32_t width, int32_t height, Rows rows, Random& random, bool hard = false,
            uint32_t entries = 16);

    const BITMAPINFOHEADER* Header() const
    {
        return reinterpret_cast<const BITMAPINFOHEADER*>(front_.data());
    }
    BITMAPINFOHEADER* Header() { return reinterpret_cast<BITMAPINFOHEADER*>(front_.data()); }
    const RGBQUAD* Table() const { return reinterpret_cast<const RGBQUAD*>(front_.data() + 40); }
    RGBQUAD* Table() { return reinterpret_cast<RGBQUAD*>(front_.data() + 40); } // black behind its entries
    int32_t Type() const { return type_; }
    int32_t Width() const { return Header()->biWidth; }
    int32_t Height() const { return Header()->biHeight; }
    int32_t Stride() const { return rows_.Stride(); }
    void* Pixels() { return rows_.Data(); }
    const void* Pixels() const { return rows_.Data(); }
    // y counts in memory.
    uint8_t* Row(int64_t y) { return rows_.Row(int32_t(y)); }
    const uint8_t* Row(int64_t y) const { return rows_.Row(int32_t(y)); }
    RECT Whole() const { return {0, 0, Width(), Height()}; }

    friend bool operator==(const Picture& a, const Picture& b) { return a.rows_ == b.rows_; }
    friend std::ostream& operator<<(std::ostream& out, const Picture& p);
    // The largest difference between floats, or between bytes, of the two; a NaN differs from all else.
    friend double Difference(const Picture& a, const Picture& b);

private:
    int32_t type_;
    std::vector<uint8_t> front_; // header and table
    Frame rows_;                 // of bytes
};

struct CopyArguments
{
    std::optional<RECT> destRect = {}, sourceRect = {};
    uint32_t flags = 3;
    double destGamma = 0.0, sourceGamma = 0.0;
};
std::ostream& operator<<(std::ostream& out, const CopyArguments& a);

// Calls the library.
HRESULT Copy(Picture& dest, const Picture& source, const CopyArguments& a);

// Does what the library should; false, with nothing done, where vx/scale.h has the work.
bool ModelCopy(Picture& dest, const Picture& source, const CopyArguments& a);

// red, green, blue, alpha
void ModelSet(Picture& dest, const RECT& area, const float (&colour)[4], uint32_t flags);

// Rectangle in sub-pixel units, inside the bitmap or not.
void ModelFade(Picture& dest, const RECT& rect, const float (&colour)[4], float amount, bool keepAlpha);

// Rectangles in pixels.
void ModelInterlace(Picture& dest, const RECT& destRect, const Picture& source, const RECT& sourceRect,
                    int32_t field, uint32_t flags);

} // namespace vxtest
