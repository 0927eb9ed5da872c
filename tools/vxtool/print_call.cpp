#include "vxtool/print_call.h"

#include "vx/print.h"
#include "vxtool/failure.h"
#include "vxtool/reading.h"
#include "vxtool/unicode.h"

#include <algorithm>
#include <type_traits>

namespace vxtool {
namespace {

constexpr size_t kLongestForm = 260; // characters of a conversion, or of what stands in brackets

class FormatScanner
{
public:
    explicit FormatScanner(std::u16string_view format) : rest_(format) {}

    std::vector<ArgumentKind> Run()
    {
        while (!rest_.empty()) {
            const char16_t introducer = rest_[0];
            rest_.remove_prefix(1);
            if (introducer == u'$' && rest_.starts_with(u'('))
                SkipBracket();
            else if (rest_.starts_with(u'%') || (introducer == u'$' && rest_.starts_with(u'$')))
                rest_.remove_prefix(introducer == u'%' || introducer == u'$');
            else if (introducer == u'%' || introducer == u'$')
                TakeConversion();
        }
        return kinds_;
    }

private:
    void SkipBracket()
    {
        rest_.remove_prefix(1);
        const bool literal = rest_.find_first_of(u"0123456789-.") == 0;
        // The first character of a literal counts, whatever it is.
        const size_t stop = literal ? rest_.find_first_not_of(u"0123456789,.", 1) : rest_.find(u')');
        rest_.remove_prefix(std::min({stop, rest_.size(), kLongestForm}));
        if (rest_.starts_with(u')'))
            rest_.remove_prefix(1);
    }

    void TakeConversion()
    {
        const size_t end = rest_.find_first_of(u"!&*,:EGXcdefgiosuxz");
        const size_t most = kLongestForm - 1; // beside the introducer
        if (end >= most) {
            rest_.remove_prefix(std::min(most, rest_.size()));
            return;
        }
        AddKind(rest_.substr(0, end), rest_[end]);
        rest_.remove_prefix(end + 1);
    }

    void AddKind(std::u16string_view sizes, char16_t letter)
    {
        const size_t at = sizes.find(u'I');
        const bool wide = at != sizes.npos && (at + 1 == sizes.size() || sizes[at + 1] != u'3');
        switch (letter) {
        case u'd':
        case u'i':
        case u'u':
        case u'x':
        case u'X':
        case u'o':
            return kinds_.push_back(wide ? ArgumentKind::Integer64 : ArgumentKind::Integer32);
        case u'z':
            return kinds_.push_back(ArgumentKind::Integer32);
        case u'e':
        case u'E':
        case u'f':
        case u'g':
        case u'G':
            return kinds_.push_back(ArgumentKind::Double);
        case u'c':
            return kinds_.push_back(ArgumentKind::Character);
        case u's':
            return kinds_.push_back(sizes.find(u'h') != sizes.npos ? ArgumentKind::NarrowText
                                                                   : ArgumentKind::Text);
        default:
            return; // a separator
        }
    }

    std::u16string_view rest_;
    std::vector<ArgumentKind> kinds_;
};

// Any number of that many bits, with a sign or without.
template <class Signed>
uint64_t ReadInteger(std::string_view what, std::string_view word)
{
    using Unsigned = std::make_unsigned_t<Signed>;
    if (word.starts_with('-'))
        return uint64_t(int64_t(ReadPlain<Signed>(what, word)));
    return ReadPlain<Unsigned>(what, word);
}

uint64_t ReadCharacter(const std::string& word)
{
    const std::u16string wide = Utf16Of(word);
    if (wide.size() != 1)
        FailArgument("a %c takes one character, not '", word, "'");
    return wide[0];
}

} // namespace

std::vector<ArgumentKind> ArgumentsOfFormat(std::u16string_view format)
{
    return FormatScanner(format).Run();
}

PrintArguments::PrintArguments(std::span<const ArgumentKind> kinds, std::span<const std::string> words)
{
    if (kinds.size() != words.size())
        FailArgument("the format takes ", kinds.size(), " arguments, and ", words.size(), " are given");
    if (kinds.size() > kMostPrintArguments)
        FailArgument("the tool passes at most ", kMostPrintArguments, " arguments");
    for (size_t i = 0; i < kinds.size(); ++i)
        slots_.push_back(ReadSlot(kinds[i], words[i]));
}

PrintArguments::Slot PrintArguments::ReadSlot(ArgumentKind kind, const std::string& word)
{
    const auto ofWord = [](uint64_t value) { return Slot{false, value, 0.0}; };
    const auto ofPointer = [&](const void* text) { return ofWord(reinterpret_cast<uintptr_t>(text)); };
    switch (kind) {
    case ArgumentKind::Integer32:
        return ofWord(ReadInteger<int32_t>("a whole number of 32 bits", word));
    case ArgumentKind::Integer64:
        return ofWord(ReadInteger<int64_t>("a whole number of 64 bits", word));
    case ArgumentKind::Double:
        return {true, 0, ReadPlain<double>("a number", word)};
    case ArgumentKind::Character:
        return ofWord(ReadCharacter(word));
    case ArgumentKind::NarrowText:
        return ofPointer(narrowTexts_.emplace_back(word).c_str());
    case ArgumentKind::Text:
        break;
    }
    return ofPointer(texts_.emplace_back(Utf16Of(word)).c_str());
}

template <class Engine, class... Taken>
auto PrintArguments::Call(const Engine& engine, std::span<const Slot> rest, Taken... taken) const
{
    if constexpr (sizeof...(Taken) < kMostPrintArguments) {
        if (!rest.empty())
            return rest[0].isDouble ? Call(engine, rest.subspan(1), taken..., rest[0].number)
                                    : Call(engine, rest.subspan(1), taken..., rest[0].word);
    }
    return engine(taken...);
}

std::u16string PrintArguments::Print(const std::u16string& format, size_t room) const
{
    std::u16string text(room, u'\0');
    const auto engine = [&](auto... taken) { return VxPrintF(text.data(), format.c_str(), taken...); };
    text.resize(Call(engine, slots_));
    return text;
}

HRESULT PrintArguments::PrintBounded(std::span<char16_t> text, uint32_t& length,
                                     const std::u16string& format) const
{
    return Call(
        [&](auto... taken) {
            return VxCchPrintF(text.data(), uint32_t(text.size()), &length, format.c_str(), taken...);
        },
        slots_);
}

} // namespace vxtool
