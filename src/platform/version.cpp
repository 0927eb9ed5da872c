#include "vx/platform/version.h"

#include "platform/host_path.h"
#include "platform/pe_resources.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/strings.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <string_view>

namespace vxplatform {
namespace {

// The one place that says which version is reported.
constexpr DWORD kMajor = 6, kMinor = 2, kBuild = 9200;
constexpr BYTE kWorkstation = 1;

BOOL Fail(DWORD error)
{
    SetLastError(error);
    return FALSE;
}

DWORD OpenError(int error)
{
    switch (error) {
    case ENOENT:
        return ERROR_FILE_NOT_FOUND;
    case ENOTDIR:
        return ERROR_PATH_NOT_FOUND;
    case EMFILE:
    case ENFILE:
        return ERROR_TOO_MANY_OPEN_FILES;
    default:
        return ERROR_ACCESS_DENIED;
    }
}

constexpr size_t kNodeHeader = 6; // three words: bytes of the node, length of its value, type

WORD WordAt(const std::byte* bytes)
{
    WORD word;
    std::memcpy(&word, bytes, sizeof(word));
    return word;
}

constexpr size_t Aligned(size_t offset)
{
    return (offset + 3) & ~size_t(3);
}

// A node of the resource's tree: a header, a key, a value, and the nodes below it, each of these at a
// multiple of 4 bytes from the first byte of the resource. Bounds are offsets from there.
class VersionNode
{
public:
    // An invalid node where it does not lie within [offset, end).
    VersionNode(const std::byte* block, size_t offset, size_t end) : block_(block)
    {
        if (end < kNodeHeader || offset > end - kNodeHeader)
            return;
        const size_t length = WordAt(block + offset);
        if (length < kNodeHeader || length > end - offset)
            return;
        end_ = offset + length;
        key_ = offset + kNodeHeader;
        keyEnd_ = key_;
        while (keyEnd_ + 2 <= end_ && WordAt(block + keyEnd_) != 0)
            keyEnd_ += 2;
        if (keyEnd_ + 2 > end_)
            return; // a key without terminator
        value_ = std::min(Aligned(keyEnd_ + 2), end_);
        valueLength_ = WordAt(block + offset + 2);
        isText_ = WordAt(block + offset + 4) != 0;
        valid_ = true;
    }

    bool IsValid() const { return valid_; }
    const std::byte* Value() const { return block_ + value_; }
    bool IsText() const { return isText_; }
    size_t ValueBytes() const { return std::min(valueLength_, end_ - value_); }
    size_t TextLength() const { return std::min(valueLength_, (end_ - value_) / 2); } // characters

    bool HasKey(const std::u16string& key) const
    {
        const size_t length = (keyEnd_ - key_) / 2;
        std::u16string own(length, u'\0');
        std::memcpy(own.data(), block_ + key_, length * 2);
        return lstrcmpiW(own.c_str(), key.c_str()) == 0;
    }

