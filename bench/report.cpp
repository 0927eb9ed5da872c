#include "report.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iomanip>
#include <sstream>

namespace vxbench {
namespace {

std::string Ratio(double ratio)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << ratio;
    return text.str();
}

std::string BestPeer(const Outcome& outcome)
{
    if (!outcome.HasPeer())
        return "-";
    return Ratio(outcome.VxOverBestPeer()) + " " + outcome.peers.front().name;
}

std::string Peers(const Outcome& outcome)
{
    std::string text;
    for (const Outcome::Peer& peer : outcome.peers)
        text += (text.empty() ? "" : ", ") + peer.name + " " + Ratio(peer.overFloor);
    return text;
}

std::string Marks(const Outcome& outcome)
{
    std::string text;
    if (outcome.SlowerThanPeer())
        text += " SLOWER";
    if (outcome.MissesGoal())
        text += " OVER " + Ratio(outcome.goal);
    for (const std::string& peer : outcome.differing)
        text += " DIFFERS: " + peer;
    return text.empty() ? text : text.substr(1);
}

std::vector<std::string> Line(const Outcome& outcome)
{
    return {outcome.work,      ToText(outcome.size),
            BestPeer(outcome), Ratio(outcome.vxOverFloor) + " " + outcome.floor,
            Marks(outcome),    Peers(outcome)};
}

// Names are the benchmark's own; they hold no control characters.
std::string Quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

void WriteObject(std::ostream& out, const Outcome& outcome)
{
    out << "  {\"work\": " << Quoted(outcome.work) << ", \"size\": " << Quoted(ToText(outcome.size))
        << ", \"floor\": " << Quoted(outcome.floor) << ", \"vxOverFloor\": " << outcome.vxOverFloor;
    if (outcome.goal != kNoGoal)
        out << ", \"goal\": " << outcome.goal;
    if (outcome.HasPeer())
        out << ", \"bestPeer\": " << Quoted(outcome.peers.front().name)
            << ", \"vxOverBestPeer\": " << outcome.VxOverBestPeer();
    out << ", \"peersOverFloor\": {";
    const char* separator = "";
    for (const Outcome::Peer& peer : outcome.peers) {
        out << separator << Quoted(peer.name) << ": " << peer.overFloor;
        separator = ", ";
    }
    out << "}, \"slowerThanPeer\": " << (outcome.SlowerThanPeer() ? "true" : "false")
        << ", \"missesGoal\": " << (outcome.MissesGoal() ? "true" : "false")
        << ", \"differs\": " << (outcome.differing.empty() ? "false" : "true") << "}";
}

} // namespace

void PrintTable(const std::vector<Outcome>& outcomes)
{
    std::vector<std::vector<std::string>> lines{
        {"work", "size", "vx / best peer", "vx / floor", "misses", "peers / floor"}};
    for (const Outcome& outcome : outcomes)
        lines.push_back(Line(outcome));
    std::vector<size_t> widths(lines.front().size());
    for (const auto& line : lines)
        for (size_t i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths[i], line[i].size());
    for (const auto& line : lines) {
        for (size_t i = 0; i + 1 < line.size(); ++i)
            std::printf("%-*s  ", int(widths[i]), line[i].c_str());
        std::printf("%s\n", line.back().c_str());
    }

    const auto slower =
        std::count_if(outcomes.begin(), outcomes.end(), [](auto& o) { return o.SlowerThanPeer(); });
    const auto over = std::count_if(outcomes.begin(), outcomes.end(), [](auto& o) { return o.MissesGoal(); });
    std::printf("\n%zu works: %td slower than their best peer, %td over their goal\n", outcomes.size(),
                slower, over);
}

bool WriteJson(const std::vector<Outcome>& outcomes, const std::string& path)
{
    std::ofstream out(path);
    out << "[\n";
    const char* separator = "";
    for (const Outcome& outcome : outcomes) {
        out << separator;
        WriteObject(out, outcome);
        separator = ",\n";
    }
    out << "\n]\n";
    return bool(out.flush());
}

} // namespace vxbench
