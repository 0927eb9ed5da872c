#include "support/copy_model.h"

#include "dib/curves.h"
#include "support/exchange_model.h"
#include "vx/platform/memory.h"
#include "vx/scale.h"
#include "vx/xchg.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace vxtest {

namespace {

bool IsFloat(int32_t type)
{
    return type == 22 || type == 32;
}

bool IsPalette(int32_t type)
{
    return type == 23 || type == 24;
}

int32_t BitsOf(int32_t type)
{
    return VxPixelTypeToBitAttribs(type, nullptr, nullptr, 0, nullptr);
}

float RandomFloat(Random& random, bool hard)
{
    constexpr float kHard[] = {NAN,   -NAN, INFINITY, -INFINITY, 0.0f,  -0.0f,      1.0f,
                               3e38f, 0.5f, 1e-41f,   -1e-41f,   1.01f, 1.0000001f, 0.99999994f};
    return hard && random.Int(0, 3) == 0 ? kHard[random.Int(0, 13)] : random.Float(-0.3f, 1.3f);
}

} // namespace

Picture::Picture(int32_t type, int32_t width, int32_t height, Rows rows, Random& random, bool hard,
                 uint32_t entries)
    : type_(type), front_(40 + 4 * 256), rows_((BitsOf(type) * width + 7) / 8, height, 1, rows, random)
{
    std::vector<RGBQUAD> table(entries);
    for (RGBQUAD& entry : table)
        entry = {random.Byte(), random.Byte(), random.Byte(), random.Byte()};
    VxVideo_InitBitmapInfo(Header(), type, width, height, table.data(), int32_t(entries), nullptr);
    for (int32_t y = 0; IsFloat(type) && y < height; ++y)
        for (int32_t i = 0; i < rows_.Width() / 4; ++i)
            rows_.Set(i, y, RandomFloat(random, hard));
}

std::ostream& operator<<(std::ostream& out, const Picture& p)
{
    return out << "type " << p.type_ << ", " << p.Width() << "x" << p.Height() << ", stride " << p.Stride();
}

double Difference(const Picture& a, const Picture& b)
{
    double most = 0.0;
    const bool floats = IsFloat(a.type_);
    for (int32_t y = 0; y < a.Height(); ++y)
        for (int32_t i = 0; i < a.rows_.Width() / (floats ? 4 : 1); ++i) {
            const auto at = [&](const Frame& f) {
                return double(floats ? f.Get<float>(i, y) : float(f.Get<uint8_t>(i, y)));
            };
            const double x = at(a.rows_), z = at(b.rows_);
            const bool equal = x == z || (std::isnan(x) && std::isnan(z));
            const double distance =
                equal ? 0.0 : std::fabs(x - z) / (floats ? std::max(1.0, std::fabs(x)) : 1.0);
            most = distance >= 0.0 ? std::max(most, distance) : std::numeric_limits<double>::infinity();
        }
    return most;
}

std::ostream& operator<<(std::ostream& out, const CopyArguments& a)
{
    const auto rect = [&out](const char* name, const std::optional<RECT>& r) {
        if (r)
            out << name << " (" << r->left << ", " << r->top << ", " << r->right << ", " << r->bottom << ")";
    };
    rect(", to", a.destRect);
    rect(", from", a.sourceRect);
    return out << ", flags 0x" << std::hex << a.flags << std::dec << ", gammas " << a.destGamma << ", "
               << a.sourceGamma;
}

HRESULT Copy(Picture& dest, const Picture& source, const CopyArguments& a)
{
    return VxDibCopy(dest.Header(), dest.Pixels(), a.destRect ? &*a.destRect : nullptr, dest.Stride(),
                     source.Header(), source.Pixels(), a.sourceRect ? &*a.sourceRect : nullptr,
                     source.Stride(), a.flags, a.destGamma, a.sourceGamma);
}

namespace {

// A record with what its types need.
struct Machine
{
    tVXXCHG x;
    RGBQUAD table[256] = {};
    uint8_t* map = nullptr;

