// Paths against a folder that is really there.
#include "vx/path.h"

#include "vx/platform/files.h"
#include "vx/platform/lasterror.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using Text = std::u16string;

Text DrivePath(const fs::path& host)
{
    Text text = u"C:" + host.u16string();
    std::ranges::replace(text, u'/', u'\\');
    return text;
}

// The working directory meanwhile, with Sub/File.TXT in it.
class PathSystem : public testing::Test
{
protected:
    PathSystem()
    {
        fs::create_directories(folder_ / "Sub");
        std::ofstream(folder_ / "Sub" / "File.TXT") << "text";
        fs::current_path(folder_);
    }
    ~PathSystem() override
    {
        fs::current_path(before_);
        fs::remove_all(folder_);
    }
    const fs::path before_ = fs::current_path();
    const fs::path folder_ = [] {
        std::string name = (fs::temp_directory_path() / "vxXXXXXX").string();
        return fs::canonical(mkdtemp(name.data()));
    }();
    const Text drivePath_ = DrivePath(folder_);
};

TEST_F(PathSystem, FullPaths)
{
    const Text here = drivePath_, up = DrivePath(folder_.parent_path());
    const struct
    {
        Text path, want;
    } cases[] = {
        {u"name", here + u"\\name"},
        {u"sub\\file.txt", here + u"\\Sub\\File.TXT"},
        {u".\\SUB/./file.txt", here + u"\\Sub\\File.TXT"},
        {u"sub/..\\new\\", here + u"\\new\\"},
        {u"..", up},
        {u"C:name", here + u"\\name"},
        {u"c:\\..\\a", u"c:\\a"},
        {u"Q:\\a\\.\\b", u"Q:\\a\\b"},
        {u"Q:a", u"Q:\\a"},
        {u"\\none\\a", u"C:\\none\\a"},
        {u"C:\\", u"C:\\"},
        {u"//srv/share/../x", u"\\\\srv\\share\\x"},
    };
    for (const auto& c : cases) {
        char16_t text[VX_MAX_PATH] = u"";
        char16_t* name = nullptr;
        const int32_t length = int32_t(c.want.size());
        EXPECT_EQ(VxGetFullPathName(c.path.c_str(), VX_MAX_PATH, text, &name), length);
        EXPECT_EQ(Text(text), c.want);
        EXPECT_EQ(name, text + c.want.rfind(u'\\') + 1);
        EXPECT_EQ(VxGetFullPathName(c.path.c_str(), length, text, nullptr), length + 1) << "one short";
    }
    char16_t text[8];
    EXPECT_EQ(VxGetFullPathName(u"", 8, text, nullptr), 0);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_NAME);
}

TEST_F(PathSystem, NamesAreAsOnDisk)
{
    const Text file = drivePath_ + u"\\Sub\\File.TXT";
    for (const Text& path : {Text(u"sub\\FILE.txt"), Text(u"Sub/File.TXT")}) {
        char16_t text[VX_MAX_PATH];
        EXPECT_EQ(VxGetLongPathName(path.c_str(), text, VX_MAX_PATH), 12);
        EXPECT_EQ(Text(text), Text(u"Sub") + path[3] + u"File.TXT");
        EXPECT_EQ(VxGetLongPathName(path.c_str(), text, 12), 13);
        EXPECT_EQ(Text(text), path.substr(0, 11)) << "as it was, cut";
        EXPECT_EQ(VxQualifyPath(path.c_str(), text, VX_MAX_PATH), 1);
        EXPECT_EQ(Text(text), file);
        EXPECT_EQ(VxQualifyPath(path.c_str(), text, int32_t(file.size())), 0);
    }
    char16_t text[VX_MAX_PATH] = u"sub\\\\\\none";
    EXPECT_EQ(VxGetLongPathName(text, text, VX_MAX_PATH), 0);
    EXPECT_EQ(Text(text), u"sub\\\\\\none");
    EXPECT_EQ(VxGetLongPathName(u"sub\\\\file.txt\\", text, VX_MAX_PATH), 0) << "no folder";
    EXPECT_EQ(VxGetLongPathName(u"sub\\\\..\\SUB\\", text, VX_MAX_PATH), 12);
    EXPECT_EQ(Text(text), u"Sub\\\\..\\Sub\\");
    EXPECT_EQ(VxQualifyPath(u"none", text, VX_MAX_PATH), 0);
    EXPECT_EQ(VxQualifyPath(u"sub", text, 0), 0);
}

TEST_F(PathSystem, TemporaryFolderAndModules)
{
    setenv("TMPDIR", folder_.c_str(), 1);
    char16_t text[VX_MAX_PATH];
    EXPECT_EQ(VxGetTempPath(VX_MAX_PATH, text), int32_t(drivePath_.size()) + 1);
    EXPECT_EQ(Text(text), drivePath_ + u"\\");
    unsetenv("TMPDIR");

    const Text executable = DrivePath(fs::canonical("/proc/self/exe"));
    EXPECT_EQ(VxGetModuleFileName(nullptr, text, VX_MAX_PATH), int32_t(executable.size()));
    EXPECT_EQ(Text(text), executable);
    const Text folder = executable.substr(0, executable.rfind(u'\\') + 1);
    EXPECT_EQ(VxGetModulePath(nullptr, text, VX_MAX_PATH), int32_t(folder.size()));
    EXPECT_EQ(Text(text), folder);
    int none = 0;
    EXPECT_EQ(VxGetModuleFileName(&none, text, VX_MAX_PATH), 0);
    EXPECT_EQ(Text(text), u"");
}

} // namespace
