#include "vx/smpte.h"

#include "time/rounding.h"
#include "time/smpte_format.h"

namespace {

using namespace vx;

// Frames of a minute and of ten on a plain 30-frame clock, and what drop-frame counts of them; labels that it
// leaves out of an hour.
constexpr uint32_t kPlainMinute = 60 * 30, kPlainTenMinutes = 10 * kPlainMinute;
constexpr uint32_t kDropMinute = kPlainMinute - 2, kDropTenMinutes = kPlainTenMinutes - 9 * 2;
constexpr uint32_t kDropHour = 6 * 9 * 2;

// Frames 0 and 1 of the first second of a minute that is no multiple of ten.
bool IsDropped(uint32_t minutes, uint32_t seconds, uint32_t frames)
{
    return frames < 2 && seconds == 0 && minutes % 10 != 0;
}

// The position of a drop-frame count, of one day, on a plain 30-frame clock. Of ten minutes the first keeps
// its 1800 labels, the others 1798 each: the two of the first that are too many come before these begin.
uint32_t PlainPosition(uint32_t count)
{
    const uint32_t tens = count / kDropTenMinutes, rest = count % kDropTenMinutes;
    const uint32_t minutes = rest < 2 ? 0 : (rest - 2) / kDropMinute;
    return count + tens * (kPlainTenMinutes - kDropTenMinutes) + minutes * (kPlainMinute - kDropMinute);
}

void SetFields(_smpteval& label, uint32_t hours, uint32_t minutes, uint32_t seconds, uint32_t frames)
{
    label.hours = hours;
    label.minutes = minutes;
    label.seconds = seconds;
    label.frames = frames;
}

} // namespace

uint32_t VXSMPTE_SMPTEToFrameCount(const _smpteval* label)
{
    const SmpteFormat& format = FormatOf(*label);
    if (format.nominal == 0)
        return 0;
    const bool dropped = format.drop && IsDropped(label->minutes, label->seconds, label->frames);
    const uint32_t frames = dropped ? 2 : label->frames;
    const uint32_t count =
        ((label->hours * 60 + label->minutes) * 60 + label->seconds) * format.nominal + frames;
    if (!format.drop)
        return count;
    return count - label->hours * kDropHour - (label->minutes - label->minutes / 10) * 2;
}

void VXSMPTE_FrameCountToSMPTE(_smpteval* label, uint32_t count)
{
    const SmpteFormat& format = FormatOf(*label);
    if (format.nominal == 0) {
        SetFields(*label, 0, 0, 0, 0);
        return;
    }
    uint32_t x = count % format.day;
    if (format.drop)
        x = PlainPosition(x);
    const uint32_t seconds = x / format.nominal;
    SetFields(*label, seconds / 3600, seconds / 60 % 60, seconds % 60, x % format.nominal);
}

int64_t VXSMPTE_SMPTEToNanos(const _smpteval* label)
{
    return Truncated(VXSMPTE_SMPTEToFrameCount(label) / FormatOf(*label).rate * kNanoUnitsPerSecond + 0.999);
}

void VXSMPTE_NanoToSMPTE(int64_t nanos, _smpteval* label)
{
    const double count = double(nanos) * FormatOf(*label).rate / kNanoUnitsPerSecond + 0.000005;
    VXSMPTE_FrameCountToSMPTE(label, uint32_t(Truncated(count)));
}

int64_t VXSMPTE_SmpteLikeToNanos(double rate, const _smpteval* label)
{
    const uint32_t seconds = (label->hours * 60 + label->minutes) * 60 + label->seconds;
    return Truncated((seconds * rate + label->frames) / rate * kNanoUnitsPerSecond + 0.999);
}

void VXSMPTE_AddSMPTE(_smpteval* a, const _smpteval* b)
{
    VXSMPTE_FrameCountToSMPTE(a, VXSMPTE_SMPTEToFrameCount(a) + VXSMPTE_SMPTEToFrameCount(b));
}

void VXSMPTE_SubtractSMPTE(_smpteval* a, const _smpteval* b)
{
    const uint32_t day = FormatOf(*a).day;
    const int32_t difference = int32_t(VXSMPTE_SMPTEToFrameCount(a) - VXSMPTE_SMPTEToFrameCount(b));
    const uint32_t back = day == 0 || difference >= 0 ? 0 : (0u - uint32_t(difference)) % day;
    VXSMPTE_FrameCountToSMPTE(a, difference >= 0 ? uint32_t(difference) : day - back);
}

int32_t VXSMPTE_SMPTECompare(const _smpteval* a, const _smpteval* b)
{
    const uint32_t pairs[][2] = {
        {a->hours, b->hours}, {a->minutes, b->minutes}, {a->seconds, b->seconds}, {a->frames, b->frames}};
    for (const auto& [left, right] : pairs)
        if (left != right)
            return left > right ? 1 : -1;
    return 0;
}

void VXSMPTE_IncrementByFrame(_smpteval* label)
{
    const SmpteFormat& format = FormatOf(*label);
    if (++label->frames < format.nominal)
        return;
    label->frames = 0;
    if (++label->seconds <= 59)
        return;
    label->seconds = 0;
    ++label->minutes;
    if (format.drop && label->minutes % 10 != 0)
        label->frames = 2;
    if (label->minutes <= 59)
        return;
    label->minutes = 0;
    label->hours = (label->hours & 31) + 1;
    if (label->hours > 23)
        label->hours = 0;
}

void VXSMPTE_DeccrementByFrame(_smpteval* label, uint32_t)
{
    const SmpteFormat& format = FormatOf(*label);
    if (format.drop && label->frames == 2 && IsDropped(label->minutes, label->seconds, 1)) {
        SetFields(*label, label->hours, label->minutes - 1, 59, format.nominal - 1);
        return;
    }
    if (label->frames-- != 0)
        return;
    label->frames = format.nominal - 1;
    if (label->seconds-- != 0)
        return;
    label->seconds = 59;
    if (label->minutes-- != 0)
        return;
    label->minutes = 59;
    label->hours = (label->hours & 31) == 0 ? 23 : (label->hours & 31) - 1;
}
