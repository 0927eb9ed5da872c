#include "platform/state_folder.h"

#include <cstdlib>

namespace vxplatform {
namespace {

std::string Variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

std::string FindStateFolder()
{
    if (const std::string named = Variable("VX_STATE_DIR"); !named.empty())
        return named;
    if (const std::string config = Variable("XDG_CONFIG_HOME"); config.starts_with('/'))
        return config + "/vxkernel";
    const std::string home = Variable("HOME");
    return home.empty() ? "" : home + "/.config/vxkernel";
}

} // namespace

// Never destroyed: settings are written from exit handlers as well.
const std::string& StateFolder()
{
    static const std::string& folder = *new std::string(FindStateFolder());
    return folder;
}

} // namespace vxplatform
