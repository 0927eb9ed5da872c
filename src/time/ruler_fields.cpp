// Nano time taken apart into clock fields and put together again.
#include "time/rounding.h"
#include "vx/ruler.h"

#include <cmath>

namespace {

bool HasSmpteFormat(const _smpteval& label)
{
    return label.format >= VXSMPTE_FORMAT_30 && label.format <= VXSMPTE_FORMAT_23976;
}

// Takes the whole units out of x.
uint32_t TakeWhole(double& x, double unit)
{
    const double whole = std::trunc(x / unit);
    x -= whole * unit;
    return uint32_t(vx::Truncated(whole));
}

} // namespace

void VxNanoTimeToHMSF(int64_t nanos, _smpteval* label, double rate)
{
    if (HasSmpteFormat(*label)) {
        VXSMPTE_NanoToSMPTE(nanos, label);
        return;
    }
    double x = double(nanos) * vx::kSecondsPerNanoUnit;
    if (rate > 0.01)
        x += 0.5 / rate;
    label->hours = TakeWhole(x, 3600.0) % 24;
    label->minutes = TakeWhole(x, 60.0);
    label->seconds = TakeWhole(x, 1.0);
    label->frames = uint32_t(vx::FlooredWithSlack(x * rate));
}

int64_t VxHMSFToNanoTime(const _smpteval* label, double rate)
{
    if (HasSmpteFormat(*label))
        return VXSMPTE_SMPTEToNanos(label);
    const double seconds =
        label->hours * 3600.0 + label->minutes * 60.0 + label->seconds + label->frames / rate;
    return vx::Rounded(seconds * vx::kNanoUnitsPerSecond);
}
