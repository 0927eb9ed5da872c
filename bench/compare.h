// Works, their contenders and their floors, measured side by side.
//
// A work is one job at one size. Its contenders all do that job, or the nearest that a peer library
// has: the library's own call, the peers, and the floor, which is what no implementation can be
// expected to beat. Times are compared only inside one work, whose contenders take turns in random
// order for several rounds: a machine that is busy or slows down then hits all of them, and the
// fastest round of each is what counts.
#pragma once

#include "memory.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace vxbench {

// Pixels and rows. A work without a picture has a number of items, and a height of 0.
struct Size
{
    int32_t width = 0;
    int32_t height = 0;

    int64_t Pixels() const { return int64_t(width) * height; }
};

std::string ToText(Size size);

// One call of a contender. A call should last a microsecond or more: loop inside over shorter work.
using Call = std::function<void()>;

enum class Answer
{
    Near, // a peer's own idea of the job
    Same, // must leave the library's bytes: tested before anything is measured
};

enum class Threads
{
    One,
    All, // as many as the machine has; times are then wall time, not processor time
};

// What one call reads and writes, in bytes a pixel. Bytes count where their cache line moves: who takes
// one channel of four reads all four, who sets one channel of four reads and writes all four.
struct Traffic
{
    int32_t read; // of what is not written
    int32_t written;
    bool inPlace; // what is written is read first
};

constexpr Traffic kInPlaceBytes{0, 4, true};
constexpr Traffic kInPlaceFloats{0, 16, true};

constexpr double kCopyGoal = 1.3; // times the copy, for pictures too large for the inner caches
constexpr double kNoGoal = 0.0;

class Work
{
public:
    struct Contender
    {
        std::string name;
        Call call;
        Answer answer = Answer::Near;
    };

    explicit Work(Size size) : size_(size) {}
    Work(const Work&) = delete;
    Work& operator=(const Work&) = delete;

    // The library's call; every work has one.
    void Vx(Call call) { vx_ = {"vx", std::move(call)}; }

    void Peer(std::string name, Call call, Answer answer = Answer::Near)
    {
        peers_.push_back({std::move(name), std::move(call), answer});
    }

    // The yardstick where it is no copy: say another way to the same result. With a goal, the library
    // should take no more than that many times as long.
    void Floor(std::string name, Call call, double goal = kNoGoal);

    // The yardstick of work that goes over memory once: see BareCopy. Full frames have kCopyGoal.
    void CopyFloor(Traffic traffic);

    void Use(Threads threads) { threads_ = threads; }

    // Keeps a value as long as the work lives: calls refer to it.
    template <class T>
    T& Own(T value)
    {
        auto owned = std::make_shared<T>(std::move(value));
        T& reference = *owned;
        owned_.push_back(std::move(owned));
        return reference;
    }

    // Memory that calls change. It gets its present content back before each round, so that no
    // contender works on what another left behind.
    void Changes(std::span<uint8_t> bytes);
    void Restore();

    Size size() const { return size_; }
    Threads threads() const { return threads_; }
    double goal() const { return goal_; }
    const Contender& vx() const { return vx_; }
    const Contender& floor() const { return floor_; }
    const std::vector<Contender>& peers() const { return peers_; }

    // The peers that promised the library's bytes and gave others.
    std::vector<std::string> Differing();

private:
    struct Changed
    {
        std::span<uint8_t> bytes;
        std::vector<uint8_t> original;
    };

    std::vector<uint8_t> ResultOf(const Call& call);

    Size size_;
    Threads threads_ = Threads::One;
    double goal_ = kNoGoal;
    Contender vx_, floor_;
    std::vector<Contender> peers_;
    std::vector<Changed> changed_;
    std::vector<std::shared_ptr<void>> owned_;
};

// A copy that reads and writes the same bytes as the work: row by row it reads what the work reads,
// ORs it together, and writes as many bytes as the work writes, into themselves where the work is in
// place. So a copy of a frame is that copy; mixing a frame into another is set against reading both and
// writing the one, scaling a frame against reading it and writing it back, filling against setting.
// Copying half the sum of the bytes from here to there would be an easier yardstick: it takes up to
// twice as much memory, and more of it falls out of the caches.
class BareCopy
{
public:
    BareCopy(Size size, Traffic traffic, Threads threads);
    void operator()();

private:
    void Row(int32_t y);

    Size size_;
    Traffic traffic_;
    Threads threads_;
    Memory destination_, source_;
};

// While it lives, parallel loops use one thread only.
class OnOneThread
{
public:
    OnOneThread();
    ~OnOneThread();
    OnOneThread(const OnOneThread&) = delete;
    OnOneThread& operator=(const OnOneThread&) = delete;

private:
    int before_;
};

struct Outcome
{
    struct Peer
    {
        std::string name;
        double overFloor = 0;
    };

    std::string work;
    Size size;
    std::string floor;
    double goal = kNoGoal;
    double vxOverFloor = 0;
    std::vector<Peer> peers;            // fastest first
    std::vector<std::string> differing; // peers that were to leave the library's bytes and did not

    bool HasPeer() const { return !peers.empty(); }
    double VxOverBestPeer() const { return vxOverFloor / peers.front().overFloor; }
    // Behind by more than runs differ among themselves.
    bool SlowerThanPeer() const { return HasPeer() && VxOverBestPeer() > 1.05; }
    bool MissesGoal() const { return goal != kNoGoal && vxOverFloor > goal; }
};

struct Effort
{
    int rounds;
    double secondsPerTurn;
};
constexpr Effort kThorough{12, 0.005};
constexpr Effort kQuick{4, 0.002};

class Suite
{
public:
    using Build = std::function<void(Work&)>;

    // `build` makes the contenders of the work anew for each size; what the work owns lives while it
    // is measured.
    void Add(std::string work, std::vector<Size> sizes, Build build);

    // Measures the works whose "name size" matches the regular expression. `progress` hears of each
    // before it starts, with its number and how many there are.
    using Progress = std::function<void(const std::string& work, size_t number, size_t count)>;
    std::vector<Outcome> Run(const std::string& filter, Effort effort, const Progress& progress) const;

private:
    struct Entry
    {
        std::string work;
        Size size;
        Build build;
    };

    static Outcome Measure(const Entry& entry, Effort effort);

    std::vector<Entry> entries_;
};

} // namespace vxbench
