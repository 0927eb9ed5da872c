#include "vx/channels.h"

#include "support/forms.h"

#include <cstdlib>

namespace {

using namespace vxtest;

struct Steps
{
    int32_t dst, src;
};
constexpr Steps kSteps[] = {{1, 4}, {4, 1}, {4, 4}, {1, 1}, {3, 2}, {16, 4}, {-4, 4}, {4, -1}, {0, 4}};

// Two rows whose memory ends with the last byte that counts, so that the sanitizer sees a touch beyond.
class Channel
{
public:
    Channel(int32_t width, int32_t step, Random& random)
        : stride_((width - 1) * std::abs(step) + 3), first_(step < 0 ? size_t((width - 1) * -step) : 0),
          memory_(size_t(stride_) + size_t((width - 1) * std::abs(step)) + 1)
    {
        for (uint8_t& byte : memory_)
            byte = random.Byte();
    }

    int32_t Stride() const { return stride_; }
    uint8_t* Data() { return memory_.data() + first_; }
    friend bool operator==(const Channel& a, const Channel& b) { return a.memory_ == b.memory_; }

private:
    int32_t stride_;
    size_t first_;
    std::vector<uint8_t> memory_;
};

TEST(ChannelCopy, EveryFormCopiesOneByteAPixel)
{
    Random random;
    for (const VectorLevel& form : AllForms())
        for (const Steps steps : kSteps)
            for (int32_t width = 1; width <= 70; ++width) {
                Channel src(width, steps.src, random), want(width, steps.dst, random), got = want;
                for (int32_t y = 0; y < 2; ++y)
                    for (int32_t x = 0; x < width; ++x)
                        want.Data()[y * want.Stride() + x * steps.dst] =
                            src.Data()[y * src.Stride() + x * steps.src];
                const OnlyLevel only(form);
                EXPECT_TRUE(ChannelCopy(got.Data(), got.Stride(), steps.dst, width, 2, src.Data(),
                                        src.Stride(), steps.src));
                ASSERT_TRUE(want == got)
                    << form.name << ", steps " << steps.dst << " and " << steps.src << ", width " << width;
            }
}

TEST(ChannelCopy, WorksBetweenChannelsOfOneFrame)
{
    ExpectPixelByPixel(
        4, LeaveRandom,
        [](Frame& f) {
            uint8_t* frame = f.Row(0);
            return ChannelCopy(frame, f.Stride(), 4, f.Width(), f.Height(), frame + 3, f.Stride(), 4) &&
                   ChannelCopy(frame + 3, f.Stride(), 4, f.Width(), f.Height(), frame + 1, f.Stride(), 4);
        },
        [](uint8_t* pixel) {
            pixel[0] = pixel[3];
            pixel[3] = pixel[1];
        });
}

} // namespace
