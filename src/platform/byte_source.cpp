#include "platform/byte_source.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vxplatform {

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

bool ByteSpan::Read(uint64_t offset, void* bytes, size_t size) const
{
    if (offset > bytes_.size() || size > bytes_.size() - offset)
        return false;
    if (size > 0)
        std::memcpy(bytes, bytes_.data() + offset, size);
    return true;
}

MappedFile::MappedFile(const char* hostPath)
{
    const BinaryFile file(hostPath);
    struct stat facts;
    if (!file.IsOpen() || fstat(file.Descriptor(), &facts) != 0)
        return;
    const size_t size = size_t(facts.st_size);
    void* bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.Descriptor(), 0);
    if (bytes == MAP_FAILED)
        return;
    content_ = {static_cast<const std::byte*>(bytes), size};
    identity_ = {facts.st_dev, facts.st_ino};
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : content_(std::exchange(other.content_, {})), identity_(other.identity_)
{}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept
{
    std::swap(content_, other.content_);
    std::swap(identity_, other.identity_);
    return *this;
}

MappedFile::~MappedFile()
{
    if (!content_.empty())
        munmap(const_cast<std::byte*>(content_.data()), content_.size());
}

} // namespace vxplatform
