#include "vx/platform/debug.h"

#include <atomic>
#include <cstdlib>
#include <gmock/gmock.h>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using testing::ElementsAre;

using Texts = std::vector<std::string>;

void Collect(void* context, const char* text)
{
    static_cast<Texts*>(context)->push_back(text);
}

class DebugOutput : public testing::Test
{
protected:
    ~DebugOutput() override { VxPlatform_SetDebugOutput(nullptr, nullptr); }
    Texts texts_;
};

TEST_F(DebugOutput, TextsGoOutAsUtf8)
{
    VxPlatform_SetDebugOutput(Collect, &texts_);
    OutputDebugStringA("no line end");
    OutputDebugStringA(nullptr);
    OutputDebugStringW(nullptr);
    OutputDebugStringW(u"a\u00E9\u20AC\U0001F600\n");
    const char16_t halves[] = {0xDE00, 0xD83D, 0xD83D, 0xDE00, 0xD83D, 0};
    OutputDebugStringW(halves);
    EXPECT_THAT(texts_, ElementsAre("no line end", "a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80\n",
                                    "\xEF\xBF\xBD\xEF\xBF\xBD\xF0\x9F\x98\x80\xEF\xBF\xBD"));
}

// The context of the output before may be freed once another is set.
TEST_F(DebugOutput, AReplacedOutputIsNotRunningAnyMore)
{
    struct Context
    {
        bool alive = true;
        int unguarded = 0; // a count that only the one-at-a-time rule keeps right
        ~Context() { alive = false; }
    };
    static std::atomic<int> calls, dead;
    const auto count = [](void* context, const char*) {
        Context& own = *static_cast<Context*>(context);
        dead += !own.alive;
        ++own.unguarded;
        ++calls;
    };
    constexpr int kTexts = 2000;
    std::vector<std::jthread> senders;
    auto context = std::make_unique<Context>();
    VxPlatform_SetDebugOutput(count, context.get());
    int counted = 0;
    for (int i = 0; i < 3; ++i)
        senders.emplace_back([] {
            for (int text = 0; text < kTexts; ++text)
                OutputDebugStringA("x");
        });
    for (int i = 0; i < 200; ++i) {
        auto next = std::make_unique<Context>();
        VxPlatform_SetDebugOutput(count, next.get());
        counted += context->unguarded;
        context = std::move(next);
    }
    senders.clear();
    VxPlatform_SetDebugOutput(nullptr, nullptr);
    EXPECT_EQ(counted + context->unguarded, 3 * kTexts);
    EXPECT_EQ(calls, 3 * kTexts);
    EXPECT_EQ(dead, 0);
}

// A fresh process for each, since the variable is read once.
TEST(DebugOutputDeathTest, StandardErrorIsUsedWhereTheVariableIsSet)
{
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto sendThenChange = [](bool set) {
        set ? setenv("VX_DEBUG", "", 1) : unsetenv("VX_DEBUG");
        OutputDebugStringA("[first]");
        set ? unsetenv("VX_DEBUG") : setenv("VX_DEBUG", "1", 1);
        OutputDebugStringW(u"[second]");
        std::exit(0); // the child takes its own state folder away
    };
    EXPECT_EXIT(sendThenChange(true), testing::ExitedWithCode(0), "^\\[first\\]\\[second\\]$");
    EXPECT_EXIT(sendThenChange(false), testing::ExitedWithCode(0), "^$");
}

} // namespace