    Machine(const Picture& dest, const Picture& source, uint32_t flags, double destGamma, double sourceGamma,
            bool fades = false)
    {
        const VxXchgOperation fade{VXXCHG_OP_FADE, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, {}};
        VxXCHGGetFunctionPointers(dest.Type(), source.Type(), flags, &x, fades ? &fade : nullptr, destGamma,
                                  sourceGamma);
        if (IsPalette(source.Type()))
            std::memcpy(table, source.Table(), 4 * std::min(source.Header()->biClrUsed, 256u));
        x.sourcePalette = table;
        if (IsPalette(dest.Type()))
            VxDibCreateColorQuantizer(&map, dest.Header());
        x.inverseMap = map;
    }
    ~Machine() { GlobalFree(GlobalHandle(map)); }
    Machine(const Machine&) = delete;

    // Row in memory, column from the bitmap's left.
    void SetSource(const Picture& p, int64_t column, int64_t row)
    {
        const int64_t bit = column * BitsOf(p.Type());
        x.source = p.Row(row) + bit / 8;
        x.sourceBit = uint32_t(bit % 8);
    }
    void Write(Picture& p, int64_t column, int64_t row)
    {
        const int64_t bit = column * BitsOf(p.Type());
        x.dest = p.Row(row) + bit / 8;
        x.destBit = uint32_t(bit % 8);
        x.writePixel(&x);
    }
};

// A curve with a table of its own making.
class TableCurve
{
public:
    TableCurve(const VxTransferCurve& curve, int32_t n) : curve_(curve), last_(n - 1)
    {
        for (int32_t i = 0; i <= n; ++i)
            table_.push_back(vx::EvaluateCurve(curve, float(i) / float(n - 1)));
    }
    float At(float x) const
    {
        if (std::isnan(x))
            return 0.0f;
        if (x < 0.0f || x > 1.0f)
            return vx::EvaluateCurve(curve_, x);
        const float p = x * float(last_);
        const float i = std::floor(p), f = p - i;
        return table_[size_t(i)] * (1.0f - f) + table_[size_t(i) + 1] * f;
    }
    uint8_t Level(float x) const
    {
        if (std::isnan(x) || x < 0.0f)
            return 0;
        if (x > 1.0f)
            return 255;
        const double entry = std::floor(double(x * float(last_)) + 0.5);
        return uint8_t(std::floor(std::min(double(table_[size_t(entry)] * 255.0f) + 0.5, 255.0)));
    }
    float Entry(uint8_t i) const { return table_[i]; }

private:
    VxTransferCurve curve_;
    int32_t last_;
    std::vector<float> table_;
};

bool IsNear(const VxTransferCurve& curve)
{
    return curve.exponent >= 0.999f && curve.exponent <= 1.001f;
}

float DitherAt(int64_t row, int64_t column)
{
    constexpr int32_t kMatrix[] = {0, 8, 2, 10, 12, 4, 14, 6, 3, 11, 1, 9, 15, 7, 13, 5};
    return float(kMatrix[row % 4 * 4 + column % 4] / 4080.0);
}

uint8_t CutToByte(float x)
{
    if (std::isnan(x) || x < 0.0f)
        return 0;
    return x > 1.0f ? 255 : uint8_t(std::floor(x * 255.0f));
}

// The pairs that take a direct path; each sets one pixel.
class DirectModel
{
public:
    DirectModel(const Machine& m, const Picture& dest, const Picture& source, uint32_t flags)
        : from_(source.Type()), to_(dest.Type()), fine_((flags & 15) >= 3),
          curve_(IsFloat(from_) ? m.x.sourceCurve : m.x.destCurve), isNear_(IsNear(curve_)),
          coarse_(curve_, 256), medium_(curve_, 2048), picks_(curve_, 4096)
    {}

    bool Serves() const
    {
        const bool sameCopy = from_ == to_ && BitsOf(from_) > 8;
        return sameCopy || (from_ == 32 && Is8(to_)) || (Is8(from_) && to_ == 32) ||
               (from_ == 27 && (to_ == 28 || to_ == 29));
    }

