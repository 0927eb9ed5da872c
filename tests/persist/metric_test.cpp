#include "vx/metrics.h"

#include "support/state_folder.h"
#include "vx/platform/testing.h"

#include <cstring>
#include <gmock/gmock.h>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Text = std::u16string;
using Bytes = std::vector<uint8_t>;

const HVXMETRIC kDefault = reinterpret_cast<HVXMETRIC>(intptr_t(-1));

bool HasKey(HKEY hive, const Text& path)
{
    HKEY key = nullptr;
    const bool found = RegOpenKeyExW(hive, path.c_str(), 0, KEY_READ, &key) == 0;
    if (found)
        RegCloseKey(key);
    return found;
}

bool HasUserKey(const Text& path)
{
    return HasKey(HKEY_CURRENT_USER, path);
}

class Metric : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(VxMetric_Open(&metric_, u"Test", 0x01020000, nullptr), S_OK); }
    void TearDown() override { EXPECT_EQ(VxMetric_CloseAndDeleteKey(metric_), S_OK); }

    void Store(const char16_t* name, DWORD type, const void* data, DWORD bytes) const
    {
        HKEY key = nullptr;
        RegCreateKeyW(HKEY_CURRENT_USER, u"Software\\Vexmere Studio Works\\Test\\1.2\\Metrics", &key);
        EXPECT_EQ(RegSetValueExW(key, name, 0, type, static_cast<const BYTE*>(data), bytes), 0u);
        RegCloseKey(key);
    }

    HVXMETRIC metric_ = nullptr;
};

// What no handle, the default handle and a handle without a key have in common.
TEST_F(Metric, WithoutAKeyReadsDefaultsAndWritesNothing)
{
    HVXMETRIC keyless = nullptr;
    EXPECT_EQ(VxMetric_OpenAppVersion(&keyless, Text(256, u'x').c_str(), nullptr), HRESULT(0x80070057));
    ASSERT_NE(keyless, nullptr);
    IStream* stream = nullptr;
    CreateStreamOnHGlobal(nullptr, 1, &stream);
    stream->Write("abc", 3, nullptr);
    for (const HVXMETRIC metric : {HVXMETRIC(nullptr), kDefault, keyless}) {
        char16_t text[4] = u"???";
        uint8_t bytes[4] = {1, 2, 3, 4};
        uint32_t size = 9;
        EXPECT_EQ(VxGetMetric(metric, 1), 0);
        EXPECT_EQ(VxGetMetricEx(metric, 1, 10, 20, 30), 30) << "no limits";
        EXPECT_EQ(VxGetMetricBool(metric, 1, 7), 7u) << "as it stands";
        EXPECT_EQ(VxGetMetricUsingName(metric, u"n", 7), 7u);
        EXPECT_EQ(VxGetMetricBinary(metric, 1, bytes, 4), 0u);
        EXPECT_THAT(bytes, testing::Each(0));
        EXPECT_EQ(VxGetMetricBinaryEx(metric, 1, bytes, 4, &size), VX_E_ITEM_NOT_FOUND);
        EXPECT_EQ(VxGetMetricStringEx(metric, 1, text, 4, u"long", 1), 3);
        EXPECT_EQ(Text(text), u"lon");
        EXPECT_EQ(VxGetMetricAny(metric, 1, REG_DWORD, bytes, 4, nullptr), E_UNEXPECTED);
        EXPECT_EQ(VxDoesMetricExist(metric, 1, REG_DWORD), S_FALSE);
        EXPECT_EQ(VxDeleteMetric(metric, 1, REG_DWORD), S_FALSE);
        EXPECT_EQ(VxGetMetricStream(metric, 1, stream), E_UNEXPECTED);
        for (const HRESULT status :
             {VxSetMetric(metric, 1, 1), VxSetMetricUsingName(metric, u"n", 1),
              VxSetMetricString(metric, 1, u""), VxSetMetricBinary(metric, 1, "", 1),
              VxSetMetricMultiString(metric, 1, u"", 1), VxSetMetricStream(metric, 1, stream)})
            EXPECT_EQ(status, E_FAIL);
    }
    stream->Release();
    EXPECT_EQ(VxMetric_Close(keyless), S_OK);
    EXPECT_EQ(VxMetric_Close(nullptr), S_OK);
    EXPECT_EQ(VxMetric_CloseAndDeleteKey(nullptr), E_FAIL);
}

