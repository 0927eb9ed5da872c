// Whole files in, whole files out. Every failure is a Failure that names the file.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace vxtool {

// Reads a regular file of at most 4 GiB.
std::vector<uint8_t> ReadWholeFile(const std::string& path);

// Writes the bytes under a temporary name in the folder of path and then renames that file to path, so
// that path is either what it was or complete. A symbolic link is followed; anything else that exists
// and is no regular file is refused. After a failure no file is left behind.
void WriteWholeFile(const std::string& path, std::span<const uint8_t> bytes);

} // namespace vxtool
