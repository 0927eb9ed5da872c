// A thread that has probed the processor flushes denormals from then on: all forms still agree.
#include "vx/blend.h"
#include "vx/channels.h"
#include "vx/composite.h"

#include "support/forms.h"

namespace {

using namespace vxtest;

// Every other float a denormal: the comparisons see 0, what is stored must be the same in all forms.
Frame DenormalFrame(int32_t width, Random& random)
{
    Frame frame(width, 2, 16, Rows::Wide, random);
    for (int32_t y = 0; y < 2; ++y)
        for (int32_t i = 0; i < 4 * width; ++i)
            frame.Set(i, y,
                      random.Int(0, 1) ? uint32_t(random.Int(0, 0x7FFFFF)) | uint32_t(random.Int(0, 1)) << 31
                                       : std::bit_cast<uint32_t>(random.Float(-1.0f, 300.0f)));
    return frame;
}

TEST(FlushedDenormals, FloatFormsAgree)
{
    Random random;
    for (int32_t width = 1; width <= 40; ++width) {
        const Frame frame = DenormalFrame(width, random), other = DenormalFrame(width, random);
        const Frame mask(width, 2, 4, Rows::Wide, random);
        const auto check = [&](const char* name, const auto& operation) {
            SCOPED_TRACE(testing::Message() << name << ", width " << width);
            ExpectSameFlushed(frame, [&](Frame& f) { return operation(f); });
        };
        check("ClipRestore", [&](Frame& f) { return ClipRestore(f.Data(), f.Stride(), width, 2, 1.0, 0.0); });
        check("ThresholdFloat",
              [&](Frame& f) { return ThresholdFloat(f.Data(), f.Stride(), width, 2, 0.0, 0.5); });
        check("ThresholdClear",
              [&](Frame& f) { return ThresholdClear(f.Data(), f.Stride(), 16, width, 2, 0.0f); });
        check("Multiply", [&](Frame& f) { return Multiply(f.Data(), f.Stride(), 16, width, 2, 0.5, 0); });
        check("Multiply, premultiplied",
              [&](Frame& f) { return Multiply(f.Data(), f.Stride(), 16, width, 2, 0.5, 1); });
        check("MaskedFade", [&](Frame& f) {
            return MaskedFade(f.Data(), f.Stride(), other.Data(), other.Stride(), 16, mask.Data(),
                              mask.Stride(), width, 2);
        });
        for (int32_t mode = VX_COMPOSITE_SOURCE_OVER; mode <= VX_COMPOSITE_AVERAGE; ++mode)
            check("Composite", [&](Frame& f) {
                return Composite(f.Data(), f.Stride(), other.Data(), other.Stride(), 16, width, 2, mode, 0.5);
            });
        if (HasFatalFailure())
            return;
    }
}

} // namespace
