// Any bytes as a file of resources: a compiled-resource image, a PE file, or a shared object with a section
// of resources. All that is found lies within the file and is found again by its own keys.
#include "platform/elf_section.h"
#include "platform/resource_image.h"
#include "require.h"

#include <algorithm>
#include <vector>

using namespace vxplatform;
using vxfuzz::Require;

namespace {

void ReadAll(std::span<const std::byte> bytes)
{
    static volatile unsigned sum;
    for (const std::byte byte : bytes)
        sum = sum + unsigned(byte);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Exactly as long as the input, so that the sanitizer sees a read behind its end.
    const std::vector<uint8_t> copy(data, data + size);
    const std::span<const std::byte> file = std::as_bytes(std::span(copy));
    const ResourceImage image(IsElf(file) ? FindElfSection(file, ".vxres") : file);
    Require(image.IsImage() || image.All().empty());
    for (const Resource& resource : image.All()) {
        const auto same = ResourceImage::OfName(image.OfType(resource.type), resource.name);
        Require(!same.empty() && &same.front() <= &resource && &resource <= &same.back());
        Require(std::ranges::is_sorted(same, {}, &Resource::language));
        Require(image.At(&resource) == &resource);
        ReadAll(resource.data);
        for (unsigned i = 0; i < kStringsInBlock; ++i)
            ReadAll(StringOfBlock(resource.data, i));
    }
    return 0;
}
