/* SMPTE timecode labels: hours, minutes, seconds, frames at six frame formats.
 *
 * Labels convert to and from running frame counts (0 is 00:00:00:00) and nano time: a signed 64-bit
 * count of 100-nanosecond units, 10,000,000 a second. All arithmetic wraps at 24 hours.
 *
 * Drop-frame numbering (SMPTE ST 12-1): the labels with frames 0 and 1 do not exist in the first
 * second of a minute, except for every tenth minute. 00:00:59:29 is followed by 00:01:00:02; an hour
 * has 107,892 labels.
 *
 * A record is the caller's. Its format must be 1 to 6 and is never changed; where a function says
 * nothing else, another format has no defined result. Fields may exceed their ranges: they count on.
 * Pointers must not be null. Nothing fails. Any thread may call, on different records. */
#ifndef VX_SMPTE_H
#define VX_SMPTE_H

#include "vx/types.h"

#define VXSMPTE_FORMAT_30 1       /* 30 frames a second */
#define VXSMPTE_FORMAT_2997DROP 2 /* 30000/1001 frames a second, drop-frame labels */
#define VXSMPTE_FORMAT_25 3
#define VXSMPTE_FORMAT_24 4
#define VXSMPTE_FORMAT_2997 5  /* 30000/1001 frames a second, labels as at 30 */
#define VXSMPTE_FORMAT_23976 6 /* 24000/1001 frames a second, labels as at 24 */

typedef struct _smpteval
{
    uint32_t format;  /* VXSMPTE_FORMAT_...; an input of every function */
    uint32_t hours;   /* 0 to 23 */
    uint32_t minutes; /* 0 to 59 */
    uint32_t seconds; /* 0 to 59 */
    uint32_t frames;  /* 0 to the nominal rate minus 1 */
    uint32_t reserved;
} _smpteval;
VX_STATIC_ASSERT(sizeof(_smpteval) == 24, "six 32-bit words");
VX_STATIC_ASSERT(offsetof(_smpteval, frames) == 16, "the published order of fields");

VX_EXTERN_C_BEGIN

/* The running count of a label, 0 for an unknown format. A label that drop-frame leaves out counts as
 * the first one of its minute: 00:01:00:00 and 00:01:00:01 as 00:01:00:02, which is 1800. */
VX_EXPORT uint32_t VXSMPTE_SMPTEToFrameCount(const _smpteval* label);

/* The label of a count, which is first reduced to 24 hours. */
VX_EXPORT void VXSMPTE_FrameCountToSMPTE(_smpteval* label, uint32_t count);

/* The time at which a label's frame begins, by the format's true rate, rounded up to a whole unit
 * within 0.999; so it converts back to the same label, unless drop-frame leaves that one out. An
 * unknown format runs at 30. */
VX_EXPORT int64_t VXSMPTE_SMPTEToNanos(const _smpteval* label);

/* The label of the frame that shows at a time of 0 or above; within 0.000005 of a frame before its
 * start it shows already. */
VX_EXPORT void VXSMPTE_NanoToSMPTE(int64_t nanos, _smpteval* label);

/* The time of a label at any rate (frames a second, not 0); its format plays no part and no label is
 * left out. */
VX_EXPORT int64_t VXSMPTE_SmpteLikeToNanos(double rate, const _smpteval* label);

/* Reads typed timecode, right-aligned: the last number is the frames. Any characters but digits
 * separate, longer runs of digits fall into pairs from the right, and each separator at the end
 * stands for a 0: "1:2:3:4", "123456" (00:12:34:56), "12:" (12 seconds). At most four numbers are read; what
 * exceeds a field is carried, hours wrap at 24. A label that drop-frame leaves out stays as typed.
 *   text    of any length; null is empty
 *   label   format is read, all other fields are written
 * Returns the character at which reading stopped: 0 when the text was used up. */
VX_EXPORT char16_t VXSMPTE_TextToSMPTE(const char16_t* text, _smpteval* label);

/* a plus b and a minus b, by frame counts, each operand's by its own format; the result goes to a, in
 * a's format, wrapped into 24 hours. */
VX_EXPORT void VXSMPTE_AddSMPTE(_smpteval* a, const _smpteval* b);
VX_EXPORT void VXSMPTE_SubtractSMPTE(_smpteval* a, const _smpteval* b);

/* 1 where a's label is later, -1 where it is earlier, 0 where they are equal, field by field; formats
 * play no part. */
VX_EXPORT int32_t VXSMPTE_SMPTECompare(const _smpteval* a, const _smpteval* b);

/* The next and the previous label. VXSMPTE_DeccrementByFrame is spelt so in the interface; its second
 * argument has no effect. */
VX_EXPORT void VXSMPTE_IncrementByFrame(_smpteval* label);
VX_EXPORT void VXSMPTE_DeccrementByFrame(_smpteval* label, uint32_t unused);

VX_EXTERN_C_END

#endif
