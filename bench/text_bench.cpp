// Numbers, messages and tokens. Peers write and read narrow text, of a byte a character; those named
// "widened" or "narrowed" also go the way to or from UTF-16, which is the whole job.
#include "families.h"
#include "peers.h"
#include "vx/numbers.h"
#include "vx/platform/strings.h"
#include "vx/print.h"

#include "support/random.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <charconv>
#include <cstdio>
#include <locale>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace vxbench {
namespace {

constexpr Size kItems{1000, 0};
constexpr size_t kRoom = 64; // characters of one result

using Integers = std::vector<int64_t>;

// Of all lengths alike, half of them negative.
Integers RandomIntegers(const Work& work)
{
    vxtest::Random random;
    Integers values(size_t(work.size().width));
    for (int64_t& value : values)
        value = int64_t(random.Next()) >> random.Int(0, 62);
    return values;
}

template <class T>
std::span<uint8_t> BytesOf(std::vector<T>& values)
{
    return {reinterpret_cast<uint8_t*>(values.data()), values.size() * sizeof(T)};
}

// ---- Integers to text

using WriteInteger = void (*)(int64_t, char16_t*);

// Each integer of the work to a text of its own. The texts are compared where a peer promises the same.
class IntegerTexts
{
public:
    explicit IntegerTexts(Work& work)
        : values_(work.Own(RandomIntegers(work))),
          texts_(work.Own(std::vector<char16_t>(values_.size() * kRoom)))
    {
        work.Changes(BytesOf(texts_));
    }

    template <WriteInteger Write>
    Call By() const
    {
        return [&values = values_, &texts = texts_] {
            for (size_t i = 0; i < values.size(); ++i)
                Write(values[i], texts.data() + i * kRoom);
        };
    }

private:
    const Integers& values_;
    std::vector<char16_t>& texts_;
};

void Widen(const char* first, const char* end, char16_t* text)
{
    *std::copy(first, end, text) = u'\0';
}

// Groups of three with a comma.
void WidenGrouped(const char* first, const char* end, char16_t* text)
{
    if (*first == '-')
        *text++ = char16_t(*first++);
    while (first != end) {
        *text++ = char16_t(*first++);
        if (first != end && (end - first) % 3 == 0)
            *text++ = u',';
    }
    *text = u'\0';
}

void WriteBare(int64_t value, char16_t* text)
{
    VxLongLongToText(value, text, 0);
}

void WriteGrouped(int64_t value, char16_t* text)
{
    VxLongLongToText(value, text, 1);
}

template <void (*Finish)(const char*, const char*, char16_t*)>
void WriteByToChars(int64_t value, char16_t* text)
{
    char digits[kRoom];
    Finish(digits, std::to_chars(digits, digits + kRoom, value).ptr, text);
}

void WriteNarrow(int64_t value, char16_t* text)
{
    char* narrow = reinterpret_cast<char*>(text);
    *std::to_chars(narrow, narrow + kRoom, value).ptr = '\0';
}

#if VX_BENCH_FMT
void WriteByFormatInt(int64_t value, char16_t* text)
{
    const fmt::format_int digits(value);
    Widen(digits.data(), digits.data() + digits.size(), text);
}

struct Commas : std::numpunct<char>
{
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

void WriteByLocale(int64_t value, char16_t* text)
{
    static const std::locale locale(std::locale::classic(), new Commas);
    char digits[kRoom];
    Widen(digits, fmt::format_to(digits, locale, "{:L}", value), text);
}
#endif

void BareIntegers(Work& work)
{
    const IntegerTexts texts(work);
    work.Vx(texts.By<WriteBare>());
    work.Peer("std::to_chars, widened", texts.By<WriteByToChars<Widen>>(), Answer::Same);
    IF_FMT(work.Peer("fmt::format_int, widened", texts.By<WriteByFormatInt>(), Answer::Same);)
    work.Floor("std::to_chars, narrow", texts.By<WriteNarrow>());
}

void GroupedIntegers(Work& work)
{
    const IntegerTexts texts(work);
    work.Vx(texts.By<WriteGrouped>());
    work.Peer("std::to_chars, widened with commas", texts.By<WriteByToChars<WidenGrouped>>(), Answer::Same);
    IF_FMT(work.Peer("fmt {:L}, widened", texts.By<WriteByLocale>(), Answer::Same);)
    work.Floor("std::to_chars, narrow, no commas", texts.By<WriteNarrow>());
}

// ---- Numbers in a text that names them one behind the other

template <class T>
struct NumberText
{
    std::string narrow;
    std::u16string wide;
    std::vector<T> values; // as they were read

