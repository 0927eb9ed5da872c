// Frames with guard bytes on all sides, in every arrangement of rows that a caller may use.
#pragma once

#include "support/random.h"

#include <cstdint>
#include <cstring>
#include <ostream>
#include <vector>

namespace vxtest {

enum class Rows
{
    Tight,    // stride is the row's length
    Wide,     // odd number of bytes between rows, so that rows are misaligned
    Negative, // as Wide, and the first row is the last one in memory
};
constexpr Rows kAllRows[] = {Rows::Tight, Rows::Wide, Rows::Negative};

inline std::ostream& operator<<(std::ostream& out, Rows rows)
{
    return out << (rows == Rows::Tight ? "tight" : rows == Rows::Wide ? "wide" : "negative");
}

// A frame of any pixel size whose whole memory, guards and gaps included, takes part in comparisons:
// a write outside the rows shows as a difference.
class Frame
{
public:
    Frame(int32_t width, int32_t height, int32_t bytesPerPixel, Rows rows, Random& random)
        : width_(width), height_(height), bytesPerPixel_(bytesPerPixel)
    {
        const int32_t gap = rows == Rows::Tight ? 0 : 13;
        const int32_t pitch = width * bytesPerPixel + gap;
        memory_.resize(size_t(pitch) * size_t(height) + 2 * kGuard + 1);
        for (uint8_t& byte : memory_)
            byte = random.Byte();
        const size_t misaligned = rows == Rows::Tight ? 0 : 1;
        offset_ = kGuard + misaligned + (rows == Rows::Negative ? size_t(pitch) * size_t(height - 1) : 0);
        stride_ = rows == Rows::Negative ? -pitch : pitch;
    }

    int32_t Width() const { return width_; }
    int32_t Height() const { return height_; }
    int32_t Stride() const { return stride_; }
    size_t RowBytes() const { return size_t(width_) * size_t(bytesPerPixel_); }
    void* Data() { return memory_.data() + offset_; }
    const void* Data() const { return memory_.data() + offset_; }
    uint8_t* Row(int32_t y) { return memory_.data() + int64_t(offset_) + int64_t(stride_) * y; }
    const uint8_t* Row(int32_t y) const { return memory_.data() + int64_t(offset_) + int64_t(stride_) * y; }
    uint8_t* Pixel(int32_t x, int32_t y) { return Row(y) + int64_t(x) * bytesPerPixel_; }
    const uint8_t* Pixel(int32_t x, int32_t y) const { return Row(y) + int64_t(x) * bytesPerPixel_; }

    // Elements of rows may be misaligned: they are read and written by copy.
    template <class T>
    T Get(int32_t element, int32_t y) const
    {
        T value;
        std::memcpy(&value, Row(y) + size_t(element) * sizeof(T), sizeof(T));
        return value;
    }
    template <class T>
    void Set(int32_t element, int32_t y, T value)
    {
        std::memcpy(Row(y) + size_t(element) * sizeof(T), &value, sizeof(T));
    }

    // Makes every float of the rows a value of the range; guards and gaps keep their bytes.
    void FillFloats(Random& random, float first, float last)
    {
        for (int32_t y = 0; y < height_; ++y)
            for (int32_t i = 0; i < width_ * bytesPerPixel_ / 4; ++i)
                Set(i, y, random.Float(first, last));
    }

    // Bit for bit, guards and gaps included.
    friend bool operator==(const Frame& a, const Frame& b) { return a.memory_ == b.memory_; }
    friend std::ostream& operator<<(std::ostream& out, const Frame& f)
    {
        return out << f.width_ << "x" << f.height_ << " frame, " << f.bytesPerPixel_
                   << " bytes a pixel, stride " << f.stride_;
    }

private:
    static constexpr size_t kGuard = 64;
    int32_t width_, height_, bytesPerPixel_, stride_ = 0;
    size_t offset_ = 0;
    std::vector<uint8_t> memory_;
};

} // namespace vxtest
