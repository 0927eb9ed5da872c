// The resources of a PE image on disk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace vxplatform {

// A regular file that is read in place. Closed with the object; where it is not open, errno says why.
class BinaryFile
{
public:
    explicit BinaryFile(const char* hostPath);
    ~BinaryFile();
    BinaryFile(const BinaryFile&) = delete;
    BinaryFile& operator=(const BinaryFile&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    // All of the bytes or nothing: false where some lie behind the end of the file.
    bool Read(uint64_t offset, void* bytes, size_t size) const;

private:
    int descriptor_;
};

// Where the bytes of a resource lie in its file.
struct ResourcePlace
{
    uint64_t offset;
    uint32_t size;
};

// Looks into the image's directory of resources. Nothing in a file is believed: each offset is checked
// against the sections and the file, and a damaged directory only finds nothing.
class PeResources
{
public:
    static constexpr uint32_t kVersionType = 16;

    explicit PeResources(const BinaryFile& file);

    bool IsImage() const { return sectionCount_ > 0; }
    // The first resource of a type, whatever its name and language.
    std::optional<ResourcePlace> FindFirst(uint32_t type) const;

private:
    struct Section
    {
        uint32_t size, address, rawSize, rawOffset; // in the order of the file
    };

    void ReadHeaders();
    std::optional<uint64_t> OffsetOf(uint32_t address, uint32_t size) const;
    bool ReadDirectory(uint32_t offset, void* bytes, uint32_t size) const;
    std::optional<uint32_t> FindEntry(uint32_t directory, std::optional<uint32_t> id) const;

    const BinaryFile& file_;
    uint64_t sectionTable_ = 0; // file offset
    uint32_t sectionCount_ = 0;
    uint32_t directoryAddress_ = 0, directorySize_ = 0;
};

} // namespace vxplatform
