#include "compare.h"

#include "kernel/parallel.h"
#include "plain.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <limits>
#include <map>
#include <omp.h>
#include <regex>

namespace vxbench {
namespace {

// Keeps the fastest round of each contender.
class Fastest : public benchmark::BenchmarkReporter
{
public:
    explicit Fastest(Threads threads) : threads_(threads) {}

    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override
    {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration)
                continue;
            const double total =
                threads_ == Threads::One ? run.cpu_accumulated_time : run.real_accumulated_time;
            const double seconds = total / double(run.iterations);
            const auto known = seconds_.try_emplace(run.run_name.function_name, seconds).first;
            known->second = std::min(known->second, seconds);
        }
    }

    double Seconds(const Work::Contender& contender) const { return seconds_.at(contender.name); }

private:
    Threads threads_;
    std::map<std::string, double> seconds_;
};

void Register(Work& work, const Work::Contender& contender, Effort effort)
{
    const auto turn = [&work, &contender](benchmark::State& state) {
        work.Restore();
        contender.call(); // wakes threads and fills caches
        for (auto _ : state) {
            contender.call();
            benchmark::ClobberMemory();
        }
    };
    auto* registered = benchmark::RegisterBenchmark(contender.name.c_str(), turn);
    registered->Repetitions(effort.rounds)->MinTime(effort.secondsPerTurn);
    if (work.threads() == Threads::All)
        registered->UseRealTime();
}

// Contenders of one work share a run, so that the random order of their rounds mixes them and no
// other work comes between.
Fastest RunInTurns(Work& work, Effort effort)
{
    benchmark::ClearRegisteredBenchmarks();
    Register(work, work.vx(), effort);
    Register(work, work.floor(), effort);
    for (const Work::Contender& peer : work.peers())
        Register(work, peer, effort);
    Fastest fastest(work.threads());
    benchmark::RunSpecifiedBenchmarks(&fastest);
    return fastest;
}

} // namespace

std::string ToText(Size size)
{
    const std::string width = std::to_string(size.width);
    return size.height ? width + "x" + std::to_string(size.height) : width;
}

void Work::Floor(std::string name, Call call, double goal)
{
    floor_ = {std::move(name), std::move(call)};
    goal_ = goal;
}

void Work::CopyFloor(Traffic traffic)
{
    constexpr int64_t kFullFrame = 1920 * 1080;
    auto copy = std::make_shared<BareCopy>(size_, traffic, threads_);
    Floor(
        traffic.read || traffic.inPlace ? "copy" : "set", [copy] { (*copy)(); },
        size_.Pixels() >= kFullFrame ? kCopyGoal : kNoGoal);
}

void Work::Changes(std::span<uint8_t> bytes)
{
    changed_.push_back({bytes, {bytes.begin(), bytes.end()}});
}

void Work::Restore()
{
    for (const Changed& changed : changed_)
        std::copy(changed.original.begin(), changed.original.end(), changed.bytes.begin());
}

std::vector<uint8_t> Work::ResultOf(const Call& call)
{
    Restore();
    call();
    std::vector<uint8_t> result;
    for (const Changed& changed : changed_)
        result.insert(result.end(), changed.bytes.begin(), changed.bytes.end());
    return result;
}

std::vector<std::string> Work::Differing()
{
    std::vector<std::string> names;
    const std::vector<uint8_t> wanted = ResultOf(vx_.call);
    for (const Contender& peer : peers_)
        if (peer.answer == Answer::Same && ResultOf(peer.call) != wanted)
            names.push_back(peer.name);
    return names;
}

BareCopy::BareCopy(Size size, Traffic traffic, Threads threads)
    : size_(size), traffic_(traffic), threads_(threads),
      destination_(size_t(size.Pixels() * traffic.written), 1),
      source_(size_t(size.Pixels() * traffic.read), 2)
{}

void BareCopy::operator()()
{
    if (threads_ == Threads::All) {
        vx::ParallelRows(size_.height, std::numeric_limits<int64_t>::max(), [this](int32_t y) { Row(y); });
        return;
    }
    for (int32_t y = 0; y < size_.height; ++y)
        Row(y);
}

void BareCopy::Row(int32_t y)
{
    const size_t before = size_t(y) * size_t(size_.width);
    plain::Copy(destination_.Bytes() + before * size_t(traffic_.written), size_t(traffic_.written),
                traffic_.inPlace, source_.Bytes() + before * size_t(traffic_.read), size_t(traffic_.read),
                size_t(size_.width));
}

OnOneThread::OnOneThread() : before_(omp_get_max_threads())
{
    omp_set_num_threads(1);
}

OnOneThread::~OnOneThread()
{
    omp_set_num_threads(before_);
}

void Suite::Add(std::string work, std::vector<Size> sizes, Build build)
{
    for (const Size size : sizes)
        entries_.push_back({work, size, build});
}

std::vector<Outcome> Suite::Run(const std::string& filter, Effort effort, const Progress& progress) const
{
    const std::regex wanted(filter, std::regex::icase);
    std::vector<const Entry*> chosen;
    for (const Entry& entry : entries_)
        if (std::regex_search(entry.work + " " + ToText(entry.size), wanted))
            chosen.push_back(&entry);
    std::vector<Outcome> outcomes;
    for (const Entry* entry : chosen) {
        progress(entry->work + " " + ToText(entry->size), outcomes.size() + 1, chosen.size());
        outcomes.push_back(Measure(*entry, effort));
    }
    return outcomes;
}

Outcome Suite::Measure(const Entry& entry, Effort effort)
{
    Work work(entry.size);
    entry.build(work);
    std::unique_ptr<OnOneThread> limit;
    if (work.threads() == Threads::One)
        limit = std::make_unique<OnOneThread>();

    Outcome outcome{entry.work, entry.size, work.floor().name, work.goal(), 0, {}, work.Differing()};
    const Fastest fastest = RunInTurns(work, effort);
    const double floor = fastest.Seconds(work.floor());
    outcome.vxOverFloor = fastest.Seconds(work.vx()) / floor;
    for (const Work::Contender& peer : work.peers())
        outcome.peers.push_back({peer.name, fastest.Seconds(peer) / floor});
    std::sort(outcome.peers.begin(), outcome.peers.end(),
              [](const auto& a, const auto& b) { return a.overFloor < b.overFloor; });
    return outcome;
}

} // namespace vxbench
