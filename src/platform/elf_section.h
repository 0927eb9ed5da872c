// The sections of a shared object's file.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

namespace vxplatform {

bool IsElf(std::span<const std::byte> file);

// The bytes of the first section of that name in a file for this machine's word size; empty where there
// is none. Damaged headers find nothing.
std::span<const std::byte> FindElfSection(std::span<const std::byte> file, std::string_view name);

} // namespace vxplatform