    VersionNode FirstChild() const
    {
        return {block_, Aligned(value_ + (isText_ ? TextLength() * 2 : ValueBytes())), end_};
    }
    VersionNode NextSibling(const VersionNode& parent) const { return {block_, Aligned(end_), parent.end_}; }

private:
    const std::byte* block_;
    size_t end_ = 0, key_ = 0, keyEnd_ = 0, value_ = 0, valueLength_ = 0;
    bool isText_ = false, valid_ = false;
};

VersionNode FindChild(const VersionNode& parent, const std::u16string& key)
{
    VersionNode child = parent.FirstChild();
    while (child.IsValid() && !child.HasKey(key))
        child = child.NextSibling(parent);
    return child;
}

VersionNode FindNode(const std::byte* block, std::u16string_view path)
{
    VersionNode node(block, 0, WordAt(block));
    while (node.IsValid() && !path.empty()) {
        const size_t end = std::min(path.find(u'\\'), path.size());
        if (end > 0)
            node = FindChild(node, std::u16string(path.substr(0, end)));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return node;
}

// There all values are texts, also where a node says otherwise: callers take its length for characters.
bool IsBelowTexts(std::u16string_view path)
{
    path.remove_prefix(std::min(path.find_first_not_of(u'\\'), path.size()));
    const std::u16string first(path.substr(0, path.find(u'\\')));
    return lstrcmpiW(first.c_str(), u"StringFileInfo") == 0;
}

// Calls use(file, place) for the resource; 0 with the last error set where there is none. A resource
// that says it is longer than it is does not count: those who look into it believe that number.
template <class Use>
DWORD WithVersionResource(const WCHAR* path, Use use)
try {
    const HostPath hostPath(path);
    if (!hostPath)
        return 0;
    const BinaryFile file(hostPath.c_str());
    if (!file.IsOpen())
        return DWORD(Fail(OpenError(errno)));
    const PeResources resources(file);
    if (!resources.IsImage())
        return DWORD(Fail(ERROR_BAD_FORMAT));
    const std::optional<ResourcePlace> place = resources.FindFirst(PeResources::kVersionType);
    std::byte length[2];
    if (!place)
        return DWORD(Fail(ERROR_RESOURCE_TYPE_NOT_FOUND));
    if (place->size < kNodeHeader || !file.Read(place->offset, length, sizeof(length)) ||
        WordAt(length) > place->size)
        return DWORD(Fail(ERROR_RESOURCE_DATA_NOT_FOUND));
    return use(file, *place, DWORD(std::max<size_t>(WordAt(length), kNodeHeader)));
} catch (const std::bad_alloc&) {
    return DWORD(Fail(ERROR_NOT_ENOUGH_MEMORY));
}

} // namespace
} // namespace vxplatform

using namespace vxplatform;

BOOL GetVersionExW(OSVERSIONINFOEXW* info)
{
    const DWORD size = info->dwOSVersionInfoSize;
    if (size != sizeof(*info) && size != offsetof(OSVERSIONINFOEXW, wServicePackMajor))
        return Fail(ERROR_INSUFFICIENT_BUFFER);
    OSVERSIONINFOEXW all = {};
    all.dwOSVersionInfoSize = size;
    all.dwMajorVersion = kMajor;
    all.dwMinorVersion = kMinor;
    all.dwBuildNumber = kBuild;
    all.dwPlatformId = VER_PLATFORM_WIN32_NT;
    all.wProductType = kWorkstation;
    std::memcpy(info, &all, size);
    return TRUE;
}

DWORD GetFileVersionInfoSizeW(const WCHAR* file, DWORD* handle)
{
    if (handle)
        *handle = 0;
    return WithVersionResource(file,
                               [](const BinaryFile&, const ResourcePlace&, DWORD size) { return size; });
}

BOOL GetFileVersionInfoW(const WCHAR* file, DWORD, DWORD size, void* data)
{
    return BOOL(
        WithVersionResource(file, [&](const BinaryFile& opened, const ResourcePlace& place, DWORD bytes) {
            if (size < bytes)
                return DWORD(Fail(ERROR_INSUFFICIENT_BUFFER));
            if (!opened.Read(place.offset, data, bytes))
                return DWORD(Fail(ERROR_READ_FAULT));
            // The file may have changed since its length was checked.
            const WORD length = WORD(bytes);
            std::memcpy(data, &length, sizeof(length));
            return DWORD(TRUE);
        }));
}

BOOL VerQueryValueW(const void* data, const WCHAR* path, void** value, UINT* length)
try {
    const VersionNode node = FindNode(static_cast<const std::byte*>(data), path);
    if (!node.IsValid())
        return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
    *value = const_cast<std::byte*>(node.Value());
    *length = UINT(node.IsText() || IsBelowTexts(path) ? node.TextLength() : node.ValueBytes());
    return TRUE;
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
}
