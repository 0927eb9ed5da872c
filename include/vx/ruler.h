/* Nano time to ruler text and back, in twenty formats, and music time.
 *
 * Nano time, the library's unit of positions and durations, is a signed 64-bit count of
 * 100-nanosecond units: 10,000,000 is one second. 37235000000 is 01:02:03.500.
 *
 * Text is UTF-16; the separators come from the user's locale. A negative time shows as "-" and the
 * text of its magnitude. Readers are forgiving: fields are digits between any other characters,
 * right-aligned (the last one is the smallest unit) unless a function says otherwise, and what is no
 * time is 0. Nothing fails. Rates, beatValue, beatsPerMeasure, ticksPerBeat and tick divisors must not
 * be 0 where a format uses them. Any thread may call. */
#ifndef VX_RULER_H
#define VX_RULER_H

#include "vx/smpte.h"
#include "vx/types.h"

#define VXPOSFMT_SAMPLES 0        /* 164,206,350 */
#define VXPOSFMT_TIME 1           /* 01:02:03.500; short 01:02:03 */
#define VXPOSFMT_SECONDS 2        /* 3,723.500; short 3,723 */
#define VXPOSFMT_TIME_FRAMES 3    /* 01:02:03.15; short 01:02:03 */
#define VXPOSFMT_ABS_FRAMES 4     /* 111,705.000; short 111,705 */
#define VXPOSFMT_MEASURES 5       /* 1,862.4.000, counted from 1; short 1,862.4 */
#define VXPOSFMT_SMPTE_2997 6     /* 01:01:59:23 */
#define VXPOSFMT_SMPTE_30 7       /* 01:02:03:15 */
#define VXPOSFMT_SMPTE_DROP 8     /* 01:02:03;15 */
#define VXPOSFMT_SMPTE_25 9       /* 01:02:03:12 */
#define VXPOSFMT_SMPTE_24 10      /* 01:02:03:12 */
#define VXPOSFMT_NANOS 11         /* 37,235,000,000 */
#define VXPOSFMT_MICROS 12        /* 3,723,500,000 */
#define VXPOSFMT_MEASURES_ZERO 13 /* as VXPOSFMT_MEASURES, counted from 0 */
#define VXPOSFMT_BEATS 14         /* 7,447.000; short 7,447; not read back */
#define VXPOSFMT_FEET_40 15       /* 2,792+25: feet and frames, 40 frames a foot (16 mm film) */
#define VXPOSFMT_FEET_16 16       /* 6,981+9: 16 frames a foot (35 mm film) */
#define VXPOSFMT_CD 17            /* 01:02:03:38: 75 frames a second; short 01:02:03 */
#define VXPOSFMT_SMPTE_23976 18   /* 01:01:59:18 */
#define VXPOSFMT_CLOCK 19         /* 1:02:03, 10:00, 9:05: the shortest form; not read back */

/* Flags of the functions that write. */
#define VXPOS_SHORT 1u  /* the short form */
#define VXPOS_LENGTH 2u /* a length: no ruler offset, measures and beats not counted from 1 */

/* Flags of VxTextToNanoTimeToken2, besides these two. */
#define VXPOS_LIMITS 4u /* the default stands for text that is no number; then the limits apply */

/* How positions are shown; the caller's, only read here. */
typedef struct _vxposfmt
{
    int32_t format;            /* VXPOSFMT_... */
    uint32_t samplesPerSecond; /* VXPOSFMT_SAMPLES */
    double framesPerSecond;    /* formats 3, 4, 15, 16 */
    double beatsPerMinute;     /* the music formats */
    int64_t rulerOffset;       /* the nano time that shows as zero */
    uint16_t beatValue;        /* the note that gets a beat: 4 is a quarter note */
    uint16_t beatsPerMeasure;
    uint32_t ticksPerBeat; /* per quarter note in the tick functions, which scale it by beatValue */
} _vxposfmt;
VX_STATIC_ASSERT(sizeof(_vxposfmt) == 40, "the published record has 40 bytes");
VX_STATIC_ASSERT(offsetof(_vxposfmt, rulerOffset) == 24, "the published order of fields");
VX_STATIC_ASSERT(offsetof(_vxposfmt, ticksPerBeat) == 36, "the published order of fields");

