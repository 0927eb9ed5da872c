#include "vxtool/resample.h"

#include <cmath>

namespace vxtool {
namespace {

// Source positions that fall to one target position, and the part of each.
struct Span
{
    int32_t first;
    std::vector<float> weights; // sum to 1
};

std::vector<Span> Spans(int32_t sourceSize, double start, double length, int32_t targetSize)
{
    std::vector<Span> spans(static_cast<size_t>(targetSize));
    for (int32_t i = 0; i < targetSize; ++i) {
        const double from = start + length * i / targetSize, to = start + length * (i + 1) / targetSize;
        Span& span = spans[size_t(i)];
        span.first = std::clamp(int32_t(from), 0, sourceSize - 1);
        const int32_t last = std::clamp(int32_t(std::ceil(to)) - 1, span.first, sourceSize - 1);
        float sum = 0.0f;
        for (int32_t s = span.first; s <= last; ++s) {
            span.weights.push_back(float(std::min<double>(to, s + 1) - std::max<double>(from, s)));
            sum += span.weights.back();
        }
        for (float& weight : span.weights)
            weight /= sum;
    }
    return spans;
}

Colour Average(const Frame& picture, const Span& across, const Span& down)
{
    Colour sum;
    for (size_t j = 0; j < down.weights.size(); ++j)
        for (size_t i = 0; i < across.weights.size(); ++i) {
            const float weight = down.weights[j] * across.weights[i];
            const Colour c = picture.Get(across.first + int32_t(i), down.first + int32_t(j));
            sum.blue += c.blue * weight;
            sum.green += c.green * weight;
            sum.red += c.red * weight;
            sum.alpha += c.alpha * weight;
        }
    return sum;
}

} // namespace

Frame Cover(const Frame& picture, int32_t width, int32_t height)
{
    const double scale = std::min(double(picture.Width()) / width, double(picture.Height()) / height);
    const double usedWidth = width * scale, usedHeight = height * scale;
    const auto across = Spans(picture.Width(), (picture.Width() - usedWidth) / 2, usedWidth, width);
    const auto down = Spans(picture.Height(), (picture.Height() - usedHeight) / 2, usedHeight, height);
    Frame result(width, height, picture.PixelForm());
    for (int32_t y = 0; y < height; ++y)
        for (int32_t x = 0; x < width; ++x)
            result.Set(x, y, Average(picture, across[size_t(x)], down[size_t(y)]));
    return result;
}

} // namespace vxtool
