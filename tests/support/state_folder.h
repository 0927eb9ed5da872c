// A state folder of the test program's own. Include it in each test that reaches the registry: the folder
// must be named before the layer asks for it.
#pragma once

#include "support/temp_folder.h"

namespace vxtest {

class StateFolder : public TempFolder
{
public:
    StateFolder() { setenv("VX_STATE_DIR", Path().c_str(), 1); }
};

inline const StateFolder g_stateFolder;

} // namespace vxtest
