#include "vxtool/commands.h"

#include "vx/channels.h"

#include <iostream>
#include <new>

namespace vxtool {
namespace {

constexpr const Command* kCommands[] = {
    &kInfo,      &kConvert,  &kPalette, &kPixel, &kFlip,    &kSwap,      &kChannel, &kScale,
    &kFields,    &kBars,     &kRamp,    &kZone,  &kChecker, &kFill,      &kLut,     &kMap,
    &kThreshold, &kMultiply, &kMask,    &kBlend, &kFade,    &kComposite, &kSheet,   &kPrint,
    &kNumber,    &kTimecode, &kRuler,   &kPath,  &kLang,    &kError,     &kPrompt,  &kSettings,
};

std::string Overview()
{
    std::string text =
        "vxtool: pictures, text and time, from the command line\n\n"
        "usage: vxtool COMMAND ...\n"
        "       vxtool COMMAND --help\n\n"
        "Pictures are read and written as PNG or BMP, told apart by content and written by the\n"
        "ending of the name. Inside, colours are multiplied by their alpha.\n"
        "Text is UTF-8 here, and UTF-16 inside; times are counts of 100 nanoseconds.\n\ncommands:\n";
    for (const Command* command : kCommands) {
        std::string left = Join("  ", command->name);
        left.resize(14, ' ');
        text += left + command->summary + "\n";
    }
    return text + "\nexit codes: 0 success; 1 a file cannot be read or written; 2 a bad command line,\n"
                  "or a text that cannot be read\n";
}

const Command* Named(const std::string& name)
{
    for (const Command* command : kCommands)
        if (name == command->name)
            return command;
    return nullptr;
}

int Complain(const std::string& who, const Failure& failure)
{
    std::cerr << who << ": " << failure.sentence << "\n";
    return failure.code;
}

bool AsksForHelp(std::span<const std::string> words)
{
    for (const std::string& word : words) {
        if (word == "--help")
            return true;
        if (word == "--")
            break;
    }
    return false;
}

int RunCommand(const Command& command, std::span<const std::string> words)
{
    const std::string who = Join("vxtool ", command.name);
    try {
        if (AsksForHelp(words))
            std::cout << HelpOf(command);
        else
            command.run(Arguments(command, words));
        if (!std::cout.flush())
            FailFile("cannot write to the standard output");
        return kSuccess;
    } catch (const Failure& failure) {
        return Complain(who, failure);
    } catch (const std::bad_alloc&) {
        return Complain(who, {kBadFile, "there is not enough memory for these pictures"});
    }
}

} // namespace

std::span<const Command* const> AllCommands()
{
    return kCommands;
}

int Run(std::span<const std::string> words)
{
    if (words.empty()) {
        std::cerr << Overview();
        return kBadArgument;
    }
    if (words[0] == "--help" || words[0] == "help") {
        std::cout << Overview();
        return kSuccess;
    }
    if (words[0] == "--version") {
        std::cout << "vxtool " VXTOOL_VERSION "\n";
        return kSuccess;
    }
    const Command* command = Named(words[0]);
    if (command == nullptr)
        return Complain("vxtool",
                        {kBadArgument, Join("there is no command '", words[0], "'; see vxtool --help")});
    return RunCommand(*command, words.subspan(1));
}

void SpreadChannel(Frame& mask, int32_t channel)
{
    for (int32_t c = 0; c < 4; ++c)
        if (c != channel)
            ChannelCopy(mask.Data() + c, mask.Stride(), 4, mask.Width(), mask.Height(), mask.Data() + channel,
                        mask.Stride(), 4);
}

Form FormOf(const Arguments& arguments)
{
    return arguments.Has("--float") ? Form::Floats : Form::Bytes;
}

VxPixelType AskedType(const Arguments& arguments, const char* option)
{
    const std::string* name = arguments.Text(option);
    const VxPixelType type = name ? TypeNamed(*name) : VXPIXEL_UNKNOWN;
    if (name && type == VXPIXEL_UNKNOWN)
        FailArgument(option, " takes one of ", AllTypeNames(), ", not '", *name, "'");
    return type;
}

Output::Output(const Arguments& arguments, size_t operand, Form form)
    : path_(arguments.Operand(operand)),
      type_(CheckOutput(path_, AskedType(arguments), form == Form::Floats ? VXPIXEL_RGBA64 : VXPIXEL_RGBA32))
{}

Dib LoadDib(const Arguments& arguments, size_t in, size_t out)
{
    const VxPixelType asked = AskedType(arguments);
    CheckOutput(arguments.Operand(out), asked);
    Dib dib = ReadPicture(arguments.Operand(in)).dib;
    const VxPixelType type = CheckOutput(arguments.Operand(out), asked, dib.Type());
    return Converted(std::move(dib), type);
}

Frame LoadFrame(const std::string& path, Form form)
{
    return ToFrame(ReadPicture(path).dib, form);
}

Frame LoadPartner(const std::string& path, Form form, const Frame& first, const std::string& firstPath)
{
    Frame frame = LoadFrame(path, form);
    CheckSameSize(firstPath, first, path, frame);
    return frame;
}

} // namespace vxtool
