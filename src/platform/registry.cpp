#include "vx/platform/registry.h"

#include "platform/hive.h"

#include <mutex>
#include <new>
#include <pthread.h>
#include <string_view>
#include <unordered_map>

namespace vxplatform {
namespace {

struct OpenKey
{
    Hive* hive;
    KeyId id;
    REGSAM rights;

    void Require(REGSAM right) const
    {
        if (!(rights & right))
            throw HiveFailure{ERROR_ACCESS_DENIED};
    }
};

class Registry
{
public:
    // Never destroyed: settings are written from exit handlers as well.
    static Registry& Get()
    {
        static Registry& registry = *new Registry;
        return registry;
    }

    OpenKey Resolve(HKEY handle)
    {
        if (handle == HKEY_CURRENT_USER)
            return {&user_, kRootKey, KEY_ALL_ACCESS};
        if (handle == HKEY_LOCAL_MACHINE)
            return {&machine_, kRootKey, KEY_ALL_ACCESS};
        const std::lock_guard lock(mutex_);
        const auto found = keys_.find(handle);
        if (found == keys_.end())
            throw HiveFailure{ERROR_INVALID_HANDLE};
        return found->second;
    }

    // Handles are never used again.
    HKEY Enter(const OpenKey& key)
    {
        const std::lock_guard lock(mutex_);
        const HKEY handle = reinterpret_cast<HKEY>(++lastSerial_ * 4);
        keys_.emplace(handle, key);
        return handle;
    }

    void Leave(HKEY handle)
    {
        if (handle == HKEY_CURRENT_USER || handle == HKEY_LOCAL_MACHINE)
            return;
        const std::lock_guard lock(mutex_);
        if (keys_.erase(handle) == 0)
            throw HiveFailure{ERROR_INVALID_HANDLE};
    }

private:
    Registry()
    {
        pthread_atfork([] { Get().BeforeFork(); }, [] { Get().AfterFork(); }, [] { Get().AfterFork(); });
    }

    void BeforeFork()
    {
        mutex_.lock();
        user_.CloseAndHold();
        machine_.CloseAndHold();
    }
    void AfterFork()
    {
        machine_.Release();
        user_.Release();
        mutex_.unlock();
    }