    explicit NumberText(std::string text)
        : narrow(std::move(text)), wide(narrow.begin(), narrow.end()),
          values(size_t(std::ranges::count(narrow, ' ')))
    {}

    void Read(const char16_t* text, const char16_t** end, int64_t& value) const
    {
        value = VxTextToLongLongToken(text, end);
    }
    void Read(const char16_t* text, const char16_t** end, double& value) const
    {
        value = VxTextToDoubleToken(text, end, 0);
    }
    void ReadWide()
    {
        const char16_t* at = wide.c_str();
        for (T& value : values)
            Read(at, &at, value);
    }
    void ReadNarrow()
    {
        const char *at = narrow.data(), *end = at + narrow.size();
        for (T& value : values)
            at = std::from_chars(at, end, value).ptr + 1; // behind the blank
    }
    void ReadNarrowed()
    {
        const char16_t* at = wide.c_str();
        for (T& value : values) {
            char number[kRoom];
            char* end = number;
            while (*at != u' ')
                *end++ = char(*at++);
            ++at;
            std::from_chars(number, end, value);
        }
    }
};

template <class T>
void AddReaders(Work& work, NumberText<T>& text)
{
    work.Changes(BytesOf(text.values));
    work.Vx([&] { text.ReadWide(); });
    work.Peer(
        "std::from_chars, narrowed", [&] { text.ReadNarrowed(); }, Answer::Same);
    work.Floor("std::from_chars, narrow", [&] { text.ReadNarrow(); });
}

void ReadIntegers(Work& work)
{
    std::string text;
    for (const int64_t value : RandomIntegers(work))
        text += std::to_string(value) + " ";
    AddReaders(work, work.Own(NumberText<int64_t>(text)));
}

void ReadDoubles(Work& work)
{
    std::string text;
    for (const int64_t value : RandomIntegers(work))
        text += std::to_string(double(value % 1'000'000'000'000) / 1e5) + " ";
    AddReaders(work, work.Own(NumberText<double>(text)));
}

// ---- A message: two words, an integer, a string

constexpr std::u16string_view kWords = u"Rendered frame ", kBetween = u" of ", kFile = u"holiday.mov";
constexpr char kFileNarrow[] = "holiday.mov";

void PrintMessage(int64_t value, char16_t* text)
{
    VxCchPrintF(text, kRoom, nullptr, u"Rendered frame %d of %s", int32_t(value), kFile.data());
}

void PrintLongMessage(int64_t value, char16_t* text)
{
    VxCchPrintF(text, kRoom, nullptr, u"Rendered frame %I64d of %s", value, kFile.data());
}

void PrintBySnprintf(int64_t value, char16_t* text)
{
    std::snprintf(reinterpret_cast<char*>(text), kRoom, "Rendered frame %d of %s", int32_t(value),
                  kFileNarrow);
}

template <class Value>
void PrintByHand(int64_t value, char16_t* text)
{
    char digits[kRoom];
    const char* end = std::to_chars(digits, digits + kRoom, Value(value)).ptr;
    text = std::copy(kWords.begin(), kWords.end(), text);
    text = std::copy<const char*>(digits, end, text);
    text = std::copy(kBetween.begin(), kBetween.end(), text);
    *std::copy(kFile.begin(), kFile.end(), text) = u'\0';
}

#if VX_BENCH_FMT
void PrintByFmt(int64_t value, char16_t* text)
{
    char* narrow = reinterpret_cast<char*>(text);
    *fmt::format_to_n(narrow, kRoom, "Rendered frame {} of {}", int32_t(value), kFileNarrow).out = '\0';
}

void PrintByFmtWidened(int64_t value, char16_t* text)
{
    char narrow[kRoom];
    const auto end =
        fmt::format_to_n(narrow, kRoom, "Rendered frame {} of {}", int32_t(value), kFileNarrow).out;
    Widen(narrow, end, text);
}
#endif

void Message(Work& work)
{
    const IntegerTexts texts(work);
    work.Vx(texts.By<PrintMessage>());
    work.Peer("snprintf, narrow", texts.By<PrintBySnprintf>());
    IF_FMT(work.Peer("fmt::format_to_n, narrow", texts.By<PrintByFmt>());)
    IF_FMT(work.Peer("fmt::format_to_n, widened", texts.By<PrintByFmtWidened>(), Answer::Same);)
    work.Floor("its parts copied by hand", texts.By<PrintByHand<int32_t>>());
}

// %I64d goes through the runtime's conversion, %d does not.
void LongMessage(Work& work)
{
    const IntegerTexts texts(work);
    work.Vx(texts.By<PrintLongMessage>());
    work.Floor("its parts copied by hand", texts.By<PrintByHand<int64_t>>());
}

// ---- Tokens by their names

class Tokens
{
public:
    explicit Tokens(int32_t count)
    {
        for (int32_t i = 0; i < count; ++i) {
            const std::string number = std::to_string(i * 7919);
            const std::u16string name = u"ProjectToken" + std::u16string(number.begin(), number.end());
            VxPrintF_AddToken(name.c_str(), (u"value of " + name).c_str());
            exact_[name] = u"value of " + name;
            sorted_.emplace_back(name, u"value of " + name);
            names_.push_back(name);
            formats_.push_back(u"$(" + name + u")");
        }
        std::ranges::sort(sorted_, [](auto& a, auto& b) { return IsBelow(a.first, b.first); });
        vxtest::Random random;
        for (size_t i = 0; i < kLookups; ++i)
            asked_.push_back(random.Next() % names_.size());
    }
    ~Tokens()
    {
        for (const std::u16string& name : names_)
            VxPrintF_DeleteToken(name.c_str());
    }
    Tokens(const Tokens&) = delete;
    Tokens& operator=(const Tokens&) = delete;

