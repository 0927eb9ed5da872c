#include "vx/print.h"

#include "support/random.h"
#include "text/print_support.h"
#include "text/tokens.h"

#include <atomic>
#include <map>
#include <thread>
#include <vector>

using namespace vxtest;

namespace {

class PrintTokens : public testing::Test
{
protected:
    PrintTokens() { EXPECT_TRUE(vx::CreatePrintTokens()); }
    ~PrintTokens() override { vx::DestroyPrintTokens(); }
};

std::u16string Name(int number, bool upper)
{
    std::u16string name = upper ? u"TOKEN-\x00C4\x03A9" : u"Token-\x00E4\x03C9";
    for (; number > 0; number /= 26)
        name += char16_t((upper ? u'A' : u'a') + number % 26);
    return name;
}

} // namespace

// Against a map, with names in both cases.
TEST_F(PrintTokens, AreTheLastOnesRegistered)
{
    Random random;
    std::map<int, std::u16string> model;
    for (int step = 0; step < 3000; ++step) {
        const int number = random.Int(0, 100);
        const std::u16string name = Name(number, random.Int(0, 1));
        if (random.Int(0, 2) == 0) {
            ASSERT_EQ(VxPrintF_DeleteToken(name.c_str()), int(model.erase(number)));
        } else {
            model[number] = std::u16string(size_t(random.Int(0, 9)), char16_t(random.Int(u'0', u'z')));
            std::u16string passed = model[number];
            ASSERT_EQ(VxPrintF_AddToken(name.c_str(), passed.c_str()), 1);
            passed.assign(passed.size(), u'!'); // the text was copied
        }
        const int asked = random.Int(0, 100);
        const std::u16string askedName = Name(asked, random.Int(0, 1));
        const auto found = model.find(asked);
        const std::u16string format = u"$(" + askedName + u")";
        ASSERT_EQ(Print({format.c_str()}), found != model.end() ? found->second : format);
    }
}

// A reader sees one of the values that a token ever had, whole, while others come and go.
TEST_F(PrintTokens, AreReplacedWhole)
{
    const std::u16string values[] = {std::u16string(30, u'a'), std::u16string(7, u'b'), u"c"};
    VxPrintF_AddToken(u"Shared", values[0].c_str());
    std::atomic<bool> stop = false;
    std::vector<std::thread> writers;
    for (int writer = 0; writer < 2; ++writer)
        writers.emplace_back([&, writer] {
            Random random(uint64_t(writer) + 1);
            while (!stop) {
                VxPrintF_AddToken(u"SHARED", values[random.Int(0, 2)].c_str());
                const std::u16string own = Name(writer * 1000 + random.Int(0, 50), false);
                VxPrintF_AddToken(own.c_str(), u"own");
                VxPrintF_DeleteToken(own.c_str());
            }
        });
    int wrong = 0;
    for (int i = 0; i < 5000; ++i) {
        char16_t text[64];
        VxCchPrintF(text, 64, nullptr, u"$(shared)");
        wrong += std::find(std::begin(values), std::end(values), text) == std::end(values);
    }
    stop = true;
    for (std::thread& writer : writers)
        writer.join();
    EXPECT_EQ(wrong, 0);
}
