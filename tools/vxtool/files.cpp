#include "vxtool/files.h"

#include "vxtool/failure.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vxtool {
namespace {

namespace fs = std::filesystem;

constexpr int64_t kLargestFile = int64_t(4) << 30;

class Descriptor
{
public:
    explicit Descriptor(int fd) : fd_(fd) {}
    ~Descriptor() { Close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int Get() const { return fd_; }
    int Close() { return fd_ < 0 ? 0 : close(std::exchange(fd_, -1)); }

private:
    int fd_;
};

// Removes the temporary file on every way out but success.
struct Unlinker
{
    std::string path;
    bool armed = true;
    ~Unlinker()
    {
        if (armed)
            unlink(path.c_str());
    }
};

int64_t CheckedSize(const Descriptor& file, const std::string& path)
{
    struct stat status;
    if (fstat(file.Get(), &status) != 0)
        FailFile("cannot read ", path, ": ", std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        FailFile(path, " is a folder, not a picture");
    if (!S_ISREG(status.st_mode))
        FailFile(path, " is not a regular file");
    if (status.st_size > kLargestFile)
        FailFile(path, " is too large: ", status.st_size, " bytes, more than 4 GiB");
    return status.st_size;
}

size_t ReadUpTo(const Descriptor& file, std::span<uint8_t> room, const std::string& path)
{
    size_t done = 0;
    while (done < room.size()) {
        const ssize_t got = read(file.Get(), room.data() + done, room.size() - done);
        if (got == 0)
            break;
        if (got < 0 && errno != EINTR)
            FailFile("cannot read ", path, ": ", std::strerror(errno));
        done += got > 0 ? size_t(got) : 0;
    }
    return done;
}

void WriteAll(const Descriptor& file, std::span<const uint8_t> bytes, const std::string& path)
{
    while (!bytes.empty()) {
        const ssize_t put = write(file.Get(), bytes.data(), bytes.size());
        if (put < 0 && errno != EINTR)
            FailFile("cannot write ", path, ": ", std::strerror(errno));
        bytes = bytes.subspan(put > 0 ? size_t(put) : 0);
    }
}

// The file that is really meant: a link's end, and nothing that a rename would put out of service.
fs::path Target(const std::string& path)
{
    std::error_code error;
    const fs::path target = fs::is_symlink(path, error) ? fs::weakly_canonical(path, error) : fs::path(path);
    const fs::file_status status = fs::status(target, error);
    if (fs::is_directory(status))
        FailFile("cannot write ", path, ": it is a folder");
    if (fs::exists(status) && !fs::is_regular_file(status))
        FailFile("cannot write ", path, ": it is not a regular file");
    return target;
}

} // namespace

std::vector<uint8_t> ReadWholeFile(const std::string& path)
{
    // Without O_NONBLOCK the opening of a pipe that nobody writes to would wait for ever.
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.Get() < 0)
        FailFile("cannot read ", path, ": ", std::strerror(errno));
    std::vector<uint8_t> bytes(size_t(CheckedSize(file, path)));
    bytes.resize(ReadUpTo(file, bytes, path));
    return bytes;
}

void WriteWholeFile(const std::string& path, std::span<const uint8_t> bytes)
{
    const fs::path target = Target(path);
    std::string name;
    int fd = -1;
    for (int attempt = 0; fd < 0 && attempt < 100; ++attempt) {
        name = Join((target.parent_path() / ".vxtool-").string(), getpid(), "-", attempt, ".tmp");
        fd = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    Descriptor file(fd);
    if (fd < 0)
        FailFile("cannot write ", path, ": ", std::strerror(errno));
    Unlinker unlinker{name};
    WriteAll(file, bytes, path);
    if (file.Close() != 0 || rename(name.c_str(), target.c_str()) != 0)
        FailFile("cannot write ", path, ": ", std::strerror(errno));
    unlinker.armed = false;
}

} // namespace vxtool
