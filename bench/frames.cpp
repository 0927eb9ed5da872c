#include "frames.h"

#include "support/random.h"

#include <algorithm>

namespace vxbench {
namespace {

using vxtest::Random;

int32_t BytesPerPixelOf(Content content)
{
    switch (content) {
    case Content::BytePlane:
        return 1;
    case Content::Floats:
        return 16;
    case Content::Bytes:
    case Content::ByteMask:
    case Content::FloatPlane:
        break;
    }
    return 4;
}

void FillBytes(Frame& frame, Random& random)
{
    for (uint8_t& byte : frame.All())
        byte = random.Byte();
}

void FillPicture(Frame& frame, Random& random)
{
    FillBytes(frame, random);
    uint8_t* pixel = frame.Bytes();
    for (size_t i = 0; i < frame.Pixels(); ++i, pixel += 4)
        for (int c = 0; c < 3; ++c)
            pixel[c] = uint8_t(pixel[c] * pixel[3] / 255);
}

void FillFloats(Frame& frame, Random& random)
{
    std::generate_n(frame.Floats(), frame.All().size() / sizeof(float), [&] { return float(random.Unit()); });
}

void FillFloatPicture(Frame& frame, Random& random)
{
    FillFloats(frame, random);
    float* pixel = frame.Floats();
    for (size_t i = 0; i < frame.Pixels(); ++i, pixel += 4)
        for (int c = 0; c < 3; ++c)
            pixel[c] *= pixel[3];
}

void FillWith(Frame& frame, Content content, Random& random)
{
    switch (content) {
    case Content::Bytes:
        return FillPicture(frame, random);
    case Content::Floats:
        return FillFloatPicture(frame, random);
    case Content::FloatPlane:
        return FillFloats(frame, random);
    case Content::BytePlane:
    case Content::ByteMask:
        return FillBytes(frame, random);
    }
}

} // namespace

Frame::Frame(Size size, Content content, uint64_t seed)
    : size_(size), bytesPerPixel_(BytesPerPixelOf(content)),
      memory_(size_t(size.Pixels()) * size_t(bytesPerPixel_), seed)
{
    Random random(seed);
    FillWith(*this, content, random);
}

Frame& Destination(Work& work, Content content)
{
    Frame& frame = work.Own(Frame(work.size(), content, 1));
    work.Changes(frame.All());
    return frame;
}

const Frame& Source(Work& work, Content content)
{
    return work.Own(Frame(work.size(), content, content == Content::ByteMask ? 2 : 3));
}

} // namespace vxbench
