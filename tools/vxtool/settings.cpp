// settings: the values that applications keep, by key and name.
#include "vx/platform/registry.h"
#include "vxtool/commands.h"
#include "vxtool/failure.h"
#include "vxtool/reading.h"
#include "vxtool/unicode.h"

#include <cstring>
#include <iostream>

namespace vxtool {
namespace {

constexpr Choice kTypes[] = {
    {"text", int32_t(REG_SZ)},      {"number", int32_t(REG_DWORD)},   {"number64", int32_t(REG_QWORD)},
    {"bytes", int32_t(REG_BINARY)}, {"texts", int32_t(REG_MULTI_SZ)}, {"template", int32_t(REG_EXPAND_SZ)},
};

struct Value
{
    DWORD type;
    std::string bytes;
};

// A failure of the registry as a sentence.
void Check(LSTATUS error, const std::string& what)
{
    switch (error) {
    case ERROR_SUCCESS:
        return;
    case ERROR_FILE_NOT_FOUND:
        FailFile("there is no ", what);
    case ERROR_ACCESS_DENIED:
        FailFile(what, " may not be changed, or has keys below it");
    case ERROR_BAD_PATHNAME:
    case ERROR_INVALID_PARAMETER:
        FailArgument(what, " has no valid name: a key does not begin with a backslash, and each of its "
                           "names has up to 255 characters");
    default:
        FailFile(what, " cannot be reached: error ", error);
    }
}

class Key
{
public:
    Key(HKEY hive, const std::string& path, REGSAM rights, bool make) : path_(path)
    {
        const std::u16string wide = Utf16Of(path);
        Check(make ? RegCreateKeyExW(hive, wide.c_str(), 0, nullptr, 0, rights, nullptr, &key_, nullptr)
                   : RegOpenKeyExW(hive, wide.c_str(), 0, rights, &key_),
              "key '" + path + "'");
    }
    ~Key() { RegCloseKey(key_); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;

    HKEY Handle() const { return key_; }
    std::string Describe(const std::string& name) const
    {
        return Join("value '", name, "' in '", path_, "'");
    }

    // In their order.
    std::vector<std::string> SubKeys() const
    {
        std::vector<std::string> names;
        char16_t name[256];
        DWORD room = std::size(name);
        for (DWORD i = 0; RegEnumKeyExW(key_, i, name, &room, nullptr, nullptr, nullptr, nullptr) == 0; ++i) {
            names.push_back(Utf8Of(name));
            room = std::size(name);
        }
        return names;
    }

    std::vector<std::string> ValueNames() const
    {
        std::vector<std::string> names;
        std::u16string name(16'384, u'\0');
        DWORD room = DWORD(name.size());
        for (DWORD i = 0; RegEnumValueW(key_, i, name.data(), &room, nullptr, nullptr, nullptr, nullptr) == 0;
             ++i) {
            names.push_back(Utf8Of(std::u16string_view(name.data(), room)));
            room = DWORD(name.size());
        }
        return names;
    }

    // Another process may make the value larger while it is read.
    Value Read(const std::string& name) const
    {
        const std::u16string wide = Utf16Of(name);
        for (Value value = {REG_NONE, {}};;) {
            DWORD bytes = DWORD(value.bytes.size());
            const LSTATUS error = RegQueryValueExW(key_, wide.c_str(), nullptr, &value.type,
                                                   reinterpret_cast<BYTE*>(value.bytes.data()), &bytes);
            value.bytes.resize(bytes);
            if (error == ERROR_MORE_DATA)
                continue;
            Check(error, Describe(name));
            return value;
        }
    }

private:
    std::string path_;
    HKEY key_ = nullptr;
};

std::u16string WideOf(const std::string& bytes)
{
    std::u16string text(bytes.size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * sizeof(char16_t));
    return text;
}

template <class T>
std::string BytesOf(const T& text)
{
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(text[0])};
}

// Little-endian, as the types are; a number of another size shows as bytes.
std::string Hexadecimal(const std::string& bytes)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const char byte : bytes)
        text += {kDigits[uint8_t(byte) >> 4], kDigits[byte & 15]};
    return text;
}

template <class T>
std::string Number(const std::string& bytes)
{
    T number = 0;
    if (bytes.size() != sizeof number)
        return Hexadecimal(bytes);
    std::memcpy(&number, bytes.data(), sizeof number);
    return std::to_string(number);
}

// Texts one on a line.
std::string Shown(const Value& value)
{
    switch (value.type) {
    case REG_DWORD:
        return Number<uint32_t>(value.bytes);
    case REG_QWORD:
        return Number<uint64_t>(value.bytes);
    case REG_SZ:
    case REG_EXPAND_SZ:
    case REG_MULTI_SZ: {
        std::u16string text = WideOf(value.bytes);
        text.erase(text.find_last_not_of(u'\0') + 1);
        for (char16_t& c : text)
            c = c == u'\0' ? u'\n' : c;
        return Utf8Of(text);
    }
    default:
        return Hexadecimal(value.bytes);
    }
}

std::string TypeName(DWORD type)
{
    for (const Choice& choice : kTypes)
        if (DWORD(choice.value) == type)
            return choice.name;
    return "type" + std::to_string(type);
}

std::string ReadBytes(const std::string& text)
{
    std::string bytes;
    for (size_t i = 0; i < text.size(); i += 2) {
        const std::string digits = text.substr(i, 2);
        if (digits.size() != 2 || digits.find_first_not_of("0123456789abcdefABCDEF") != digits.npos)
            FailArgument("bytes are pairs of hexadecimal digits, not '", text, "'");
        bytes += char(std::stoi(digits, nullptr, 16));
    }
    return bytes;
}

template <class T>
std::string NumberBytes(const char* what, const std::string& text)
{
    const T number = ReadPlain<T>(what, text);
    return {reinterpret_cast<const char*>(&number), sizeof number};
}

std::string OneText(const Arguments& arguments)
{
    if (arguments.OperandCount() != 4)
        FailArgument("set takes KEY, NAME and one VALUE; only --type texts takes several");
    return arguments.Operand(3);
}

std::string BytesToSet(const Arguments& arguments, DWORD type)
{
    switch (type) {
    case REG_DWORD:
        return NumberBytes<uint32_t>("a whole number from 0 to 4294967295", OneText(arguments));
    case REG_QWORD:
        return NumberBytes<uint64_t>("a whole number of 64 bits without a sign", OneText(arguments));
    case REG_BINARY:
        return ReadBytes(OneText(arguments));
    case REG_MULTI_SZ: {
        std::u16string texts;
        for (size_t i = 3; i < arguments.OperandCount(); ++i)
            texts += Utf16Of(arguments.Operand(i)) + u'\0';
        return BytesOf(texts + u'\0');
    }
    default:
        return BytesOf(Utf16Of(OneText(arguments)) + u'\0');
    }
}

HKEY HiveOf(const Arguments& arguments)
{
    return arguments.Has("--machine") ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
}

void Expect(const Arguments& arguments, size_t least, size_t most)
{
    if (arguments.OperandCount() < least || arguments.OperandCount() > most)
        FailArgument("wrong number of arguments for '", arguments.Operand(0),
                     "'; see vxtool settings --help");
}

void Get(const Arguments& arguments)
{
    Expect(arguments, 3, 3);
    const Key key(HiveOf(arguments), arguments.Operand(1), KEY_READ, false);
    const Value value = key.Read(arguments.Operand(2));
    if (arguments.Has("--type") && DWORD(arguments.OneOf("--type", kTypes, 0)) != value.type)
        FailFile(key.Describe(arguments.Operand(2)), " is of type ", TypeName(value.type));
    std::cout << Shown(value) << "\n";
}

void Set(const Arguments& arguments)
{
    Expect(arguments, 4, SIZE_MAX);
    const DWORD type = DWORD(arguments.OneOf("--type", kTypes, int32_t(REG_SZ)));
    const std::string bytes = BytesToSet(arguments, type);
    const Key key(HiveOf(arguments), arguments.Operand(1), KEY_WRITE, true);
    Check(RegSetValueExW(key.Handle(), Utf16Of(arguments.Operand(2)).c_str(), 0, type,
                         reinterpret_cast<const BYTE*>(bytes.data()), DWORD(bytes.size())),
          key.Describe(arguments.Operand(2)));
}

void List(const Arguments& arguments)
{
    Expect(arguments, 1, 2);
    const std::string path = arguments.OperandCount() == 2 ? arguments.Operand(1) : "";
    const Key key(HiveOf(arguments), path, KEY_READ, false);
    for (const std::string& name : key.SubKeys())
        std::cout << name << "\\\n";
    for (const std::string& name : key.ValueNames()) {
        const Value value = key.Read(name);
        std::cout << PaddedRight(name, 16) << " " << PaddedRight(TypeName(value.type), 8) << " "
                  << Shown(value) << "\n";
    }
}

void Delete(const Arguments& arguments)
{
    Expect(arguments, 2, 3);
    if (arguments.OperandCount() == 2)
        return Check(RegDeleteKeyW(HiveOf(arguments), Utf16Of(arguments.Operand(1)).c_str()),
                     "key '" + arguments.Operand(1) + "'");
    const Key key(HiveOf(arguments), arguments.Operand(1), KEY_WRITE, false);
    Check(RegDeleteValueW(key.Handle(), Utf16Of(arguments.Operand(2)).c_str()),
          key.Describe(arguments.Operand(2)));
}

// One field behind the other in lines that any tool can take apart: bytes are the stored ones.
void ExportKey(HKEY hive, const std::string& path)
{
    const Key key(hive, path, KEY_READ, false);
    for (const std::string& name : key.ValueNames()) {
        const Value value = key.Read(name);
        std::cout << path << "\t" << name << "\t" << TypeName(value.type) << "\t" << Hexadecimal(value.bytes)
                  << "\n";
    }
    for (const std::string& name : key.SubKeys())
        ExportKey(hive, path.empty() ? name : path + "\\" + name);
}

void Export(const Arguments& arguments)
{
    Expect(arguments, 1, 2);
    ExportKey(HiveOf(arguments), arguments.OperandCount() == 2 ? arguments.Operand(1) : "");
}

void RunSettings(const Arguments& arguments)
{
    constexpr struct
    {
        const char* name;
        void (*run)(const Arguments&);
    } kActions[] = {{"get", Get}, {"set", Set}, {"list", List}, {"delete", Delete}, {"export", Export}};
    for (const auto& action : kActions)
        if (arguments.Operand(0) == action.name)
            return action.run(arguments);
    FailArgument("settings takes get, set, list, delete or export, not '", arguments.Operand(0), "'");
}

constexpr Option kSettingsOptions[] = {
    {"--type", "TYPE",
     "set: what to store, get: what must be stored: text (default), number\n"
     "(32 bits), number64, bytes (hexadecimal), texts (several VALUEs) or template"},
    {"--machine", nullptr, "the machine's settings instead of the user's"},
};

} // namespace

const Command kSettings = {
    "settings",
    "get, set, list, delete or export what applications keep",
    "get KEY NAME|set KEY NAME VALUE...|list [KEY]|delete KEY [NAME]|export [KEY]",
    1,
    SIZE_MAX,
    kSettingsOptions,
    "vxtool settings set 'Software\\Demo' Threads 4 --type number",
    RunSettings,
};

} // namespace vxtool
