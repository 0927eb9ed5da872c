// Random operations on every kind of list, beside the same ones on a vector.
#include "containers/list_support.h"
#include "support/random.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace vxtest;

int32_t WholeSteps(int32_t slots, int32_t step)
{
    return slots % step ? WholeSteps(slots + 1, step) : slots;
}

class Model
{
public:
    Model(const ListKind& kind, int32_t step, uint64_t seed)
        : kind_(kind), step_(step), random_(seed), list_(kind, {}, step)
    {
        allocated_ = list_->allocated;
    }

    void Step()
    {
        static constexpr void (Model::*kOperations[])() = {
            &Model::Insert, &Model::Insert,     &Model::Delete,   &Model::MoveRange,
            &Model::Search, &Model::ChangeRoom, &Model::HandOver, &Model::ForceCount,
        };
        (this->*kOperations[random_.Int(0, int(std::size(kOperations)) - 1)])();
    }

    void Check()
    {
        ASSERT_EQ(list_.Values(), want_) << last_;
        ASSERT_EQ(list_->allocated, allocated_) << last_;
        ASSERT_EQ(list_->allocated % list_->growBy, 0);
        for (int32_t slot = list_->count; slot < list_->allocated; ++slot)
            for (size_t byte = 0; byte < list_->itemSize; ++byte)
                ASSERT_EQ(list_.Slot(slot)[byte], std::byte(0)) << "spare slot after " << last_;
    }

private:
    int32_t Count() const { return int32_t(want_.size()); }
    size_t Place(int32_t index) const { return size_t(index < 0 || index > Count() ? Count() : index); }

    void ExpectRoomFor(int32_t more)
    {
        if (allocated_ < Count() + more)
            allocated_ += WholeSteps(more, step_);
    }

    void Insert()
    {
        last_ = "insert";
        const int32_t index = random_.Int(-2, Count() + 2);
        std::vector<int64_t> values(size_t(random_.Int(0, random_.Int(0, 3) ? 3 : 40)));
        for (int64_t& value : values)
            value = random_.Int(1, 40); // few values: many items are equal
        if (kind_.IsHeap())             // one by one, so the room grows one by one
            for (size_t i = 0; i < values.size(); ++i) {
                ExpectRoomFor(1);
                want_.insert(want_.begin() + int64_t(Place(index < 0 ? -1 : index + int32_t(i))), values[i]);
            }
        else {
            ExpectRoomFor(int32_t(values.size()));
            want_.insert(want_.begin() + int64_t(Place(index)), values.begin(), values.end());
        }
        ASSERT_EQ(list_.Insert(index, values), S_OK);
    }

    // A negative number: an array of slots whatever the kind, items of a heap list among them.
    void HandOver()
    {
        last_ = "hand over";
        if (kind_.IsArray() || kind_.options & VXLIST_OPT_PRIVATEHEAP)
            return;
        void* slots[3];
        const int32_t n = random_.Int(1, 3), index = random_.Int(-1, Count());
        ExpectRoomFor(n);
        const auto at = want_.begin() + int64_t(Place(index));
        std::vector<int64_t> values;
        for (int32_t i = 0; i < n; ++i) {
            values.push_back(random_.Int(1, 40));
            slots[i] = kind_.IsHeap() ? std::memcpy(std::malloc(8), &values.back(), 8)
                                      : reinterpret_cast<void*>(intptr_t(values.back()));
        }
        want_.insert(at, values.begin(), values.end());
        ASSERT_EQ(VxList_InsertList(list_, index, slots, -n), S_OK);
    }

    void ShrinkIfAsked(int32_t shrink)
    {
        const int32_t spare = allocated_ - Count();
        if (shrink && spare > step_)
            allocated_ -= spare / step_ * step_;
    }

    // Slots that are given up keep their bytes, and show them when the count rises again.
    void ForceCount()
    {
        last_ = "force count";
        if (!kind_.IsArray())
            return;
        const int32_t less = random_.Int(0, Count()), shrink = random_.Int(0, 1);
        ASSERT_EQ(VxList_ArrayForceItemCount(list_, less, shrink), S_OK);
        std::vector<int64_t> slots = want_;
        want_.resize(size_t(less));
        ShrinkIfAsked(shrink);
        ASSERT_EQ(list_.Values(), want_);
        ASSERT_EQ(list_->allocated, allocated_);

        slots.resize(std::min(slots.size(), size_t(allocated_))); // what the block still has of them
        slots.resize(slots.size() + size_t(random_.Int(0, 9)));
        allocated_ += WholeSteps(std::max(int32_t(slots.size()) - allocated_, 0), step_);
        ASSERT_EQ(VxList_ArrayForceItemCount(list_, int32_t(slots.size()), 0), S_OK);
        want_ = slots;
    }

