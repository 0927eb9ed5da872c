// A folder that lives as long as the test.
#pragma once

#include "support/pe_image.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string>

namespace vxtest {

class TempFolder
{
public:
    TempFolder()
    {
        std::string name = (std::filesystem::temp_directory_path() / "vxtest-XXXXXX").string();
        EXPECT_NE(mkdtemp(name.data()), nullptr);
        path_ = name;
    }
    ~TempFolder() { std::filesystem::remove_all(path_); }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    void Write(const std::string& name, const Bytes& bytes) const
    {
        std::filesystem::create_directories((path_ / name).parent_path());
        std::ofstream file(path_ / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
        EXPECT_TRUE(file.good());
    }

    const std::filesystem::path& Path() const { return path_; }

    // With a drive letter and backslashes, as the library takes paths.
    std::u16string DrivePath(const std::u16string& name) const
    {
        std::u16string path = u"C:" + path_.u16string() + u"\\" + name;
        for (char16_t& c : path)
            if (c == u'/')
                c = u'\\';
        return path;
    }

private:
    std::filesystem::path path_;
};

} // namespace vxtest
