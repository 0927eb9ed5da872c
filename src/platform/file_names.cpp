// Paths made whole, and names in order.
#include "platform/host_path.h"
#include "platform/utf8.h"
#include "vx/platform/files.h"
#include "vx/platform/lasterror.h"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <unicode/ucol.h>
#include <unistd.h>
#include <vector>

namespace {

using std::u16string;
using std::u16string_view;

constexpr u16string_view kSeparators = u"\\/";

bool IsSeparator(char16_t c)
{
    return kSeparators.find(c) != kSeparators.npos;
}

// The length where the text fits with its terminator, else the room that is needed.
DWORD Deliver(u16string_view text, WCHAR* buffer, DWORD chars)
{
    if (text.size() >= chars || !buffer)
        return DWORD(text.size()) + 1;
    *std::copy(text.begin(), text.end(), buffer) = u'\0';
    return DWORD(text.size());
}

DWORD Fail(DWORD error)
{
    SetLastError(error);
    return 0;
}

template <class Call>
DWORD WithMemory(Call call)
try {
    return call();
} catch (const std::bad_alloc&) {
    return Fail(ERROR_NOT_ENOUGH_MEMORY);
}

// Its drive path with a separator at its end; empty where no drive has it.
u16string WorkingDirectory()
{
    const std::unique_ptr<char, void (*)(void*)> host(getcwd(nullptr, 0), std::free);
    return host ? vxplatform::DrivePathOf(std::string(host.get()) + "/") : u"";
}

bool SameDrive(char16_t a, char16_t b)
{
    return (a | 0x20) == (b | 0x20);
}

// A path's root, where the path begins below it, and what is left to go from there.
struct Start
{
    u16string root;   // "C:\" or "\\server\share\"
    u16string inside; // names below the root that come first
    u16string_view rest;
};

// Behind the share of "\\server\share\rest".
size_t EndOfShare(u16string_view path)
{
    size_t end = 2;
    for (int name = 0; name < 2; ++name)
        end = std::min(path.find_first_of(kSeparators, std::min(end, path.size()) + (name ? 1 : 0)),
                       path.size());
    return end;
}

Start StartOf(u16string_view path)
{
    if (path.size() >= 2 && IsSeparator(path[0]) && IsSeparator(path[1])) {
        const size_t end = EndOfShare(path);
        u16string root(path.substr(0, end));
        std::ranges::replace(root, u'/', u'\\');
        return {root + u"\\", u"", path.substr(end)};
    }
    const bool hasDrive = path.size() >= 2 && path[1] == u':';
    const u16string_view rest = hasDrive ? path.substr(2) : path;
    if (!rest.empty() && IsSeparator(rest[0]))
        return {u16string(1, hasDrive ? path[0] : u'C') + u":\\", u"", rest};
    const u16string working = WorkingDirectory();
    if (hasDrive && (working.empty() || !SameDrive(working[0], path[0])))
        return {u16string(1, path[0]) + u":\\", u"", rest};
    return {working.substr(0, 3), working.empty() ? u"" : working.substr(3), rest};
}

void AddNames(std::vector<u16string_view>& names, u16string_view path)
{
    while (!path.empty()) {
        const u16string_view name = path.substr(0, path.find_first_of(kSeparators));
        if (name == u"..") {
            if (!names.empty())
                names.pop_back();
        } else if (!name.empty() && name != u".") {
            names.push_back(name);
        }
        path.remove_prefix(std::min(name.size() + 1, path.size()));
    }
}

// Empty where the working directory is needed and has no drive.
u16string FullPath(u16string_view path)
{
    const Start start = StartOf(path);
    if (start.root.empty())
        return {};
    std::vector<u16string_view> names;
    AddNames(names, start.inside);
    AddNames(names, start.rest);
    u16string full = start.root;
    for (size_t i = 0; i < names.size(); ++i)
        (i > 0 ? full += u'\\' : full) += names[i];
    if (!names.empty() && IsSeparator(path.back()))
        full += u'\\';
    return full;
}

// The path with the names that its host path has at its end in the place of its own.
u16string WithNamesOf(u16string_view path, const std::string& hostPath)
{
    u16string result(path);
    const u16string hostText = vxplatform::ToUtf16(hostPath);
    u16string_view host = hostText;
    size_t end = result.size();
    for (;;) {
        while (end > 0 && IsSeparator(result[end - 1]))
            --end;
        while (host.ends_with(u'/'))
            host.remove_suffix(1);
        if (end == 0 || host.empty() || result[end - 1] == u':')
            return result;
        const size_t first = result.find_last_of(u"\\/:", end - 1) + 1; // 0 where there is none
        const size_t hostFirst = host.find_last_of(u'/') + 1;
        result.replace(first, end - first, host.substr(hostFirst));
        end = first;
        host = host.substr(0, hostFirst);
    }
}

const UCollator* Collator()
{
    static const UCollator* const collator = [] {
        UErrorCode status = U_ZERO_ERROR;
        UCollator* const opened = ucol_open("", &status);
        if (U_SUCCESS(status)) {
            ucol_setAttribute(opened, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
            ucol_setAttribute(opened, UCOL_STRENGTH, UCOL_SECONDARY, &status); // no case
        }
        return U_SUCCESS(status) ? opened : nullptr;
    }();
    return collator;
}

} // namespace

DWORD GetFullPathNameW(const WCHAR* path, DWORD chars, WCHAR* buffer, WCHAR** filePart)
{
    if (!path || !*path)
        return Fail(ERROR_INVALID_NAME);
    return WithMemory([&] {
        const u16string full = FullPath(path);
        if (full.empty())
            return Fail(ERROR_PATH_NOT_FOUND);
        const DWORD length = Deliver(full, buffer, chars);
        if (filePart && length == full.size())
            *filePart = full.ends_with(u'\\') ? nullptr : buffer + full.find_last_of(u'\\') + 1;
        return length;
    });
}

DWORD GetLongPathNameW(const WCHAR* path, WCHAR* buffer, DWORD chars)
{
    return WithMemory([&] {
        const vxplatform::HostPath host(path);
        if (!host || access(host.c_str(), F_OK) != 0)
            return Fail(ERROR_FILE_NOT_FOUND);
        return Deliver(WithNamesOf(path, host.c_str()), buffer, chars);
    });
}

DWORD GetTempPathW(DWORD chars, WCHAR* buffer)
{
    return WithMemory([&] {
        const char* const set = std::getenv("TMPDIR");
        std::string folder = set && *set == '/' ? set : "/tmp";
        if (!folder.ends_with('/'))
            folder += '/';
        const u16string path = vxplatform::DrivePathOf(folder);
        return path.empty() ? Fail(ERROR_PATH_NOT_FOUND) : Deliver(path, buffer, chars);
    });
}

int StrCmpLogicalW(const WCHAR* first, const WCHAR* second)
{
    if (!first || !second)
        return int(first != nullptr) - int(second != nullptr);
    if (const UCollator* const collator = Collator())
        return int(ucol_strcoll(collator, first, -1, second, -1));
    return u16string_view(first).compare(second);
}
