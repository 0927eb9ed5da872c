#include "platform/elf_section.h"

#include <cstring>
#include <elf.h>
#include <link.h>
#include <optional>

namespace vxplatform {
namespace {

using Bytes = std::span<const std::byte>;
using Header = ElfW(Ehdr);
using Section = ElfW(Shdr);

constexpr unsigned char kClass = sizeof(void*) == 8 ? ELFCLASS64 : ELFCLASS32;

Bytes Part(Bytes file, uint64_t offset, uint64_t size)
{
    if (offset > file.size() || size > file.size() - offset)
        return {};
    return file.subspan(size_t(offset), size_t(size));
}

template <class T>
std::optional<T> RecordAt(Bytes file, uint64_t offset)
{
    const Bytes bytes = Part(file, offset, sizeof(T));
    if (bytes.empty())
        return {};
    T record;
    std::memcpy(&record, bytes.data(), sizeof(record));
    return record;
}

std::optional<Section> SectionAt(Bytes file, const Header& header, unsigned index)
{
    if (header.e_shentsize != sizeof(Section) || header.e_shoff > file.size())
        return {};
    return RecordAt<Section>(file, header.e_shoff + uint64_t(index) * sizeof(Section));
}

bool HasName(Bytes names, uint64_t place, std::string_view name)
{
    const Bytes text = Part(names, place, name.size() + 1);
    return !text.empty() && std::memcmp(text.data(), name.data(), name.size()) == 0 &&
           text.back() == std::byte(0);
}

} // namespace

bool IsElf(Bytes file)
{
    return file.size() >= SELFMAG && std::memcmp(file.data(), ELFMAG, SELFMAG) == 0;
}

Bytes FindElfSection(Bytes file, std::string_view name)
{
    const std::optional<Header> header = RecordAt<Header>(file, 0);
    if (!header || !IsElf(file) || header->e_ident[EI_CLASS] != kClass)
        return {};
    const std::optional<Section> texts = SectionAt(file, *header, header->e_shstrndx);
    if (!texts)
        return {};
    const Bytes names = Part(file, texts->sh_offset, texts->sh_size);
    for (unsigned i = 0; i < header->e_shnum; ++i) {
        const std::optional<Section> section = SectionAt(file, *header, i);
        if (section && section->sh_type != SHT_NOBITS && HasName(names, section->sh_name, name))
            return Part(file, section->sh_offset, section->sh_size);
    }
    return {};
}

} // namespace vxplatform