VX_EXTERN_C_BEGIN

/* ---- Nano time to text
 *
 *   text      room for the whole text: 64 characters, more only where rates far from those of sound
 *             and pictures make long numbers; the N forms: that capacity, terminator included, which is
 *             never exceeded
 *   nanos     the time; the most negative one shows one unit short
 *   pattern   the Format forms: a format of the print engine for the values of the record's format, in
 *             the order and of the types that the library's own use ("%02u$:%02u$:%02u$*%03u" for
 *             VXPOSFMT_TIME, "$I64d" for whole numbers, "$.3f" for doubles). "$.0f" truncates where
 *             the short forms do. VXPOSFMT_CLOCK ignores it
 * Returns the length of the text, sign included. A format outside 0 to 19 shows the nano time. */
VX_EXPORT int32_t VxNanoTimeToText(char16_t* text, const _vxposfmt* format, int64_t nanos, int32_t shortForm);
VX_EXPORT int32_t VxNanoTimeToTextEx(char16_t* text, const _vxposfmt* format, int64_t nanos, uint32_t flags);
VX_EXPORT int32_t VxNanoTimeToTextFormat(char16_t* text, const _vxposfmt* format, int64_t nanos,
                                         const char16_t* pattern, uint32_t flags);
VX_EXPORT int32_t VxNanoTimeToTextN(char16_t* text, uint32_t capacity, const _vxposfmt* format, int64_t nanos,
                                    int32_t shortForm);
VX_EXPORT int32_t VxNanoTimeToTextExN(char16_t* text, uint32_t capacity, const _vxposfmt* format,
                                      int64_t nanos, uint32_t flags);
VX_EXPORT int32_t VxNanoTimeToTextFormatN(char16_t* text, uint32_t capacity, const _vxposfmt* format,
                                          int64_t nanos, const char16_t* pattern, uint32_t flags);

/* ---- Nano time and clock fields
 *
 * Labels of format 1 to 6 convert as in smpte.h and the rate plays no part; with any other format the
 * fields of a time of 0 or above are hours (modulo 24), minutes, seconds and frames at that rate, rounded to the nearest
 * frame; a rate of 0.01 or below truncates. */
VX_EXPORT void VxNanoTimeToHMSF(int64_t nanos, _smpteval* label, double rate);
VX_EXPORT int64_t VxHMSFToNanoTime(const _smpteval* label, double rate);

/* ---- Text to nano time
 *
 *   text          white space and one "-" at the start are stepped over
 *   outEnd        receives the first character that was not used, or the end of the text for the
 *                 formats that use all of it; may be null without VXPOS_LIMITS
 *   defaultValue  stands for a text that is empty or white space, without a sign; with VXPOS_LIMITS
 *                 also for text that is no number
 * The result is the value read plus the ruler offset (not with VXPOS_LENGTH), then with VXPOS_LIMITS
 * raised to the minimum, then lowered to the maximum. Samples, seconds and frames are held to times
 * between -2^62 and 2^61.
 * The first form has no default and no limits; the Ex form has the flag VXPOS_LIMITS set. */
VX_EXPORT int64_t VxTextToNanoTimeToken(const char16_t* text, const _vxposfmt* format, int32_t shortForm,
                                        const char16_t** outEnd);
VX_EXPORT int64_t VxTextToNanoTimeTokenEx(const char16_t* text, const _vxposfmt* format, int32_t shortForm,
                                          int64_t defaultValue, int64_t minimum, int64_t maximum,
                                          const char16_t** outEnd);
