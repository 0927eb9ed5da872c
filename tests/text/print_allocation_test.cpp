// The engines allocate nothing. Under a sanitizer, which brings its own allocator, this is not tested.
#include "vx/print.h"

#include "support/locales.h"
#include "text/tokens.h"

#include <string>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define VX_TEST_SANITIZED
#endif
#endif
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(VX_TEST_SANITIZED)

namespace {
thread_local int t_allocations;
}

// The C library's own allocator under the names that programs may replace.
extern "C" {
void* __libc_malloc(size_t bytes);
void* __libc_calloc(size_t count, size_t bytes);
void* __libc_realloc(void* block, size_t bytes);

void* malloc(size_t bytes)
{
    ++t_allocations;
    return __libc_malloc(bytes);
}
void* calloc(size_t count, size_t bytes)
{
    ++t_allocations;
    return __libc_calloc(count, bytes);
}
void* realloc(void* block, size_t bytes)
{
    ++t_allocations;
    return __libc_realloc(block, bytes);
}
}

TEST(PrintAllocation, NoFormTakesMemory)
{
    const vxtest::OnlyLocale locale("fr-FR");
    const int before = t_allocations;
    ASSERT_TRUE(vx::CreatePrintTokens());
    ASSERT_GT(t_allocations, before) << "the counter does not count";
    VxPrintF_AddToken(u"Token\x00C4", u"value");

    char16_t text[4000];
    const auto print = [&](const char16_t* format, auto... arguments) {
        const int count = t_allocations;
        VxPrintF(text, format, arguments...);
        VxCchPrintF(text, 4000, nullptr, format, arguments...);
        VxCchPrintF(text, 4, nullptr, format, arguments...);
        EXPECT_EQ(t_allocations, count)
            << std::string(format, format + std::char_traits<char16_t>::length(format));
    };
    print(u"plain %d $d %u $u %s %hs %c", 1, 1234567, 2, 3, u"text", "text", 'c');
    print(u"%08d $08d %I64x $I64d %#o", 1, 1234567, INT64_C(1), INT64_C(-1), 7);
    print(u"%f $f %.3e %g $g $.30f %.700f", 1e300, 1234.5, 1e-300, 0.1, 1e300, 0.1, 0.1);
    print(u"%.2z $.2z $z $* $, $: $!: $&. $(1234.5) $(-)", 5, 5, 5);
    print(u"$(Token\x00E4) $(Unknown) $(12 %y d", 5);
    vx::DestroyPrintTokens();
}

#endif
