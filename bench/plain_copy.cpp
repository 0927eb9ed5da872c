#include "plain.h"

#include <cstring>

namespace vxbench::plain {
namespace {

// A register of the widest kind; where there is none, the compiler takes several.
typedef uint64_t Line __attribute__((vector_size(64)));
constexpr size_t kLinesTogether = 2; // of each byte of the pixels
constexpr size_t kBlockPixels = kLinesTogether * sizeof(Line);

Line Load(const uint8_t* from)
{
    Line line;
    std::memcpy(&line, from, sizeof(line));
    return line;
}

void Store(uint8_t* to, Line line)
{
    std::memcpy(to, &line, sizeof(line));
}

// Something to write that the compiler does not know.
Line Filler(size_t value)
{
    return Line{} + value;
}

void WriteBack(uint8_t* frame, size_t bytes)
{
    const Line filler = Filler(bytes);
    for (size_t i = 0; i < bytes; i += sizeof(Line))
        Store(frame + i, Load(frame + i) | filler);
}

template <bool kInPlace>
void CopyEvenly(uint8_t* __restrict dst, const uint8_t* __restrict src, size_t bytes)
{
    const Line filler = Filler(bytes);
    for (size_t i = 0; i < bytes; i += sizeof(Line))
        Store(dst + i, Load(src + i) | (kInPlace ? Load(dst + i) : filler));
}

template <bool kInPlace>
void CopyUnevenly(uint8_t* dst, size_t written, const uint8_t* src, size_t read, size_t pixels)
{
    for (size_t block = 0; block < pixels / kBlockPixels; ++block) {
        Line sum = {};
        for (size_t i = 0; i < read * kLinesTogether; ++i, src += sizeof(Line))
            sum |= Load(src);
        for (size_t i = 0; i < written * kLinesTogether; ++i, dst += sizeof(Line))
            Store(dst, kInPlace ? Load(dst) | sum : sum);
    }
}

} // namespace

void Copy(uint8_t* dst, size_t written, bool inPlace, const uint8_t* src, size_t read, size_t pixels)
{
    if (read == 0 && inPlace)
        WriteBack(dst, written * pixels);
    else if (read == 0)
        std::memset(dst, 1, written * pixels);
    else if (read == written)
        (inPlace ? CopyEvenly<true> : CopyEvenly<false>)(dst, src, written * pixels);
    else
        (inPlace ? CopyUnevenly<true> : CopyUnevenly<false>)(dst, written, src, read, pixels);
}

} // namespace vxbench::plain
