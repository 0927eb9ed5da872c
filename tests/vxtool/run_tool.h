// Runs the built vxtool in a folder of its own.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

namespace vxtest {

struct Outcome
{
    int exitCode;
    std::string out, error;
};

class ToolFolder
{
public:
    ToolFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vxtool-test-XXXXXX").string();
        path_ = mkdtemp(name.data());
    }
    ~ToolFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    ToolFolder(const ToolFolder&) = delete;
    ToolFolder& operator=(const ToolFolder&) = delete;

    std::string File(const std::string& name) const { return (path_ / name).string(); }
    bool Has(const std::string& name) const { return std::filesystem::exists(path_ / name); }

    // The arguments go through the shell, in the folder; `before` too, as "ulimit -f 1;".
    Outcome Run(const std::string& arguments, const std::string& before = "") const
    {
        const std::string logs = path_.string() + ".log";
        const std::string command = "cd '" + path_.string() + "' && " + before + " '" VXTOOL_PATH "' " +
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
        for (const auto& entry : std::filesystem::directory_iterator(path_))
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

private:
    std::filesystem::path path_;
};

} // namespace vxtest
