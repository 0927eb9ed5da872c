// Where the layer keeps what outlives the process.
#pragma once

#include <string>

namespace vxplatform {

// The folder that VX_STATE_DIR names, else "vxkernel" in the user's configuration folder, read once. It
// need not exist. Empty where the environment names no home either.
const std::string& StateFolder();

} // namespace vxplatform
