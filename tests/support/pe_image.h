// A small PE image with a version resource, built from nothing.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
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

template <class T>
void Store(Bytes& bytes, size_t offset, T value)
{
    std::memcpy(bytes.data() + offset, &value, sizeof(value));
}

inline void Align(Bytes& bytes)
{
    bytes.resize((bytes.size() + 3) / 4 * 4);
}

// A node of a version resource. Text values have a terminator.
inline Bytes VersionNode(const std::u16string& key, const Bytes& value, bool isText,
                         const std::vector<Bytes>& children = {})
{
    Bytes node;
    Append<uint16_t>(node, 0); // its length, set below
    Append<uint16_t>(node, uint16_t(isText ? value.size() / 2 : value.size()));
    Append<uint16_t>(node, isText);
    for (const char16_t c : key)
        Append(node, c);
    Append(node, u'\0');
    Align(node);
    node.insert(node.end(), value.begin(), value.end());
    for (const Bytes& child : children) {
        Align(node);
        node.insert(node.end(), child.begin(), child.end());
    }
    Store(node, 0, uint16_t(node.size()));
    return node;
}

inline Bytes TextValue(const std::u16string& text)
{
    Bytes value;
    for (const char16_t c : text)
        Append(value, c);
    Append(value, u'\0');
    return value;
}

using VersionTexts = std::vector<std::pair<std::u16string, std::u16string>>;

// Of one language, 0409 with code page 04B0.
inline Bytes VersionResource(const VersionTexts& texts)
{
    std::vector<Bytes> nodes;
    for (const auto& [key, text] : texts)
        nodes.push_back(VersionNode(key, TextValue(text), true));
    Bytes head(52), translation;
    Store(head, 0, 0xFEEF04BDu);
    Append<uint16_t>(translation, 0x0409);
    Append<uint16_t>(translation, 0x04B0);
    return VersionNode(
        u"VS_VERSION_INFO", head, false,
        {VersionNode(u"StringFileInfo", {}, true, {VersionNode(u"040904b0", {}, true, nodes)}),
         VersionNode(u"VarFileInfo", {}, true, {VersionNode(u"Translation", translation, false)})});
}

// Offsets within the image.
constexpr uint32_t kPeStart = 64, kResourceOffset = 512, kResourceAddress = 0x1000;
constexpr uint32_t kVersionOffset = kResourceOffset + 3 * 24 + 16;

// One section, which holds the resources: a type, a name, a language and the version resource.
inline Bytes PeImage(const Bytes& version, bool wide)
{
    Bytes image(kResourceOffset);
    const uint32_t optionalSize = wide ? 240 : 224, optional = kPeStart + 24;
    Store<uint16_t>(image, 0, 0x5A4D);
    Store(image, 0x3C, kPeStart);
    Store(image, kPeStart, 0x4550);
    Store<uint16_t>(image, kPeStart + 6, 1);
    Store<uint16_t>(image, kPeStart + 20, uint16_t(optionalSize));
    Store<uint16_t>(image, optional, wide ? 0x20B : 0x10B);
    const uint32_t count = optional + (wide ? 108 : 92);
    const uint32_t size = 3 * 24 + 16 + uint32_t(version.size());
    Store(image, count, 16);
    Store(image, count + 4 + 2 * 8, kResourceAddress);
    Store(image, count + 4 + 2 * 8 + 4, size);
    const uint32_t section = optional + optionalSize;
    Store(image, section + 8, size);
    Store(image, section + 12, kResourceAddress);
    Store(image, section + 16, size);
    Store(image, section + 20, kResourceOffset);

    constexpr uint32_t kSubdirectory = 0x80000000u;
    const uint32_t entries[3][2] = {{16, kSubdirectory | 24}, {1, kSubdirectory | 48}, {0x409, 72}};
    for (const auto& entry : entries) {
        const size_t directory = image.size();
        image.resize(directory + 16);
        Store<uint16_t>(image, directory + 14, 1);
        Append(image, entry[0]);
        Append(image, entry[1]);
    }
    Append(image, kResourceAddress + 88);
    Append(image, uint32_t(version.size()));
    Append(image, uint64_t(0));
    image.insert(image.end(), version.begin(), version.end());
    return image;
}

} // namespace vxtest
