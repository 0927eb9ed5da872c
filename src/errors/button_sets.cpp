#include "errors/button_sets.h"

#include "lang/strings.h"

#include <algorithm>

namespace vx {
namespace {

constexpr int32_t kOk[] = {VXMB_ID_OK};
constexpr int32_t kOkCancel[] = {VXMB_ID_OK, VXMB_ID_CANCEL};
constexpr int32_t kAbortRetryIgnore[] = {VXMB_ID_ABORT, VXMB_ID_RETRY, VXMB_ID_IGNORE};
constexpr int32_t kYesNoCancel[] = {VXMB_ID_YES, VXMB_ID_NO, VXMB_ID_CANCEL};
constexpr int32_t kYesNo[] = {VXMB_ID_YES, VXMB_ID_NO};
constexpr int32_t kRetryCancel[] = {VXMB_ID_RETRY, VXMB_ID_CANCEL};
constexpr int32_t kYesAllNoCancel[] = {VXMB_ID_YES, VXMB_ID_YES_TO_ALL, VXMB_ID_NO, VXMB_ID_CANCEL};
constexpr int32_t kYesNoDelete[] = {VXMB_ID_YES, VXMB_ID_NO, VXMB_ID_DELETE};
constexpr int32_t kYesNoNoAllCancel[] = {VXMB_ID_YES, VXMB_ID_NO, VXMB_ID_NO_TO_ALL, VXMB_ID_CANCEL};
constexpr int32_t kYesAllNoAllCancel[] = {VXMB_ID_YES, VXMB_ID_YES_TO_ALL, VXMB_ID_NO, VXMB_ID_NO_TO_ALL,
                                          VXMB_ID_CANCEL};

constexpr int32_t kNotPossible = 0;

constexpr ButtonSet kSets[] = {
    {VXMB_OK, VXMB_ID_OK, kOk},
    {VXMB_OKCANCEL, VXMB_ID_CANCEL, kOkCancel},
    {VXMB_ABORTRETRYIGNORE, kNotPossible, kAbortRetryIgnore},
    {VXMB_YESNOCANCEL, VXMB_ID_CANCEL, kYesNoCancel},
    {VXMB_YESNO, kNotPossible, kYesNo},
    {VXMB_RETRYCANCEL, VXMB_ID_CANCEL, kRetryCancel},
    {VXMB_YESALLNOCANCEL, VXMB_ID_CANCEL, kYesAllNoCancel},
    {VXMB_YESNODELETE, kNotPossible, kYesNoDelete},
    {VXMB_YESNONOALLCANCEL, VXMB_ID_CANCEL, kYesNoNoAllCancel},
    {VXMB_YESALLNOALLCANCEL, VXMB_ID_CANCEL, kYesAllNoAllCancel},
};

struct Label
{
    int32_t button;
    vxlang_t* text;
};

constexpr Label kLabels[] = {
    {VXMB_ID_OK, strings::kOk},         {VXMB_ID_CANCEL, strings::kCancel},
    {VXMB_ID_ABORT, strings::kAbort},   {VXMB_ID_RETRY, strings::kRetry},
    {VXMB_ID_IGNORE, strings::kIgnore}, {VXMB_ID_YES, strings::kYes},
    {VXMB_ID_NO, strings::kNo},         {VXMB_ID_YES_TO_ALL, strings::kYesToAll},
    {VXMB_ID_DELETE, strings::kDelete}, {VXMB_ID_NO_TO_ALL, strings::kNoToAll},
};

constexpr size_t DefaultIndex(uint32_t flags)
{
    return (flags & VXMB_DEFAULT) >> 8;
}

} // namespace

const ButtonSet& ButtonsOf(uint32_t flags)
{
    const auto* set = std::ranges::find(kSets, flags & VXMB_BUTTONS, &ButtonSet::number);
    return set != std::end(kSets) ? *set : kSets[0];
}

vxlang_t* LabelOf(int32_t button)
{
    return std::ranges::find(kLabels, button, &Label::button)->text;
}

int32_t DefaultButton(uint32_t flags)
{
    const auto buttons = ButtonsOf(flags).buttons;
    return buttons[std::min(DefaultIndex(flags), buttons.size() - 1)];
}

std::optional<int32_t> AnswerWithoutScreen(uint32_t flags)
{
    const auto buttons = ButtonsOf(flags).buttons;
    if (buttons.size() == 1)
        return buttons[0];
    if (DefaultIndex(flags) >= buttons.size())
        return std::nullopt;
    return buttons[DefaultIndex(flags)];
}

} // namespace vx
