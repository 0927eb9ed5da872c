#include "text/print_output.h"

#include "vx/internationals.h"
#include "vx/numbers.h"
#include "vx/print.h"

#include <limits>

namespace vx {

namespace {

constexpr int64_t kNoLimit = std::numeric_limits<int64_t>::max() / 2;
constexpr int32_t kIntegerCapacity = 260; // more than any integer takes

} // namespace

PrintOutput::PrintOutput(char16_t* text) : text_(text), room_(kNoLimit), limits_(kUnbounded) {}

PrintOutput::PrintOutput(char16_t* text, uint32_t capacity)
    : text_(text), room_(int64_t(capacity) - 1), limits_(kBounded)
{}

int32_t PrintOutput::Capacity() const
{
    return int32_t(std::min<int64_t>(room_ + 1, std::numeric_limits<int32_t>::max()));
}

void PrintOutput::PutCut(std::u16string_view text)
{
    Advance(text.copy(end_, size_t(std::max<int64_t>(room_, 0))));
}

void PrintOutput::PutForm(std::u16string_view form)
{
    const int64_t length = int64_t(form.size());
    if (room_ > length + 1) {
        PutCut(form);
        return;
    }
    status_ = VX_E_BUFFERTOSMALL;
    room_ -= length;
}

void PrintOutput::PutOpenLiteral(std::u16string_view form)
{
    if (room_ >= int64_t(form.size()))
        PutCut(form);
    else
        status_ = VX_E_BUFFERTOSMALL;
}

uint32_t PrintOutput::PutSeparator(uint32_t key)
{
    const uint32_t length = VxGetInatN(key, end_, uint32_t(Capacity()));
    Advance(length);
    return length;
}

void PrintOutput::Refuse(HRESULT status)
{
    status_ = status;
    if (limits_.bounded)
        room_ = 0;
}

void PrintOutput::TakeInteger(int32_t length)
{
    if (length > 0) {
        Advance(size_t(length));
        return;
    }
    Advance(std::char_traits<char16_t>::length(end_));
    Refuse(VX_E_BUFFERTOSMALL);
}

void PrintOutput::PutInteger(int32_t value, bool grouped)
{
    TakeInteger(VxLongToTextN(value, end_, std::min(Capacity(), kIntegerCapacity), grouped));
}

void PrintOutput::PutInteger(uint32_t value, bool grouped)
{
    TakeInteger(VxDWordToTextN(value, end_, std::min(Capacity(), kIntegerCapacity), grouped));
}

bool PrintOutput::TakeConversion(int64_t length)
{
    const bool fits = uint64_t(length) < limits_.scratch;
    status_ = fits ? S_OK : VX_E_INSUFFICIENT_BUFFER;
    return fits || !limits_.bounded;
}

void PrintOutput::PutUnformatted(std::u16string_view text)
{
    PutCut(text);
    Refuse(VX_E_BUFFERTOSMALL);
}

void PrintOutput::TakeDirect(bool fits)
{
    if (fits)
        status_ = S_OK;
    else
        Refuse(VX_E_INSUFFICIENT_BUFFER);
}

} // namespace vx
