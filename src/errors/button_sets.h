// The sets of buttons of message boxes: what is shown, what is answered without a screen, and what closing answers.
#pragma once

#include "vx/lang.h"
#include "vx/msgbox.h"

#include <cstdint>
#include <optional>
#include <span>

namespace vx {

struct ButtonSet
{
    uint32_t number;
    int32_t closing; // the answer where the box is closed; 0: it cannot be
    std::span<const int32_t> buttons;
};

// That of VXMB_OK for a number without a set.
const ButtonSet& ButtonsOf(uint32_t flags);

vxlang_t* LabelOf(int32_t button);

// The button that has the focus at first.
int32_t DefaultButton(uint32_t flags);

// The default button as an answer; none where the flags name one beyond the last. OK is no choice.
std::optional<int32_t> AnswerWithoutScreen(uint32_t flags);

} // namespace vx
