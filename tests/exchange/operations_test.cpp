// Every operation, on single pixels and groups, against its formula in exact integers.
#include "record.h"

#include <gtest/gtest.h>

namespace {

using namespace vxtest;
using Integer = __int128;
using Four = std::array<int64_t, 4>; // blue, green, red, alpha

// The formulas with the numbers of a depth. wide is 65536 or 256.
struct Oracle
{
    bool deep;
    Integer wide;
    VxXchgOperation op;
    bool exactFade;
    const uint8_t* lut8;
    const uint16_t* lut16;

    int64_t Max() const { return int64_t(wide) - 1; }
    int64_t Cut(Integer v) const { return int64_t(((v % wide) + wide) % wide); }
    int64_t W() const { return deep ? op.weight16 : op.weight8; }
    int64_t W2() const { return deep ? op.weight16b : op.weight8b; }
    int64_t T() const { return deep ? op.tolerance16 : op.tolerance8; }
    int64_t K(size_t c) const
    {
        const int64_t keys[2][3] = {{op.keyBlue8, op.keyGreen8, op.keyRed8},
                                    {op.keyBlue16, op.keyGreen16, op.keyRed16}};
        return keys[deep][c];
    }

    int64_t Mix(int64_t x, int64_t y, int64_t w) const
    {
        const Integer product = Integer(y - x) * w;
        const bool down = deep && product < 0 && product % wide != 0; // deep floors, 8 bits truncate
        return Cut(x + product / wide - (down ? 1 : 0));
    }
    // After the cut to 16 bits: unsigned where deep, signed where not.
    int64_t Scaled(Integer v) const
    {
        const auto low = int64_t(v % 65536);
        return deep || low < 32768 ? low : low - 65536;
    }
    bool Near(const Four& p) const
    {
        int64_t sum = 0;
        for (size_t c = 0; c < 3; ++c)
            sum += std::abs(p[c] - K(c));
        return sum <= T();
    }
    static int64_t Largest(const Four& p) { return std::max({p[0], p[1], p[2]}); }
    int64_t Lut(int64_t v) const { return deep ? (lut16 ? lut16[v] : v) : (lut8 ? lut8[v] : v); }

    int64_t Premultiplied(int64_t a, int64_t b, int64_t alpha) const
    {
        const int64_t sum = a * (int64_t(wide) - alpha) + b;
        return deep ? Cut(int32_t(uint32_t(sum)) / 65536) : Cut(sum / 256);
    }

