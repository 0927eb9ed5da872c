// Runs the built vxtool in a folder of its own.
#pragma once

#include "support/temp_folder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

namespace vxtest {

struct Outcome
{
    int exitCode;
    std::string out, error;
};

class ToolFolder : public TempFolder
{
public:
    std::string File(const std::string& name) const { return (Path() / name).string(); }
    bool Has(const std::string& name) const { return std::filesystem::exists(Path() / name); }

    // The arguments go through the shell, in the folder; `before` too, as "ulimit -f 1;".
    Outcome Run(const std::string& arguments, const std::string& before = "") const
    {
        const std::string logs = Path().string() + ".log";
        const std::string command = "cd '" + Path().string() + "' && " + before + " '" VXTOOL_PATH "' " +
                                    arguments + " >'" + logs + ".out' 2>'" + logs + ".err'";
        const int status = std::system(command.c_str());
        const Outcome outcome{WIFEXITED(status) ? WEXITSTATUS(status) : -1, Text(logs + ".out"),
                              Text(logs + ".err")};
        std::filesystem::remove(logs + ".out");
        std::filesystem::remove(logs + ".err");
        return outcome;
    }

    // Names that begin with a dot are what a write might leave behind.
    int TemporaryFiles() const
    {
        int count = 0;
        for (const auto& entry : std::filesystem::directory_iterator(Path()))
            count += entry.path().filename().string().starts_with(".");
        return count;
    }

    void Write(const std::string& name, const std::string& bytes) const
    {
        std::ofstream(File(name), std::ios::binary) << bytes;
    }

    static std::string Text(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

} // namespace vxtest
