// Rows shared among worker threads for the length of a call.
//
// The rows 0 to height - 1 are divided statically: each worker takes one contiguous run, each row is
// worked once, and the call returns when all are done. Workers take over the caller's MXCSR, so that
// rounding and denormals are the same on every row, whatever the number of threads. A frame of fewer
// than kParallelBytes stays on the calling thread: waking workers can cost more than its pixels.
#pragma once

#include <cstdint>
#if defined(__x86_64__)
#include <xmmintrin.h>
#endif
#if !defined(_OPENMP)
#include <algorithm>
#include <thread>
#include <vector>
#endif

namespace vx {

constexpr int64_t kParallelBytes = 512 * 1024;

// Sets the caller's float mode on a worker for a scope.
class WithFloatMode
{
public:
#if defined(__x86_64__)
    static unsigned Current() { return _mm_getcsr(); }
    explicit WithFloatMode(unsigned mode) : saved_(_mm_getcsr()) { _mm_setcsr(mode); }
    ~WithFloatMode() { _mm_setcsr(saved_); }
#else
    static unsigned Current() { return 0; }
    explicit WithFloatMode(unsigned) {}
#endif
    WithFloatMode(const WithFloatMode&) = delete;
    WithFloatMode& operator=(const WithFloatMode&) = delete;

private:
    [[maybe_unused]] unsigned saved_ = 0;
};

// Calls row(y) for every row. `bytesTouched` is what the whole call reads and writes.
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
    const int32_t workers = std::min<int32_t>(height, int32_t(std::max(2u, std::thread::hardware_concurrency())));
    std::vector<std::jthread> threads;
    for (int32_t worker = 0; worker < workers; ++worker) {
        const int32_t first = int32_t(int64_t(height) * worker / workers);
        const int32_t last = int32_t(int64_t(height) * (worker + 1) / workers);
        threads.emplace_back([&row, first, last, mode] {
            const WithFloatMode same(mode);
            for (int32_t y = first; y < last; ++y)
                row(y);
        });
    }
#endif
}

} // namespace vx