    // Channels are handled in turn; colour is false for alpha.
    int64_t Channel(const Four& a, const Four& b, size_t c) const
    {
        const bool colour = c < 3;
        switch (op.number) {
        case 0:
        case 9:
        case 10:
            return b[c];
        case 1:
            return Mix(a[c], b[c], b[3]);
        case 2:
            return Premultiplied(a[c], b[c], b[3]);
        case 3:
            return deep || exactFade ? Mix(a[c], b[c], W())
                                     : (a[c] / 16) * (15 - W() / 16) + (b[c] / 16) * (W() / 16);
        case 4:
            return Near(b) ? a[c] : b[c];
        case 5:
            return Near(b) ? a[c] : Mix(a[c], b[c], W());
        case 6:
            if (!Near(b))
                return Mix(a[c], b[c], W());
            return colour ? Mix(a[c], Scaled(Integer(a[c]) * (1 + Largest(b)) / Max()), W2()) : a[c];
        case 7:
            if (Near(b) || !colour)
                return a[c];
            return Mix(b[c], Scaled(Integer(a[c]) * (1 + Largest(a)) / (1 + Largest(b))), W2());
        case 8:
            return std::abs(a[c] - b[c]);
        case 11:
            return colour ? Mix(b[c], K(c), W()) : a[c];
        case 12:
            return Mix(a[c], Max() - b[c], W());
        case 13:
            return Mix(a[c], colour ? (b[0] + b[1] + b[2]) / 3 : b[c], W());
        case 14:
            return colour ? std::clamp<int64_t>(
                                int64_t(Integer(K(c) - a[c]) * b[3] / wide) + b[c] - K(c) + a[c], 0, Max())
                          : a[c];
        case 15: {
            double squares = 0;
            for (size_t i = 0; i < 3; ++i)
                squares += std::pow(double(a[i] - K(i)), 2);
            return colour ? Lut(int64_t(std::sqrt(squares) / double(std::sqrt(3.0f)))) : a[c];
        }
        case 17: {
            const int64_t sum = a[0] + a[1] + a[2]; // thrice the mean, so that comparisons are exact
            if (!colour)
                return a[c];
            if (sum < 3 * W2())
                return Lut(0);
            if (sum > 3 * (T() + W2()))
                return Lut(Max());
            return Lut(T() == 0 ? 0
                                : int64_t((double(sum) / 3.0 - double(W2())) * double(Max()) / double(T())));
        }
        case 19:
            return Cut(a[c] + Integer(b[c]) * W() / wide);
        default:
            return a[c];
        }
    }
    Four Apply(const Four& a, const Four& b) const
    {
        return {Channel(a, b, 0), Channel(a, b, 1), Channel(a, b, 2), Channel(a, b, 3)};
    }
};

// Values at the ends come often, so that sums wrap and clamps meet.
int64_t RandomChannel(bool deep, Random& random)
{
    const int64_t max = deep ? 65535 : 255;
    const int32_t kind = random.Int(0, 5);
    return kind == 0 ? 0 : kind == 1 ? max : int64_t(random.Next() % uint64_t(max + 1));
}

Four RandomFour(bool deep, Random& random)
{
    return {RandomChannel(deep, random), RandomChannel(deep, random), RandomChannel(deep, random),
            RandomChannel(deep, random)};
}

void Put(tVXXCHG& x, size_t slot, const Four& pixel)
{
    PutSlot(x, slot, {double(pixel[0]), double(pixel[1]), double(pixel[2]), double(pixel[3])});
}

Four Get(const Channels& c)
{
    return {int64_t(c[0]), int64_t(c[1]), int64_t(c[2]), int64_t(c[3])};
}

Four Get(const tVXXCHG& x, size_t slot)
{
    return Get(Slot(x, slot));
}

VxXchgOperation RandomOperation(uint32_t number, Random& random)
{
    VxXchgOperation op{};
    uint64_t bits[7];
    for (uint64_t& word : bits)
        word = random.Next();
    std::memcpy(&op, bits, sizeof(op));
    op.number = number;
    if (random.Int(0, 3) != 0)
        op.tolerance16 = random.Int(0, 140000);
    if (random.Int(0, 3) != 0)
        op.tolerance8 = int16_t(random.Int(0, 500));
    if (random.Int(0, 7) == 0)
        op.tolerance16 = op.tolerance8 = 0;
    return op;
}

template <class Check>
void ForEachOperation(const Check& check)
{
    Random random;
    const auto lut8 = RandomBytes(256, random);
    std::vector<uint16_t> lut16(65536);
    for (uint16_t& value : lut16)
        value = uint16_t(random.Next());
    for (uint32_t number = 0; number < VXXCHG_OP_COUNT; ++number)
        for (int32_t round = 0; round < 800; ++round)
            for (const int32_t type : {VXPIXEL_RGBA32, VXPIXEL_RGBA64}) {
                const uint32_t flags = round % 4 < 2 ? 0 : VXXCHGF_EXACT_FADE;
                const VxXchgOperation op = RandomOperation(number, random);
                tVXXCHG x;
                ASSERT_EQ(VxXCHGGetFunctionPointers(type, type, flags, &x, &op, 0, 0), S_OK);
                x.lut8 = round % 2 ? lut8.data() : nullptr;
                x.lut16 = round % 2 ? lut16.data() : nullptr;
                const bool deep = x.depth == VXXCHG_DEPTH_16;
                const Oracle oracle{deep, deep ? 65536 : 256, op, flags != 0, x.lut8, x.lut16};
                check(x, oracle, random);
                if (testing::Test::HasFatalFailure())
                    return;
            }
}

// Now and then B is the key, so that the tolerance is met also when it is small.
Four SecondPixel(const Oracle& oracle, Random& random)
{
    Four b = RandomFour(oracle.deep, random);
    if (random.Int(0, 3) == 0)
        b = {oracle.K(0), oracle.K(1), oracle.K(2), b[3]};
    return b;
}

TEST(ExchangeOperations, PixelsAndGroupsFollowTheFormulas)
{
    ForEachOperation([](tVXXCHG& x, const Oracle& oracle, Random& random) {
        tVXXCHG first = x, pair = x;
        first.op = RandomOperation(0, random); // key, tolerance and weights are the second record's
        Four want[4];
        for (size_t i = 0; i < 4; ++i) {
            const Four a = RandomFour(oracle.deep, random), b = SecondPixel(oracle, random);
            const bool grouped = oracle.op.number < 15 || oracle.op.number == 19;
            want[i] = grouped ? oracle.Apply(a, b) : a;
            Put(first, i, a);
            Put(x, i, b);

            Put(pair, 0, a);
            Put(pair, 1, b);
            pair.op.number = 99; // kernels know their operation
            pair.opPixel(&pair);
            ASSERT_EQ(Get(pair, 0), oracle.Apply(a, b))
                << "operation " << oracle.op.number << ", depth " << x.depth;
            ASSERT_EQ(Get(pair, 1), b);
        }
        x.opQuad(&first, &x);
        for (size_t i = 0; i < 4; ++i)
            ASSERT_EQ(Get(first, i), want[i]) << "operation " << oracle.op.number << ", slot " << i;
    });
}

TEST(ExchangeOperations, MarksAreMadeByTheKeyOperationsOnly)
{
    ForEachOperation([](tVXXCHG& x, const Oracle& oracle, Random& random) {
        const bool marks = oracle.op.number == VXXCHG_OP_KEY_COPY || oracle.op.number == VXXCHG_OP_KEY_FADE;
        ASSERT_EQ(x.opMark != nullptr, marks);
        ASSERT_EQ(x.opMarkQuad != nullptr, marks);
        if (!marks)
            return;
        Four pixels[4];
        for (size_t i = 0; i < 4; ++i)
            Put(x, i, pixels[i] = SecondPixel(oracle, random));
        x.fractionX = uint32_t(random.Int(0, 16383));
        x.fractionY = uint32_t(random.Int(0, 16383));
        tVXXCHG marked = x;
        marked.opMark(&marked);
        const int64_t full = oracle.Near(pixels[1]) ? 0 : oracle.Max();
        ASSERT_EQ(Get(marked, 0), (Four{full, full, 0, 0}));
        ASSERT_EQ(Get(marked, 1), pixels[1]);

        const Channels block[] = {Slot(x, 0), Slot(x, 1), Slot(x, 2), Slot(x, 3)};
        Four want = Get(MixOf(block, WeightsOf(x)));
        for (size_t i = 4; i-- > 0;)
            want = oracle.Near(pixels[i]) ? pixels[i] : want;
        x.opMarkQuad(&x);
        ASSERT_EQ(Get(x, 0), want);
    });
}

} // namespace