    void Print()
    {
        for (const size_t asked : asked_)
            VxCchPrintF(text_, kRoom, nullptr, formats_[asked].c_str());
        benchmark::DoNotOptimize(text_);
    }
    void SearchSorted()
    {
        for (const size_t asked : asked_)
            Take(std::ranges::lower_bound(sorted_, names_[asked], IsBelow, &Token::first)->second);
    }
    void SearchHashed()
    {
        for (const size_t asked : asked_)
            Take(exact_.find(names_[asked])->second);
    }

private:
    using Token = std::pair<std::u16string, std::u16string>;
    static constexpr size_t kLookups = 1000;

    static bool IsBelow(const std::u16string& a, const std::u16string& b)
    {
        return lstrcmpiW(a.c_str(), b.c_str()) < 0;
    }
    void Take(const std::u16string& value)
    {
        text_[value.copy(text_, kRoom - 1)] = u'\0';
        benchmark::DoNotOptimize(text_);
    }

    std::vector<std::u16string> names_, formats_;
    std::unordered_map<std::u16string, std::u16string> exact_;
    std::vector<Token> sorted_;
    std::vector<size_t> asked_;
    char16_t text_[kRoom];
};

void TokenLookups(Work& work)
{
    Tokens& tokens = *work.Own(std::make_unique<Tokens>(work.size().width));
    work.Vx([&] { tokens.Print(); });
    work.Peer("sorted std::vector, case-blind", [&] { tokens.SearchSorted(); });
    work.Floor("std::unordered_map, exact", [&] { tokens.SearchHashed(); });
}

} // namespace

void AddTextWorks(Suite& suite)
{
    suite.Add("text: integers", {kItems}, BareIntegers);
    suite.Add("text: grouped integers", {kItems}, GroupedIntegers);
    suite.Add("text: read integers", {kItems}, ReadIntegers);
    suite.Add("text: read doubles", {kItems}, ReadDoubles);
    suite.Add("text: message", {kItems}, Message);
    suite.Add("text: message with a 64-bit integer", {kItems}, LongMessage);
    suite.Add("text: token among", {{10, 0}, {1000, 0}, {10000, 0}}, TokenLookups);
}

} // namespace vxbench