TEST_F(Metric, NumbersKeepToTheirLimits)
{
    constexpr struct
    {
        int32_t stored, min, max, want, wantByDefault; // the default is 15
    } kCases[] = {
        {25, 10, 20, 20, 15}, {5, 10, 20, 10, 15},  {12, 10, 20, 12, 15}, {-7, 0, 0, -7, 15},
        {25, 9, 9, 25, 15},   {25, 20, 10, 10, 20}, {5, 20, 10, 20, 20},  {-7, -9, -8, -8, -8},
    };
    for (const auto& c : kCases) {
        EXPECT_EQ(VxSetMetric(metric_, -9, uint32_t(c.stored)), S_OK);
        EXPECT_EQ(VxGetMetric(metric_, 9), c.stored) << "the sign of the number does not count";
        EXPECT_EQ(VxGetMetricEx(metric_, 9, c.min, c.max, 15), c.want);
        EXPECT_EQ(VxGetMetricEx(metric_, 8, c.min, c.max, 15), c.wantByDefault);
    }
    EXPECT_EQ(VxGetMetricUsingName(metric_, u"9", 0), uint32_t(-7)) << "the bare number is the name";
    EXPECT_EQ(VxGetMetricBool(metric_, 9, 0), 1u);
    EXPECT_EQ(VxGetMetricBool(metric_, 8, 7), 1u);
    Store(u"9", REG_BINARY, "abcd", 4);
    EXPECT_EQ(VxGetMetric(metric_, 9), 0) << "another type is none";
    EXPECT_EQ(VxGetMetricEx(metric_, 9, 0, 0, 15), 15);
    EXPECT_EQ(VxDoesMetricExist(metric_, 9, REG_DWORD), S_FALSE);
    EXPECT_EQ(VxDeleteMetricUsingName(metric_, u"9", REG_DWORD), S_OK) << "whatever the type";
    EXPECT_EQ(VxDeleteMetric(metric_, 9, REG_DWORD), E_FAIL);
}

TEST_F(Metric, BytesFillTheirBuffer)
{
    const struct
    {
        DWORD type, bytes;
        uint32_t size;
        HRESULT status;
        uint32_t outSize;
        const char* buffer; // null where it is undefined
    } cases[] = {
        {REG_BINARY, 3, 5, S_OK, 3, "abc\0\0"},       {REG_BINARY, 5, 5, S_OK, 5, "abcde"},
        {REG_BINARY, 6, 5, VX_E_BUFFERTOSMALL, 6, 0}, {REG_SZ, 4, 5, S_FALSE, 0, "\0\0\0\0\0"},
        {REG_BINARY, 0, 5, S_OK, 0, "\0\0\0\0\0"},
    };
    for (const auto& c : cases) {
        Store(u"B1", c.type, "abcdefgh", c.bytes);
        Bytes buffer(5, 0xEE);
        uint32_t size = 99;
        EXPECT_EQ(VxGetMetricBinaryEx(metric_, -1, buffer.data(), c.size, &size), c.status);
        EXPECT_EQ(size, c.outSize);
        if (c.buffer) {
            EXPECT_EQ(std::memcmp(buffer.data(), c.buffer, 5), 0);
        }
        buffer.assign(5, 0xEE);
        EXPECT_EQ(VxGetMetricBinary(metric_, 1, buffer.data(), 5), c.status == S_OK ? c.outSize : 0);
        EXPECT_EQ(std::memcmp(buffer.data(), c.buffer ? c.buffer : "\0\0\0\0\0", 5), 0)
            << "all of it is defined";
        if (c.type == REG_BINARY) {
            EXPECT_EQ(VxGetMetricBinaryEx(metric_, 1, nullptr, 0, &size), S_OK);
            EXPECT_EQ(size, c.bytes);
        }
    }
    EXPECT_EQ(VxGetMetricBinaryEx(metric_, 1, nullptr, 0, nullptr), E_INVALIDARG);
}

