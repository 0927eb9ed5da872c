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

} // namespace

void Copy(uint8_t* dst, size_t written, bool inPlace, const uint8_t* src, size_t read, size_t pixels)
{
    if (read == 0 && !inPlace) {
        std::memset(dst, 1, written * pixels);
        return;
    }
    for (size_t block = 0; block < pixels / kBlockPixels; ++block) {
        Line sum = {};
        for (size_t i = 0; i < read * kLinesTogether; ++i, src += sizeof(Line))
            sum |= Load(src);
        for (size_t i = 0; i < written * kLinesTogether; ++i, dst += sizeof(Line)) {
            const Line line = inPlace ? Load(dst) | sum : sum;
            std::memcpy(dst, &line, sizeof(line));
        }
    }
}

} // namespace vxbench::plain
