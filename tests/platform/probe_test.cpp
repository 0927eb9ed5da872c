#include "vx/platform/probe.h"

#include <cerrno>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

TEST(IsBadReadPtr, FindsWhatCannotBeReadAnywhereInTheRange)
{
    // Four pages, of which the third cannot be read.
    const size_t page = size_t(sysconf(_SC_PAGESIZE));
    auto* pages = static_cast<char*>(mmap(nullptr, 4 * page, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_EQ(mprotect(pages + 2 * page, page, PROT_NONE), 0);
    const struct
    {
        size_t offset, bytes;
        BOOL bad;
    } cases[] = {
        {0, 2 * page, FALSE}, {2 * page - 1, 1, FALSE}, {2 * page - 1, 2, TRUE}, {100, 4 * page - 100, TRUE},
        {2 * page, 1, TRUE},  {3 * page - 1, 2, TRUE},  {3 * page, page, FALSE}, {2 * page, 0, FALSE},
    };
    for (const auto& c : cases)
        EXPECT_EQ(IsBadReadPtr(pages + c.offset, c.bytes), c.bad) << c.offset << ", " << c.bytes << " bytes";
    munmap(pages, 4 * page);
}

} // namespace
