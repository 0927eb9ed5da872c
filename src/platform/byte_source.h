// Files that are read at any place: by system calls, or mapped.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <sys/types.h>

namespace vxplatform {

class ByteSource
{
public:
    // All of the bytes or nothing: false where some lie behind the end.
    virtual bool Read(uint64_t offset, void* bytes, size_t size) const = 0;

protected:
    ~ByteSource() = default;
};

// A regular file. Closed with the object; where it is not open, errno says why.
class BinaryFile : public ByteSource
{
public:
    explicit BinaryFile(const char* hostPath);
    ~BinaryFile();
    BinaryFile(const BinaryFile&) = delete;
    BinaryFile& operator=(const BinaryFile&) = delete;

    bool IsOpen() const { return descriptor_ >= 0; }
    int Descriptor() const { return descriptor_; }
    bool Read(uint64_t offset, void* bytes, size_t size) const override;

private:
    int descriptor_;
};

// Bytes in memory, which are the caller's.
class ByteSpan : public ByteSource
{
public:
    explicit ByteSpan(std::span<const std::byte> bytes) : bytes_(bytes) {}
    bool Read(uint64_t offset, void* bytes, size_t size) const override;

private:
    std::span<const std::byte> bytes_;
};

// Which file it is, under whatever path: two are the same while one of them is open or mapped.
struct FileIdentity
{
    bool operator==(const FileIdentity&) const = default;

    dev_t device = 0;
    ino_t number = 0;
};

// A regular file, mapped to be read. A file that is empty, or that cannot be read, has no bytes; errno
// then says why.
class MappedFile
{
public:
    MappedFile() = default;
    explicit MappedFile(const char* hostPath);
    MappedFile(MappedFile&& other) noexcept;
    MappedFile& operator=(MappedFile&& other) noexcept;
    ~MappedFile();

    std::span<const std::byte> Content() const { return content_; }
    const FileIdentity& Identity() const { return identity_; }

private:
    std::span<const std::byte> content_;
    FileIdentity identity_;
};

} // namespace vxplatform
