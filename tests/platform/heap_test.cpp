#include "vx/platform/heap.h"

#include "support/random.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/testing.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {

using vxtest::Random;

class Heap
{
public:
    explicit Heap(DWORD flags = 0, SIZE_T maximum = 0) : heap_(HeapCreate(flags, 0, maximum)) {}
    ~Heap() { EXPECT_TRUE(HeapDestroy(heap_)); }
    Heap(const Heap&) = delete;
    operator HANDLE() const { return heap_; }

private:
    HANDLE heap_;
};

// A block and what was written into it.
struct Block
{
    bool Holds() const { return std::equal(want.begin(), want.end(), bytes); }

    uint8_t* bytes;
    std::vector<uint8_t> want;
};

SIZE_T RandomSize(Random& random)
{
    return SIZE_T(random.Int(0, 3) == 0 ? random.Int(1000, 5000) : random.Int(0, 200));
}

void Fill(Block& block, size_t from, Random& random)
{
    for (size_t i = from; i < block.want.size(); ++i)
        block.bytes[i] = block.want[i] = random.Byte();
}

Block NewBlock(HANDLE heap, Random& random)
{
    const SIZE_T size = RandomSize(random);
    Block block{static_cast<uint8_t*>(HeapAlloc(heap, HEAP_ZERO_MEMORY, size)), std::vector<uint8_t>(size)};
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block.bytes) % 16, 0u);
    EXPECT_TRUE(block.Holds()) << "not zero";
    Fill(block, 0, random);
    return block;
}

void Resize(HANDLE heap, Block& block, Random& random)
{
    const size_t before = block.want.size();
    block.want.resize(RandomSize(random));
    block.bytes = static_cast<uint8_t*>(HeapReAlloc(heap, HEAP_ZERO_MEMORY, block.bytes, block.want.size()));
    ASSERT_TRUE(block.bytes);
    EXPECT_TRUE(block.Holds()) << before << " to " << block.want.size();
    Fill(block, std::min(before, block.want.size()), random);
}

TEST(Heap, BlocksKeepTheirBytesThroughAnySequence)
{
    Random random;
    Heap heap(HEAP_NO_SERIALIZE);
    std::vector<Block> blocks;
    for (int step = 0; step < 20000; ++step) {
        if (blocks.empty() || random.Int(0, 9) < 4) {
            blocks.push_back(NewBlock(heap, random));
            continue;
        }
        std::swap(blocks[size_t(random.Int(0, int32_t(blocks.size()) - 1))], blocks.back());
        Block& block = blocks.back();
        ASSERT_EQ(HeapSize(heap, 0, block.bytes), block.want.size());
        ASSERT_TRUE(block.Holds()) << "step " << step;
        if (random.Int(0, 1) == 0) {
            Resize(heap, block, random);
        } else {
            EXPECT_TRUE(HeapFree(heap, HEAP_NO_SERIALIZE, block.bytes));
            blocks.pop_back();
        }
    }
    // The blocks still there go with the heap: the leak checker looks.
}

TEST(Heap, MaximumHoldsAndAFailedResizeKeepsTheBlock)
{
    Heap heap(0, 32 * 1024);
    auto* block = static_cast<char*>(HeapAlloc(heap, 0, 5));
    std::memcpy(block, "kept", 5);
    for (const SIZE_T tooMuch : {SIZE_T(40000), SIZE_MAX - 16}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(HeapAlloc(heap, 0, tooMuch) || HeapReAlloc(heap, 0, block, tooMuch));
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_STREQ(block, "kept");
    }
    int blocks = 0;
    while (HeapAlloc(heap, 0, 1000))
        ASSERT_LT(++blocks, 33);
    EXPECT_GT(blocks, 10);
}

TEST(Heap, RefusesWhatIsNotItsOwn)
{
    Heap heap, other;
    void *foreign = HeapAlloc(other, 0, 24), *freed = HeapAlloc(heap, 0, 24);
    EXPECT_TRUE(HeapFree(heap, 0, freed));
    for (void* wrong : {foreign, freed}) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(HeapFree(heap, 0, wrong));
        EXPECT_FALSE(HeapReAlloc(heap, 0, wrong, 1));
        EXPECT_EQ(HeapSize(heap, 0, wrong), SIZE_T(-1));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
    }
    EXPECT_EQ(HeapSize(heap, 0, nullptr), SIZE_T(-1));
    EXPECT_FALSE(HeapAlloc(heap, 4, 24));
    EXPECT_FALSE(HeapCreate(HEAP_ZERO_MEMORY, 0, 0));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_FLAGS);
    EXPECT_FALSE(HeapDestroy(GetProcessHeap()));
    EXPECT_FALSE(HeapAlloc(nullptr, 0, 24));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Heap, SerialisesThreads)
{
    Heap heap;
    std::vector<std::jthread> threads;
    for (uint64_t t = 1; t <= 4; ++t)
        threads.emplace_back([&heap, t] {
            Random random(t);
            for (int i = 0; i < 2000; ++i) {
                Block block = NewBlock(heap, random);
                Resize(heap, block, random);
                EXPECT_TRUE(block.Holds() && HeapFree(heap, 0, block.bytes));
            }
        });
}

} // namespace
