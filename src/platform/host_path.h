// The path of this machine that a path with drive letters and backslashes stands for.
#pragma once

#include "vx/platform/types.h"

#include <string>
#include <string_view>

namespace vxplatform {

// Drives come from the environment variable VX_DRIVES ("C=/;D=/mnt/data"; "C=/" without it), which is
// read once. A path without a drive is relative to the working directory or, from a separator on, to
// drive C. Both slashes separate. Each part of the path is found without regard to case where there is
// no entry of its exact case; a part that does not exist stays as it is. Paths to other machines, and
// drives that are not in the map, have no host path.
class HostPath
{
public:
    explicit HostPath(const WCHAR* path);

    // False where there is none: ERROR_PATH_NOT_FOUND is then the last error.
    explicit operator bool() const { return exists_; }
    const char* c_str() const { return path_.c_str(); }

private:
    bool exists_ = false;
    std::string path_;
};

// The reverse: the path with a drive letter and backslashes of an absolute host path without "." and "..",
// on the drive whose folder is the longest that it begins with. Empty where no drive has it.
std::u16string DrivePathOf(std::string_view hostPath);

} // namespace vxplatform
