// Which of the library's texts stands for a status. The texts are those of lang/strings/en.po.
#include "errors/tables.h"

#include "lang/strings.h"

namespace vx {

namespace {

// Most common first: it is searched from the start. Rows that share a text share its table.
constexpr Reason kReasons[] = {
    {0x80004005, strings::kReason80004005}, {0x8000FFFF, strings::kReason8000FFFF},
    {0x80070057, strings::kReason80070057}, {0x80004003, strings::kReason80004003},
    {0x80004001, strings::kReason80004001}, {0x8007000E, strings::kReason8007000E},
    {0x80070006, strings::kReason80070006}, {0x80004002, strings::kReason80004002},
    {0x80070005, strings::kReason80070005}, {0x80040154, strings::kReason80040154},
    {0x8004E000, strings::kReason8004E000}, {0x0004E005, strings::kReason0004E005},
    {0x8004E001, strings::kReason8004E001}, {0x8004E002, strings::kReason8004E002},
    {0x8004E003, strings::kReason8004E003}, {0x8004E004, strings::kReason8004E004},
    {0x8004E005, strings::kReason8004E005}, {0x8004E00C, strings::kReason8004E00C},
    {0x8004E006, strings::kReason8004E006}, {0x8004E032, strings::kReason8004E032},
    {0x8004E007, strings::kReason8004E007}, {0x8004E05A, strings::kReason8004E05A},
    {0x8004E05B, strings::kReason8004E05B}, {0x8004E009, strings::kReason8004E009},
    {0x8004E008, strings::kReason8004E008}, {0x8004E16D, strings::kReason8004E16D},
    {0x8004E00B, strings::kReason8004E00B}, {0x8004E00D, strings::kReason8004E00D},
    {0x8004E01C, strings::kReason8004E01C}, {0x8004E165, strings::kReason8004E165},
    {0x8004E00E, strings::kReason8004E00E}, {0x8004E00F, strings::kReason8004E00F},
    {0x8004E010, strings::kReason8004E010}, {0x8004E011, strings::kReason8004E011},
    {0x8004E012, strings::kReason8004E012}, {0x8004E015, strings::kReason8004E015},
    {0x80040037, strings::kReason80040037}, {0x80040964, strings::kReason80040964},
    {0x800404B0, strings::kReason800404B0}, {0x800404E0, strings::kReason800404E0},
    {0x8004E0A0, strings::kReason8004E0A0}, {0x8004E016, strings::kReason8004E016},
    {0x8004E017, strings::kReason8004E017}, {0x8004E0A1, strings::kReason8004E0A1},
    {0x8004E080, strings::kReason8004E080}, {0x8004E081, strings::kReason8004E081},
    {0x8004E082, strings::kReason8004E082}, {0x8004E083, strings::kReason8004E083},
    {0x80030070, strings::kReason8007000E}, {0x80030005, strings::kReason80030005},
    {0x80030103, strings::kReason80030103}, {0x80030009, strings::kReason80004003},
    {0x8003001D, strings::kReason8004E009}, {0x8004E084, strings::kReason8004E084},
    {0x0004E009, strings::kReason0004E009}, {0x0004E003, strings::kReason0004E003},
    {0x8004E02E, strings::kReason8004E02E}, {0x8004E02F, strings::kReason8004E02F},
    {0x8004E030, strings::kReason8004E030}, {0x8004E031, strings::kReason8004E031},
    {0x8004E0A2, strings::kReason8004E0A2}, {0x8004E051, strings::kReason8004E051},
    {0x8004E0A3, strings::kReason8004E0A3}, {0x8004E01F, strings::kReason8004E01F},
    {0x8004E0A5, strings::kReason8004E0A5}, {0x8004E0AF, strings::kReason8004E0AF},
    {0x8004E019, strings::kReason8004E019}, {0x8004E01E, strings::kReason8004E011},
    {0x8004E0A6, strings::kReason8004E0A6}, {0x0004E000, strings::kReason0004E000},
    {0x0004E006, strings::kReason8004E01F}, {0x8004E00A, strings::kReason8004E00A},
    {0x8004E01A, strings::kReason8004E01A}, {0x8004E01B, strings::kReason8004E01B},
    {0x8004E01D, strings::kReason8004E01D}, {0x8004E023, strings::kReason8004E023},
    {0x8004E050, strings::kReason8004E050}, {0x8004E025, strings::kReason8004E025},
    {0x8004E026, strings::kReason8004E026}, {0x8004E028, strings::kReason8004E028},
    {0x8004E0A8, strings::kReason8004E0A8}, {0x8004E054, strings::kReason8004E054},
    {0x0004E007, strings::kReason0004E007}, {0x0004E008, strings::kReason0004E008},
    {0x8004E035, strings::kReason8004E035}, {0x8004E036, strings::kReason8004E036},
    {0x8004E037, strings::kReason8004E037}, {0x8004E038, strings::kReason8004E038},
    {0x8004E039, strings::kReason8004E039}, {0x8004E171, strings::kReason8004E171},
    {0x8004E172, strings::kReason8004E172}, {0x8004E173, strings::kReason8004E173},
    {0x8004E174, strings::kReason8004E174}, {0x8004E033, strings::kReason8004E033},
    {0x8004E03A, strings::kReason8004E03A}, {0x8004E063, strings::kReason8004E063},
    {0x8004E064, strings::kReason8004E064}, {0x8004E0C5, strings::kReason8004E0C5},
    {0x0004E00B, strings::kReason0004E00B}, {0x0004E00C, strings::kReason0004E00C},
    {0x0004E00E, strings::kReason0004E00E}, {0x8004E03B, strings::kReason8004E03B},
    {0x8004E03D, strings::kReason8004E03D}, {0x8004E03E, strings::kReason8004E03E},
    {0x0004E010, strings::kReason0004E010}, {0x8004E163, strings::kReason8004E163},
    {0x0004E015, strings::kReason0004E015}, {0x8004E0AB, strings::kReason8004E0AB},
    {0x8004E0B4, strings::kReason8004E0B4}, {0x8004E142, strings::kReason8004E142},
    {0x8004E047, strings::kReason8004E047}, {0x8004E02A, strings::kReason8004E02A},
    {0x8004E02B, strings::kReason8004E02B}, {0xC00D0BC2, strings::kReasonC00D0BC2},
    {0xC00D0BC4, strings::kReasonC00D0BC4}, {0xC00D0BCF, strings::kReasonC00D0BCF},
    {0xC00D002B, strings::kReasonC00D002B}, {0xC00D0BC6, strings::kReasonC00D0BC6},
    {0xC00D0BC3, strings::kReason8004E012}, {0xC00D0BC5, strings::kReason8004E012},
    {0x8004E020, strings::kReason8004E020}, {0x8004E162, strings::kReason8004E162},
    {0x8004E0B5, strings::kReason8004E0B5}, {0x8004E0B6, strings::kReason8004E0B6},
    {0x8004E164, strings::kReason8004E164}, {0x8004E109, strings::kReason8004E109},
    {0x8004E045, strings::kReason8004E045}, {0x8004E089, strings::kReason8004E089},
    {0x0004E019, strings::kReason0004E019}, {0x0004E018, strings::kReason0004E018},
    {0x8004E181, strings::kReason8004E181}, {0x8004E17C, strings::kReason8004E17C},
    {0x8004E17E, strings::kReason8004E17E}, {0x8004E182, strings::kReason8004E182},
    {0x8004E183, strings::kReason8004E183}, {0x8004E17D, strings::kReason8004E17D},
    {0x8004E184, strings::kReason8004E184}, {0x8004E180, strings::kReason8004E180},
    {0x8004E17F, strings::kReason8004E17F}, {0x8004E05C, strings::kReason8004E05C},
    {0x8004E05D, strings::kReason8004E05D}, {0x8004E05E, strings::kReason8004E05E},
    {0x8004E05F, strings::kReason8004E05F}, {0x8004E060, strings::kReason8004E060},
    {0x8004E0D4, strings::kReason8004E0D4}, {0x8004E03C, strings::kReason8004E03C},
    {0x8004E166, strings::kReason8004E166}, {0x8004E0A9, strings::kReason8004E0A9},
    {0x800A0026, strings::kReason800A0026}, {0x8004E0EC, strings::kReason8004E0EC},
    {0x8004E0EE, strings::kReason8004E0EE}, {0x8004E0ED, strings::kReason8004E0ED},
    {0x8004E0EF, strings::kReason8004E0EF}, {0x8004E0AC, strings::kReason8004E0AC},
    {0x8004E055, strings::kReason8004E055}, {0x8004E0C9, strings::kReason8004E0C9},
    {0x8004E0AE, strings::kReason8004E0AE}, {0x8004E0C2, strings::kReason8004E0C2},
    {0x8004E0AA, strings::kReason8004E0AA}, {0x8004E024, strings::kReason8004E024},
    {0x8004E15F, strings::kReason8004E15F}, {0x8004E161, strings::kReason8004E161},
    {0x8004E08A, strings::kReason8004E08A}, {0x8004E186, strings::kReason8004E186},
    {0x8004E061, strings::kReason8004E061}, {0x8004E16E, strings::kReason8004E16E},
    {0x8004E16F, strings::kReason8004E16F}, {0x8004E170, strings::kReason8004E170},
    {0x8004E189, strings::kReason8004E189},
};

} // namespace

std::span<const Reason> BuiltInReasons()
{
    return kReasons;
}

} // namespace vx
