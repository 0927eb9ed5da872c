#include "lang/host_module.h"
#include "lang/strings.h"
#include "vx/platform/layout.h"
#include "vx/platform/testing.h"

#include <iterator>
#include <thread>

using namespace vxtest;

namespace {

constexpr uint16_t kEnglish = 0x0409, kGerman = 0x0407;

// Number 1 is everywhere, 2 in the module alone, 3 in the language file alone, 4 in German in the module, 16 in a block
// of it that is German alone.
const Resources kModule = {Strings(0, kEnglish, {u"", u"module en", u"module en"}),
                           Strings(0, kGerman, {u"", u"module de", u"module de", u"", u"module de"}),
                           Strings(16, kGerman, {u"block de"})};
const Resources kLanguageFile = {Strings(0, kEnglish, {u"", u"file en", u"", u"file en"}),
                                 Strings(0, kGerman, {u"", u"file de", u"", u"file de"})};

} // namespace

TEST(Language, StringsFallBackByTheLanguageAndTheFile)
{
    constexpr uint32_t kNone = 0, kBritish = 0x0809, kAustrian = 0x0C07, kHungarian = 0x040E;
    const struct
    {
        uint32_t lcid;
        bool file;
        const char16_t* want[6]; // 16 is the last
    } cases[] = {
        {kGerman, true, {u"", u"file de", u"module en", u"file de", u"", u"block de"}},
        {kGerman, false, {u"", u"module de", u"module de", u"", u"module de", u"block de"}},
        {kAustrian, true, {u"", u"module en", u"module en", u"", u"", u"block de"}},
        {kHungarian, false, {u"", u"module en", u"module en", u"", u"", u""}},
        {kEnglish, false, {u"", u"module en", u"module en", u"", u"", u""}},
        {kBritish, true, {u"", u"module en", u"module en", u"", u"", u"block de"}},
        {kNone, true, {u"", u"module en", u"module en", u"", u"", u"block de"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.lcid << (c.file ? " with file" : ""));
        const HostModule host(kModule, c.file ? std::optional(kLanguageFile) : std::nullopt);
        const Handle handle(host.module);
        VxGetString(handle, 1), VxGetString(vx::g_kernelLanguage, 1); // to be forgotten
        EXPECT_TRUE(c.lcid == kNone || VxLang_UpdateKernelLCID(handle, c.lcid));
        EXPECT_EQ(VxLang_InstFromLang(handle) != host.module,
                  c.file && c.lcid != kNone && !VxLang_IsLCIDEnglish(c.lcid));
        for (const uint32_t id : {4u, 0u, 16u, 2u, 1u, 3u}) { // so that the cache has to sort them
            char16_t text[20];
            const std::u16string want = c.want[std::min(id, 5u)];
            EXPECT_EQ(VxLoadString(handle, id, text, 20), int32_t(want.size()));
            EXPECT_EQ(text, want) << id;
            const char16_t* cached = VxGetString(handle, id);
            EXPECT_EQ(cached, want) << id;
            EXPECT_EQ(VxGetString(handle, id), cached) << id;
            EXPECT_EQ(VxGetString(vx::g_kernelLanguage, id), want) << id;
        }
    }
}

TEST(Language, TextsAreCutToTheRoomAndLoseTheirMark)
{
    const std::u16string texts[] = {
        u"^*Retry", u"^*", u"^", u"Re^*try", std::u16string(u"end\0", 4), std::u16string(1100, u'x')};
    const HostModule host({Strings(0, kEnglish, {std::begin(texts), std::end(texts)})});
    const Handle handle(host.module);
    for (uint32_t id = 0; id < std::size(texts); ++id)
        for (int32_t room = -1; room <= 10; ++room) {
            std::u16string want = texts[id].c_str();
            want.resize(std::min(want.size(), size_t(std::max(room - 1, 0))));
            if (want.starts_with(u"^*"))
                want.erase(0, 2);
            vxlang_t table = {VXLANG_MARK, 1, 0, {texts[id].c_str()}, 0};
            for (const bool fromTable : {false, true}) {
                std::u16string text(12, u'#');
                EXPECT_EQ(fromTable ? VxLoadString(handle, &table, text.data(), room)
                                    : VxLoadString(handle, id, text.data(), room),
                          int32_t(want.size()));
                EXPECT_EQ(text[size_t(std::max(room, 0))], u'#') << id << ", room " << room;
                EXPECT_TRUE(room < 1 || std::u16string(text.c_str()) == want) << id << ", room " << room;
            }
        }
    EXPECT_EQ(std::u16string(VxGetString(handle, 0u)), u"Retry");
    EXPECT_EQ(std::u16string(VxGetString(handle, 5)).size(), 1023u);
}

TEST(Language, ALanguageIsSetForTheHandleTheKernelAndTheProcess)
{
    const struct
    {
        uint32_t lcid, want;
        const char16_t *letters, *tag, *retry;
        bool rightToLeft;
    } cases[] = {
        {0, 0x0409, u"ENU", u"", u"&Retry", false},
        {0x0401, 0x0401, u"ARA", u"", u"&Retry", true},
        {0x0C0A, 0x0C0A, u"ESP", u"es-ES", u"&Reintentar", false},
        {0x040D, 0x040D, u"HEB", u"", u"&Retry", true},
        {0x0404, 0x0404, u"CHT", u"zh-CN", u"重試(&R)", false},
        {0x0411, 0x0411, u"JPN", u"ja-JP", u"再試行(&R)", false},
    };
    const HostModule host({});
    const Handle handle(host.module);
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << std::hex << c.lcid);
        EXPECT_EQ(VxLang_UpdateKernelLCID(handle, c.lcid), 1);
        EXPECT_EQ(VxLang_GetLCID(handle), c.want);
        EXPECT_EQ(VxLang_GetLCID(vx::g_kernelLanguage), c.want);
        EXPECT_EQ(VxGetString(handle, vx::strings::kRetry), std::u16string(c.retry));
        EXPECT_EQ(vx::KernelText(vx::strings::kRetry), std::u16string(c.retry));
        char16_t letters[4], tag[8];
        EXPECT_EQ(VxLang_GetLangAbbrev(handle, letters, 4), 1);
        EXPECT_EQ(std::u16string(letters), c.letters);
        EXPECT_EQ(VxLang_GetLangAbbrev(handle, letters, 3), 0);
        EXPECT_EQ(VxLang_GetLangllCC(handle, tag, 8), *c.tag == 0);
        EXPECT_EQ(std::u16string(tag), c.tag);
        DWORD layout = 99;
        EXPECT_TRUE(GetProcessDefaultLayout(&layout));
        EXPECT_EQ(layout, c.rightToLeft ? LAYOUT_RTL : 0u);
        EXPECT_EQ(VxLang_UseRTL(handle), c.rightToLeft);
        VxLang_UpdateThreadLocale(handle);
        EXPECT_EQ(GetThreadLocale(), c.want);
    }
    VxLang_DisableProcessMirroring();
    vx::CloseKernelLanguage();
    EXPECT_EQ(VxLang_UpdateKernelLCID(handle, kGerman), 0);
    EXPECT_EQ(VxLang_ChangeLangInst(handle, host.module), 0);
    EXPECT_EQ(VxLang_GetLCID(handle), 0x0411u);
}

