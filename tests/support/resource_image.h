// Resource files, built from nothing: compiled-resource images and PE images with a resource section.
#pragma once

#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace vxtest {

using Bytes = std::vector<uint8_t>;

template <class T>
void Append(Bytes& bytes, T value)
{
    const auto* first = reinterpret_cast<const uint8_t*>(&value);
    bytes.insert(bytes.end(), first, first + sizeof(value));
}

inline void Append(Bytes& bytes, const Bytes& more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

template <class T>
void Store(Bytes& bytes, size_t offset, T value)
{
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

inline void Align(Bytes& bytes)
{
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

// UTF-16 without a terminator.
inline Bytes TextBytes(const std::u16string& text)
{
    Bytes bytes;
    for (const char16_t c : text)
        Append(bytes, c);
    return bytes;
}

// A type or a name: a number or a text. Texts come first in a directory.
struct ResourceKey
{
    ResourceKey(int value) : number(uint16_t(value)) {}
    ResourceKey(const char16_t* value) : text(value) {}
    bool operator==(const ResourceKey&) const = default;
    bool operator<(const ResourceKey& other) const
    {
        return std::tuple(text.empty(), text, number) <
               std::tuple(other.text.empty(), other.text, other.number);
    }

    std::u16string text;
    uint16_t number = 0;
};

struct TestResource
{
    ResourceKey type, name;
    uint16_t language;
    Bytes data;
};

// The block of the sixteen strings from a number on that is a multiple of 16; these are the first of them.
// Texts have no terminator.
inline TestResource Strings(int firstId, uint16_t language, std::vector<std::u16string> strings)
{
    TestResource block{6, firstId / 16 + 1, language, {}};
    strings.resize(16);
    for (const std::u16string& text : strings) {
        Append(block.data, uint16_t(text.size()));
        Append(block.data, TextBytes(text));
    }
    return block;
}

inline void AppendResource(Bytes& image, const TestResource& resource)
{
    Bytes names;
    for (const ResourceKey& key : {resource.type, resource.name})
        if (key.text.empty())
            Append(names, 0xFFFFu | uint32_t(key.number) << 16);
        else
            Append(names, TextBytes(key.text + u'\0'));
    Align(names);
    Append(image, uint32_t(resource.data.size()));
    Append(image, uint32_t(8 + names.size() + 16)); // the header's own length
    Append(image, names);
    Append(image, 0u); // version of the data
    Append(image, uint16_t(0x1030));
    Append(image, resource.language);
    Append(image, uint64_t(0));
    Append(image, resource.data);
    Align(image);
}

// A compiled-resource image in its 32-bit form. It begins with an empty resource of 32 bytes.
inline Bytes ResImage(const std::vector<TestResource>& resources)
{
    Bytes image;
    AppendResource(image, {0, 0, 0, {}});
    Store(image, 20, 0u); // whose flags are 0
    for (const TestResource& resource : resources)
        AppendResource(image, resource);
    return image;
}

// Offsets within a PE image, and where its only section is loaded to.
constexpr uint32_t kPeStart = 64, kResourceOffset = 512, kResourceAddress = 0x1000;

inline uint32_t PutKey(Bytes&, uint16_t number)
{
    return number;
}

inline uint32_t PutKey(Bytes& section, const ResourceKey& key)
{
    if (key.text.empty())
        return key.number;
    const uint32_t place = uint32_t(section.size());
    Append(section, uint16_t(key.text.size()));
    Append(section, TextBytes(key.text));
    return 0x80000000u | place;
}

// A leaf, with its data behind it.
inline uint32_t PutDirectory(Bytes& section, const Bytes& data)
{
    Align(section);
    const uint32_t place = uint32_t(section.size());
    Append(section, kResourceAddress + place + 16);
    Append(section, uint32_t(data.size()));
    Append(section, uint64_t(0));
    Append(section, data);
    return place;
}

// A directory, with all that it leads to behind it.
template <class Map>
uint32_t PutDirectory(Bytes& section, const Map& entries)
{
    Align(section);
    const uint32_t place = uint32_t(section.size());
    section.resize(place + 16 + 8 * entries.size());
    uint16_t counts[2] = {}; // texts, numbers
    uint32_t entry = place + 16;
    for (const auto& [key, below] : entries) {
        const uint32_t id = PutKey(section, key), next = PutDirectory(section, below);
        ++counts[id < 0x80000000u];
        Store(section, entry, id);
        Store(section, entry + 4, next);
        entry += 8;
    }
    Store(section, place + 12, counts[0]);
    Store(section, place + 14, counts[1]);
    return 0x80000000u | place;
}

inline Bytes ResourceSection(const std::vector<TestResource>& resources)
{
    std::map<ResourceKey, std::map<ResourceKey, std::map<uint16_t, Bytes>>> tree;
    for (const TestResource& resource : resources)
        tree[resource.type][resource.name][resource.language] = resource.data;
    Bytes section;
    PutDirectory(section, tree);
    return section;
}

// A PE image without code whose one section holds the resources.
inline Bytes PeImage(const std::vector<TestResource>& resources, bool wide = true)
{
    const Bytes content = ResourceSection(resources);
    const uint32_t size = uint32_t(content.size());
    Bytes image(kResourceOffset);
    const uint32_t optionalSize = wide ? 240 : 224, optional = kPeStart + 24;
    Store<uint16_t>(image, 0, 0x5A4D);
    Store(image, 0x3C, kPeStart);
    Store(image, kPeStart, 0x4550);
    Store<uint16_t>(image, kPeStart + 6, 1);
    Store<uint16_t>(image, kPeStart + 20, uint16_t(optionalSize));
    Store<uint16_t>(image, optional, wide ? 0x20B : 0x10B);
    const uint32_t count = optional + (wide ? 108 : 92);
    Store(image, count, 16);
    Store(image, count + 4 + 2 * 8, kResourceAddress);
    Store(image, count + 4 + 2 * 8 + 4, size);
    const uint32_t section = optional + optionalSize;
    Store(image, section + 8, size);
    Store(image, section + 12, kResourceAddress);
    Store(image, section + 16, size);
    Store(image, section + 20, kResourceOffset);
    Append(image, content);
    return image;
}

} // namespace vxtest
