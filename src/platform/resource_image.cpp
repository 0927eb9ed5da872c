#include "platform/resource_image.h"

#include "vx/platform/strings.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string_view>

namespace vxplatform {
namespace {

using Bytes = std::span<const std::byte>;

// A compiled-resource image begins with an empty resource, which tells its form.
constexpr uint8_t kCompiledMark[16] = {0, 0, 0, 0, 32, 0, 0, 0, 0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0, 0};
constexpr uint16_t kNumberFollows = 0xFFFF;

bool BeginsWith(Bytes file, const void* mark, size_t size)
{
    return file.size() >= size && std::memcmp(file.data(), mark, size) == 0;
}

// Below 0, 0 or above 0: texts come first, as in the directories of PE files.
int Order(const ResourceName& a, const ResourceName& b)
{
    if (a.text.empty() != b.text.empty())
        return a.text.empty() ? 1 : -1;
    return a.text.empty() ? int(a.number) - int(b.number) : lstrcmpiW(a.text.c_str(), b.text.c_str());
}

bool IsBefore(const Resource& a, const Resource& b)
{
    if (const int types = Order(a.type, b.type))
        return types < 0;
    if (const int names = Order(a.name, b.name))
        return names < 0;
    return a.language < b.language;
}

// The part of a sorted range whose keys equal the wanted one.
ResourceImage::Range Equal(ResourceImage::Range range, const ResourceName& wanted,
                           ResourceName Resource::*key)
{
    const auto first = std::partition_point(range.begin(), range.end(), [&](const Resource& resource) {
        return Order(resource.*key, wanted) < 0;
    });
    const auto last = std::partition_point(
        first, range.end(), [&](const Resource& resource) { return Order(resource.*key, wanted) == 0; });
    return {first, last};
}

// Reads forwards through a file; what lies behind its end has no value.
class Cursor
{
public:
    explicit Cursor(Bytes file) : file_(file) {}

    template <class T>
    std::optional<T> Take()
    {
        T value;
        const std::optional<Bytes> bytes = Skip(sizeof(value));
        if (!bytes)
            return {};
        std::memcpy(&value, bytes->data(), sizeof(value));
        return value;
    }
    std::optional<Bytes> Skip(uint64_t size)
    {
        if (size > file_.size() - offset_)
            return {};
        const Bytes skipped = file_.subspan(offset_, size_t(size));
        offset_ += size_t(size);
        return skipped;
    }
    // To a multiple of 4 bytes, or to the end.
    void Align() { offset_ = std::min((offset_ + 3) & ~size_t(3), file_.size()); }
    bool AtEnd() const { return offset_ == file_.size(); }

    // A number behind a mark, or a text with its terminator.
    std::optional<ResourceName> TakeName()
    {
        ResourceName name;
        std::optional<uint16_t> c = Take<uint16_t>();
        if (c == kNumberFollows) {
            c = Take<uint16_t>();
            name.number = c.value_or(0);
        } else {
            for (; c && *c; c = Take<uint16_t>())
                name.text += char16_t(*c);
        }
        return c ? std::optional(std::move(name)) : std::nullopt;
    }

private:
    Bytes file_;
    size_t offset_ = 0;
};

// One resource of a compiled-resource image: two lengths, type, name, and further fields of which the
// language counts; then the data. The header's length is known from the file only.
std::optional<Resource> TakeResource(Cursor& file)
{
    constexpr uint32_t kLengths = 8, kLanguagePlace = 6, kFieldBytes = 16;
    const std::optional<uint32_t> dataSize = file.Take<uint32_t>(), headerSize = file.Take<uint32_t>();
    if (!dataSize || !headerSize || *headerSize < kLengths)
        return {};
    const std::optional<Bytes> header = file.Skip(*headerSize - kLengths);
    const std::optional<Bytes> data = header ? file.Skip(*dataSize) : std::nullopt;
    if (!data)
        return {};
    file.Align();
    Cursor fields(*header);
    std::optional<ResourceName> type = fields.TakeName(), name = fields.TakeName();
    fields.Align(); // the lengths in front of it do not change that
    const std::optional<Bytes> rest = fields.Skip(kFieldBytes);
    if (!type || !name || !rest)
        return {};
    uint16_t language;
    std::memcpy(&language, rest->data() + kLanguagePlace, sizeof(language));
    return Resource{std::move(*type), std::move(*name), language, *data};
}

std::optional<uint16_t> NumberOf(std::u16string_view digits)
{
    uint32_t number = 0;
    for (const char16_t c : digits) {
        if (c < u'0' || c > u'9')
            return {};
        number = number * 10 + (c - u'0');
        if (number > 0xFFFF)
            return {};
    }
    return digits.empty() ? std::nullopt : std::optional(uint16_t(number));
}

} // namespace

ResourceName NameFrom(const WCHAR* name)
{
    if (reinterpret_cast<uintptr_t>(name) < 0x10000)
        return {uint16_t(reinterpret_cast<uintptr_t>(name)), {}};
    const std::u16string_view text(name);
    if (text.starts_with(u'#'))
        if (const std::optional<uint16_t> number = NumberOf(text.substr(1)))
            return {*number, {}};
    return {0, std::u16string(text)};
}

Bytes StringOfBlock(Bytes block, unsigned index)
{
    for (;; --index) {
        uint16_t length;
        if (block.size() < sizeof(length))
            return {};
        std::memcpy(&length, block.data(), sizeof(length));
        block = block.subspan(sizeof(length));
        const size_t bytes = size_t(length) * sizeof(char16_t);
        if (block.size() < bytes)
            return {};
        if (index == 0)
            return block.first(bytes);
        block = block.subspan(bytes);
    }
}

ResourceImage::ResourceImage(Bytes file)
{
    isImage_ = true;
    if (BeginsWith(file, kCompiledMark, sizeof(kCompiledMark)))
        ReadCompiled(file);
    else
        ReadPe(file);
    std::ranges::stable_sort(resources_, IsBefore);
}

void ResourceImage::ReadPe(Bytes file)
{
    const ByteSpan source(file);
    const PeResources pe(source);
    isImage_ = pe.IsImage();
    pe.ForEach(
        [&](const ResourceName& type, const ResourceName& name, uint16_t language, ResourcePlace place) {
            if (place.offset <= file.size() && place.size <= file.size() - place.offset)
                resources_.push_back({type, name, language, file.subspan(size_t(place.offset), place.size)});
        });
}

// Whatever follows a damaged resource cannot be told from its bytes.
void ResourceImage::ReadCompiled(Bytes file)
{
    Cursor cursor(file);
    TakeResource(cursor); // the mark
    while (!cursor.AtEnd())
        if (std::optional<Resource> resource = TakeResource(cursor))
            resources_.push_back(std::move(*resource));
        else
            return;
}

ResourceImage::Range ResourceImage::OfType(const ResourceName& type) const
{
    return Equal(resources_, type, &Resource::type);
}

ResourceImage::Range ResourceImage::OfName(Range type, const ResourceName& name)
{
    return Equal(type, name, &Resource::name);
}

bool ResourceImage::SameName(const ResourceName& a, const ResourceName& b)
{
    return Order(a, b) == 0;
}

const Resource* ResourceImage::At(const void* address) const
{
    const uintptr_t place =
        reinterpret_cast<uintptr_t>(address) - reinterpret_cast<uintptr_t>(resources_.data());
    const size_t index = place / sizeof(Resource);
    return index < resources_.size() && place % sizeof(Resource) == 0 ? &resources_[index] : nullptr;
}

} // namespace vxplatform
