// A folder for the files of a work, gone with it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace vxbench {

class Folder
{
public:
    Folder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vxbench-XXXXXX").string();
        if (!mkdtemp(name.data()))
            throw std::runtime_error("no folder for a work's files");
        path_ = name;
    }
    ~Folder() { std::filesystem::remove_all(path_); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const std::filesystem::path& Path() const { return path_; }

private:
    std::filesystem::path path_;
};

} // namespace vxbench
