#include "vx/platform/registry.h"

#include "support/random.h"
#include "support/state_folder.h"

#include <atomic>
#include <csignal>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <map>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using namespace vxtest;
using Text = std::u16string;

// What the registry must hold: names by their lower case, which the few letters below suffice for.
struct ModelValue
{
    Text name;
    DWORD type;
    Bytes data;
    bool operator==(const ModelValue&) const = default;
};
struct ModelKey
{
    Text name;
    std::map<Text, ModelValue> values;
    std::map<Text, ModelKey> keys;
    bool operator==(const ModelKey&) const = default;
};

Text Lower(Text text)
{
    for (char16_t& c : text)
        c = c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c == u'Ж' ? u'ж' : c == u'Ä' ? u'ä' : c;
    return text;
}

ModelKey Stored(HKEY parent, const Text& name)
{
    ModelKey model = {name, {}, {}};
    HKEY key = nullptr;
    EXPECT_EQ(RegOpenKeyExW(parent, name.c_str(), 0, KEY_READ, &key), ERROR_SUCCESS);
    DWORD keys = 0, longestKey = 0, values = 0, longestValue = 0, most = 0;
    EXPECT_EQ(RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, &keys, &longestKey, nullptr, &values,
                               &longestValue, &most, nullptr, nullptr),
              ERROR_SUCCESS);
    Text room(256, u'\0'), last;
    DWORD seenLongest = 0, seenMost = 0, length = 256;
    for (DWORD i = 0; RegEnumKeyExW(key, i, room.data(), &length, nullptr, nullptr, nullptr, nullptr) == 0;
         ++i) {
        const Text child(room.c_str());
        EXPECT_EQ(child.size(), length);
        EXPECT_LT(last, Lower(child)) << "the order";
        last = Lower(child);
        seenLongest = std::max(seenLongest, length);
        model.keys[last] = Stored(key, child);
        length = 256;
    }
    EXPECT_EQ(keys, model.keys.size());
    EXPECT_EQ(longestKey, seenLongest);
    seenLongest = 0;
    for (DWORD i = 0, type = 0, bytes = 64; length = 256, bytes = 64, true; ++i) {
        Bytes data(64);
        const LSTATUS status =
            RegEnumValueW(key, i, room.data(), &length, nullptr, &type, data.data(), &bytes);
        if (status == ERROR_NO_MORE_ITEMS)
            break;
        EXPECT_EQ(status, ERROR_SUCCESS);
        data.resize(bytes);
        seenLongest = std::max(seenLongest, length);
        seenMost = std::max(seenMost, bytes);
        model.values[Lower(room.c_str())] = {room.c_str(), type, data};
    }
    EXPECT_EQ(values, model.values.size());
    EXPECT_EQ(longestValue, seenLongest);
    EXPECT_EQ(most, seenMost);
    RegCloseKey(key);
    return model;
}

class Player
{
public:
    ModelKey model{u"Model", {}, {}};

    Player() { EXPECT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, u"Model", &root_), ERROR_SUCCESS); }
    ~Player() { RegCloseKey(root_); }

    void Step()
    {
        const int depth = random_.Int(1, 3);
        Text path;
        ModelKey* parent = nullptr;
        ModelKey* at = &model;
        Text folded;
        for (int i = 0; i < depth; ++i) {
            const Text name = Name();
            path += (i ? u"\\" : u"") + name;
            folded = Lower(name);
            parent = at;
            at = at && at->keys.contains(folded) ? &at->keys[folded] : nullptr;
        }
        switch (random_.Int(0, 5)) {
        case 0:
            return Create(path);
        case 1:
            return Delete(path, parent, at, folded);
        default:
            return UseValue(path, at);
        }
    }

