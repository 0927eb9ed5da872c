/* What the processor and the system can do, and what of it the library may use.
 *
 * The words are 32-bit sets of the VX_CPU_ bits. They are filled by a probe that runs on first use,
 * from whichever call comes first; nothing needs to be initialised. The probe turns flush-to-zero
 * and denormals-are-zero on in the MXCSR of the thread that runs it: a host that cares makes the
 * first call on its main thread. The pixel operations themselves never run that step.
 *
 * A host narrows what the library uses with the allow mask. Change it while no pixel work runs: an
 * operation reads it once, when it starts. Vector code of 128 bits needs VX_CPU_SSE to VX_CPU_SSSE3,
 * its better form VX_CPU_SSE to VX_CPU_SSE42, and vectors of 256 and 512 bits these and VX_CPU_AVX;
 * what misses one of them takes the form below, and in the end the plain one. Results are the same on
 * every path.
 *
 * The readers are safe on any thread. */
#ifndef VX_CAPABILITY_H
#define VX_CAPABILITY_H

#include "vx/types.h"

#define VX_CPU_CLASS_MASK 0xFu /* processor class: 3 has CMOV and an FPU; 4 to 6 only by override */
#define VX_CPU_MMX 0x10u       /* shown by VxGetOSSupport only */
#define VX_CPU_SSE 0x20u
#define VX_CPU_SSE2 0x40u
#define VX_CPU_SSE3 0x80u
#define VX_CPU_SSSE3 0x100u
#define VX_CPU_SSE41 0x200u
#define VX_CPU_SSE42 0x400u
#define VX_CPU_AVX 0x800u /* never shown in an answer; its bit of the allow mask gates wide vectors */
#define VX_CPU_CMOV 0x1000u
#define VX_CPU_FPU 0x2000u
#define VX_CPU_TSC 0x4000u
#define VX_CPU_FTZ 0x20000u  /* denormals are flushed on the thread that ran the probe */
#define VX_CPU_VECTOR 0xFF0u /* the bits that VxOnlyAllowCPUSupport governs */

VX_EXTERN_C_BEGIN

/* The processor's word as far as the host allows it: (allow mask AND CPU word AND mask), and the
 * class override ORed into it whatever the mask. A mask of 0 asks for all bits. */
VX_EXPORT uint32_t VxGetCPUSupport(uint32_t mask);

/* What the operating system supports, AND mask (0: all bits). The allow mask plays no part. */
VX_EXPORT uint32_t VxGetOSSupport(uint32_t mask);

/* Processors that this process may run on, at least 1. */
VX_EXPORT uint32_t VxGetProcessorCount(void);

/* Adds bits to the allow mask. What the processor lacks stays missing. Returns 1. */
VX_EXPORT int32_t VxAllowCPUSupport(uint32_t bits);

/* Takes bits out of the allow mask. Returns 1. */
VX_EXPORT int32_t VxDisallowCPUSupport(int32_t bits);

/* Sets the bits VX_CPU_VECTOR of the allow mask to exactly these and leaves its other bits.
 * Returns 1; 0, with nothing changed, where bits has anything outside VX_CPU_VECTOR. */
VX_EXPORT int32_t VxOnlyAllowCPUSupport(uint32_t bits);

/* Replaces the probed class by one that follows from the allow mask: 6 if it has VX_CPU_SSE2, else 5
 * if VX_CPU_SSE, else 4 if VX_CPU_MMX, else 0; whatever the probe found. Returns 1. */
VX_EXPORT int32_t VxSetCPUClassBySupport(void);

/* Writes the four bytes of a FourCC, low byte first, as four characters and a terminator.
 *   fourCC  any value; a byte outside 32 to 126 gives a zero character, which ends the text there
 *   text    room for 5 characters, all of which are written */
VX_EXPORT void VxFourCCToStringCPU(int32_t fourCC, char16_t* text);

VX_EXTERN_C_END

#endif
