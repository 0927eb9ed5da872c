// Which of the library's texts says what was being done.
#include "errors/tables.h"

#include "lang/strings.h"

#include <iterator>

namespace vx {

namespace {

vxlang_t* const kContexts[] = {
    strings::kContext0,  strings::kContext1,  strings::kContext2,  strings::kContext3,  strings::kContext4,
    strings::kContext5,  strings::kContext6,  strings::kContext7,  strings::kContext8,  strings::kContext9,
    strings::kContext10, strings::kContext11, strings::kContext12, strings::kContext13, strings::kContext14,
    strings::kContext15, strings::kContext16, strings::kContext17, strings::kContext18, strings::kContext19,
    strings::kContext20, strings::kContext21, strings::kContext22, strings::kContext23, strings::kContext24,
    strings::kContext25, strings::kContext26, strings::kContext27, strings::kContext28, strings::kContext29,
    strings::kContext30, strings::kContext31, strings::kContext32, strings::kContext33, strings::kContext34,
    strings::kContext35, strings::kContext36, strings::kContext37, strings::kContext38, strings::kContext39,
    strings::kContext40, strings::kContext41, strings::kContext42, strings::kContext43, strings::kContext44,
    strings::kContext45, strings::kContext46, strings::kContext47, strings::kContext48, strings::kContext49,
    strings::kContext50, strings::kContext51, strings::kContext52,
    strings::kContext0, // 53 was never given out
    strings::kContext54, strings::kContext55, strings::kContext56, strings::kContext57,
};

} // namespace

vxlang_t* BuiltInContext(uintptr_t context)
{
    return kContexts[context < std::size(kContexts) ? context : 0];
}

} // namespace vx