private:
    Text Name()
    {
        constexpr const char16_t* kNames[] = {u"a", u"A", u"bC", u"Bc", u"Ж", u"ж", u"zÄ😀", u"ZÄ😀", u"_"};
        return kNames[random_.Int(0, int(std::size(kNames)) - 1)];
    }

    void Create(const Text& path)
    {
        HKEY key = nullptr;
        DWORD did = 0, want = REG_OPENED_EXISTING_KEY;
        ASSERT_EQ(RegCreateKeyExW(root_, path.c_str(), 0, nullptr, 0, KEY_READ, nullptr, &key, &did), 0u);
        ModelKey* at = &model;
        for (size_t start = 0; start <= path.size();) {
            const size_t end = std::min(path.find(u'\\', start), path.size());
            const Text name = path.substr(start, end - start);
            if (at->keys.try_emplace(Lower(name), ModelKey{name, {}, {}}).second)
                want = REG_CREATED_NEW_KEY;
            at = &at->keys[Lower(name)];
            start = end + 1;
        }
        EXPECT_EQ(did, want);
        EXPECT_EQ(RegCloseKey(key), 0u);
        EXPECT_EQ(RegCloseKey(key), ERROR_INVALID_HANDLE);
    }

    void Delete(const Text& path, ModelKey* parent, ModelKey* at, const Text& folded)
    {
        HKEY key = nullptr;
        RegOpenKeyExW(root_, path.c_str(), 0, KEY_ALL_ACCESS, &key);
        const LSTATUS want = !at                ? ERROR_FILE_NOT_FOUND
                             : at->keys.empty() ? ERROR_SUCCESS
                                                : ERROR_ACCESS_DENIED;
        ASSERT_EQ(RegDeleteKeyW(root_, path.c_str()), want);
        if (want == ERROR_SUCCESS) {
            parent->keys.erase(folded);
            DWORD bytes = 0;
            EXPECT_EQ(RegQueryValueExW(key, u"a", nullptr, nullptr, nullptr, &bytes), ERROR_KEY_DELETED);
            EXPECT_EQ(RegSetValueExW(key, u"a", 0, REG_NONE, nullptr, 0), ERROR_KEY_DELETED);
        }
        RegCloseKey(key);
    }

    void UseValue(const Text& path, ModelKey* at)
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegOpenKeyExW(root_, path.c_str(), 0, KEY_READ | KEY_WRITE, &key),
                  at ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND);
        if (!at)
            return;
        const Text name = random_.Int(0, 5) ? Name() : u"";
        if (random_.Int(0, 3) == 0) {
            EXPECT_EQ(RegDeleteValueW(key, name.c_str()),
                      at->values.erase(Lower(name)) ? ERROR_SUCCESS : ERROR_FILE_NOT_FOUND);
        } else {
            ModelValue value = {name, DWORD(random_.Int(0, 11)), Bytes(size_t(random_.Int(0, 40)))};
            for (uint8_t& byte : value.data)
                byte = random_.Byte();
            EXPECT_EQ(
                RegSetValueExW(key, name.c_str(), 0, value.type, value.data.data(), DWORD(value.data.size())),
                0u);
            if (at->values.contains(Lower(name)))
                value.name = at->values[Lower(name)].name;
            at->values[Lower(name)] = value;
        }
        RegCloseKey(key);
    }

    Random random_;
    HKEY root_ = nullptr;
};

TEST(Registry, DoesWhatAMapDoes)
{
    Player player;
    for (int i = 1; i <= 3000 && !testing::Test::HasFailure(); ++i) {
        player.Step();
        if (i % 100 == 0) {
            ASSERT_EQ(Stored(HKEY_CURRENT_USER, u"Model"), player.model) << i;
        }
    }
}

// Its status; a child that fails a check or is killed gives another than 0.
int InChild(const std::function<void()>& body)
{
    const pid_t child = fork();
    if (child == 0) {
        body();
        _exit(testing::Test::HasFailure());
    }
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return status;
}

