// A version resource, built from nothing, and a PE image that holds it.
#pragma once

#include "support/resource_image.h"

#include <string>
#include <utility>
#include <vector>

namespace vxtest {

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

constexpr uint32_t kVersionOffset = kResourceOffset + 3 * 24 + 16; // within the image below

inline Bytes PeImage(const Bytes& version, bool wide)
{
    return PeImage({{16, 1, 0x409, version}}, wide);
}

} // namespace vxtest
