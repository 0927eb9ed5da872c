// The commands, one constant each beside its code, and what they share.
#pragma once

#include "vxtool/conversion.h"
#include "vxtool/failure.h"
#include "vxtool/options.h"
#include "vxtool/picture.h"

namespace vxtool {

extern const Command kInfo, kFlip, kSwap, kChannel;
extern const Command kBars, kRamp, kZone, kChecker, kFill;
extern const Command kBlend, kComposite, kFade;
extern const Command kMultiply, kMask;
extern const Command kConvert, kPalette, kPixel;
extern const Command kScale, kFields;
extern const Command kLut, kMap, kThreshold;
extern const Command kSheet;
extern const Command kPrint, kNumber, kTimecode, kRuler, kPath, kLang;
extern const Command kError, kPrompt;
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
inline constexpr Extent kDefaultSize = {1280, 720};
inline constexpr Option kSizeOption = {"--size", "WxH", "pixels, up to 32768 a side (default 1280x720)"};
inline constexpr Option kFloatOption = {"--float", nullptr,
                                        "work on float frames; a PNG gets 16 bits a channel"};

// MaskMultiply and MultiplyChannel add their offset to 8-bit masks on a scale of 0 to 255, whatever the
// scale of their factor. Options count white as 1.0.
inline constexpr double kWhite8 = 255.0;

// Copies one channel of an 8-bit mask over the other three, so that it weighs all four alike.
void SpreadChannel(Frame& mask, int32_t channel);

// Float frames under --float, else 8-bit frames.
Form FormOf(const Arguments& arguments);

// The type that an option names; unknown where it is not given.
VxPixelType AskedType(const Arguments& arguments, const char* option = "--type");

// Where a command writes to. Made before any work is done, so that a name or type that cannot be
// written is refused at once.
class Output
{
public:
    // The operand with that index, and --type.
    Output(const Arguments& arguments, size_t operand, Form form = Form::Bytes);
    void Write(const Frame& frame) const { WritePicture(path_, ToDib(frame, type_)); }
    void Write(Dib dib) const { WritePicture(path_, Converted(std::move(dib), type_)); }

private:
    std::string path_;
    VxPixelType type_;
};

// Operand `in` in --type, or in its own type, or in rgba32 where operand `out` cannot hold that.
Dib LoadDib(const Arguments& arguments, size_t in, size_t out);

Frame LoadFrame(const std::string& path, Form form);
// Fails unless both are of one size.
template <class A, class B>
void CheckSameSize(const std::string& firstPath, const A& first, const std::string& path, const B& second)
{
    if (first.Width() != second.Width() || first.Height() != second.Height())
        FailArgument(firstPath, " is ", first.Width(), "x", first.Height(), " and ", path, " is ",
                     second.Width(), "x", second.Height(), " pixels; they must be of one size");
}

// Loads a picture that must be as large as the first one.
Frame LoadPartner(const std::string& path, Form form, const Frame& first, const std::string& firstPath);

} // namespace vxtool
