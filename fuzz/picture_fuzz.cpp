// Any bytes as a picture file: they are refused with a sentence, or make a picture whose every pixel can
// be read and which comes back the same from a BMP file.
#include "vxtool/failure.h"
#include "vxtool/picture.h"

#include <algorithm>
#include <cstdlib>

using namespace vxtool;

namespace {

constexpr int64_t kMostPixels = 1 << 16; // larger pictures say nothing new

void Walk(const Dib& dib)
{
    if (int64_t(dib.Width()) * dib.Height() > kMostPixels)
        return;
    ToFrame(dib, Form::Bytes);
    const Picture again = ParsePicture(EncodeBmp(dib), "again");
    if (again.dib.Type() != dib.Type() || !std::ranges::equal(again.dib.Block(), dib.Block()))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Exactly as long as the input, so that the sanitizer sees a read behind its end.
    const std::vector<uint8_t> bytes(data, data + size);
    try {
        Walk(ParsePicture(bytes, "input").dib);
    } catch (const Failure& failure) {
        if (failure.code != kBadFile || failure.sentence.empty())
            std::abort();
    }
    return 0;
}
