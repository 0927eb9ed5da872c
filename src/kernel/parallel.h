// Rows shared among worker threads for the length of a call.
//
// The rows 0 to height - 1 are divided statically: each worker takes one contiguous run, each row is
// worked once, and the call returns when all are done. Workers take over the caller's MXCSR, so that
// rounding and denormals are the same on every row, whatever the number of threads. A row must not
// throw.
#pragma once

#include <cstdint>
#if defined(__x86_64__)
#include <xmmintrin.h>
#endif
#if !defined(_OPENMP)
#include <algorithm>
#include <exception>
#include <thread>
#include <vector>
#endif

namespace vx {

// Less work than touching so many bytes stays on the calling thread. One core does that in about 50
// microseconds: half of it is the gain to be had, against a fork of 1.4 microseconds while the workers
// spin, of hundreds once they sleep, and of a time slice where other work keeps the processors busy.
constexpr int64_t kParallelBytes = 4 * 1024 * 1024;

// Sets the caller's float mode on a worker for a scope.
class WithFloatMode
{
public:
#if defined(__x86_64__)
    static unsigned Current()
    {
        return _mm_getcsr();
    }
    explicit WithFloatMode(unsigned mode) : saved_(_mm_getcsr())
    {
        _mm_setcsr(mode);
    }
    ~WithFloatMode()
    {
        _mm_setcsr(saved_);
    }
#else
    static unsigned Current()
    {
        return 0;
    }
    explicit WithFloatMode(unsigned) {}
#endif
    WithFloatMode(const WithFloatMode&) = delete;
    WithFloatMode& operator=(const WithFloatMode&) = delete;

private:
    [[maybe_unused]] unsigned saved_ = 0;
};

// Calls row(y) for every row. `bytesTouched` is what the whole call reads and writes; where the work
// on a byte takes longer than touching it, as many times more.
template <class Row>
void ParallelRows(int32_t height, int64_t bytesTouched, const Row& row)
{
    const bool share = bytesTouched >= kParallelBytes && height > 1;
    if (!share) {
        for (int32_t y = 0; y < height; ++y)
            row(y);
        return;
    }
    const unsigned mode = WithFloatMode::Current();
#if defined(_OPENMP)
#pragma omp parallel
    {
        const WithFloatMode same(mode);
#pragma omp for schedule(static)
        for (int32_t y = 0; y < height; ++y)
            row(y);
    }
#else
    const int32_t workers = std::min(height, int32_t(std::max(2u, std::thread::hardware_concurrency())));
    const auto run = [&row, height, workers, mode](int32_t worker) {
        const WithFloatMode same(mode);
        const int32_t last = int32_t(int64_t(height) * (worker + 1) / workers);
        for (int32_t y = int32_t(int64_t(height) * worker / workers); y < last; ++y)
            row(y);
    };
    std::vector<std::jthread> threads; // joined on the way out
    for (int32_t worker = 1; worker < workers; ++worker) {
        try {
            threads.emplace_back(run, worker);
        } catch (const std::exception&) { // no thread or no memory to be had
            run(worker);
        }
    }
    run(0);
#endif
}

} // namespace vx
