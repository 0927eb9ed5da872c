#include "vxtool/curves.h"

#include "vxtool/failure.h"

namespace vxtool {
namespace {

struct Point
{
    double x;
    Colour y;
};

// "X,Y:X,Y..." with ascending X of 0 to top.
template <class ParseY>
std::vector<Point> ParsePoints(std::string_view option, std::string_view text, double top, ParseY parseY)
{
    std::vector<Point> points;
    for (const std::string& word : SplitAt(text, ':')) {
        const auto parts = SplitAt(word, ',');
        if (parts.size() != 2)
            FailArgument(option, " takes points as X,Y:X,Y, not '", text, "'");
        points.push_back({ParseNumber(option, parts[0], 0.0, top), parseY(parts[1])});
        if (points.size() > 1 && points.back().x <= points[points.size() - 2].x)
            FailArgument(option, " takes points in ascending order, not '", text, "'");
    }
    return points;
}

Colour Between(const Colour& a, const Colour& b, float t)
{
    const auto mix = [t](float from, float to) { return from + (to - from) * t; };
    return {mix(a.blue, b.blue), mix(a.green, b.green), mix(a.red, b.red), mix(a.alpha, b.alpha)};
}

Colour ValueAt(const std::vector<Point>& points, double x)
{
    if (x <= points.front().x)
        return points.front().y;
    for (size_t i = 1; i < points.size(); ++i)
        if (x <= points[i].x) {
            const Point &a = points[i - 1], &b = points[i];
            return Between(a.y, b.y, float((x - a.x) / (b.x - a.x)));
        }
    return points.back().y;
}

} // namespace

CurveTable IdentityCurves()
{
    CurveTable table;
    for (size_t i = 0; i < table.size(); ++i)
        table[i] = uint8_t(i / 4);
    return table;
}

void AddCurve(CurveTable& table, std::string_view option, std::string_view value)
{
    const size_t equals = value.find('=');
    const bool one = equals != std::string_view::npos;
    const int32_t channel = one ? ParseChoice(option, value.substr(0, equals), kChannels) : 0;
    const auto parseY = [option](std::string_view y) {
        return Gray(float(ParseNumber(option, y, 0.0, 255.0)));
    };
    const auto points = ParsePoints(option, one ? value.substr(equals + 1) : value, 255.0, parseY);
    for (int32_t v = 0; v < 256; ++v)
        for (int32_t c = channel; c < (one ? channel + 1 : 3); ++c)
            table[size_t(4 * v + c)] = uint8_t(ValueAt(points, v).red + 0.5f);
}

CurveTable CurvesOf(const Arguments& arguments)
{
    CurveTable table = IdentityCurves();
    for (const std::string& value : arguments.All("--curve"))
        AddCurve(table, "--curve", value);
    return table;
}

std::vector<Colour> Gradient(std::string_view option, std::string_view value, int32_t entries)
{
    const auto parseY = [option](std::string_view y) { return ParseColour(option, y); };
    const auto points = ParsePoints(option, value, 1.0, parseY);
    std::vector<Colour> colours(static_cast<size_t>(entries));
    for (int32_t i = 0; i < entries; ++i)
        colours[size_t(i)] = Premultiplied(ValueAt(points, double(i) / std::max(entries - 1, 1)));
    return colours;
}

} // namespace vxtool
