// Settings that one run of the tool stores are there for the next.
#include "run_tool.h"

#include <gmock/gmock.h>

namespace {

using namespace vxtest;
using testing::HasSubstr;

TEST(SettingsCommand, KeepsWhatItIsGiven)
{
    constexpr struct
    {
        const char* arguments;
        int exitCode;
        const char* text; // all that is printed, or a part of the refusal
    } kSteps[] = {
        {"set 'Software\\Demo' Threads 4 --type number", 0, ""},
        {"set 'software\\demo\\Sub' list ä 'b b' --type texts", 0, ""},
        {"set 'Software\\Demo' b 00ffA0 --type bytes", 0, ""},
        {"set 'Software\\Demo' big 18446744073709551615 --type number64", 0, ""},
        {"get 'SOFTWARE\\Demo' threads", 0, "4\n"},
        {"get 'Software\\Demo\\Sub' list --type texts", 0, "ä\nb b\n"},
        {"list 'Software\\Demo'", 0,
         "Sub\\\nb                bytes    00ffa0\nbig              number64 18446744073709551615\n"
         "Threads          number   4\n"},
        {"delete 'Software\\Demo' big", 0, ""},
        {"export", 0,
         "Software\\Demo\tb\tbytes\t00ffa0\nSoftware\\Demo\tThreads\tnumber\t04000000\n"
         "Software\\Demo\\Sub\tlist\ttexts\te400000062002000620000000000\n"},
        {"list --machine", 0, ""},
        {"get 'Software\\Demo' big", 1, "there is no value 'big'"},
        {"get 'Software\\Demo' b --type number", 1, "is of type bytes"},
        {"delete Software", 1, "has keys below it"},
        {"set k n 4294967296 --type number", 2, "0 to 4294967295"},
        {"set k n 0g --type bytes", 2, "hexadecimal"},
        {"set k n a b", 2, "only --type texts"},
        {"list '\\k'", 2, "backslash"},
        {"frob", 2, "not 'frob'"},
    };
    const ToolFolder folder;
    for (const auto& step : kSteps) {
        const Outcome outcome =
            folder.Run(std::string("settings ") + step.arguments, "VX_STATE_DIR=\"$PWD/state\"");
        EXPECT_EQ(outcome.exitCode, step.exitCode) << step.arguments << ": " << outcome.error;
        EXPECT_EQ(outcome.out, step.exitCode == 0 ? step.text : "") << step.arguments;
        EXPECT_THAT(outcome.error, HasSubstr(step.exitCode == 0 ? "" : step.text)) << step.arguments;
    }
}

} // namespace
