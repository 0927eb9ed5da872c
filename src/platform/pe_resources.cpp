#include "platform/pe_resources.h"

#include <bit>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

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

template <class T>
T Field(const std::byte* bytes, size_t offset)
{
    T value;
    std::memcpy(&value, bytes + offset, sizeof(value));
    return value;
}

} // namespace

// Without O_NONBLOCK a pipe of that name would make the caller wait for a writer.
BinaryFile::BinaryFile(const char* hostPath) : descriptor_(open(hostPath, O_RDONLY | O_CLOEXEC | O_NONBLOCK))
{
    struct stat facts;
    if (!IsOpen() || (fstat(descriptor_, &facts) == 0 && S_ISREG(facts.st_mode)))
        return;
    close(std::exchange(descriptor_, -1));
    errno = EACCES;
}

BinaryFile::~BinaryFile()
{
    if (IsOpen())
        close(descriptor_);
}

bool BinaryFile::Read(uint64_t offset, void* bytes, size_t size) const
{
    auto* out = static_cast<char*>(bytes);
    while (size > 0) {
        const ssize_t got = pread(descriptor_, out, size, off_t(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        out += got;
        offset += uint64_t(got);
        size -= size_t(got);
    }
    return true;
}

PeResources::PeResources(const BinaryFile& file) : file_(file)
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

// What the entry with this id, or the first one, leads to.
std::optional<uint32_t> PeResources::FindEntry(uint32_t directory, std::optional<uint32_t> id) const
{
    std::byte header[kDirectoryHeaderSize];
    if (!ReadDirectory(directory, header, sizeof(header)))
        return {};
    const uint32_t count = uint32_t(Field<uint16_t>(header, 12)) + Field<uint16_t>(header, 14);
    for (uint32_t i = 0; i < count; ++i) {
        std::byte entry[kDirectoryEntrySize];
        const uint64_t offset =
            uint64_t(directory) + kDirectoryHeaderSize + uint64_t(i) * kDirectoryEntrySize;
        if (offset > UINT32_MAX || !ReadDirectory(uint32_t(offset), entry, sizeof(entry)))
            return {};
        if (!id || Field<uint32_t>(entry, 0) == *id)
            return Field<uint32_t>(entry, 4);
    }
    return {};
}

// Three levels: type, name, language. A directory cannot lead back further up than that.
std::optional<ResourcePlace> PeResources::FindFirst(uint32_t type) const
{
    std::optional<uint32_t> next = FindEntry(0, type);
    for (int level = 0; level < 2 && next; ++level)
        next = *next & kHighBit ? FindEntry(*next & ~kHighBit, {}) : std::nullopt;
    std::byte leaf[16];
    if (!next || (*next & kHighBit) || !ReadDirectory(*next, leaf, sizeof(leaf)))
        return {};
    const uint32_t size = Field<uint32_t>(leaf, 4);
    const std::optional<uint64_t> offset = OffsetOf(Field<uint32_t>(leaf, 0), size);
    if (!offset)
        return {};
    return ResourcePlace{*offset, size};
}

} // namespace vxplatform
