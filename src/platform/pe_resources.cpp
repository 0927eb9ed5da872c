#include "platform/pe_resources.h"

#include <bit>
#include <cstring>

namespace vxplatform {
namespace {

static_assert(std::endian::native == std::endian::little, "images are little-endian and read as they are");

// Offsets and sizes within the headers, in bytes.
constexpr uint64_t kHeaderOffsetPlace = 0x3C;
constexpr uint32_t kFileHeaderSize = 24; // with the signature in front
constexpr uint32_t kSectionHeaderSize = 40;
constexpr uint32_t kDirectoryHeaderSize = 16, kDirectoryEntrySize = 8;
constexpr uint32_t kResourceDirectory = 2; // of the data directories
constexpr uint32_t kPeSignature = 0x00004550;
constexpr uint16_t kMzSignature = 0x5A4D, kMagic32 = 0x10B, kMagic64 = 0x20B;
constexpr uint32_t kHighBit = 0x80000000u; // a directory entry that has a name, or leads to a directory
constexpr uint32_t kMostSections = 96;     // more than the format's loaders accept
constexpr uint32_t kMostNameLength = 255;  // of a text: a bound on what a damaged directory can ask for

template <class T>
T Field(const std::byte* bytes, size_t offset)
{
    T value;
    std::memcpy(&value, bytes + offset, sizeof(value));
    return value;
}

} // namespace

PeResources::PeResources(const ByteSource& file) : file_(file)
{
    ReadHeaders();
}

void PeResources::ReadHeaders()
{
    std::byte mz[64], header[kFileHeaderSize];
    if (!file_.Read(0, mz, sizeof(mz)) || Field<uint16_t>(mz, 0) != kMzSignature)
        return;
    const uint64_t start = Field<uint32_t>(mz, kHeaderOffsetPlace);
    if (!file_.Read(start, header, sizeof(header)) || Field<uint32_t>(header, 0) != kPeSignature)
        return;
    const uint32_t sections = Field<uint16_t>(header, 6), optionalSize = Field<uint16_t>(header, 20);

    const uint64_t optional = start + kFileHeaderSize;
    std::byte magicBytes[2], countBytes[4], directory[8];
    if (optionalSize < sizeof(magicBytes) || !file_.Read(optional, magicBytes, sizeof(magicBytes)))
        return;
    const uint16_t magic = Field<uint16_t>(magicBytes, 0);
    if (magic != kMagic32 && magic != kMagic64)
        return;
    const uint32_t countPlace = magic == kMagic32 ? 92 : 108;
    const uint32_t directoryPlace = countPlace + 4 + kResourceDirectory * 8;
    if (sections > kMostSections || optionalSize < directoryPlace + sizeof(directory) ||
        !file_.Read(optional + countPlace, countBytes, sizeof(countBytes)) ||
        !file_.Read(optional + directoryPlace, directory, sizeof(directory)))
        return;
    sectionCount_ = sections;
    sectionTable_ = optional + optionalSize;
    if (Field<uint32_t>(countBytes, 0) <= kResourceDirectory)
        return; // an image without resources
    directoryAddress_ = Field<uint32_t>(directory, 0);
    directorySize_ = Field<uint32_t>(directory, 4);
}

// The file offset of so many bytes at an address of the loaded image, all in the file's part of one
// section.
std::optional<uint64_t> PeResources::OffsetOf(uint32_t address, uint32_t size) const
{
    for (uint32_t i = 0; i < sectionCount_; ++i) {
        std::byte header[kSectionHeaderSize];
        if (!file_.Read(sectionTable_ + uint64_t(i) * kSectionHeaderSize, header, sizeof(header)))
            return {};
        Section section;
        std::memcpy(&section, header + 8, sizeof(section));
        if (address < section.address)
            continue;
        const uint64_t within = address - section.address;
        if (within + size <= section.rawSize)
            return section.rawOffset + within;
    }
    return {};
}

bool PeResources::ReadDirectory(uint32_t offset, void* bytes, uint32_t size) const
{
    if (uint64_t(offset) + size > directorySize_ || offset > UINT32_MAX - directoryAddress_)
        return false;
    const std::optional<uint64_t> place = OffsetOf(directoryAddress_ + offset, size);
    return place && file_.Read(*place, bytes, size);
}

uint32_t PeResources::EntryCount(uint32_t directory) const
{
    std::byte header[kDirectoryHeaderSize];
    if (!ReadDirectory(directory, header, sizeof(header)))
        return 0;
    return uint32_t(Field<uint16_t>(header, 12)) + Field<uint16_t>(header, 14);
}

std::optional<PeResources::Entry> PeResources::ReadEntry(uint32_t directory, uint32_t index) const
{
    const uint64_t offset =
        uint64_t(directory) + kDirectoryHeaderSize + uint64_t(index) * kDirectoryEntrySize;
    Entry entry;
    static_assert(sizeof(entry) == kDirectoryEntrySize);
    if (offset > UINT32_MAX || !ReadDirectory(uint32_t(offset), &entry, sizeof(entry)))
        return {};
    return entry;
}

// What the entry with this id, or the first one, leads to.
std::optional<uint32_t> PeResources::FindEntry(uint32_t directory, std::optional<uint32_t> id) const
{
    const uint32_t count = EntryCount(directory);
    for (uint32_t i = 0; i < count; ++i) {
        const std::optional<Entry> entry = ReadEntry(directory, i);
        if (!entry)
            return {};
        if (!id || entry->id == *id)
            return entry->next;
    }
    return {};
}

// What an entry of the last level leads to.
std::optional<ResourcePlace> PeResources::PlaceOf(uint32_t next) const
{
    std::byte leaf[16];
    if ((next & kHighBit) || !ReadDirectory(next, leaf, sizeof(leaf)))
        return {};
    const uint32_t size = Field<uint32_t>(leaf, 4);
    const std::optional<uint64_t> offset = OffsetOf(Field<uint32_t>(leaf, 0), size);
    if (!offset)
        return {};
    return ResourcePlace{*offset, size};
}

// Three levels: type, name, language. A directory cannot lead back further up than that.
std::optional<ResourcePlace> PeResources::FindFirst(uint32_t type) const
{
    std::optional<uint32_t> next = FindEntry(0, type);
    for (int level = 0; level < 2 && next; ++level)
        next = *next & kHighBit ? FindEntry(*next & ~kHighBit, {}) : std::nullopt;
    return next ? PlaceOf(*next) : std::nullopt;
}

std::optional<ResourceName> PeResources::NameOf(uint32_t id) const
{
    if (!(id & kHighBit))
        return ResourceName{uint16_t(id)};
    const uint32_t place = id & ~kHighBit;
    uint16_t length = 0;
    if (!ReadDirectory(place, &length, sizeof(length)) || length > kMostNameLength)
        return {};
    ResourceName name{0, std::u16string(length, u'\0')};
    if (!ReadDirectory(place + sizeof(length), name.text.data(), uint32_t(length) * 2))
        return {};
    return name;
}

template <class Visit>
void PeResources::ForEachBelow(uint32_t next, uint32_t& budget, Visit visit) const
{
    if (!(next & kHighBit))
        return;
    const uint32_t directory = next & ~kHighBit, count = EntryCount(directory);
    for (uint32_t i = 0; i < count && budget > 0; ++i) {
        --budget;
        const std::optional<Entry> entry = ReadEntry(directory, i);
        if (!entry)
            return;
        visit(*entry);
    }
}

void PeResources::ForEach(const Visitor& visit) const
{
    // As many entries as have room: where the directories of a damaged file share their entries, they
    // are not walked once for each way that leads to them.
    uint32_t budget = directorySize_ / kDirectoryEntrySize;
    ForEachBelow(kHighBit, budget, [&](const Entry& typeEntry) {
        const std::optional<ResourceName> type = NameOf(typeEntry.id);
        if (!type)
            return;
        ForEachBelow(typeEntry.next, budget, [&](const Entry& nameEntry) {
            const std::optional<ResourceName> name = NameOf(nameEntry.id);
            if (!name)
                return;
            ForEachBelow(nameEntry.next, budget, [&](const Entry& leaf) {
                if (const std::optional<ResourcePlace> place = PlaceOf(leaf.next))
                    visit(*type, *name, uint16_t(leaf.id), *place);
            });
        });
    });
}

} // namespace vxplatform