    void Pixel(uint8_t* dest, const uint8_t* source, int64_t row, int64_t column) const
    {
        if (from_ == to_ && (from_ != 32 || isNear_)) {
            std::memcpy(dest, source, size_t(BitsOf(from_)) / 8);
        } else if (from_ == 27 && to_ != 32) {
            std::memcpy(dest, source, 3);
            dest[3] = 255;
        } else if (from_ == 32) {
            for (int32_t c = 0; c < (to_ == 27 ? 3 : 4); ++c) {
                float x;
                std::memcpy(&x, source + 4 * c, 4);
                if (to_ == 32) {
                    x = medium_.At(x);
                    std::memcpy(dest + 4 * c, &x, 4);
                } else {
                    dest[c] = Level(x, DitherAt(row, column));
                }
            }
        } else {
            for (int32_t c = 0; c < 4; ++c) {
                const float x = c == 3 && from_ == 27 ? 1.0f
                                : isNear_             ? float(source[c]) * 0.003921569f
                                                      : coarse_.Entry(source[c]);
                std::memcpy(dest + 4 * c, &x, 4);
            }
        }
    }

private:
    static bool Is8(int32_t type) { return type >= 27 && type <= 29; }

    uint8_t Level(float x, float dither) const
    {
        if (fine_)
            return CutToByte((isNear_ ? x : coarse_.At(x)) + dither);
        if (!isNear_)
            return picks_.Level(x);
        if (to_ == 27)
            return CutToByte(x + 0.0019607844f);
        const double level = std::floor(double(x) * 255.0);
        return std::isnan(x) ? 0 : uint8_t(std::clamp(level, 0.0, 255.0));
    }

    int32_t from_, to_;
    bool fine_;
    VxTransferCurve curve_;
    bool isNear_;
    TableCurve coarse_, medium_, picks_;
};

RECT Divided(const RECT& r)
{
    return {r.left / 16384, r.top / 16384, r.right / 16384, r.bottom / 16384};
}

bool HasFraction(const std::optional<RECT>& r)
{
    return r && (r->left % 16384 || r->top % 16384 || r->right % 16384 || r->bottom % 16384);
}

bool IsScalablePair(int32_t a, int32_t b)
{
    const auto isBytes = [](int32_t t) { return t == 28 || t == 29; };
    return (isBytes(a) && isBytes(b)) || (a == 32 && b == 32);
}

// What the plain and the soft pump walk.
struct Walk
{
    RECT dest, source, clip;
    int64_t dw, dh, sw, sh, stepX, stepY;
    bool scaled;

    Walk(const RECT& d, const RECT& s, const RECT& c, bool fine)
        : dest(d), source(s), clip(c), dw(d.right - d.left), dh(d.bottom - d.top), sw(s.right - s.left),
          sh(s.bottom - s.top), stepX(Step(sw, dw, fine)), stepY(Step(sh, dh, fine)),
          scaled(dw != sw || dh != sh)
    {}
    static int64_t Step(int64_t source, int64_t dest, bool fine)
    {
        if (!fine)
            return source * 16384 / dest;
        return dest == 1 ? (source - 1) * 16384 : (source - 1) * 16384 / (dest - 1);
    }
    // Source position of a destination pixel, in 1/16384.
    static int64_t Place(int64_t i, int64_t last, int64_t step, int64_t size)
    {
        return i == last ? (size - 1) * 16384 : i * step;
    }
};

void ReadAt(Machine& m, const Picture& source, const Walk& w, int64_t x, int64_t y)
{
    const int64_t firstRow = source.Height() - w.source.bottom;
    if (!w.scaled) {
        m.SetSource(source, w.source.left + x, firstRow + y);
        m.x.readPixel(&m.x);
        return;
    }
    const int64_t px = Walk::Place(x, w.dw - 1, w.stepX, w.sw), py = Walk::Place(y, w.dh - 1, w.stepY, w.sh);
    const int64_t column = px / 16384, row = py / 16384;
    m.SetSource(source, w.source.left + column, firstRow + row);
    m.x.fractionX = uint32_t(px % 16384);
    m.x.fractionY = uint32_t(py % 16384);
    m.x.rowOffset = row == w.sh - 1 ? 0 : source.Stride();
    if (column == w.sw - 1)
        m.x.readLine(&m.x);
    else
        m.x.readFiltered(&m.x);
}

struct SoftModel
{
    int64_t w, s;
    int64_t c[4];
    int64_t columns, rows;
    bool scaled;
    uint32_t flags;

