// Fields against a slow model, and the cases that tell rows and columns apart.
#include "support/copy_model.h"
#include "support/forms.h"
#include "vx/platform/testing.h"

namespace {

using namespace vxtest;

HRESULT CopyInterlace(Picture& dest, const RECT* to, const Picture& source, const RECT* from, int32_t field,
                      uint32_t flags)
{
    return VxDibCopyInterlace(dest.Header(), dest.Pixels(), to, dest.Stride(), source.Header(),
                              source.Pixels(), from, source.Stride(), field, flags);
}

TEST(CopyInterlace, EveryPairOfTypes)
{
    for (int32_t i = 0; i < 17 * 17; ++i) {
        Random random{uint64_t(i)};
        for (int32_t round = 0; round < 12; ++round) {
            const int32_t width = random.Int(1, round ? 20 : 300), height = random.Int(1, 7);
            const auto picture = [&](int32_t type) {
                return Picture(type, width + random.Int(0, 5), height + random.Int(0, 5),
                               kAllRows[random.Int(0, 2)], random);
            };
            const auto inside = [&](const Picture& p) {
                const int32_t left = random.Int(0, p.Width() - width),
                              top = random.Int(0, p.Height() - height);
                return RECT{left, top, left + width, top + height};
            };
            const Picture before = picture(16 + i / 17), source = picture(16 + i % 17);
            const RECT to = inside(before), from = inside(source);
            const int32_t field = random.Int(-1, 2);
            const uint32_t flags = uint32_t(random.Int(0, 5));
            Picture want = before;
            ModelInterlace(want, to, source, from, field, flags);
            Picture got = before;
            ASSERT_EQ(CopyInterlace(got, &to, source, &from, field, flags), S_OK);
            ASSERT_EQ(got, want) << "field " << field << ", flags " << flags << "\nfrom " << source;
            const auto units = [](const RECT& r) {
                return RECT{r.left * 16384 + 9, r.top * 16384, r.right * 16384 + 16383, r.bottom * 16384 + 1};
            };
            const RECT fineTo = units(to), fineFrom = units(from);
            got = before;
            ASSERT_EQ(CopyInterlace(got, &fineTo, source, &fineFrom, field, flags | VXDIBF_SUBPIXEL), S_OK);
            ASSERT_EQ(got, want);
        }
    }
}

TEST(CopyInterlace, EveryWidthInEveryForm)
{
    Random random;
    for (const int32_t type : {29, 31, 32})
        for (int32_t width = 1; width <= 70; ++width) {
            const Picture source(type, width, 5, kAllRows[width % 3], random),
                before(type, width, 5, Rows::Wide, random);
            for (const int32_t field : {0, 1}) {
                Picture want = before;
                ModelInterlace(want, before.Whole(), source, source.Whole(), field, 3);
                for (const VectorLevel& form : AllForms()) {
                    const OnlyLevel only(form);
                    Picture got = before;
                    ASSERT_EQ(CopyInterlace(got, nullptr, source, nullptr, field, 3), S_OK);
                    ASSERT_EQ(got, want) << form.name << ", type " << type << ", width " << width;
                }
            }
        }
}

TEST(CopyInterlace, ThreadsDoNotShow)
{
    Random random;
    for (const int32_t type : {29, 27}) {
        const Picture source(type, 1600, 400, Rows::Tight, random),
            before(29, 1600, 400, Rows::Tight, random);
        Picture got = before, want = before;
        ASSERT_EQ(CopyInterlace(got, nullptr, source, nullptr, 1, 3), S_OK);
        ModelInterlace(want, before.Whole(), source, source.Whole(), 1, 3);
        ASSERT_EQ(got, want);
    }
}

constexpr int32_t kFar = 0x7FFFFFFF;
constexpr struct
{
    const char* name;
    int32_t destType, sourceType;
    RECT to, from;
    HRESULT want;
} kRefusals[] = {
    {"YUV source before an empty rectangle", 29, 64, {0, 0, 4, 4}, {0, 0, 0, 0}, E_NOTIMPL},
    {"empty source before a YUV destination", 64, 29, {0, 0, 4, 4}, {2, 0, 2, 4}, S_OK},
    {"YUV destination", 64, 29, {0, 0, 4, 4}, {0, 0, 4, 4}, E_NOTIMPL},
    {"empty destination", 29, 29, {3, 3, 1, 1}, {0, 0, 4, 4}, S_OK},
    {"other size, outside", 29, 29, {-4, 0, 4, 4}, {0, 0, 4, 3}, E_NOTIMPL},
    {"source too far right", 29, 29, {0, 0, 4, 4}, {1, 0, 5, 4}, E_INVALIDARG},
    {"destination too far down", 24, 29, {0, 1, 4, 5}, {0, 0, 4, 4}, E_INVALIDARG},
    {"sides far apart", 29, 29, {-kFar, 0, kFar, 4}, {-kFar, 0, kFar, 4}, E_INVALIDARG},
};

TEST(CopyInterlace, RefusalsWriteNothing)
{
    for (const auto& c : kRefusals) {
        Random random;
        const Picture source(c.sourceType, 4, 4, Rows::Tight, random),
            before(c.destType, 4, 4, Rows::Tight, random);
        Picture got = before;
        EXPECT_EQ(CopyInterlace(got, &c.to, source, &c.from, 0, 3), c.want) << c.name;
        EXPECT_EQ(got, before) << c.name;
    }
    Random random;
    const Picture source(29, 4, 4, Rows::Tight, random), before(24, 4, 4, Rows::Tight, random);
    Picture got = before;
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(CopyInterlace(got, nullptr, source, nullptr, 0, 3), E_OUTOFMEMORY);
    VxPlatform_FailAllocationAt(0);
    EXPECT_EQ(got, before);
}

// Each pixel of the result stems from the source where its row, or column, is of the field.
TEST(MergeFields, TakesEverySecondRowOrColumn)
{
    Random random;
    for (const int32_t type : {16, 20, 24, 25, 27, 29, 31, 32})
        for (int32_t size = 1; size <= 6; ++size)
            for (const int32_t field : {0, 1, 2, -1})
                for (const bool rotated : {false, true}) {
                    const int32_t width = rotated ? size : 9, height = rotated ? 3 : size;
                    const Picture source(type, width, height, Rows::Wide, random),
                        before(type, width, height, Rows::Negative, random);
                    const int32_t bits = VxPixelTypeToBitAttribs(type, nullptr, nullptr, 0, nullptr);
                    const bool known = !rotated || bits == 32 || bits == 128;
                    // Rows count from the top, columns from the right: field 1 has the first of them.
                    const int32_t first = field == 1 ? 0 : field == 0 ? 1 : (size - 1) % 2;
                    Picture want = before, got = before;
                    for (int32_t i = known ? first : size; i < size; i += 2)
                        if (rotated)
                            for (int32_t y = 0; y < height; ++y)
                                std::memcpy(want.Row(y) + (size - 1 - i) * bits / 8,
                                            source.Row(y) + (size - 1 - i) * bits / 8, size_t(bits / 8));
                        else
                            std::memcpy(want.Row(size - 1 - i), source.Row(size - 1 - i),
                                        size_t(width * bits / 8));
                    const auto merge = rotated ? VxDibMergeFieldsRotated : VxDibMergeFields;
                    EXPECT_EQ(merge(got.Header(), got.Pixels(), got.Stride(), source.Header(),
                                    source.Pixels(), source.Stride(), field),
                              known ? S_OK : E_NOTIMPL);
                    ASSERT_EQ(got, want)
                        << "type " << type << ", size " << size << ", field " << field << rotated;
                }
}

} // namespace
