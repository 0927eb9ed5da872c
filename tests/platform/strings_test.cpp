#include "vx/platform/strings.h"

#include <gtest/gtest.h>

TEST(Strings, CompareWithoutRegardToCase)
{
    // In ascending order; the texts of one row are the same.
    const char16_t half[] = {0xD800, 0};
    const char16_t* rows[][2] = {
        {nullptr, nullptr},
        {u"", u""},
        {u"[", u"["},
        {u"AppName", u"aPPnAME"},
        {u"AppName2", u"APPNAME2"},
        {u"z", u"Z"},
        {u"\x00C4rger", u"\x00E4RGER"},
        {u"\x041C\x0438\x0440", u"\x043C\x0418\x0420"},
        {half, half},
        {u"\xD801\xDC00", u"\xD801\xDC28"},
    };
    for (const auto& left : rows)
        for (const auto& right : rows)
            for (const char16_t* a : left)
                for (const char16_t* b : right) {
                    const int order = lstrcmpiW(a, b), want = &left < &right ? -1 : &left > &right;
                    EXPECT_EQ((order > 0) - (order < 0), want) << &left - rows << ", " << &right - rows;
                }
}
