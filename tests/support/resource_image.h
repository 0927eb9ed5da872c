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

// The block of sixteen strings of which these are the first; texts without a terminator.
inline Bytes StringBlock(std::vector<std::u16string> strings)
{
    Bytes block;
    strings.resize(16);
    for (const std::u16string& text : strings) {
        Append(block, uint16_t(text.size()));
        Append(block, TextBytes(text));
    }
    return block;
}

// A resource of type 6 for the strings from a number on that is a multiple of 16.
inline TestResource Strings(int firstId, uint16_t language, const std::vector<std::u16string>& strings)
{
    return {6, firstId / 16 + 1, language, StringBlock(strings)};
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

// The resource section: directories of types, of names and of languages, leaves, texts and data, in this
// order, so that places are known before anything is written.
class ResourceSection
{
public:
    explicit ResourceSection(const std::vector<TestResource>& resources)
    {
        for (const TestResource& resource : resources)
            tree_[resource.type][resource.name][resource.language] = resource.data;
        uint32_t sizes[3] = {Size(tree_), 0, 0}, leaves = 0;
        for (const auto& [type, names] : tree_) {
            sizes[1] += Size(names);
            for (const auto& [name, languages] : names) {
                sizes[2] += Size(languages);
                leaves += uint32_t(languages.size());
            }
        }
        for (int level = 0; level < 3; ++level)
            next_[level + 1] = next_[level] + sizes[level];
        bytes_.resize(next_[3] + leaves * 16);
        PutDirectory(tree_, 0);
        for (auto& [leaf, data] : data_) {
            Align(bytes_);
            Store(bytes_, leaf, kResourceAddress + uint32_t(bytes_.size()));
            Store(bytes_, leaf + 4, uint32_t(data.size()));
            Append(bytes_, data);
        }
    }
    const Bytes& Content() const { return bytes_; }

private:
    using Languages = std::map<uint16_t, Bytes>;
    using Names = std::map<ResourceKey, Languages>;

    template <class Map>
    static uint32_t Size(const Map& entries)
    {
        return 16 + 8 * uint32_t(entries.size());
    }

    uint32_t Take(int level, uint32_t size) { return std::exchange(next_[level], next_[level] + size); }

    uint32_t PutKey(uint16_t number) { return number; }
    uint32_t PutKey(const ResourceKey& key)
    {
        if (key.text.empty())
            return key.number;
        const uint32_t place = uint32_t(bytes_.size());
        Append(bytes_, uint16_t(key.text.size()));
        Append(bytes_, TextBytes(key.text));
        return 0x80000000u | place;
    }

    uint32_t PutDirectory(const Bytes& data, int)
    {
        const uint32_t leaf = Take(3, 16);
        data_.emplace_back(leaf, data);
        return leaf;
    }
    template <class Map>
    uint32_t PutDirectory(const Map& entries, int level)
    {
        const uint32_t place = Take(level, Size(entries));
        uint16_t counts[2] = {};
        uint32_t entry = place + 16;
        for (const auto& [key, below] : entries) {
            const uint32_t id = PutKey(key);
            ++counts[id < 0x80000000u];
            Store(bytes_, entry, id);
            Store(bytes_, entry + 4, PutDirectory(below, level + 1));
            entry += 8;
        }
        Store(bytes_, place + 12, counts[0]);
        Store(bytes_, place + 14, counts[1]);
        return level == 0 ? place : 0x80000000u | place;
    }

    std::map<ResourceKey, Names> tree_;
    uint32_t next_[4] = {}; // free places in each level of directories, and among the leaves
    Bytes bytes_;
    std::vector<std::pair<uint32_t, Bytes>> data_; // with their leaves
};

// A PE image without code whose one section holds the resources.
inline Bytes PeImage(const std::vector<TestResource>& resources, bool wide = true)
{
    const Bytes content = ResourceSection(resources).Content();
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
