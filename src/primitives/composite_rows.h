// The row workers of Composite, and what their 8-bit and float forms share.
#pragma once

#include "vx/composite.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace vx {

constexpr size_t kCompositeModes = VX_COMPOSITE_AVERAGE;

// The mode by whose formula for colours the alpha of `mode` goes. What makes colours lighter without
// regard to alpha covers as much as source over does.
constexpr int32_t AlphaMode(int32_t mode)
{
    const bool ownRule = mode == VX_COMPOSITE_DESTINATION_OVER || mode == VX_COMPOSITE_MULTIPLY ||
                         mode == VX_COMPOSITE_AVERAGE;
    return ownRule ? mode : VX_COMPOSITE_SOURCE_OVER;
}

// Partial strength mixes with the frame that lies below: that of destination over is the source.
constexpr bool BaseIsSource(int32_t mode)
{
    return mode == VX_COMPOSITE_DESTINATION_OVER;
}

// A table by mode of what Entry<mode>() gives; VX_COMPOSITE_SOURCE_OVER stands first.
template <template <int32_t> class Entry>
constexpr auto TableByMode()
{
    return []<size_t... i>(std::index_sequence<i...>)
    {
        return std::array{Entry<int32_t(i) + VX_COMPOSITE_SOURCE_OVER>::kRows...};
    }
    (std::make_index_sequence<kCompositeModes>());
}

// Row workers: `width` pixels that may begin at any byte. The mode is a valid one, and the worker
// gets the opacity that it was chosen by.
using CompositeRow8 = void (*)(uint8_t* dst, const uint8_t* src, int32_t width, uint32_t opacity);
using CompositeRowFloat = void (*)(uint8_t* dst, const uint8_t* src, int32_t width, float opacity);

CompositeRow8 ChooseCompositeRow8(int32_t mode, uint32_t opacity);
CompositeRowFloat ChooseCompositeRowFloat(int32_t mode, float opacity);

} // namespace vx
