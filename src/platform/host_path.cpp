#include "platform/host_path.h"

#include "platform/utf8.h"
#include "vx/platform/lasterror.h"
#include "vx/platform/strings.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace vxplatform {
namespace {

constexpr std::u16string_view kLongPathPrefix = u"\\\\?\\";

// Index of a drive letter, -1 for what is none.
int DriveIndex(unsigned c)
{
    c |= 0x20;
    return c >= 'a' && c <= 'z' ? int(c - 'a') : -1;
}

// The folder of each drive, without a separator at its end.
struct DriveMap
{
    std::array<std::string, 26> folders;
    std::array<bool, 26> known{};

    DriveMap()
    {
        const char* text = std::getenv("VX_DRIVES");
        std::string_view rest = text ? text : "C=/";
        while (!rest.empty()) {
            const size_t end = std::min(rest.find(';'), rest.size());
            Add(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }

private:
    // "C=/mnt/data"; what is not of this form is passed over.
    void Add(std::string_view entry)
    {
        const int drive = entry.size() >= 3 && entry[1] == '=' ? DriveIndex(uint8_t(entry[0])) : -1;
        if (drive < 0)
            return;
        std::string_view folder = entry.substr(2);
        while (folder.ends_with('/'))
            folder.remove_suffix(1);
        folders[size_t(drive)] = folder;
        known[size_t(drive)] = true;
    }
};

const DriveMap& Drives()
{
    static const DriveMap& map = *new DriveMap; // never destroyed: static destructors may open files
    return map;
}

bool IsSeparator(char16_t c)
{
    return c == u'\\' || c == u'/';
}

// The drive's folder, and the path below it in `rest`. False for no drive of the map, and for a path to
// another machine.
bool TakeRoot(std::u16string_view& rest, std::string& root, bool& absolute)
{
    if (rest.starts_with(kLongPathPrefix))
        rest.remove_prefix(kLongPathPrefix.size());
    int drive = -1;
    if (rest.size() >= 2 && rest[1] == u':') {
        drive = rest[0] < 128 ? DriveIndex(rest[0]) : -1;
        if (drive < 0)
            return false;
        rest.remove_prefix(2);
    } else if (rest.size() >= 2 && IsSeparator(rest[0]) && IsSeparator(rest[1])) {
        return false;
    } else if (!rest.empty() && IsSeparator(rest[0])) {
        drive = DriveIndex('C');
    }
    absolute = drive >= 0;
    if (!absolute)
        return true;
    root = Drives().folders[size_t(drive)];
    return Drives().known[size_t(drive)];
}

bool Exists(const std::string& path)
{
    return faccessat(AT_FDCWD, path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

// The entry of the folder that differs in case only: of several the first in the order of their bytes.
// The name itself where there is none.
std::string FindEntry(const std::string& folder, const std::string& name)
{
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.empty() ? "." : folder.c_str()),
                                                      closedir);
    const std::u16string wanted = ToUtf16(name);
    std::string found;
    while (const dirent* entry = entries ? readdir(entries.get()) : nullptr)
        if (lstrcmpiW(ToUtf16(entry->d_name).c_str(), wanted.c_str()) == 0 &&
            (found.empty() || found > entry->d_name))
            found = entry->d_name;
    return found.empty() ? name : found;
}

void AppendPart(std::string& path, const std::string& part)
{
    if (Exists(path + part))
        path += part;
    else
        path += FindEntry(path, part);
}

} // namespace

HostPath::HostPath(const WCHAR* path)
{
    bool absolute = false;
    std::u16string_view rest(path ? path : u"");
    if (rest.empty() || !TakeRoot(rest, path_, absolute)) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return;
    }
    exists_ = true;
    if (absolute)
        path_ += '/';
    while (!rest.empty()) {
        const size_t end = size_t(std::find_if(rest.begin(), rest.end(), IsSeparator) - rest.begin());
        if (end > 0)
            AppendPart(path_, ToUtf8(rest.substr(0, end)));
        rest.remove_prefix(end);
        if (rest.empty())
            break;
        rest.remove_prefix(1);
        if (!path_.empty() && !path_.ends_with('/'))
            path_ += '/';
    }
}

std::u16string DrivePathOf(std::string_view hostPath)
{
    const DriveMap& drives = Drives();
    size_t best = drives.folders.size();
    for (size_t drive = 0; drive < drives.folders.size(); ++drive) {
        const std::string& folder = drives.folders[drive];
        if (drives.known[drive] && hostPath.starts_with(folder) &&
            hostPath.substr(folder.size()).starts_with('/') &&
            (best == drives.folders.size() || folder.size() > drives.folders[best].size()))
            best = drive;
    }
    if (best == drives.folders.size())
        return {};
    std::u16string path{char16_t(u'A' + best), u':'};
    path += ToUtf16(hostPath.substr(drives.folders[best].size()));
    std::ranges::replace(path, u'/', u'\\');
    return path;
}

} // namespace vxplatform
