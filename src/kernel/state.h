// What a start of the kernel leaves for the families above it, and the steps that they give it.
#pragma once

#include "vx/platform/module.h"

#include <cstdint>

namespace vx {

// Bits of KernelState::colorMode. Of the first nothing follows but that the second is not set.
inline constexpr uint32_t kOwnColors = 1;
inline constexpr uint32_t kDelegatedColors = 2;

// Written on the host's main thread, by the start and the end; colorMode's second bit also by the colour
// look-ups, which clear it where there is nobody to delegate to.
struct KernelState
{
    HMODULE appKernel = nullptr;
    uint32_t flags = 0;
    uint32_t colorMode = 0;
    HMODULE hostExecutable = nullptr;
    uint32_t firstApplicationCursor = 0; // this id and the 49 after it are the host executable's cursors
    intptr_t splash = 0;
};
extern constinit KernelState kernelState;

// The work that families above the lifecycle do at its start and end; each puts its own functions here
// when the library is loaded. Empty: that family is not there, its step does nothing.
struct KernelSteps
{
    void (*resetColors)() = nullptr;      // colour tables to their defaults
    void (*releaseColors)() = nullptr;    // and the objects made from them
    void (*releaseUiObjects)() = nullptr; // pens, brushes and fonts
    void (*releaseCursors)() = nullptr;   // makes the arrow current before
    void (*startNumerics)() = nullptr;
};
extern constinit KernelSteps kernelSteps;

} // namespace vx
