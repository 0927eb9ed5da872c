// vx_bench: the library beside its peers and its floors.
#include "families.h"
#include "peers.h"
#include "report.h"
#include "vx/capability.h"
#include "vx/kernel.h"
#include "vx/platform/locale.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <regex>
#include <string>

namespace {

constexpr char kHelp[] = R"(vx_bench measures the library beside peer libraries and a floor, in one run.

  --filter=REGEX  only works whose "name size" matches, case ignored: ^(?!.*all threads) leaves out
                  the works that take as many threads as there are
  --quick         fewer and shorter rounds
  --json=FILE     writes the ratios there too
  --help

All figures are ratios of times. The floor is a copy that moves the same bytes, or the yardstick that
is named. SLOWER: more than a twentieth behind the best peer. OVER: beyond the goal, 1.3 copies for
full frames. DIFFERS: a contender that must leave the same bytes as the library does not; the exit
status is then 1. Works on all threads need a machine that does nothing else.
)";

struct Options
{
    std::string filter = "";
    std::string json;
    bool quick = false;
    bool help = false;
    std::string refused; // the first argument that is no option
};

bool TakeValue(const std::string& argument, const std::string& name, std::string& value)
{
    if (argument.rfind(name, 0) != 0)
        return false;
    value = argument.substr(name.size());
    return true;
}

Options Parse(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (TakeValue(argument, "--filter=", options.filter) || TakeValue(argument, "--json=", options.json))
            continue;
        if (argument == "--quick")
            options.quick = true;
        else if (argument == "--help")
            options.help = true;
        else if (options.refused.empty())
            options.refused = argument;
    }
    return options;
}

void SetUpBenchmark()
{
    char name[] = "vx_bench";
    char interleave[] = "--benchmark_enable_random_interleaving=true";
    char* arguments[] = {name, interleave, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
}

// What text needs. In English, so that peers without a locale can give the same text.
void StartKernel()
{
    VxPlatform_SetUserLocale("en-US");
    VxKernel_EarlyInitialize(nullptr, 0);
}

void ShowProgress(const std::string& work, size_t number, size_t count)
{
    std::fprintf(stderr, "[%zu/%zu] %s\n", number, count, work.c_str());
}

int Run(const Options& options)
{
    using namespace vxbench;
    // The probe flushes denormals on this thread. Values that in-place work shrinks call after call
    // would otherwise slow all contenders by turns.
    VxGetCPUSupport(0);
    StartKernel();
    SetUpPeers();
    SetUpBenchmark();

    Suite suite;
    AddMixWorks(suite);
    AddChannelWorks(suite);
    AddCompositeWorks(suite);
    AddScaleWorks(suite);
    AddConvertWorks(suite);
    AddListWorks(suite);
    AddTextWorks(suite);
    AddTimeWorks(suite);
    AddSettingsWorks(suite);
    AddKernelWorks(suite);
    const auto outcomes = suite.Run(options.filter, options.quick ? kQuick : kThorough, ShowProgress);

    PrintTable(outcomes);
    std::printf("%s\n", PeersText().c_str());
    if (!options.json.empty() && !WriteJson(outcomes, options.json)) {
        std::fprintf(stderr, "cannot write %s\n", options.json.c_str());
        return 2;
    }
    return std::all_of(outcomes.begin(), outcomes.end(), [](auto& o) { return o.differing.empty(); }) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = Parse(argc, argv);
    if (options.help || !options.refused.empty()) {
        if (!options.refused.empty())
            std::fprintf(stderr, "unknown option: %s\n\n", options.refused.c_str());
        std::fputs(kHelp, options.help ? stdout : stderr);
        return options.help ? 0 : 2;
    }
    try {
        return Run(options);
    } catch (const std::regex_error&) {
        std::fprintf(stderr, "no regular expression: %s\n", options.filter.c_str());
        return 2;
    }
}
