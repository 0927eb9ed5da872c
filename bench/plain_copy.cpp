#include "plain.h"

namespace vxbench::plain {
namespace {

// A whole register of the widest kind, at any address.
typedef uint64_t Line __attribute__((vector_size(64), aligned(1), may_alias));
constexpr size_t kLinePixels = 64; // a line a byte of pixel

} // namespace

void Copy(uint8_t* dst, size_t written, bool inPlace, const uint8_t* src, size_t read, size_t pixels)
{
    for (size_t block = 0; block < pixels / kLinePixels; ++block) {
        Line sum = {};
        for (size_t i = 0; i < read; ++i, src += sizeof(Line))
            sum |= *reinterpret_cast<const Line*>(src);
        for (size_t i = 0; i < written; ++i, dst += sizeof(Line)) {
            auto& line = *reinterpret_cast<Line*>(dst);
            line = inPlace ? line | sum : sum;
        }
    }
}

} // namespace vxbench::plain