TEST_F(Metric, TextsComeWholeOrNotAtAll)
{
    const struct
    {
        std::u16string_view stored; // with its terminator, or without; null for none
        int32_t room, keepEmpty;
        const char16_t* deflt;
        int32_t length;
        std::u16string_view buffer; // as far as told
    } cases[] = {
        {{u"abc", 4}, 8, 0, u"x", 3, {u"abc\0\0\0\0\0", 8}},
        {{u"abc", 4}, 4, 0, u"x", 3, {u"abc", 4}},
        {{u"abcd", 5}, 4, 0, u"longer", 3, {u"lon", 4}},
        {{u"abcd", 5}, 4, 0, nullptr, 0, {u"\0\0\0\0", 4}},
        {{u"abcd", 4}, 4, 0, u"x", 3, {u"abcd?", 5}}, // no terminator was stored
        {{u"", 1}, 4, 1, u"x", 0, {u"\0\0\0\0", 4}},
        {{u"", 1}, 4, 0, u"x", 1, {u"x\0\0\0", 4}},
        {{u"", size_t(0)}, 4, 1, u"x", 1, {u"x\0\0\0", 4}},
        {{}, 4, 1, u"x", 1, {u"x\0\0\0", 4}},
        {{}, 0, 1, u"x", 0, {u"????", 4}},
        {{u"a\0b\0", 5}, 8, 0, u"x", 4, {u"a\0b\0\0\0\0\0", 8}},
    };
    for (const auto& c : cases)
        for (const DWORD type : {REG_SZ, REG_MULTI_SZ}) {
            const bool multi = type == REG_MULTI_SZ;
            VxDeleteMetric(metric_, 4, type);
            if (c.stored.data())
                Store(multi ? u"Z4" : u"S4", type, c.stored.data(), DWORD(c.stored.size() * 2));
            Text buffer(9, u'?');
            const auto read = multi ? VxGetMetricMultiStringEx : VxGetMetricStringEx;
            EXPECT_EQ(read(metric_, 4, buffer.data(), c.room, c.deflt, c.keepEmpty), c.length);
            EXPECT_EQ(buffer.substr(0, c.buffer.size()), c.buffer);
            EXPECT_EQ(buffer[size_t(c.room)], u'?') << "behind the room";
        }
    // What is set is stored with its terminators.
    uint32_t size = 0;
    EXPECT_EQ(VxSetMetricString(metric_, 4, u"Жa"), S_OK);
    EXPECT_EQ(VxDoesMetricExist(metric_, 4, REG_SZ), S_OK);
    EXPECT_EQ(VxSetMetricMultiString(metric_, 4, u"a\0b\0", 5), S_OK);
    char16_t text[8];
    EXPECT_EQ(VxGetMetricMultiStringEx(metric_, 4, text, 8, nullptr, 0), 4);
    EXPECT_EQ(VxGetMetricStringEx(metric_, 4, text, 3, nullptr, 0), 2);
    EXPECT_EQ(VxGetMetricAny(metric_, 4, REG_SZ, nullptr, 0, &size), VX_E_ITEM_NOT_FOUND) << "named \"S4\"";
}

TEST_F(Metric, AnyTypeIsReadByTheBareNumber)
{
    const struct
    {
        DWORD type, bytes, asked;
        uint32_t size;
        HRESULT status;
        uint32_t outSize;
        const char* buffer;
    } cases[] = {
        {REG_DWORD, 4, REG_DWORD, 4, S_OK, 4, "a\0b\0"},
        {REG_DWORD, 4, REG_SZ, 4, VX_E_ITEM_NOT_FOUND, 99, "a\0b\0"},
        {REG_DWORD, 4, REG_DWORD, 3, VX_E_BUFFERTOSMALL, 4, "????"},
        {REG_SZ, 4, REG_SZ, 6, S_OK, 4, "a\0b\0\0\0??"},
        {REG_SZ, 4, REG_SZ, 5, VX_E_BUFFERTOSMALL, 6, "a\0\0\0??"},
        {REG_SZ, 4, REG_SZ, 4, VX_E_BUFFERTOSMALL, 6, "a\0\0\0??"},
        {REG_SZ, 6, REG_SZ, 6, S_OK, 6, "a\0b\0\0\0??"},
        {REG_SZ, 2, REG_SZ, 2, S_OK, 2, "a\0??"},
    };
    for (const auto& c : cases) {
        Store(u"6", c.type, "a\0b\0\0\0\0", c.bytes);
        char buffer[9] = "????????";
        uint32_t size = 99;
        EXPECT_EQ(VxGetMetricAny(metric_, 6, c.asked, buffer, c.size, &size), c.status) << c.bytes << c.size;
        EXPECT_EQ(VxGetMetricAny(metric_, 6, c.asked, nullptr, c.size, nullptr),
                  c.asked == c.type ? S_OK : VX_E_ITEM_NOT_FOUND);
        EXPECT_EQ(size, c.outSize) << c.bytes << c.size;
        EXPECT_EQ(std::memcmp(buffer, c.buffer, 4), 0) << c.bytes << c.size;
    }
}

