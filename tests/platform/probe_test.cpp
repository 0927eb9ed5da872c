#include "vx/platform/probe.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

// Four pages, of which the third cannot be read.
class HoleyPages
{
public:
    HoleyPages()
        : bytes_(static_cast<char*>(mmap(nullptr, 4 * Page(), PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)))
    {
        mprotect(bytes_ + 2 * Page(), Page(), PROT_NONE);
    }
    ~HoleyPages() { munmap(bytes_, 4 * Page()); }
    static size_t Page() { return size_t(sysconf(_SC_PAGESIZE)); }
    const char* At(size_t offset) const { return bytes_ + offset; }

private:
    char* bytes_;
};

TEST(IsBadReadPtr, FindsWhatCannotBeReadAnywhereInTheRange)
{
    const HoleyPages pages;
    const size_t page = HoleyPages::Page();
    const struct
    {
        size_t offset, bytes;
        BOOL bad;
    } cases[] = {
        {0, 1, FALSE},           {0, 2 * page, FALSE},      {2 * page - 1, 1, FALSE},
        {2 * page - 1, 2, TRUE}, {1, 2 * page, TRUE},       {100, 4 * page - 100, TRUE},
        {2 * page, 1, TRUE},     {2 * page + 100, 8, TRUE}, {3 * page - 1, 2, TRUE},
        {3 * page, page, FALSE}, {2 * page, 0, FALSE},
    };
    for (const auto& c : cases)
        EXPECT_EQ(IsBadReadPtr(pages.At(c.offset), c.bytes), c.bad)
            << c.offset << ", " << c.bytes << " bytes";
}

TEST(IsBadReadPtr, TakesAnyPointerAndLeavesErrno)
{
    errno = ERANGE;
    EXPECT_TRUE(IsBadReadPtr(nullptr, 1));
    EXPECT_TRUE(IsBadReadPtr(reinterpret_cast<const void*>(1), 200));
    EXPECT_TRUE(IsBadReadPtr(reinterpret_cast<const void*>(UINTPTR_MAX - 7), 16)) << "the range wraps";
    EXPECT_FALSE(IsBadReadPtr(nullptr, 0));
    EXPECT_EQ(errno, ERANGE);
}

} // namespace