TEST(Registry, RefusesWhatItCannotDo)
{
    HKEY key = nullptr, reader = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, u"Refusals", &key), 0u);
    ASSERT_EQ(RegOpenKeyExW(key, nullptr, 0, KEY_QUERY_VALUE, &reader), 0u);
    const BYTE bytes[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    ASSERT_EQ(RegSetValueExW(key, u"v", 0, REG_BINARY, bytes, 8), 0u);
    BYTE room[8] = {};
    DWORD type = 99, size = 7, chars = 1;
    char16_t name[2] = u"";
    EXPECT_EQ(RegQueryValueExW(reader, u"V", nullptr, &type, room, &size), ERROR_MORE_DATA);
    EXPECT_EQ(type, REG_BINARY);
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(room[0], 0) << "nothing is written";
    EXPECT_EQ(RegEnumValueW(reader, 0, name, &chars, nullptr, nullptr, nullptr, nullptr), ERROR_MORE_DATA);
    EXPECT_EQ(chars, 2u);
    EXPECT_EQ(RegQueryValueExW(reader, u"v", nullptr, nullptr, room, nullptr), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegSetValueExW(reader, u"v", 0, REG_BINARY, bytes, 8), ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegEnumKeyExW(reader, 0, name, &chars, nullptr, nullptr, nullptr, nullptr),
              ERROR_ACCESS_DENIED);
    EXPECT_EQ(RegCreateKeyW(key, u"\\x", &key), ERROR_BAD_PATHNAME);
    EXPECT_EQ(RegCreateKeyW(reader, Text(256, u'x').c_str(), &key), ERROR_INVALID_PARAMETER);
    EXPECT_EQ(RegDeleteKeyW(HKEY_CURRENT_USER, u""), ERROR_ACCESS_DENIED);
    for (const intptr_t bad : {intptr_t(0), intptr_t(-1), intptr_t(0x80000001), intptr_t(12345)})
        EXPECT_EQ(RegDeleteValueW(reinterpret_cast<HKEY>(bad), u"v"), ERROR_INVALID_HANDLE) << bad;
}