    SoftModel(const Walk& walk, uint32_t theFlags)
        : w(theFlags >> 16 & 255), c{walk.clip.left, walk.clip.top, walk.clip.right, walk.clip.bottom},
          columns(walk.sw), rows(walk.sh), scaled(walk.scaled), flags(theFlags)
    {
        if (scaled) {
            w = std::max(walk.stepX, walk.stepY) * w / 16384;
            for (int32_t i = 0; i < 4; ++i)
                c[i] = c[i] * (i % 2 ? walk.stepY : walk.stepX) / 16384;
        }
        s = 65535 / (w + 1);
    }
    int64_t Distance(int64_t column, int64_t row) const
    {
        int64_t d = 0;
        if ((flags & VXDIBF_FEATHER_FIRSTROWS) && c[1] + row < w)
            d = std::max(d, w - c[1] - row);
        if ((flags & VXDIBF_FEATHER_LASTROWS) && row - c[3] >= rows - w)
            d = std::max(d, w + (scaled ? 0 : 1) + (row - c[3]) - rows);
        if ((flags & VXDIBF_FEATHER_LEFT) && c[0] + column < w)
            d = std::max(d, w - c[0] - column);
        if ((flags & VXDIBF_FEATHER_RIGHT) && column - c[2] >= columns - w)
            d = std::max(d, w + 1 + (column - c[2]) - columns);
        return d;
    }
};

// The gammas of the record that reads the destination: its working pixels are coded as the copy's are.
struct Back
{
    double dest, source;

    Back(const Picture& d, const Picture& s, const CopyArguments& a)
        : dest(a.sourceGamma), source(a.destGamma)
    {
        if (IsFloat(d.Type()) && IsFloat(s.Type()))
            dest = source = 1.0;
    }
};

void ModelPumps(Picture& dest, const Picture& source, const CopyArguments& a, const Walk& walk)
{
    const bool soft = (a.flags & 0xF000) != 0;
    const uint32_t flags = a.flags | (soft && dest.Type() == 32 && source.Type() == 32 ? 0x10 : 0);
    Machine m(dest, source, flags, a.destGamma, a.sourceGamma);
    const DirectModel direct(m, dest, source, a.flags);
    const Back back(dest, source, a);
    Machine second(source, dest, flags, back.dest, back.source, true);
    const SoftModel edges(walk, a.flags);
    const int64_t firstRow = dest.Height() - walk.dest.bottom;
    for (int64_t y = 0; y < walk.dh; ++y)
        for (int64_t x = 0; x < walk.dw; ++x) {
            const int64_t row = firstRow + y, column = walk.dest.left + x;
            if (!soft && !walk.scaled && direct.Serves()) {
                const int64_t sourceRow = source.Height() - walk.source.bottom + y;
                direct.Pixel(dest.Row(row) + column * BitsOf(dest.Type()) / 8,
                             source.Row(sourceRow) + (walk.source.left + x) * BitsOf(source.Type()) / 8, y,
                             x);
                continue;
            }
            ReadAt(m, source, walk, x, y);
            const int64_t sx = Walk::Place(x, walk.dw - 1, walk.stepX, walk.sw) / 16384;
            const int64_t sy = Walk::Place(y, walk.dh - 1, walk.stepY, walk.sh) / 16384;
            const int64_t d = soft ? edges.Distance(walk.scaled ? sx : x, walk.scaled ? sy : y) : 0;
            if (d) {
                second.SetSource(dest, column, row);
                second.x.readPixel(&second.x);
                m.x.slots[1] = second.x.slots[0];
                m.x.op.weight16 = uint16_t(d * edges.s);
                m.x.op.weight8 = uint8_t(d * edges.s / 256);
                second.x.opPixel(&m.x);
            }
            m.Write(dest, column, row);
        }
}

struct SubpixelAxis
{
    int64_t first, end; // pixels
    int64_t coverFirst, coverLast;
    int64_t position, step, last;
    bool narrow;

