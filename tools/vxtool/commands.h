// The commands, one constant each beside its code, and what they share.
#pragma once

#include "vxtool/options.h"
#include "vxtool/picture.h"

namespace vxtool {

extern const Command kInfo, kFlip, kSwap, kChannel;
extern const Command kBars, kRamp, kZone, kChecker, kFill;
extern const Command kBlend, kComposite, kFade;
extern const Command kMultiply, kMask;
extern const Command kLut, kMap, kThreshold;
extern const Command kSheet;
extern const Command kPrint, kNumber, kTimecode, kRuler;
extern const Command kSettings;

// In the order of the help.
std::span<const Command* const> AllCommands();

// Runs a command line (without the program's name): prints help or a sentence, returns the exit code.
int Run(std::span<const std::string> words);

// Options that many commands have.
inline constexpr Option kTypeOption = {
    "--type", "TYPE",
    "pixel type of OUT (default: what OUT can hold; vxtool info shows types):\n"
    "pal1, pal4, pal8, gray1, gray2, gray4, gray8, gray16, gray32, rgb555,\n"
    "rgb565, rgb24, rgb32, rgba32, rgb101010, rgba64 or rgba128"};
inline constexpr Option kFloatOption = {"--float", nullptr,
                                        "work on float frames; a PNG gets 16 bits a channel"};

// MaskMultiply and MultiplyChannel add their offset to 8-bit masks on a scale of 0 to 255, whatever the
// scale of their factor. Options count white as 1.0.
inline constexpr double kWhite8 = 255.0;

// Copies one channel of an 8-bit mask over the other three, so that it weighs all four alike.
void SpreadChannel(Frame& mask, int32_t channel);

// Float frames under --float, else 8-bit frames.
Form FormOf(const Arguments& arguments);

// The value of --type; unknown where it is not given.
VxPixelType AskedType(const Arguments& arguments);

// Where a command writes to. Made before any work is done, so that a name or type that cannot be
// written is refused at once.
class Output
{
public:
    // The operand with that index, and --type.
    Output(const Arguments& arguments, size_t operand, Form form = Form::Bytes);
    void Write(const Frame& frame) const { WritePicture(path_, ToDib(frame, type_)); }

private:
    std::string path_;
    VxPixelType type_;
};

Frame LoadFrame(const std::string& path, Form form);
// Loads a picture that must be as large as the first one.
Frame LoadPartner(const std::string& path, Form form, const Frame& first, const std::string& firstPath);

} // namespace vxtool