TEST(Language, AModulePutInServesBothHandlesUntilItsOwnCloses)
{
    const HostModule host(kModule, kLanguageFile);
    const HVXLANG kernel = vx::g_kernelLanguage;
    VxLang_UpdateKernelLCID(kernel, kGerman);
    const HMODULE kernels = VxLang_InstFromLang(kernel), second = host.Load(u"second.bin", kModule);
    const Resources german = {
        Strings(0, kGerman, {u"", u"other de"}), {16, 7, kGerman, {1, 2}}, {16, 7, 0x040C, {1, 2}}};
    const HMODULE file = host.Load(u"second.LNG", german), other = host.Load(u"other.bin", german);
    for (const HMODULE module : {other, file, second}) {
        EXPECT_EQ(VxLang_InstFromLang(kernel), kernels); // again
        const Handle handle(second, kGerman);
        char16_t list[20];
        EXPECT_EQ(VxEnumResourceLanguages(handle, 7, list, 20),
                  0); // read as English until the language is set
        VxLang_UpdateKernelLCID(handle, kGerman);
        EXPECT_EQ(VxLang_ChangeLangInst(handle, nullptr), 1);
        EXPECT_EQ(VxLang_InstFromLang(handle), file);
        EXPECT_EQ(VxEnumResourceLanguages(handle, 7, list, 20), 7);
        EXPECT_EQ(std::u16string(list), u"DEU,FRA");
        EXPECT_EQ(VxEnumResourceLanguages(handle, 7, list, 6), 5);
        EXPECT_EQ(std::u16string(list), u"DEU,F");
        for (int again = 0; again < 2; ++again)
            EXPECT_EQ(VxLang_ChangeLangInst(handle, module), 1);
        EXPECT_EQ(VxLang_InstFromLang(kernel), module);
        EXPECT_EQ(std::u16string(VxGetString(handle, 1)), module == second ? u"module de" : u"other de");
    }
    EXPECT_EQ(VxLang_InstFromLang(kernel), kernels);
    EXPECT_TRUE(FreeLibrary(file) && FreeLibrary(second));
    EXPECT_FALSE(FreeLibrary(file) || FreeLibrary(other)) << "gone with their handles";
    VxLang_ChangeLangInst(kernel, host.module); // its own, which is not freed with it
}

TEST(Language, OpeningWithoutMemoryOrTwiceChangesNothing)
{
    HVXLANG handle = nullptr;
    for (uint32_t n = 1; n <= 2; ++n) {
        VxPlatform_FailAllocationAt(n);
        EXPECT_EQ(VxLang_Open(&handle, nullptr, 0, 0), E_OUTOFMEMORY);
        EXPECT_EQ(handle, nullptr);
    }
    const Handle open;
    handle = open;
    EXPECT_EQ(VxLang_Open(&handle, nullptr, kGerman, 0), VX_S_ALREADY_OPEN);
    EXPECT_EQ(handle, open);
    EXPECT_EQ(VxLang_GetLCID(open), 0u);
}

TEST(Language, ThreadsShareAHandle)
{
    Resources resources;
    for (int id = 0; id < 128; id += 16) // as long as the block's number tells
        resources.push_back(
            Strings(id, kEnglish, std::vector(16, u"text " + std::u16string(size_t(id), u'x'))));
    const HostModule host(resources);
    const Handle handle(host.module);
    vxlang_t table = {VXLANG_MARK, 2, 0, {u"english", MAKEINTRESOURCEW(9)}, 0};
    const auto read = [&](uint32_t first) {
        for (uint32_t i = 0; i < 500; ++i) {
            const uint32_t id = (first + i * 37) % 128;
            EXPECT_EQ(std::u16string_view(VxGetString(handle, id)).size(), 5 + id / 16 * 16);
            EXPECT_EQ(VxGetString(handle, &table), table.text[0]);
            EXPECT_NE(VxGetTempStringBuffer(handle, int32_t(id)), nullptr);
        }
    };
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < 4; ++t)
        threads.emplace_back(read, t * 31);
    for (std::thread& thread : threads)
        thread.join();
}