// All make the hive at once, the same keys, and values of their own.
TEST(Registry, ServesManyProcessesAndThreads)
{
    constexpr int kWriters = 4, kValues = 40;
    constexpr const char16_t* kShared = u"Software\\Shared\\Deep";
    auto* const made = static_cast<std::atomic<int>*>(
        mmap(nullptr, sizeof(std::atomic<int>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    new (made) std::atomic<int>(0);
    const auto write = [&](int writer) {
        HKEY key = nullptr;
        DWORD did = 0;
        ASSERT_EQ(RegCreateKeyExW(HKEY_LOCAL_MACHINE, kShared, 0, nullptr, 0, KEY_WRITE, nullptr, &key, &did),
                  0u);
        *made += did == REG_CREATED_NEW_KEY;
        for (int i = 0; i < kValues; ++i) {
            const Text name = {char16_t(u'a' + writer), char16_t(u'0' + i)};
            ASSERT_EQ(RegSetValueExW(key, name.c_str(), 0, REG_DWORD, reinterpret_cast<BYTE*>(&i), 4), 0u);
        }
        RegCloseKey(key);
    };
    std::vector<pid_t> children;
    for (int i = 0; i < kWriters; ++i)
        if (children.push_back(fork()); children.back() == 0) {
            std::vector<std::thread> threads;
            for (int t = 0; t < 2; ++t)
                threads.emplace_back(write, 2 * i + t);
            for (std::thread& thread : threads)
                thread.join();
            _exit(testing::Test::HasFailure());
        }
    for (const pid_t child : children) {
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(*made, 1);
    munmap(made, sizeof *made);
    HKEY key = nullptr;
    DWORD values = 0;
    ASSERT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, kShared, 0, KEY_READ, &key), 0u);
    RegQueryInfoKeyW(key, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, &values, nullptr, nullptr,
                     nullptr, nullptr);
    EXPECT_EQ(values, DWORD(2 * kWriters * kValues));
    RegCloseKey(key);
}

// Each write is a number, repeated; the writer tells what it has finished.
TEST(Registry, AKilledWriterLosesAtMostItsLastWrite)
{
    auto* const done = static_cast<std::atomic<uint32_t>*>(
        mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_CURRENT_USER, u"Killed", &key), 0u);
    Random random;
    for (int round = 0; round < 100 && !HasFailure(); ++round) {
        const uint32_t before = *done;
        const pid_t child = fork();
        if (child == 0)
            for (uint32_t n = before + 1;; ++n) {
                const std::vector<uint32_t> data(n * 37 % 3000 + 1, n);
                if (RegSetValueExW(key, u"n", 0, REG_BINARY, reinterpret_cast<const BYTE*>(data.data()),
                                   DWORD(data.size() * 4)))
                    _exit(1);
                *done = n;
            }
        while (*done == before)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::microseconds(random.Int(0, 5000)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer failed";
        std::vector<uint32_t> data(3001);
        DWORD bytes = 12004;
        ASSERT_EQ(RegQueryValueExW(key, u"n", nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &bytes),
                  0u);
        const uint32_t stored = data[0];
        EXPECT_TRUE(stored == *done || stored == *done + 1) << stored << " after " << *done;
        EXPECT_EQ(bytes, (stored * 37 % 3000 + 1) * 4);
        data.resize(bytes / 4);
        EXPECT_THAT(data, testing::Each(stored));
        *done = stored;
    }
    munmap(done, 4096);
    RegCloseKey(key);
}

// The superuser may write anything, so the child becomes somebody else.
TEST(Registry, AHiveThatMayNotBeWrittenIsReadAndDenied)
{
    namespace fs = std::filesystem;
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, u"Guarded\\Inner", &key), 0u);
    ASSERT_EQ(RegSetValueExW(key, u"v", 0, REG_SZ, reinterpret_cast<const BYTE*>(u"x"), 4), 0u);
    RegCloseKey(key);
    const int prepared = InChild([] {}); // the fork closes the hive, so that no log is left
    ASSERT_EQ(prepared, 0);
    const fs::path folder = g_stateFolder.Path(), file = folder / "machine.hive";
    fs::permissions(file, fs::perms(0444));
    fs::permissions(folder, fs::perms(0555));
    const int status = InChild([] {
        ASSERT_TRUE(geteuid() != 0 || setuid(65534) == 0);
        HKEY guarded = nullptr, other = nullptr;
        ASSERT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, u"guarded\\inner", &guarded), 0u) << "it exists";
        char16_t text[4] = u"";
        DWORD bytes = sizeof text;
        EXPECT_EQ(RegQueryValueExW(guarded, u"v", nullptr, nullptr, reinterpret_cast<BYTE*>(text), &bytes),
                  0u);
        EXPECT_EQ(Text(text), u"x");
        EXPECT_EQ(RegSetValueExW(guarded, u"v", 0, REG_NONE, nullptr, 0), ERROR_ACCESS_DENIED);
        EXPECT_EQ(RegOpenKeyExW(HKEY_LOCAL_MACHINE, u"Guarded", 0, KEY_WRITE, &other), ERROR_ACCESS_DENIED);
        EXPECT_EQ(RegCreateKeyW(HKEY_LOCAL_MACHINE, u"Guarded\\New", &other), ERROR_ACCESS_DENIED);
        EXPECT_EQ(RegDeleteValueW(HKEY_LOCAL_MACHINE, u"none"), ERROR_ACCESS_DENIED);
        EXPECT_EQ(RegDeleteKeyW(HKEY_LOCAL_MACHINE, u"Guarded\\Inner"), ERROR_ACCESS_DENIED);
    });
    EXPECT_EQ(status, 0);
    fs::permissions(folder, fs::perms(0755));
    fs::permissions(file, fs::perms(0644));
}

} // namespace
