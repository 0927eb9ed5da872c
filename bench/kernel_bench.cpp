// Texts in the user's language, set against a hash table that holds the same texts, and the kernel's start and
// end, set against the time that a host may notice.
#include "families.h"
#include "folder.h"
#include "lang/strings.h"
#include "vx/kernel.h"
#include "vx/lang.h"

#include "support/random.h"
#include "support/resource_image.h"

#include <benchmark/benchmark.h>
#include <chrono>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

namespace vxbench {
namespace {

constexpr int kTexts = 256;
constexpr int kCalls = 1000; // in one call of a contender
// 30 ns, where a look-up in a small hash table without a lock takes 2.5.
constexpr double kTextGoal = 12.0;
constexpr std::chrono::milliseconds kRestartGoal(5);

// A module of strings alone and a language handle on it.
class HostStrings
{
public:
    HostStrings()
    {
        const std::filesystem::path file = folder_.Path() / "host.bin";
        const vxtest::Bytes image = vxtest::ResImage(Resources());
        std::ofstream(file, std::ios::binary)
            .write(reinterpret_cast<const char*>(image.data()), std::streamsize(image.size()));
        module_ = LoadLibraryW((u"C:" + file.u16string()).c_str());
        if (!module_ || VxLang_Open(&handle_, module_, 0x0409, 0) != S_OK)
            throw std::runtime_error("no module of strings");
    }
    ~HostStrings()
    {
        VxLang_Close(handle_);
        FreeLibrary(module_);
    }
    HostStrings(const HostStrings&) = delete;
    HostStrings& operator=(const HostStrings&) = delete;

    HVXLANG Handle() const { return handle_; }

    static std::u16string Text(int id)
    {
        const std::string number = std::to_string(id);
        return u"The text with the number " + std::u16string(number.begin(), number.end());
    }

private:
    static std::vector<vxtest::TestResource> Resources()
    {
        std::vector<vxtest::TestResource> blocks;
        for (int first = 0; first < kTexts; first += 16) {
            std::vector<std::u16string> texts;
            for (int id = first; id < first + 16; ++id)
                texts.push_back(Text(id));
            blocks.push_back(vxtest::Strings(first, 0x0409, texts));
        }
        return blocks;
    }

    Folder folder_;
    HMODULE module_ = nullptr;
    HVXLANG handle_ = nullptr;
};

template <class Key>
using HashTable = std::unordered_map<Key, std::u16string>;

// The keys that a call looks up, one after the other.
template <class Key, class Make>
std::vector<Key> RandomKeys(int count, Make keyOf)
{
    vxtest::Random random;
    std::vector<Key> keys(kCalls);
    for (Key& key : keys)
        key = keyOf(random.Int(0, count - 1));
    return keys;
}

template <class Key, class LookUp>
Call LookUpAll(const std::vector<Key>& keys, LookUp lookUp)
{
    return [&keys, lookUp] {
        for (const Key key : keys)
            benchmark::DoNotOptimize(lookUp(key));
    };
}

void StringsById(Work& work)
{
    const HVXLANG handle = work.Own(std::make_unique<HostStrings>())->Handle();
    HashTable<uint32_t>& table = work.Own(HashTable<uint32_t>());
    for (int id = 0; id < kTexts; ++id) {
        table[uint32_t(id)] = HostStrings::Text(id);
        if (VxGetString(handle, uint32_t(id)) != table[uint32_t(id)]) // from here on it is in the cache
            throw std::runtime_error("a string of the module is not what was written");
    }
    const auto& ids = work.Own(RandomKeys<uint32_t>(kTexts, [](int id) { return uint32_t(id); }));
    work.Vx(LookUpAll(ids, [=](uint32_t id) { return VxGetString(handle, id); }));
    work.Floor("a hash look-up", LookUpAll(ids, [&](uint32_t id) { return table.find(id)->second.c_str(); }),
               kTextGoal);
}

void StringsByTable(Work& work)
{
    const HVXLANG handle = work.Own(std::make_unique<HostStrings>())->Handle();
    HashTable<vxlang_t*>& table = work.Own(HashTable<vxlang_t*>());
    for (vxlang_t& texts : vx::strings::g_tables)
        table[&texts] = VxGetString(handle, &texts);
    const auto& keys =
        work.Own(RandomKeys<vxlang_t*>(vx::strings::kCount, [](int i) { return &vx::strings::g_tables[i]; }));
    work.Vx(LookUpAll(keys, [=](vxlang_t* texts) { return VxGetString(handle, texts); }));
    work.Floor("a hash look-up",
               LookUpAll(keys, [&](vxlang_t* texts) { return table.find(texts)->second.c_str(); }),
               kTextGoal);
}

void Wait(std::chrono::steady_clock::duration time)
{
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
    }
}

// Ends and starts the kernel that main started, so that the works behind this one find it as it was.
void Restart(Work& work)
{
    work.Vx([] {
        VxKernel_LateTerminate();
        VxKernel_EarlyInitialize(nullptr, 0);
    });
    work.Floor(
        "5 milliseconds", [] { Wait(kRestartGoal); }, 1.0);
}

} // namespace

void AddKernelWorks(Suite& suite)
{
    suite.Add("text by number, cached", {{kCalls, 0}}, StringsById);
    suite.Add("text by table", {{kCalls, 0}}, StringsByTable);
    suite.Add("kernel: end and start", {{1, 0}}, Restart);
}

} // namespace vxbench
