// How a command gives up: one sentence for the user and the exit code that goes with it.
#pragma once

#include <sstream>
#include <string>

namespace vxtool {

enum ExitCode
{
    kSuccess = 0,
    kBadFile = 1,     // cannot be read or written, is no picture, is truncated or too large
    kBadArgument = 2, // the command line asks for what cannot be done
};

struct Failure
{
    ExitCode code;
    std::string sentence; // without a full stop and without the command's name
};

template <class... Parts>
std::string Join(const Parts&... parts)
{
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

template <class... Parts>
[[noreturn]] void FailFile(const Parts&... parts)
{
    throw Failure{kBadFile, Join(parts...)};
}

template <class... Parts>
[[noreturn]] void FailArgument(const Parts&... parts)
{
    throw Failure{kBadArgument, Join(parts...)};
}

} // namespace vxtool
