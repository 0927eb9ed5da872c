// The resources of a PE image on disk.
#pragma once

#include "platform/byte_source.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

namespace vxplatform {

// Where the bytes of a resource lie in its file.
struct ResourcePlace
{
    uint64_t offset;
    uint32_t size;
};

// A type or a name. Texts are in UTF-16; a name that is a number has none.
struct ResourceName
{
    uint16_t number = 0;
    std::u16string text{};
};

// Looks into the image's directory of resources. Nothing in a file is believed: each offset is checked
// against the sections and the file, and a damaged directory only finds nothing.
class PeResources
{
public:
    static constexpr uint32_t kVersionType = 16;

    explicit PeResources(const ByteSource& file);

    bool IsImage() const { return sectionCount_ > 0; }
    // The first resource of a type, whatever its name and language.
    std::optional<ResourcePlace> FindFirst(uint32_t type) const;

    // Every resource, in the order of the directory.
    using Visitor = std::function<void(const ResourceName& type, const ResourceName& name, uint16_t language,
                                       ResourcePlace place)>;
    void ForEach(const Visitor& visit) const;

private:
    struct Entry
    {
        uint32_t id, next; // in the order of the file
    };
    struct Section
    {
        uint32_t size, address, rawSize, rawOffset; // in the order of the file
    };

    void ReadHeaders();
    std::optional<uint64_t> OffsetOf(uint32_t address, uint32_t size) const;
    bool ReadDirectory(uint32_t offset, void* bytes, uint32_t size) const;
    std::optional<Entry> ReadEntry(uint32_t directory, uint32_t index) const;
    uint32_t EntryCount(uint32_t directory) const;
    std::optional<uint32_t> FindEntry(uint32_t directory, std::optional<uint32_t> id) const;
    template <class Visit>
    void ForEachBelow(uint32_t next, uint32_t& budget, Visit visit) const;
    std::optional<ResourceName> NameOf(uint32_t id) const;
    std::optional<ResourcePlace> PlaceOf(uint32_t next) const;

    const ByteSource& file_;
    uint64_t sectionTable_ = 0; // file offset
    uint32_t sectionCount_ = 0;
    uint32_t directoryAddress_ = 0, directorySize_ = 0;
};

} // namespace vxplatform
