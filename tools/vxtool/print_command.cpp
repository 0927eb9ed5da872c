// print: a format of the print engine with arguments.
#include "vx/print.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/kernel_start.h"
#include "vxtool/print_call.h"
#include "vxtool/unicode.h"

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace vxtool {
namespace {

constexpr int32_t kMostCapacity = 1 << 20;
// More than any conversion or number literal takes, grouping by eight-character separators included.
constexpr size_t kRoomOfForm = 4096;

// Returns the length of the longest value.
size_t RegisterTokens(const Arguments& arguments)
{
    size_t longest = 0;
    for (const std::string& token : arguments.All("--token")) {
        const size_t equals = token.find('=');
        if (equals == 0 || equals == token.npos)
            FailArgument("--token takes NAME=VALUE, not '", token, "'");
        const std::u16string name = Utf16Of(token.substr(0, equals)),
                             value = Utf16Of(token.substr(equals + 1));
        if (!VxPrintF_AddToken(name.c_str(), value.c_str()))
            FailFile("there is not enough memory for the tokens");
        longest = std::max(longest, value.size());
    }
    return longest;
}

size_t RoomFor(const std::u16string& format, size_t longestToken)
{
    const auto introduces = [](char16_t c) { return c == u'%' || c == u'$'; };
    const auto forms = size_t(std::ranges::count_if(format, introduces));
    return format.size() + forms * (kRoomOfForm + longestToken) + 1;
}

const char* NameOf(HRESULT status)
{
    switch (status) {
    case VX_E_BUFFERTOSMALL:
        return "  a grouped number or an unknown token did not fit";
    case VX_E_INSUFFICIENT_BUFFER:
        return "  another conversion did not fit";
    default:
        return "";
    }
}

void PrintBounded(const PrintArguments& printed, const std::u16string& format, size_t capacity)
{
    std::vector<char16_t> text(capacity);
    uint32_t length = 0;
    const HRESULT status = printed.PrintBounded(text, length, format);
    std::cout << Utf8Of({text.data(), length}) << "\nlength  " << length << "\nstatus  " << std::hex
              << std::uppercase << std::setfill('0') << std::setw(8) << uint32_t(status) << NameOf(status)
              << "\n";
}

void RunPrint(const Arguments& arguments)
{
    StartKernel(arguments);
    const std::u16string format = Utf16Of(arguments.Operand(0));
    std::vector<std::string> words;
    for (size_t i = 1; i < arguments.OperandCount(); ++i)
        words.push_back(arguments.Operand(i));
    const PrintArguments printed(ArgumentsOfFormat(format), words);
    const size_t longestToken = RegisterTokens(arguments);
    if (arguments.Has("--capacity"))
        PrintBounded(printed, format, size_t(arguments.Integer("--capacity", 1, 1, kMostCapacity)));
    else
        std::cout << Utf8Of(printed.Print(format, RoomFor(format, longestToken))) << "\n";
}

constexpr Option kPrintOptions[] = {
    {"--token", "NAME=VALUE", "what $(NAME) stands for; may be given several times"},
    {"--capacity", "N",
     "print into room for N characters, terminator included, and show the\n"
     "length and the status too"},
    kLocaleOption,
};

} // namespace

const Command kPrint = {
    "print",
    "fill in a print format: % for machines, $ for persons",
    "FORMAT [ARGUMENT...]",
    1,
    SIZE_MAX,
    kPrintOptions,
    "vxtool print '$(App): $d files, $.2f MB' 12345 1.5 --token App=Demo",
    RunPrint,
};

} // namespace vxtool
