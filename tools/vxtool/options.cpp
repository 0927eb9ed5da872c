#include "vxtool/options.h"

#include "vxtool/failure.h"
#include "vxtool/size_limits.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace vxtool {
namespace {

constexpr Choice kChannelNames[] = {{"blue", 0}, {"green", 1}, {"red", 2}, {"alpha", 3}};

// The whole text must be the number: no blanks, no rest.
template <class T>
bool Parsed(std::string_view text, T& value, auto... base)
{
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value, base...);
    return result.ec == std::errc() && result.ptr == end;
}

std::string Names(std::span<const Choice> choices)
{
    std::string names;
    for (size_t i = 0; i < choices.size(); ++i)
        names += Join(i == 0 ? "" : i + 1 == choices.size() ? " or " : ", ", choices[i].name);
    return names;
}

const Option* Find(const Command& command, std::string_view name)
{
    const auto found = std::ranges::find(command.options, name, &Option::name);
    return found == command.options.end() ? nullptr : &*found;
}

} // namespace

const std::span<const Choice> kChannels = kChannelNames;

Arguments::Arguments(const Command& command, std::span<const std::string> words)
{
    bool onlyOperands = false;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (onlyOperands || !word.starts_with("--")) {
            operands_.push_back(word);
            continue;
        }
        if (word == "--") {
            onlyOperands = true;
            continue;
        }
        const size_t equals = word.find('=');
        const std::string name = word.substr(0, equals);
        const Option* option = Find(command, name);
        if (option == nullptr)
            FailArgument("there is no option ", name, "; see vxtool ", command.name, " --help");
        auto& values = values_[name];
        if (option->value == nullptr && equals != std::string::npos)
            FailArgument(name, " takes no value");
        if (option->value == nullptr)
            continue;
        if (equals == std::string::npos && i + 1 == words.size())
            FailArgument(name, " needs a value: ", option->value);
        values.push_back(equals == std::string::npos ? words[++i] : word.substr(equals + 1));
    }
    if (operands_.size() < command.leastOperands)
        FailArgument("something is missing: the usage is vxtool ", command.name, " ", command.operands);
    if (operands_.size() > command.mostOperands)
        FailArgument("'", operands_[command.mostOperands], "' is one too many: the usage is vxtool ",
                     command.name, " ", command.operands);
}

std::vector<std::string> Arguments::All(std::string_view option) const
{
    const auto found = values_.find(option);
    return found == values_.end() ? std::vector<std::string>() : found->second;
}

const std::string* Arguments::Text(std::string_view option) const
{
    const auto found = values_.find(option);
    return found == values_.end() || found->second.empty() ? nullptr : &found->second.back();
}

double Arguments::Number(std::string_view option, double byDefault, double least, double most) const
{
    const std::string* text = Text(option);
    return text ? ParseNumber(option, *text, least, most) : byDefault;
}

int32_t Arguments::Integer(std::string_view option, int32_t byDefault, int32_t least, int32_t most) const
{
    const std::string* text = Text(option);
    return text ? ParseInteger(option, *text, least, most) : byDefault;
}

Colour Arguments::ColourOr(std::string_view option, const Colour& byDefault) const
{
    const std::string* text = Text(option);
    return text ? ParseColour(option, *text) : byDefault;
}

Extent Arguments::Size(std::string_view option, Extent byDefault) const
{
    const std::string* text = Text(option);
    return text ? ParseExtent(option, *text) : byDefault;
}

int32_t Arguments::OneOf(std::string_view option, std::span<const Choice> choices, int32_t byDefault) const
{
    const std::string* text = Text(option);
    return text ? ParseChoice(option, *text, choices) : byDefault;
}

double ParseNumber(std::string_view option, std::string_view text, double least, double most)
{
    double value = 0.0;
    if (!Parsed(text, value) || !std::isfinite(value))
        FailArgument(option, " takes a number, not '", text, "'");
    if (value < least || value > most)
        FailArgument(option, " takes a number from ", least, " to ", most, ", not ", text);
    return value;
}

int32_t ParseInteger(std::string_view option, std::string_view text, int32_t least, int32_t most)
{
    int32_t value = 0;
    if (!Parsed(text, value))
        FailArgument(option, " takes a whole number, not '", text, "'");
    if (value < least || value > most)
        FailArgument(option, " takes a whole number from ", least, " to ", most, ", not ", text);
    return value;
}

Colour ParseColour(std::string_view option, std::string_view text)
{
    uint32_t word = 0;
    if ((text.size() != 6 && text.size() != 8) || !Parsed(text, word, 16))
        FailArgument(option, " takes a colour as RRGGBB or RRGGBBAA in hexadecimal, not '", text, "'");
    if (text.size() == 6)
        word = word << 8 | 0xFF;
    const auto part = [word](int shift) { return float(word >> shift & 255) / 255.0f; };
    return {part(8), part(16), part(24), part(0)};
}

Extent ParseExtent(std::string_view option, std::string_view text)
{
    const auto parts = SplitAt(text, 'x');
    Extent size{};
    if (parts.size() != 2 || !Parsed(std::string_view(parts[0]), size.width) ||
        !Parsed(std::string_view(parts[1]), size.height))
        FailArgument(option, " takes a size as 1280x720, not '", text, "'");
    if (!SizeAllowed(size.width, size.height, 32))
        FailArgument(option, " takes a size of 1 to ", kLargestSide, " pixels a side and ", kMostPixels,
                     " in all, not ", text);
    return size;
}

int32_t ParseChoice(std::string_view option, std::string_view text, std::span<const Choice> choices)
{
    const auto found = std::ranges::find(choices, text, &Choice::name);
    if (found == choices.end())
        FailArgument(option, " takes ", Names(choices), ", not '", text, "'");
    return found->value;
}

std::vector<std::string> SplitAt(std::string_view text, char separator)
{
    std::vector<std::string> parts;
    for (size_t at = 0; at <= text.size();) {
        const size_t end = std::min(text.find(separator, at), text.size());
        parts.emplace_back(text.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

std::string HelpOf(const Command& command)
{
    std::string help =
        Join("vxtool ", command.name, ": ", command.summary, "\n\nusage: vxtool ", command.name, " ",
             command.operands, command.options.empty() ? "\n" : " [options]\n");
    if (!command.options.empty())
        help += "\noptions:\n";
    for (const Option& option : command.options) {
        std::string left = Join("  ", option.name, option.value ? " " : "", option.value ? option.value : "");
        left.resize(std::max<size_t>(left.size() + 2, 26), ' ');
        for (const std::string& line : SplitAt(option.help, '\n')) {
            help += left + line + "\n";
            left.assign(26, ' ');
        }
    }
    return help + "\nexample: " + command.example + "\n";
}

} // namespace vxtool
