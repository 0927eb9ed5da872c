// lang: the library's texts in all its languages, as a user of each reads them.
#include "lang/strings.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/languages.h"
#include "vxtool/unicode.h"

#include <algorithm>
#include <iostream>

namespace vxtool {
namespace {

namespace strings = vx::strings;

// A language handle as a host opens one.
class Language
{
public:
    explicit Language(uint32_t lcid)
    {
        if (VxLang_Open(&handle_, nullptr, lcid, 0) != S_OK)
            FailFile("there is not enough memory for a language");
    }
    ~Language() { VxLang_Close(handle_); }
    Language(const Language&) = delete;
    Language& operator=(const Language&) = delete;

    const char16_t* Text(int32_t table) const { return VxGetString(handle_, &strings::g_tables[table]); }

private:
    HVXLANG handle_ = nullptr;
};

constexpr int32_t kEnglishSlot = 0;

// English where a language has no text of its own.
bool IsTranslated(int32_t table, int32_t slot)
{
    const vxlang_t& texts = strings::g_tables[table];
    return texts.text[slot] != texts.text[kEnglishSlot];
}

// On one line.
std::string Shown(std::u16string_view text)
{
    std::string shown;
    for (const char c : Utf8Of(text)) {
        if (c == '\n' || c == '\r' || c == '\t')
            shown += c == '\n' ? "\\n" : c == '\r' ? "\\r" : "\\t";
        else
            shown += c;
    }
    return shown;
}

std::vector<int32_t> AskedSlots(const Arguments& arguments)
{
    std::vector<int32_t> slots;
    for (const std::string& name : arguments.All("--lang"))
        slots.push_back(SlotNamed(name));
    for (int32_t slot = 0; slot < VXLANG_SLOTS && !arguments.Has("--lang"); ++slot)
        slots.push_back(slot);
    return slots;
}

// All tables, or those whose name or English text contains the operand.
std::vector<int32_t> AskedTables(const Arguments& arguments)
{
    const std::string part = arguments.OperandCount() > 0 ? arguments.Operand(0) : "";
    std::vector<int32_t> tables;
    for (int32_t table = 0; table < strings::kCount; ++table) {
        const std::string name = strings::kNames[table];
        const std::string english = Utf8Of(strings::g_tables[table].text[kEnglishSlot]);
        if (name.find(part) != name.npos || english.find(part) != english.npos)
            tables.push_back(table);
    }
    if (tables.empty())
        FailArgument("no text has '", part, "' in it");
    return tables;
}

void ShowTables(const std::vector<int32_t>& tables, const std::vector<int32_t>& slots)
{
    for (const int32_t table : tables) {
        std::cout << strings::kNames[table] << "\n";
        for (const int32_t slot : slots) {
            const Language language(strings::kSlotLcids[slot]);
            std::cout << "  " << PaddedRight(strings::kSlotLanguages[slot], 7) << Shown(language.Text(table))
                      << "\n";
        }
    }
}

void ShowMissing(const std::vector<int32_t>& tables, const std::vector<int32_t>& slots)
{
    for (const int32_t slot : slots) {
        if (slot == kEnglishSlot)
            continue;
        const auto has = [slot](int32_t table) { return IsTranslated(table, slot); };
        std::cout << strings::kSlotLanguages[slot] << ": " << std::ranges::count_if(tables, has) << " of "
                  << tables.size() << " texts are translated\n";
        for (const int32_t table : tables)
            if (!has(table))
                std::cout << "  " << PaddedRight(strings::kNames[table], 28)
                          << Shown(strings::g_tables[table].text[kEnglishSlot]) << "\n";
    }
}

void RunLang(const Arguments& arguments)
{
    const std::vector<int32_t> tables = AskedTables(arguments), slots = AskedSlots(arguments);
    const auto show = arguments.Has("--missing") ? ShowMissing : ShowTables;
    show(tables, slots);
}

constexpr Option kLangOptions[] = {
    {"--lang", "NAME", "only this language, as de or pt_BR; may be given several times"},
    {"--missing", nullptr, "what each language has not translated, and so reads in English"},
};

} // namespace

const Command kLang = {
    "lang",       "show the library's texts in its 18 languages", "[PART]", 0, 1,
    kLangOptions, "vxtool lang Retry --lang de --lang ja",        RunLang,
};

} // namespace vxtool