TEST_F(Metric, StreamsAreStoredUpToTheirPosition)
{
    IStream* stream = nullptr;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, 1, &stream), S_OK);
    const Bytes bytes(2049, 7);
    EXPECT_EQ(VxSetMetricStream(metric_, 2, nullptr), E_POINTER);
    EXPECT_EQ(VxSetMetricStream(metric_, 2, stream), E_UNEXPECTED) << "position 0";
    LARGE_INTEGER place = {};
    place.QuadPart = 9;
    stream->Seek(place, STREAM_SEEK_SET, nullptr);
    EXPECT_EQ(VxSetMetricStream(metric_, 2, stream), E_UNEXPECTED) << "nothing is there";
    stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    stream->Write(bytes.data(), 5, nullptr);
    stream->Seek(place, STREAM_SEEK_SET, nullptr);
    EXPECT_EQ(VxSetMetricStream(metric_, 2, stream), E_UNEXPECTED) << "behind the end";
    stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    stream->Write(bytes.data(), 2048, nullptr);
    EXPECT_EQ(VxSetMetricStream(metric_, 2, stream), S_OK);
    stream->Write(bytes.data(), 1, nullptr);
    EXPECT_EQ(VxSetMetricStream(metric_, 2, stream), E_INVALIDARG);
    stream->Release();

    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, 1, &stream), S_OK);
    stream->Write("ab", 2, nullptr);
    EXPECT_EQ(VxGetMetricStream(metric_, 2, stream), S_OK);
    STATSTG facts;
    stream->Stat(&facts, 0);
    EXPECT_EQ(facts.cbSize.QuadPart, 2048u) << "from the start";
    EXPECT_EQ(VxGetMetricStream(metric_, 3, stream), E_UNEXPECTED);
    EXPECT_EQ(VxGetMetricStream(metric_, 2, nullptr), E_POINTER);
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxGetMetricStream(metric_, 2, stream), E_OUTOFMEMORY);
    stream->Release();
}

TEST(MetricKeys, PathsGoByVendorApplicationAndVersion)
{
    const struct
    {
        const char16_t* vendor;
        uint32_t version;
        const char16_t* subKey;
        const char16_t* path;
    } cases[] = {
        {nullptr, 0x0A0BFFFF, nullptr, u"Software\\Vexmere Studio Works\\App\\10.11\\Metrics"},
        {nullptr, 0x00FF0000, u"", u"Software\\Vexmere Studio Works\\App\\Metrics"},
        {u"V", 0xFF000000, u"A\\B", u"Software\\V\\App\\255.0\\Metrics\\A\\B"},
    };
    for (const auto& c : cases) {
        HVXMETRIC metric = nullptr, sibling = nullptr;
        EXPECT_EQ(c.vendor ? VxMetric_OpenRegHiveAndVersion(&metric, u"App", c.version, c.vendor, c.subKey)
                           : VxMetric_Open(&metric, u"App", c.version, c.subKey),
                  S_OK);
        EXPECT_TRUE(HasUserKey(c.path));
        const Text metrics = Text(c.path).substr(0, Text(c.path).find(u"\\Metrics") + 8);
        EXPECT_EQ(VxMetric_OpenSubKey(&sibling, metric, u"C"), S_OK);
        EXPECT_TRUE(HasUserKey(metrics + u"\\C")) << "below the metrics, wherever the parent is";
        VxMetric_Close(sibling);
        VxMetric_CloseAndDeleteKey(metric);
        EXPECT_FALSE(HasUserKey(c.path));
    }
    HVXMETRIC metric = nullptr, none = kDefault;
    EXPECT_EQ(VxMetric_OpenAppVersion(&metric, u"Elsewhere", nullptr), S_OK);
    EXPECT_EQ(VxMetric_OpenSubKey(&none, metric, u"C"), E_INVALIDARG);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(VxMetric_OpenSubKey(&none, nullptr, u"C"), E_FAIL);
    VxMetric_Close(metric);
    VxPlatform_FailAllocationAt(1);
    EXPECT_EQ(VxMetric_Open(&metric, u"App", 0, nullptr), E_OUTOFMEMORY);
    EXPECT_EQ(metric, nullptr);
}

