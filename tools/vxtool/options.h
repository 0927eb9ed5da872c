// Commands, their options, and the command line taken apart. Everything that a user can do wrong here
// ends in one sentence and exit code 2.
#pragma once

#include "vxtool/colour.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vxtool {

class Arguments;

struct Option
{
    const char* name;  // with its dashes
    const char* value; // what its value is called in the help; null for a switch
    const char* help;  // with unit, range and default
};

struct Command
{
    const char* name;
    const char* summary;  // one line of `vxtool --help`
    const char* operands; // as usage shows them
    size_t leastOperands, mostOperands;
    std::span<const Option> options;
    const char* example;
    void (*run)(const Arguments&);
};

// One of several words that stand for numbers.
struct Choice
{
    const char* name;
    int32_t value;
};

struct Extent
{
    int32_t width, height;
};

class Arguments
{
public:
    // Refuses what the command does not know, an option without its value, and too few or many operands.
    Arguments(const Command& command, std::span<const std::string> words);

    size_t OperandCount() const { return operands_.size(); }
    const std::string& Operand(size_t index) const { return operands_[index]; }

    bool Has(std::string_view option) const { return values_.contains(option); }
    // All values of an option that may be given several times, in their order.
    std::vector<std::string> All(std::string_view option) const;
    // The last value, or none.
    const std::string* Text(std::string_view option) const;

    double Number(std::string_view option, double byDefault, double least, double most) const;
    int32_t Integer(std::string_view option, int32_t byDefault, int32_t least, int32_t most) const;
    // RRGGBB or RRGGBBAA in hexadecimal; not premultiplied.
    Colour ColourOr(std::string_view option, const Colour& byDefault) const;
    Extent Size(std::string_view option, Extent byDefault) const;
    int32_t OneOf(std::string_view option, std::span<const Choice> choices, int32_t byDefault) const;

private:
    std::vector<std::string> operands_;
    std::map<std::string, std::vector<std::string>, std::less<>> values_;
};

// The same readings for parts of a value; option names the option in the sentence of a failure.
double ParseNumber(std::string_view option, std::string_view text, double least, double most);
int32_t ParseInteger(std::string_view option, std::string_view text, int32_t least, int32_t most);
Colour ParseColour(std::string_view option, std::string_view text);
Extent ParseExtent(std::string_view option, std::string_view text);
int32_t ParseChoice(std::string_view option, std::string_view text, std::span<const Choice> choices);
std::vector<std::string> SplitAt(std::string_view text, char separator);

// Channels by their byte of a pixel.
extern const std::span<const Choice> kChannels;

std::string HelpOf(const Command& command);

} // namespace vxtool
