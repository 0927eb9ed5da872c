// Paths as texts: hand-worked tables, every capacity, and slow accounts of what is matched and compared.
#include "vx/path.h"

#include "support/random.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <string>

using namespace vxtest;

namespace {

using Text = std::u16string;

std::string Ascii(const Text& text)
{
    return {text.begin(), text.end()};
}

// A buffer of that room with the text in it and a guard behind.
class Buffer
{
public:
    Buffer(const Text& text, int32_t room) : room_(size_t(room)), text_(text)
    {
        text_.resize(std::max(room_, text.size() + 1), u'\0');
        text_ += kGuard;
    }
    ~Buffer() { EXPECT_TRUE(text_.ends_with(kGuard)) << "written behind " << room_; }
    char16_t* Data() { return text_.data(); }
    Text Get() const { return text_.c_str(); }

private:
    const Text kGuard = u"#guard#";
    size_t room_;
    Text text_;
};

TEST(Path, Parts)
{
    const struct
    {
        const char16_t *path, *name, *extension, *bare, *folder, *root;
    } cases[] = {
        {u"", u"", u"", u"", u"", u""},
        {u"C:\\a\\b", u"b", u"", u"b", u"C:\\a\\", u"C:\\"},
        {u"C:file.txt", u"file.txt", u".txt", u"file", u"C:", u""},
        {u"a/b", u"a/b", u"", u"a/b", u"", u""},
        {u"abc", u"abc", u"", u"abc", u"", u""},
        {u"\\a.tar.gz", u"a.tar.gz", u".gz", u"a.tar", u"\\", u"\\"},
        {u"x\\read.me now", u"read.me now", u"", u"read.me now", u"x\\", u"x\\"},
        {u"x\\read.me\u3000", u"read.me\u3000", u"", u"read.me\u3000", u"x\\", u"x\\"},
        {u"trail.", u"trail.", u".", u"trail", u"", u""},
        {u".config", u".config", u".config", u"", u"", u""},
        {u"C:\\a.b\\c", u"c", u"", u"c", u"C:\\a.b\\", u"C:\\"},
        {u"C:\\", u"", u"", u"", u"C:\\", u"C:\\"},
        {u"\\\\srv\\share\\x", u"x", u"", u"x", u"\\\\srv\\share\\", u"\\\\srv\\share\\"},
        {u"\\\\srv\\share", u"share", u"", u"share", u"\\\\srv\\", u""},
        {u"\\\\srv\\\\x", u"x", u"", u"x", u"\\\\srv\\\\", u""},
        {u"\\\\\\share\\x", u"x", u"", u"x", u"\\\\\\share\\", u""},
    };
    for (const auto& c : cases) {
        const Text path = c.path;
        SCOPED_TRACE(Ascii(path));
        const char16_t* const name = VxGetFileNamePtrW(c.path);
        EXPECT_EQ(Text(name), c.name);
        EXPECT_EQ(Text(VxGetFileNameExtensionPtrW(name)), c.extension);
        const std::string narrow = Ascii(path);
        EXPECT_EQ(VxGetFileNamePtrA(narrow.c_str()) - narrow.c_str(), name - c.path);
        if (path.find(u'\u3000') == path.npos) { // no white space byte by byte
            EXPECT_EQ(VxGetFileNameExtensionPtrA(VxGetFileNamePtrA(narrow.c_str())) - narrow.c_str(),
                      VxGetFileNameExtensionPtrW(name) - c.path);
        }
        const struct
        {
            int32_t (*call)(const char16_t*, char16_t*, int32_t);
            const char16_t* want;
            bool cuts; // rather than leaving all out
            bool keepsForEmpty;
        } copies[] = {{VxGetFileNameWithoutPathOrExtension, c.bare, true, false},
                      {VxGetPathNameFromFilePath, c.folder, false, path.empty()},
                      {VxGetRootPathFromFilePath, c.root, false, false}};
        for (const auto& copy : copies) {
            const Text want = copy.want;
            const int32_t length = int32_t(want.size());
            Buffer whole(u"before", 40), same(path, 40), small(u"before", std::max(length, 1));
            EXPECT_EQ(copy.call(c.path, whole.Data(), 40), length);
            EXPECT_EQ(whole.Get(), copy.keepsForEmpty ? u"before" : want);
            EXPECT_EQ(copy.call(same.Data(), same.Data(), 40), length) << "in place";
            EXPECT_EQ(same.Get(), want);
            if (length == 0)
                continue;
            copy.call(c.path, small.Data(), length);
            EXPECT_LT(small.Get().size(), size_t(length));
            EXPECT_TRUE(want.starts_with(small.Get()) && (copy.cuts || small.Get().empty()));
            EXPECT_EQ(copy.call(c.path, small.Data(), 0), copy.cuts ? 0 : length);
        }
    }
}

TEST(Path, BuildingInPlace)
{
    using Call = std::function<int32_t(char16_t*, int32_t)>;
    const auto extend = [](const char16_t* ext) {
        return Call([ext](auto* path, int32_t room) { return VxAddExtensionToPathName(path, room, ext); });
    };
    const auto replace = [](const char16_t* ext) {
        return Call(
            [ext](auto* path, int32_t room) { return VxReplaceExtensionOnPathName(path, room, ext); });
    };
    const auto append = [](const char16_t* name, const char16_t* ext = nullptr) {
        return Call([=](auto* path, int32_t room) { return VxAppendToPathName(path, room, name, ext); });
    };
    const struct
    {
        Call call;
        const char16_t* path;
        int32_t room;
        const char16_t* want;
        int32_t result; // -1: the length
    } cases[] = {
        {VxAddSlashToPathName, u"C:\\a", 6, u"C:\\a\\", -1},
        {VxAddSlashToPathName, u"C:\\a", 5, u"C:\\a", 0},
        {VxAddSlashToPathName, u"C:\\", 4, u"C:\\", -1},
        {VxAddSlashToPathName, u"C:\\", 3, u"C:\\", 0},
        {VxAddSlashToPathName, u"", 9, u"", 0},
        {VxRemoveSlashFromPathNameEnd, u"a\\\\", 9, u"a\\", -1},
        {VxRemoveSlashFromPathNameEnd, u"a", 9, u"a", -1},
        {VxRemoveSlashFromPathNameEnd, u"a\\", 2, u"a\\", 0},
        {VxRemoveSlashFromPathNameEnd, u"", 9, u"", 0},
        {extend(u"txt"), u"C:\\a.b\\c", 40, u"C:\\a.b\\c.txt", -1},
        {extend(u".txt"), u"c.TXT", 40, u"c.TXT", -1},
        {extend(u"txt"), u"trail.", 40, u"trail.txt", -1},
        {extend(u"tiff"), u"a.png", 9, u"a.ti", -1}, // what the whole path leaves of 9 are 4
        {extend(u"tiff"), u"a.png", 6, u"a", -1},
        {extend(u"tiff"), u"a.png", 5, u"a.png", 5},
        {extend(u"."), u"a.png", 40, u"a.png", -1},
        {replace(u"txt"), u"a.b.png", 40, u"a.b.txt", -1},
        {replace(u".txt"), u"a", 40, u"a.txt", -1},
        {replace(u""), u"a.png", 40, u"a.", -1},
        {replace(u"txt"), u"C:\\x\\", 40, u"C:\\x\\", -1},
        {replace(u"tiff"), u"a.png", 6, u"a.tif", -1},
        {replace(u"txt"), u"a", 2, u"a", -1},
        {append(u"b"), u"C:\\a", 40, u"C:\\a\\b", -1},
        {append(u"\\b", u"txt"), u"C:\\a\\", 40, u"C:\\a\\b.txt", -1},
        {append(u"b.c\\d", u".txt"), u"", 40, u"b.c\\d.txt", -1},
        {append(u"name"), u"C:\\a", 8, u"C:\\a\\na", -1},
        {append(u"name"), u"C:\\a", 5, u"C:\\a", -1},
        {append(u"name", u"txt"), u"a", 7, u"a\\name", -1},
        {VxDirectoryUpOneLevel, u"C:\\a\\b\\", 40, u"C:\\a\\", 1},
        {VxDirectoryUpOneLevel, u"C:\\a", 40, u"C:\\", 1},
        {VxDirectoryUpOneLevel, u"C:\\", 40, u"C:\\", 0},
        {VxDirectoryUpOneLevel, u"abcd\\", 40, u"abcd\\", 0},
        {VxDirectoryUpOneLevel, u"C:\\a\\b", 3, u"C:", 1},
    };
    for (const auto& c : cases) {
        Buffer buffer(c.path, c.room);
        EXPECT_EQ(c.call(buffer.Data(), c.room), c.result < 0 ? int32_t(Text(c.want).size()) : c.result)
            << &c - cases;
        EXPECT_EQ(buffer.Get(), c.want) << &c - cases;
    }
    Buffer most(u"C:\\" + Text(257, u'a'), 300);
    EXPECT_EQ(VxDirectoryUpOneLevel(most.Data(), 300), 0) << "260 characters";
    EXPECT_EQ(VxDirectoryUpOneLevel(nullptr, 40), 0);
}

TEST(Path, FileNamesAreValidated)
{
    const struct
    {
        const char16_t *name, *fixed;
    } cases[] = {{u"", u""},      {u"good name.txt", u"good name.txt"}, {u"a:b.", u"a_b_"},
                 {u"a ", u"a_"},  {u"<>|\"?*/\\:\r\n", u"___________"}, {u"..", u"._"},
                 {u" .a", u" .a"}};
    for (const auto& c : cases) {
        Text name = c.name;
        EXPECT_EQ(VxValidateFileName(name.data(), 0), name == c.fixed);
        EXPECT_EQ(name, c.name);
        EXPECT_EQ(VxValidateFileName(name.data(), 1), name == c.fixed && Text(c.name) == c.fixed);
        EXPECT_EQ(name, c.fixed);
    }
}

// The rule by recursion on what is left of both.
bool MatchesSlowly(const Text& p, const Text& n)
{
    if (n.empty())
        return p.empty() || p[0] == u'*' || p == u".";
    if (p.empty())
        return n == u".";
    if (p[0] == u'*') {
        const Text stops = p.size() > 1 ? Text{u'.', p[1]} : Text(u".");
        return MatchesSlowly(p.substr(1), n.substr(std::min(n.find_first_of(stops), n.size())));
    }
    return (p[0] == u'?' || p[0] == n[0]) && MatchesSlowly(p.substr(1), n.substr(1));
}

TEST(Path, WildCards)
{
    const struct
    {
        const char16_t *pattern, *name;
        bool want;
    } cases[] = {{u"*.txt", u"a.txt", true}, {u"*.txt", u"a.b.txt", false}, {u"a*", u"abc", true},
                 {u"a*", u"abc.def", false}, {u"a*.*", u"abc.def", true},   {u"*.", u"abc", true},
                 {u"*.*", u"abc", false},    {u"a?c", u"abc", true},        {u"A?C", u"abc", false},
                 {u"*a", u"bab", false},     {u"abc", u"abc.", true},       {u"*", u"a.b.c", true}};
    for (const auto& c : cases)
        EXPECT_EQ(VxIsMatchWildCard(c.pattern, c.name), c.want)
            << Ascii(c.pattern) << " on " << Ascii(c.name);

    Random random;
    const auto make = [&](const Text& letters) {
        Text text(size_t(random.Int(0, 6)), u' ');
        for (char16_t& c : text)
            c = letters[size_t(random.Int(0, int32_t(letters.size()) - 1))];
        return text;
    };
    for (int i = 0; i < 100000; ++i) {
        const Text pattern = make(u"ab.*?"), name = make(u"ab.");
        ASSERT_EQ(VxIsMatchWildCard(pattern.c_str(), name.c_str()),
                  pattern == u"*" || MatchesSlowly(pattern, name))
            << Ascii(pattern) << " on " << Ascii(name);
    }
}

TEST(Path, NamesInAPersonsOrder)
{
    const char16_t* const ascending[] = {u"", u"a1", u"a2", u"A10", u"a10b", u"b", u"\u00E9", u"z", u"Z 2"};
    for (size_t i = 0; i < std::size(ascending); ++i)
        for (size_t k = 0; k < std::size(ascending); ++k) {
            const int32_t order = VxFilenameLogicalCompare(ascending[i], ascending[k]);
            EXPECT_EQ((order > 0) - (order < 0), (i > k) - (i < k)) << i << " and " << k;
        }
    EXPECT_EQ(VxFilenameLogicalCompare(u"Track 07", u"track 7"), 0);
}

TEST(Path, CommonEnds)
{
    const struct
    {
        const char16_t *other, *path, *tail, *base;
    } cases[] = {
        {u"C:\\a\\b\\c.txt", u"D:\\x\\b\\c.txt", u"b\\c.txt", u"D:\\x\\"},
        {u"C:\\a\\b\\c.txt", u"D:\\q_b\\c.txt", u"c.txt", u"D:\\q_b\\"},
        {u"C:\\A\\B.TXT", u"c:\\a\\b.txt", u"c:\\a\\b.txt", u""},
        {u"C:\\a.txt", u"D:\\b.bin", u"", u"D:\\b.bin\\"},
        {u"b\\c.txt", u"D:\\x\\b\\c.txt", u"c.txt", u"D:\\x\\b\\"},
        {u"x.txt", u"D:\\q.txt", u"", u"D:\\q.txt\\"},
        {u"", u"D:\\a", u"", u"D:\\a\\"},
        {u"a", u"", u"", u""},
        {u"C:\\\u00E4\\f", u"D:\\\u00C4\\F", u"\u00C4\\F", u"D:\\"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(Text(VxGetFileNamePtrRelative(c.other, c.path)), c.tail) << &c - cases;
        const Text base = c.base;
        for (int32_t room = 1; room <= int32_t(base.size()) + 1; ++room) {
            Buffer dst(u"", room);
            EXPECT_EQ(VxGetBasePathRelative(c.other, c.path, dst.Data(), room),
                      room > int32_t(base.size()) ? S_OK : E_FAIL);
            EXPECT_EQ(dst.Get(), base.substr(0, size_t(room) - 1));
        }
    }
}

TEST(Path, ANewBase)
{
    const Text longBase(250, u'x');
    const struct
    {
        Text path, oldBase, newBase, want;
        int32_t room;
        HRESULT status;
    } cases[] = {
        {u"C:\\Old\\x.txt", u"c:\\old\\", u"D:\\New\\", u"D:\\New\\x.txt", 260, S_OK},
        {u"C:\\Old\\x.txt", u"c:\\old\\", u"D:\\New\\", u"D:\\New\\x.tx", 12, E_FAIL},
        {u"C:\\Old", u"C:\\Other", u"D:", u"", 260, E_FAIL},
        {u"C:\\O", u"C:\\Old", u"D:", u"", 260, E_FAIL},
        {u"a123456789", u"a", longBase, longBase + u"123456789", 300, S_OK},
        {u"a1234567890", u"a", longBase, u"", 300, E_FAIL},
    };
    for (const auto& c : cases) {
        Buffer dst(u"before", c.room), same(c.path, 300);
        EXPECT_EQ(VxReplaceBasePathRelative(c.path.c_str(), c.oldBase.c_str(), c.newBase.c_str(), dst.Data(),
                                            c.room),
                  c.status);
        EXPECT_EQ(dst.Get(), c.want);
        VxReplaceBasePathRelative(same.Data(), c.oldBase.c_str(), c.newBase.c_str(), same.Data(), c.room);
        EXPECT_EQ(same.Get(), c.want) << "in place";
    }
}

} // namespace
