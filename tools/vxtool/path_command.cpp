// path: paths taken apart, chosen by a wild card, put in order, and compared with another one.
#include "vx/path.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/unicode.h"

#include <algorithm>
#include <iostream>

namespace vxtool {
namespace {

constexpr int32_t kRoom = VX_MAX_PATH;

// What --only leaves of a path.
enum Part : int32_t
{
    kAllParts,
    kRoot,
    kFolder,
    kName,
    kStem,
    kExtension,
    kFull,
};
constexpr Choice kParts[] = {
    {"root", kRoot}, {"folder", kFolder},       {"name", kName},
    {"stem", kStem}, {"extension", kExtension}, {"full", kFull},
};

// The library takes longer ones for what their first 259 characters say.
std::u16string PathOf(const std::string& text)
{
    std::u16string path = Utf16Of(text);
    if (path.size() >= size_t(kRoom))
        FailArgument("a path has at most ", kRoom - 1, " characters, unlike ", text);
    return path;
}

std::string FullPathOf(const std::u16string& path)
{
    char16_t full[kRoom];
    const int32_t length = VxGetFullPathName(path.c_str(), kRoom, full, nullptr);
    if (length <= 0 || length >= kRoom)
        FailArgument("there is no full path of '", Utf8Of(path), "' with at most ", kRoom - 1, " characters");
    return Utf8Of(full);
}

std::string PartOf(const std::u16string& path, Part part)
{
    char16_t text[kRoom] = {};
    switch (part) {
    case kRoot:
        VxGetRootPathFromFilePath(path.c_str(), text, kRoom);
        break;
    case kFolder:
        VxGetPathNameFromFilePath(path.c_str(), text, kRoom);
        break;
    case kStem:
        VxGetFileNameWithoutPathOrExtension(path.c_str(), text, kRoom);
        break;
    case kExtension:
        return Utf8Of(VxGetFileNameExtensionPtrW(VxGetFileNamePtrW(path.c_str())));
    case kFull:
        return FullPathOf(path);
    default:
        return Utf8Of(VxGetFileNamePtrW(path.c_str()));
    }
    return Utf8Of(text);
}

// A part that the path does not have has no row.
void ShowRow(const char* what, const std::string& text)
{
    if (!text.empty())
        std::cout << "  " << PaddedRight(what, 11) << text << "\n";
}

void ShowParts(const std::u16string& path, Part only)
{
    if (only != kAllParts) {
        std::cout << PartOf(path, only) << "\n";
        return;
    }
    std::cout << Utf8Of(path) << "\n";
    for (const Choice& part : kParts)
        ShowRow(part.name, PartOf(path, Part(part.value)));
}

void ShowRelation(const std::u16string& path, const std::u16string& other)
{
    char16_t base[kRoom];
    VxGetBasePathRelative(other.c_str(), path.c_str(), base, kRoom);
    std::cout << Utf8Of(path) << "\n";
    ShowRow("own", Utf8Of(base));
    ShowRow("common", Utf8Of(VxGetFileNamePtrRelative(other.c_str(), path.c_str())));
}

void ShowMoved(const std::u16string& path, const std::u16string& from, const std::u16string& to)
{
    char16_t moved[kRoom];
    if (FAILED(VxReplaceBasePathRelative(path.c_str(), from.c_str(), to.c_str(), moved, kRoom)))
        FailArgument("'", Utf8Of(path), "' does not begin with '", Utf8Of(from), "', or is too long behind '",
                     Utf8Of(to), "'");
    std::cout << Utf8Of(moved) << "\n";
}

// The operands that --match leaves, in the order of --sort.
std::vector<std::u16string> ChosenPaths(const Arguments& arguments)
{
    std::vector<std::u16string> paths;
    for (size_t i = 0; i < arguments.OperandCount(); ++i) {
        paths.push_back(PathOf(arguments.Operand(i)));
        if (paths.back().empty())
            FailArgument("a path is empty");
    }
    if (const std::string* text = arguments.Text("--match"))
        std::erase_if(paths, [pattern = Utf16Of(*text)](const std::u16string& path) {
            return !VxIsMatchWildCard(pattern.c_str(), VxGetFileNamePtrW(path.c_str()));
        });
    if (arguments.Has("--sort"))
        std::ranges::stable_sort(paths, [](const std::u16string& a, const std::u16string& b) {
            return VxFilenameLogicalCompare(a.c_str(), b.c_str()) < 0;
        });
    return paths;
}

void RefuseContradictions(const Arguments& arguments)
{
    if (arguments.Has("--from") != arguments.Has("--to"))
        FailArgument("--from and --to go together");
    if (arguments.Has("--against") + arguments.Has("--from") + arguments.Has("--only") > 1)
        FailArgument("--against, --from and --only exclude each other");
}

void RunPath(const Arguments& arguments)
{
    RefuseContradictions(arguments);
    const Part only = Part(arguments.OneOf("--only", kParts, kAllParts));
    const bool namesOnly = arguments.Has("--match") || arguments.Has("--sort");
    for (const std::u16string& path : ChosenPaths(arguments)) {
        if (const std::string* other = arguments.Text("--against"))
            ShowRelation(path, PathOf(*other));
        else if (const std::string* from = arguments.Text("--from"))
            ShowMoved(path, PathOf(*from), PathOf(*arguments.Text("--to")));
        else if (namesOnly && only == kAllParts)
            std::cout << Utf8Of(path) << "\n";
        else
            ShowParts(path, only);
    }
}

constexpr Option kPathOptions[] = {
    {"--only", "PART", "show root, folder, name, stem, extension or full alone"},
    {"--match", "PATTERN",
     "only the paths whose file name matches: * stands for characters up to the\n"
     "next dot or the character behind the *, ? for one; case counts"},
    {"--sort", nullptr, "in the order of a person: numbers by their value, case aside"},
    {"--against", "OTHER",
     "show which names at the end PATH has in common with OTHER, and what stands\n"
     "in front of them"},
    {"--from", "BASE", "with --to: PATH, which must begin with BASE in whatever case,"},
    {"--to", "BASE", "with this in the place of it"},
};

} // namespace

const Command kPath = {
    "path",
    "take paths apart, choose and sort them, and compare them with others",
    "PATH...",
    1,
    SIZE_MAX,
    kPathOptions,
    "vxtool path 'C:\\takes\\scene 2.wav' --against 'D:\\backup\\takes\\scene 2.wav'",
    RunPath,
};

} // namespace vxtool
