#include "vx/platform/strings.h"

#include <gtest/gtest.h>
#include <string>

TEST(Strings, CompareWithoutRegardToCase)
{
    // In ascending order; the texts of one row are the same.
    const std::u16string rows[][2] = {
        {u"", u""},
        {u" ", u" "},
        {u"[", u"["},
        {u"_", u"_"},
        {u"AppName", u"aPPnAME"},
        {u"AppName2", u"APPNAME2"},
        {u"AppNames", u"appnamES"},
        {u"z", u"Z"},
        {u"\x00C4rger", u"\x00E4RGER"},
        {u"\x03A9mega", u"\x03C9MEGA"},
        {u"\x041C\x0438\x0440", u"\x043C\x0418\x0420"},
        {u"\x4E2D", u"\x4E2D"},
        {u"\xD800", u"\xD800"}, // half a pair
        {u"\xD801\xDC00", u"\xD801\xDC28"},
    };
    for (const auto& left : rows)
        for (const auto& right : rows)
            for (const std::u16string& a : left)
                for (const std::u16string& b : right) {
                    const int order = lstrcmpiW(a.c_str(), b.c_str());
                    const int want = &left < &right ? -1 : &left > &right;
                    EXPECT_EQ((order > 0) - (order < 0), want) << &left - rows << ", " << &right - rows;
                }
    EXPECT_LT(lstrcmpiW(nullptr, u""), 0);
    EXPECT_GT(lstrcmpiW(u"", nullptr), 0);
    EXPECT_EQ(lstrcmpiW(nullptr, nullptr), 0);
}