    SubpixelAxis(int64_t d0, int64_t d1, int64_t s0, int64_t s1, int64_t theStep)
        : first(d0 / 16384), end((d1 + 16383) / 16384), coverFirst((first + 1) * 16384 - d0),
          coverLast(d1 - (end - 1) * 16384), position(s0), step(std::max<int64_t>(theStep, 0)),
          last((s1 + 16383) / 16384 - 1), narrow(s1 - s0 <= 16384)
    {
        if (end - first == 1)
            coverFirst = coverLast = d1 - d0;
    }
    int64_t Coverage(int64_t i) const { return i == first ? coverFirst : i == end - 1 ? coverLast : 16384; }
    int64_t Held() const { return position / 16384 > last ? last * 16384 : position; }
    void Next(int64_t i) { position += i == first ? step * coverFirst / 16384 : step; }
};

void BlendWorking(Machine& m, const Machine& under, int64_t coverage)
{
    const bool eight = m.x.depth == 0;
    const double weight = double(coverage * (eight ? 255 : 65535) / 16384);
    Channels pixel = Slot(m.x, 0);
    for (size_t c = 0; c < 4; ++c) {
        const double d = Slot(under.x, 0)[c], moved = (pixel[c] - d) * weight;
        pixel[c] = d + (eight ? std::trunc(moved / 256.0) : std::floor(moved / 65536.0));
    }
    PutSlot(m.x, 0, pixel);
}

void ModelSubpixel(Picture& dest, const Picture& source, const CopyArguments& a)
{
    VxSubpixelParam p;
    const int32_t any = DibPrepareSubpixelParam(
        &p, dest.Header(), a.destGamma, dest.Pixels(), a.destRect ? &*a.destRect : nullptr, dest.Stride(),
        source.Header(), a.sourceGamma, source.Pixels(), a.sourceRect ? &*a.sourceRect : nullptr,
        source.Stride(), a.flags);
    DibCleanupSubpixelParam(&p);
    if (!any)
        return;
    const auto depth = [&a](const Picture& d, const Picture& s) {
        return Machine(d, s, a.flags, 1.0, 1.0).x.depth;
    };
    const uint32_t flags = a.flags | (depth(dest, source) != depth(dest, dest) ? 0x10 : 0);
    const Back back(dest, source, a);
    Machine m(dest, source, flags, a.destGamma, a.sourceGamma);
    Machine under(dest, dest, flags, back.dest, back.source);
    SubpixelAxis y(p.destClip.top, p.destClip.bottom, p.sourceClip.top, p.sourceClip.bottom, p.stepY);
    for (int64_t j = y.first; j < y.end; y.Next(j), ++j) {
        SubpixelAxis x(p.destClip.left, p.destClip.right, p.sourceClip.left, p.sourceClip.right, p.stepX);
        for (int64_t i = x.first; i < x.end; x.Next(i), ++i) {
            const int64_t column = x.Held() / 16384, row = y.Held() / 16384;
            m.SetSource(source, column, source.Height() - 1 - row);
            m.x.fractionX = uint32_t(x.Held() % 16384);
            m.x.fractionY = uint32_t(y.Held() % 16384);
            m.x.rowOffset = row == y.last ? 0 : -source.Stride();
            if (column == x.last || x.narrow)
                m.x.readLine(&m.x);
            else
                m.x.readFiltered(&m.x);
            const int64_t coverage = x.Coverage(i) * y.Coverage(j) / 16384, memoryRow = dest.Height() - 1 - j;
            if (coverage < 16384 && !(a.flags & VXDIBF_NOEDGEBLEND)) {
                under.SetSource(dest, i, memoryRow);
                under.x.readPixel(&under.x);
                BlendWorking(m, under, coverage);
            }
            m.Write(dest, i, memoryRow);
        }
    }
}

} // namespace

bool ModelCopy(Picture& dest, const Picture& source, const CopyArguments& a)
{
    const bool fine = (a.flags & 15) >= 3, subpixel = (a.flags & VXDIBF_SUBPIXEL) != 0;
    const bool scalable = IsScalablePair(dest.Type(), source.Type());
    if (subpixel && fine && (HasFraction(a.destRect) || HasFraction(a.sourceRect))) {
        if (!scalable)
            ModelSubpixel(dest, source, a);
        return !scalable;
    }
    const auto rect = [subpixel](const std::optional<RECT>& r, const Picture& p) {
        return !r ? p.Whole() : subpixel ? Divided(*r) : *r;
    };
    const RECT d = rect(a.destRect, dest), s = rect(a.sourceRect, source);
    const bool differ = d.right - d.left != s.right - s.left || d.bottom - d.top != s.bottom - s.top;
    if (differ && fine && scalable)
        return false;
    RECT clippedD, clippedS, clip;
    VxDibPrepareRects(dest.Header(), &clippedD, &d, source.Header(), &clippedS, &s, &clip);
    if (clippedD.left < clippedD.right && clippedS.left < clippedS.right)
        ModelPumps(dest, source, a, Walk(clippedD, clippedS, clip, fine));
    return true;
}

