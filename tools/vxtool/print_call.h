// A call of the print engine with arguments that are known only when the tool runs.
#pragma once

#include "vx/types.h"

#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vxtool {

// What a conversion takes.
enum class ArgumentKind
{
    Integer32,
    Integer64,
    Double,
    Character,
    Text,       // wide
    NarrowText, // a character a byte
};

// What a format's conversions take, in their order. Follows the engine's scanner step for step, so that
// no conversion ever lacks its argument.
std::vector<ArgumentKind> ArgumentsOfFormat(std::u16string_view format);

constexpr size_t kMostPrintArguments = 8;

// Arguments read from words; owns the texts that they point to.
class PrintArguments
{
public:
    // Fails with a sentence where the words are too few, too many or not of the kinds.
    PrintArguments(std::span<const ArgumentKind> kinds, std::span<const std::string> words);

    // By the engine that has no limit, or by the bounded one.
    std::u16string Print(const std::u16string& format, size_t room) const;
    HRESULT PrintBounded(std::span<char16_t> text, uint32_t& length, const std::u16string& format) const;

private:
    // Each argument takes one 8-byte slot, but a double travels by other registers than the rest.
    struct Slot
    {
        bool isDouble;
        uint64_t word;
        double number;
    };

    // Takes the arguments one by one into the types of a call: a function for each order of doubles and
    // words, which is the one portable way to a variadic call whose types are chosen at run time.
    template <class Engine, class... Taken>
    auto Call(const Engine& engine, std::span<const Slot> rest, Taken... taken) const;

    Slot ReadSlot(ArgumentKind kind, const std::string& word);

    std::vector<Slot> slots_;
    std::deque<std::u16string> texts_; // that never move
    std::deque<std::string> narrowTexts_;
};

} // namespace vxtool