    void Delete()
    {
        last_ = "delete";
        const int32_t first = random_.Int(0, Count() + 1), n = random_.Int(-1, 12),
                      shrink = random_.Int(0, 1);
        const bool nothing = n == 0 || (n < 0 && first >= Count());
        const bool refused = !nothing && first >= Count();
        ASSERT_EQ(VxList_DeleteList(list_, first, n, shrink), refused ? E_FAIL : S_OK);
        if (nothing || refused)
            return;
        const int32_t end = n < 0 ? Count() : std::min(first + n, Count());
        want_.erase(want_.begin() + first, want_.begin() + end);
        ShrinkIfAsked(shrink);
    }

    void MoveRange()
    {
        last_ = "move";
        const int32_t from = random_.Int(0, Count() + 1), to = random_.Int(-1, Count() + 1);
        const int32_t n = random_.Int(0, 1) ? random_.Int(-1, 5) : random_.Int(-1, 100);
        const int32_t target = std::max(to, 0);
        const int32_t moved = n < 0 ? Count() - std::max(from, target) : n;
        const bool nothing = moved < 1 || from == target;
        const bool refused = !nothing && std::max(from, target) + moved > Count();
        ASSERT_EQ(VxList_MoveRange(list_, from, to, n), refused ? E_FAIL : S_OK);
        if (nothing || refused)
            return;
        const std::vector<int64_t> items(want_.begin() + from, want_.begin() + from + moved);
        want_.erase(want_.begin() + from, want_.begin() + from + moved);
        want_.insert(want_.begin() + target, items.begin(), items.end());
    }

    void Search()
    {
        last_ = "search";
        const int32_t first = random_.Int(-1, Count() + 1), n = random_.Int(-1, Count() + 1);
        const auto begin = want_.begin() + std::clamp(first, 0, Count());
        const auto end = n < 0 ? want_.end() : begin + std::min<int64_t>(n, want_.end() - begin);
        const int64_t value = random_.Int(0, 41);
        const auto found = std::find(begin, end, value);
        const int32_t want = found == end ? -1 : int32_t(found - want_.begin());
        std::byte slot[20] = {};
        std::memcpy(slot, &value, sizeof(value));
        const void* item = kind_.IsArray() ? slot : KeyOf(kind_, value);
        if (kind_.IsHeap() && want >= 0) // found by identity, not by value
            item = list_.Pointer(want);
        ASSERT_EQ(VxList_FindSpecificItemRange(list_, first, n, item), want);

        struct Sought
        {
            const ListKind& kind;
            int64_t value;
            std::vector<int64_t> visited;
        } sought{kind_, value, {}};
        const auto match = [](int64_t word, const void* visited) -> int32_t {
            Sought& sought = *reinterpret_cast<Sought*>(intptr_t(word));
            sought.visited.push_back(List::Value(sought.kind, visited));
            return sought.visited.back() != sought.value;
        };
        const int64_t word = int64_t(reinterpret_cast<intptr_t>(&sought));
        ASSERT_EQ(VxList_FindItemRange(list_, first, n, word, match), want);
        ASSERT_EQ(sought.visited, std::vector<int64_t>(begin, want < 0 ? end : found + 1));
    }

    void ChangeRoom()
    {
        last_ = "change room";
        const int32_t n = random_.Int(-1, 3 * step_);
        const int32_t spareSteps = (allocated_ - Count()) / step_ * step_;
        if (random_.Int(0, 1)) {
            ASSERT_EQ(VxList_GrowAllocated(list_, n), S_OK);
            allocated_ += WholeSteps(std::max(n, 1), step_);
        } else {
            ASSERT_EQ(VxList_ShrinkAllocated(list_, n), S_OK);
            allocated_ -= n < 0 ? spareSteps : std::min(spareSteps, WholeSteps(n, step_));
        }
    }

    const ListKind& kind_;
    const int32_t step_;
    Random random_;
    List list_;
    std::vector<int64_t> want_;
    int32_t allocated_ = 0;
    const char* last_ = "create";
};

TEST(ListModel, EveryKindFollowsTheVector)
{
    for (const ListKind& kind : kAllKinds)
        for (const int32_t step : {4, 5, 16}) {
            SCOPED_TRACE(testing::Message() << kind << ", step " << step);
            Model model(kind, step, uint64_t(step));
            for (int i = 0; i < 3000; ++i) {
                model.Step();
                ASSERT_NO_FATAL_FAILURE(model.Check()) << "operation " << i;
            }
        }
}

} // namespace