void ModelSet(Picture& dest, const RECT& area, const float (&colour)[4], uint32_t flags)
{
    Machine m(dest, dest, flags, 1.0, 1.0);
    const float channels[] = {colour[2], colour[1], colour[0], colour[3]};
    Channels pixel;
    for (size_t c = 0; c < 4; ++c) {
        const float top = m.x.depth == 1 ? 65535.0f : 255.0f;
        const auto cut = int64_t(std::trunc(channels[c] * top));
        pixel[c] = m.x.depth == 2 ? double(channels[c]) : double(cut & int64_t(top));
    }
    PutSlot(m.x, 0, pixel);
    for (int32_t y = std::max(area.top, 0); y < std::min(area.bottom, dest.Height()); ++y)
        for (int32_t x = std::max(area.left, 0); x < std::min(area.right, dest.Width()); ++x)
            m.Write(dest, x, dest.Height() - 1 - y);
}

namespace {

// The part of pixel i that a rectangle's side covers, in 1/16384.
int64_t Covered(int64_t i, int64_t first, int64_t last)
{
    return std::max<int64_t>(std::min((i + 1) * 16384, last) - std::max(i * 16384, first), 0);
}

} // namespace

void ModelFade(Picture& dest, const RECT& rect, const float (&colour)[4], float amount, bool keepAlpha)
{
    const float held = std::isnan(amount) ? 0.0f : std::clamp(amount, 0.0f, 1.0f);
    const auto whole = int64_t(held * 16384.0f);
    for (int32_t y = 0; y < dest.Height(); ++y)
        for (int32_t x = 0; x < dest.Width(); ++x) {
            const int64_t rows = Covered(y, rect.top, rect.bottom),
                          columns = Covered(x, rect.left, rect.right);
            if (rows == 0 || columns == 0)
                continue;
            const int64_t weight = whole * rows / 16384 * columns / 16384;
            const int64_t a = weight == whole ? int64_t(held * 255.0f) : weight * 255 / 16384;
            const float f = held * (float(rows) / 16384.0f) * (float(columns) / 16384.0f);
            for (int32_t c = 0; c < (keepAlpha ? 3 : 4); ++c) {
                uint8_t* const at = dest.Row(dest.Height() - 1 - y) + x * BitsOf(dest.Type()) / 8;
                if (dest.Type() == 32) {
                    float p;
                    std::memcpy(&p, at + 4 * c, 4);
                    p = p + (colour[c] - p) * f;
                    std::memcpy(at + 4 * c, &p, 4);
                    continue;
                }
                const auto byte = uint8_t(int64_t(std::trunc(colour[c] * 255.0f)));
                const double step = double((int64_t(byte) - at[c]) * a + 128);
                const double moved = std::floor((step + std::floor(step / 256.0)) / 256.0) + at[c];
                at[c] = uint8_t(std::clamp(moved, 0.0, 255.0));
            }
        }
}

void ModelInterlace(Picture& dest, const RECT& destRect, const Picture& source, const RECT& sourceRect,
                    int32_t field, uint32_t flags)
{
    Machine m(dest, source, flags, 0.0, 0.0), below(dest, source, flags, 0.0, 0.0);
    const int64_t height = sourceRect.bottom - sourceRect.top;
    const int64_t from = source.Height() - sourceRect.bottom, to = dest.Height() - destRect.bottom;
    for (int64_t r = 0; r < height; ++r)
        for (int64_t i = 0; i < sourceRect.right - sourceRect.left; ++i) {
            const bool kept = (sourceRect.bottom - r) % 2 == field;
            const int64_t first = kept || height == 1 ? r : r == 0 ? 1 : r - 1;
            const int64_t second = kept || height == 1 ? r : r == height - 1 ? r - 1 : r + 1;
            m.SetSource(source, sourceRect.left + i, from + first);
            m.x.readPixel(&m.x);
            below.SetSource(source, sourceRect.left + i, from + second);
            below.x.readPixel(&below.x);
            Channels a = Slot(m.x, 0);
            const Channels b = Slot(below.x, 0);
            for (size_t c = 0; c < 4 && !kept; ++c)
                a[c] = m.x.depth == 2 ? double((float(a[c]) + float(b[c])) * 0.5f)
                                      : std::floor((a[c] + b[c]) / 2.0);
            PutSlot(m.x, 0, a);
            m.Write(dest, destRect.left + i, to + r);
        }
}

} // namespace vxtest
