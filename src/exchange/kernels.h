// The published read and write kernels: a pixel, or four, through a record's pointers and slots.
#pragma once

#include "exchange/filter.h"

namespace vx {

struct ReadKernels
{
    VxXchgKernel pixel, filtered, block, quad, line, reduce;
};

struct WriteKernels
{
    VxXchgKernel pixel, quad;
};

// Null kernels where no row of that depth serves the type. Row: see codec.h.
const ReadKernels& ReadKernelsOf(int32_t row, int32_t type);
const WriteKernels& WriteKernelsOf(int32_t row, int32_t type);

struct OperationKernels
{
    VxXchgKernel pixel;
    VxXchgGroupKernel quad;
    VxXchgKernel mark, markQuad;
};

// Operation rows: 0 and 1 for 16 bits, 2 and 3 for 8 bits; the odd ones with VXXCHGF_EXACT_FADE.
constexpr int32_t kOperationRows = 4;
constexpr int32_t OperationRow(int32_t depth, uint32_t flags)
{
    return (depth == VXXCHG_DEPTH_8 ? 2 : 0) + ((flags & VXXCHGF_EXACT_FADE) ? 1 : 0);
}

// Null kernels for a number that is no operation.
const OperationKernels& OperationKernelsOf(int32_t row, uint32_t number);

} // namespace vx
