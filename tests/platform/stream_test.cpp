#include "vx/platform/stream.h"

#include "support/random.h"
#include "vx/platform/memory.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

LARGE_INTEGER By(int64_t move)
{
    LARGE_INTEGER value;
    value.QuadPart = move;
    return value;
}

ULARGE_INTEGER Of(uint64_t count)
{
    ULARGE_INTEGER value;
    value.QuadPart = count;
    return value;
}

Bytes ContentOf(IStream* stream)
{
    HGLOBAL memory = nullptr;
    EXPECT_EQ(GetHGlobalFromStream(stream, &memory), S_OK);
    Bytes bytes(GlobalSize(memory));
    if (!bytes.empty()) {
        std::memcpy(bytes.data(), GlobalLock(memory), bytes.size());
        GlobalUnlock(memory);
    }
    return bytes;
}

// The stream and a clone, against two positions in one vector.
TEST(MemoryStream, DoesWhatAVectorDoes)
{
    IStream* streams[2] = {};
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, 1, &streams[0]), S_OK);
    ASSERT_EQ(streams[0]->Clone(&streams[1]), S_OK);
    Bytes model;
    uint64_t positions[2] = {};
    vxtest::Random random;
    for (int step = 0; step < 3000; ++step) {
        const int which = random.Int(0, 1);
        IStream* const stream = streams[which];
        uint64_t& at = positions[which];
        const uint64_t count = uint64_t(random.Int(0, 90));
        switch (random.Int(0, 4)) {
        case 0: {
            Bytes data(count + 1, uint8_t(step));
            ULONG written = 0;
            ASSERT_EQ(stream->Write(data.data(), ULONG(count), &written), S_OK);
            ASSERT_EQ(written, count);
            if (count != 0)
                model.resize(std::max<size_t>(model.size(), at + count));
            std::fill_n(model.begin() + ptrdiff_t(std::min<size_t>(at, model.size())), count, uint8_t(step));
            at += count;
            break;
        }
        case 1: {
            Bytes data(100, 0xEE);
            ULONG read = 99;
            ASSERT_EQ(stream->Read(data.data(), ULONG(count), &read), S_OK);
            ASSERT_EQ(read, std::min<uint64_t>(count, model.size() - std::min<size_t>(at, model.size())));
            ASSERT_TRUE(std::equal(data.begin(), data.begin() + read,
                                   model.begin() + ptrdiff_t(std::min<size_t>(at, model.size()))));
            ASSERT_EQ(data[read], 0xEE);
            at += read;
            break;
        }
        case 2: {
            const DWORD origin = DWORD(random.Int(0, 3));
            const uint64_t start = origin == 0 ? 0 : origin == 1 ? at : model.size();
            const int64_t target = int64_t(start) + int64_t(count) - 45;
            ULARGE_INTEGER position = {};
            const bool refused = origin > 2 || target < 0;
            ASSERT_EQ(stream->Seek(By(int64_t(count) - 45), origin, &position),
                      refused ? STG_E_INVALIDFUNCTION : S_OK);
            if (!refused) {
                ASSERT_EQ(at = position.QuadPart, uint64_t(target));
            }
            break;
        }
        case 3:
            if (random.Int(0, 9) == 0) {
                ASSERT_EQ(stream->SetSize(Of(count)), S_OK);
                model.resize(count);
            }
            break;
        default: {
            STATSTG facts;
            ASSERT_EQ(stream->Stat(&facts, 0), S_OK);
            ASSERT_EQ(facts.cbSize.QuadPart, model.size());
        }
        }
        ASSERT_EQ(ContentOf(streams[1 - which]), model) << step;
    }
    EXPECT_EQ(streams[0]->Release(), 0u);
    EXPECT_EQ(ContentOf(streams[1]), model) << "a clone outlives its stream";
    EXPECT_EQ(streams[1]->Release(), 0u);
}

// As C sees it: the object's first field points to the functions, in this order.
TEST(MemoryStream, HasThePublishedTable)
{
    IStream *stream = nullptr, *other = nullptr;
    const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, 6);
    std::memcpy(GlobalLock(memory), "abcdef", 6);
    GlobalUnlock(memory);
    ASSERT_EQ(CreateStreamOnHGlobal(memory, 0, &stream), S_OK);
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, 1, &other), S_OK);
    void** const table = *reinterpret_cast<void***>(stream);
    void* same = nullptr;
    const auto query = reinterpret_cast<HRESULT (*)(IStream*, const IID*, void**)>(table[0]);
    EXPECT_EQ(query(stream, &IID_ISequentialStream, &same), S_OK);
    EXPECT_EQ(same, stream);
    const IID unknown = {1, 2, 3, {}};
    EXPECT_EQ(query(stream, &unknown, &same), E_NOINTERFACE);
    EXPECT_EQ(same, nullptr);
    EXPECT_EQ(reinterpret_cast<ULONG (*)(IStream*)>(table[1])(stream), 3u);
    EXPECT_EQ(reinterpret_cast<ULONG (*)(IStream*)>(table[2])(stream), 2u);
    ULARGE_INTEGER read = {}, written = {};
    using CopyTo = HRESULT (*)(IStream*, IStream*, uint64_t, ULARGE_INTEGER*, ULARGE_INTEGER*);
    EXPECT_EQ(reinterpret_cast<CopyTo>(table[7])(stream, other, 4, &read, &written), S_OK);
    EXPECT_EQ(written.QuadPart, 4u);
    EXPECT_EQ(ContentOf(other), Bytes({'a', 'b', 'c', 'd'}));
    EXPECT_EQ(reinterpret_cast<HRESULT (*)(IStream*, DWORD)>(table[8])(stream, 0), S_OK);
    IStream* clone = nullptr;
    EXPECT_EQ(reinterpret_cast<HRESULT (*)(IStream*, IStream**)>(table[13])(stream, &clone), S_OK);
    for (IStream* const each : {stream, stream, clone, other})
        each->Release();
    EXPECT_EQ(GlobalSize(memory), 6u) << "the caller's block stays";
    GlobalFree(memory);
}

} // namespace