VX_EXPORT int64_t VxTextToNanoTimeToken2(const char16_t* text, const _vxposfmt* format, int64_t defaultValue,
                                         int64_t minimum, int64_t maximum, uint32_t flags,
                                         const char16_t** outEnd);

/* Clock text to milliseconds: hours, minutes, seconds and a decimal fraction of one; a single number
 * is whole seconds, "1:30" is 1.3 seconds. Short: no fraction. */
VX_EXPORT int64_t VxTextToTimeToken(const char16_t* text, const _vxposfmt* format, int32_t shortForm,
                                    const char16_t** outEnd);

/* Clock text to nano time: hours, minutes, seconds, frames at framesPerSecond. Short: no frames. */
VX_EXPORT int64_t VxTextToHMSFToken(const char16_t* text, const _vxposfmt* format, int32_t shortForm,
                                    const char16_t** outEnd);

/* Film text ("feet+frames", or frames alone) to nano time at framesPerSecond. Feet grouped by a
 * separator, as from a thousand on they are shown, read as two fields.
 *   forty  nonzero: 40 frames a foot; 0: 16 */
VX_EXPORT int64_t VxTextToFeetAndFramesToken(const char16_t* text, const _vxposfmt* format, int32_t forty);

/* ---- Music time
 *
 *   oneBased           1: measures and beats are counted from 1; measure -1 comes before measure 1
 *   base               the same for reading
 *   tickDivisor        ticks are divided by it when shown
 *   tickMultiplier     and multiplied by it when read
 *   out arguments      may be null in the readers */

/* Measures, beats and ticks of a time at the record's tempo, from 0; no ruler offset. */
VX_EXPORT void VxNanoTimeToMeasures(int64_t nanos, const _vxposfmt* format, uint32_t* outMeasures,
                                    uint32_t* outBeats, uint32_t* outTicks);

/* "measure.beat.ticks", or "measure.beat" in the short form, for a running tick count.
 *   text  room for 64 characters. Returns the length. */
VX_EXPORT int32_t VxTicksToText(char16_t* text, const _vxposfmt* format, int64_t ticks, int32_t oneBased,
                                int32_t shortForm, uint32_t tickDivisor);

/* The same for a measure and the ticks within it; a negative tick count moves back into the measures
 * before. Returns 0 for a null text. */
VX_EXPORT int32_t VxMeasuresAndTicksToText(char16_t* text, const _vxposfmt* format, int32_t measures,
                                           int32_t ticks, int32_t oneBased, int32_t shortForm,
                                           uint32_t tickDivisor);

/* Right-aligned: "5" is ticks, "1.5" beats and ticks; short: beats, or measures and beats. Flags as of
 * VxTextToNanoTimeToken2; outEnd is not written. Returns nano time at the record's tempo. */
VX_EXPORT int64_t VxTextToMusicTimeToken(const char16_t* text, const _vxposfmt* format, uint32_t flags,
                                         const char16_t** outEnd);

/* Left-aligned: measures, beats, ticks, missing ones 0; a "-" at the start makes the measures
 * negative. Returns the running tick count. */
VX_EXPORT int64_t VxTextToMeasuresBeatsTicks(const char16_t* text, const _vxposfmt* format, int32_t base,
                                             int32_t tickMultiplier, int64_t* outMeasures, int64_t* outBeats,
                                             int64_t* outTicks);

/* Left-aligned: beats, ticks; a "-" at the start has no effect. Returns the running tick count. */
VX_EXPORT int64_t VxTextToBeatsTicks(const char16_t* text, const _vxposfmt* format, int32_t tickMultiplier,
                                     int64_t* outBeats, int64_t* outTicks);

/* VxTextToMeasuresBeatsTicks without the out values. */
VX_EXPORT int64_t VxTextToTicks(const char16_t* text, const _vxposfmt* format, int32_t base,
                                int32_t tickMultiplier);

VX_EXTERN_C_END

#endif