// Which of the two hives' keys are left by each of the deletions.
TEST(MetricKeys, DeletionsTakeWhatIsBelow)
{
    const Text app = u"Software\\Vexmere Studio Works\\Gone", metrics = app + u"\\2.0\\Metrics";
    const struct
    {
        void (*remove)();
        bool machine, user, userVersion, userApp; // metrics in each hive, then the user's keys above
    } cases[] = {
        {[] { VxMetric_DeleteKey(u"Gone", 0x02000000, u"None"); }, true, true, true, true},
        {[] { VxMetric_DeleteKey(u"Gone", 0x02000000, nullptr); }, false, false, true, true},
        {[] { VxMetric_DeleteAll(u"", 0); }, true, true, true, true},
        {[] { VxMetric_DeleteUserMetrics(nullptr, 0); }, true, true, true, true},
        {[] { VxMetric_DeleteAllHiveAndVersion(u"Gone", 0, u""); }, true, true, true, true},
        {[] { VxMetric_DeleteUserMetrics(u"Gone", 0x02000000); }, true, false, false, true},
        {[] { VxMetric_DeleteAll(u"Gone", 0x02000000); }, false, false, false, true},
        {[] { VxMetric_DeleteAllHiveAndVersion(u"Gone", 0, u"Vexmere Studio Works"); }, false, false, false,
         false},
    };
    for (const auto& c : cases) {
        for (const HKEY hive : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
            for (const char16_t* below : {u"\\One\\Deep", u"\\Three"}) {
                HKEY key = nullptr;
                ASSERT_EQ(RegCreateKeyW(hive, (metrics + below).c_str(), &key), 0u);
                RegCloseKey(key);
            }
        uint32_t nameChars = 0;
        EXPECT_EQ(VxRegGetSubKeyCount(HKEY_CURRENT_USER, metrics.c_str(), &nameChars), 2u);
        EXPECT_EQ(nameChars, 6u);
        c.remove();
        EXPECT_EQ(HasKey(HKEY_LOCAL_MACHINE, metrics), c.machine);
        EXPECT_EQ(HasUserKey(metrics), c.user);
        EXPECT_EQ(HasUserKey(app + u"\\2.0"), c.userVersion);
        EXPECT_EQ(HasUserKey(app), c.userApp);
    }
    EXPECT_EQ(VxRegGetSubKeyCount(HKEY_CURRENT_USER, app.c_str(), nullptr), 0u);
    EXPECT_EQ(VxRegDeleteKey(HKEY_CURRENT_USER, app.c_str()), 1) << "there is none";
    EXPECT_EQ(VxRegDeleteKey(HKEY_CURRENT_USER, u""), 0);
    EXPECT_TRUE(HasUserKey(u"Software")) << "a hive stays";
}

TEST_F(Metric, NamesGoByType)
{
    constexpr struct
    {
        int32_t id;
        uint32_t type;
        const char16_t *name, *stored;
    } kCases[] = {
        {3, REG_DWORD, u"D3", u"3"},
        {-3, REG_SZ, u"S3", u"S3"},
        {30, REG_BINARY, u"B30", u"B30"},
        {0, REG_MULTI_SZ, u"Z0", u"Z0"},
        {1, REG_QWORD, u"Z1", u"Z1"},
        {INT32_MAX, REG_SZ, u"S2147483647", u"S2147483647"},
        {INT32_MIN, REG_SZ, u"S-2147483648", u"S-2147483648"},
    };
    for (const auto& c : kCases) {
        char16_t name[13];
        EXPECT_EQ(VxMetricGetName(c.id, c.type, name), int32_t(Text(c.name).size()));
        EXPECT_EQ(Text(name), c.name);
        Store(c.stored, c.type, "abcd", 4);
        EXPECT_EQ(VxDoesMetricExist(metric_, c.id, c.type), S_OK) << c.type;
        EXPECT_EQ(VxDeleteMetric(metric_, c.id, c.type), S_OK) << c.type;
        EXPECT_EQ(VxDoesMetricExist(metric_, c.id, c.type), S_FALSE) << c.type;
    }
}

} // namespace
