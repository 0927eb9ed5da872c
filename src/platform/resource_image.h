// The resources of a file that is in memory.
#pragma once

#include "platform/pe_resources.h"
#include "vx/platform/types.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace vxplatform {

// A resource as a caller names it: a pointer below 0x10000 is a number, "#12" the number 12.
ResourceName NameFrom(const WCHAR* name);

constexpr unsigned kStringsInBlock = 16; // of which each resource of strings is one

// The characters of a string of a block: sixteen lengths, each with its characters behind it. None where
// the block ends before.
std::span<const std::byte> StringOfBlock(std::span<const std::byte> block, unsigned index);

struct Resource
{
    ResourceName type, name;
    uint16_t language;
    std::span<const std::byte> data;
};

// What a compiled-resource image (32-bit form) or a PE image holds, read once and never changed: an index
// over the file's bytes, which stay the caller's. Of a damaged file it has what is whole.
class ResourceImage
{
public:
    using Range = std::span<const Resource>;

    ResourceImage() = default;
    explicit ResourceImage(std::span<const std::byte> file);

    // False for bytes of neither form.
    bool IsImage() const { return isImage_; }
    Range All() const { return resources_; }
    // In the order of names (texts, then numbers), then of languages.
    Range OfType(const ResourceName& type) const;
    // Of the resources of one type: in the order of languages.
    static Range OfName(Range type, const ResourceName& name);
    static bool SameName(const ResourceName& a, const ResourceName& b);

    // The resource at an address that All gave; null for any other.
    const Resource* At(const void* address) const;

private:
    void ReadPe(std::span<const std::byte> file);
    void ReadCompiled(std::span<const std::byte> file);

    std::vector<Resource> resources_; // by type, name, language; equal ones in the file's order
    bool isImage_ = false;
};

} // namespace vxplatform