    Hive user_{"user.hive"}, machine_{"machine.hive"};
    std::mutex mutex_; // of what follows. A child may unlock it, which it may not a lock for readers
    std::unordered_map<HKEY, OpenKey> keys_;
    uintptr_t lastSerial_ = 0;
};

// The one place where failures become codes.
template <class Body>
LSTATUS Guarded(Body body) noexcept
{
    try {
        return body();
    } catch (const HiveFailure& failure) {
        return failure.code;
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    } catch (...) { // the system refuses a lock
        return ERROR_REGISTRY_IO_FAILED;
    }
}

std::u16string_view TextOrEmpty(const WCHAR* text)
{
    return text ? std::u16string_view(text) : std::u16string_view();
}

void Refuse(bool bad)
{
    if (bad)
        throw HiveFailure{ERROR_INVALID_PARAMETER};
}

REGSAM GrantedRights(Hive& hive, REGSAM asked)
{
    constexpr REGSAM kChanging = KEY_SET_VALUE | KEY_CREATE_SUB_KEY;
    if (asked & MAXIMUM_ALLOWED)
        return hive.IsWritable() ? KEY_ALL_ACCESS : KEY_READ;
    if ((asked & kChanging) && !hive.IsWritable())
        throw HiveFailure{ERROR_ACCESS_DENIED};
    return asked;
}

void RefuseBadRequest(const ValueRequest& request)
{
    Refuse(request.data && !request.bytes);
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

LSTATUS RegCreateKeyW(HKEY key, const WCHAR* subKey, HKEY* result)
{
    return RegCreateKeyExW(key, subKey, 0, nullptr, REG_OPTION_NON_VOLATILE, MAXIMUM_ALLOWED, nullptr, result,
                           nullptr);
}

LSTATUS RegCreateKeyExW(HKEY key, const WCHAR* subKey, DWORD reserved, WCHAR*, DWORD options, REGSAM rights,
                        void*, HKEY* result, DWORD* disposition)
{
    return Guarded([&] {
        Refuse(!result);
        *result = nullptr;
        Refuse(reserved != 0 || options != REG_OPTION_NON_VOLATILE);
        const OpenKey parent = Registry::Get().Resolve(key);
        const REGSAM granted = GrantedRights(*parent.hive, rights);
        const Hive::Made made = parent.hive->MakeKey(parent.id, TextOrEmpty(subKey));
        *result = Registry::Get().Enter({parent.hive, made.key, granted});
        if (disposition)
            *disposition = made.isNew ? REG_CREATED_NEW_KEY : REG_OPENED_EXISTING_KEY;
        return ERROR_SUCCESS;
    });
}

LSTATUS RegOpenKeyExW(HKEY key, const WCHAR* subKey, DWORD options, REGSAM rights, HKEY* result)
{
    return Guarded([&] {
        Refuse(!result);
        *result = nullptr;
        Refuse(options != 0);
        const OpenKey parent = Registry::Get().Resolve(key);
        const KeyId found = parent.hive->FindKey(parent.id, TextOrEmpty(subKey));
        *result = Registry::Get().Enter({parent.hive, found, GrantedRights(*parent.hive, rights)});
        return ERROR_SUCCESS;
    });
}

LSTATUS RegCloseKey(HKEY key)
{
    return Guarded([&] {
        Registry::Get().Leave(key);
        return ERROR_SUCCESS;
    });
}

LSTATUS RegQueryValueExW(HKEY key, const WCHAR* name, DWORD* reserved, DWORD* type, BYTE* data, DWORD* bytes)
{
    return Guarded([&] {
        const ValueRequest request = {type, data, bytes};
        Refuse(reserved);
        RefuseBadRequest(request);
        const OpenKey from = Registry::Get().Resolve(key);
        from.Require(KEY_QUERY_VALUE);
        return from.hive->ReadValue(from.id, TextOrEmpty(name), request);
    });
}

LSTATUS RegSetValueExW(HKEY key, const WCHAR* name, DWORD reserved, DWORD type, const BYTE* data, DWORD bytes)
{
    return Guarded([&] {
        Refuse(reserved != 0 || (!data && bytes != 0));
        const OpenKey to = Registry::Get().Resolve(key);
        to.Require(KEY_SET_VALUE);
        to.hive->WriteValue(to.id, TextOrEmpty(name), type, {data, bytes});
        return ERROR_SUCCESS;
    });
}

LSTATUS RegDeleteValueW(HKEY key, const WCHAR* name)
{
    return Guarded([&] {
        const OpenKey from = Registry::Get().Resolve(key);
        from.Require(KEY_SET_VALUE);
        return from.hive->DeleteValue(from.id, TextOrEmpty(name));
    });
}

LSTATUS RegEnumKeyExW(HKEY key, DWORD index, WCHAR* name, DWORD* nameChars, DWORD* reserved, WCHAR* className,
                      DWORD* classChars, void* lastWriteTime)
{
    return Guarded([&] {
        Refuse(!name || !nameChars || reserved || className || classChars || lastWriteTime);
        const OpenKey from = Registry::Get().Resolve(key);
        from.Require(KEY_ENUMERATE_SUB_KEYS);
        return from.hive->KeyAt(from.id, index, {name, nameChars});
    });
}

LSTATUS RegEnumValueW(HKEY key, DWORD index, WCHAR* name, DWORD* nameChars, DWORD* reserved, DWORD* type,
                      BYTE* data, DWORD* bytes)
{
    return Guarded([&] {
        const ValueRequest request = {type, data, bytes};
        Refuse(!name || !nameChars || reserved);
        RefuseBadRequest(request);
        const OpenKey from = Registry::Get().Resolve(key);
        from.Require(KEY_QUERY_VALUE);
        return from.hive->ValueAt(from.id, index, {name, nameChars}, request);
    });
}

LSTATUS RegQueryInfoKeyW(HKEY key, WCHAR* className, DWORD* classChars, DWORD* reserved, DWORD* subKeys,
                         DWORD* longestSubKey, DWORD* longestClass, DWORD* values, DWORD* longestValueName,
                         DWORD* mostBytes, DWORD* securityBytes, void* lastWriteTime)
{
    return Guarded([&] {
        Refuse(className || classChars || reserved || longestClass || securityBytes || lastWriteTime);
        const OpenKey from = Registry::Get().Resolve(key);
        from.Require(KEY_QUERY_VALUE);
        const KeyFacts facts = from.hive->Facts(from.id);
        const auto tell = [](DWORD* to, DWORD fact) {
            if (to)
                *to = fact;
        };
        tell(subKeys, facts.subKeys);
        tell(longestSubKey, facts.longestSubKey);
        tell(values, facts.values);
        tell(longestValueName, facts.longestValueName);
        tell(mostBytes, facts.mostBytes);
        return ERROR_SUCCESS;
    });
}

LSTATUS RegDeleteKeyW(HKEY key, const WCHAR* subKey)
{
    return Guarded([&] {
        const OpenKey parent = Registry::Get().Resolve(key);
        return parent.hive->DeleteKey(parent.id, TextOrEmpty(subKey));
    });
}
