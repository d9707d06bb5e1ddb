// Intrusive counting: every sptr operation keeps the count right and deletes the object exactly
// once, at zero; copies of a RefBase start a count of their own; copies across threads are safe.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "kavo/host/ipc/ref_base.h"

namespace {

using Kavo::MakeSptr;
using Kavo::sptr;

std::atomic<int> g_destroyed{0};

class Tracked : public Kavo::RefBase {
public:
    explicit Tracked(int id = 0) : id_(id) {}
    Tracked(const Tracked&) = default;
    Tracked& operator=(const Tracked&) = default;
    ~Tracked() override { g_destroyed.fetch_add(1); }
    int id_;
};

class Derived : public Tracked {
public:
    Derived() : Tracked(7) {}
};

class RefBaseTest : public ::testing::Test {
protected:
    void SetUp() override { g_destroyed = 0; }
};

// Each scenario starts with `held` owning one fresh object (count 1) and reports a count it
// observed at its interesting point.
struct SptrCase {
    const char* name;
    std::function<int(sptr<Tracked>& held)> scenario;
    int observedCount;
    int destroyedAfterScenario;  // objects gone before `held` is released
    bool heldStillOwns;
};

TEST_F(RefBaseTest, SptrOperationsKeepTheCountAndDeleteAtZero)
{
    const SptrCase cases[] = {
        {"copy construction adds one",
         [](sptr<Tracked>& held) {
             sptr<Tracked> copy(held);
             return copy == nullptr ? -1 : copy->GetSptrRefCount();
         },
         2, 0, true},
        {"move construction transfers without counting",
         [](sptr<Tracked>& held) {
             sptr<Tracked> moved(std::move(held));
             int count = moved->GetSptrRefCount();
             held = std::move(moved);
             return moved == nullptr ? count : -1;
         },
         1, 0, true},
        {"copy assignment releases the previous object",
         [](sptr<Tracked>& held) {
             sptr<Tracked> other = MakeSptr<Tracked>(2);
             other = held;
             return g_destroyed.load() == 1 ? other->GetSptrRefCount() : -1;
         },
         2, 1, true},
        {"move assignment releases the previous object",
         [](sptr<Tracked>& held) {
             sptr<Tracked> other = MakeSptr<Tracked>(2);
             sptr<Tracked> copy(held);
             other = std::move(copy);
             return copy == nullptr ? held->GetSptrRefCount() : -1;
         },
         2, 1, true},
        {"self copy assignment keeps the object",
         [](sptr<Tracked>& held) {
             sptr<Tracked>& alias = held;
             held = alias;
             return held->GetSptrRefCount();
         },
         1, 0, true},
        {"self move assignment keeps the object",
         [](sptr<Tracked>& held) {
             sptr<Tracked>& alias = held;
             held = std::move(alias);
             return held == nullptr ? -1 : held->GetSptrRefCount();
         },
         1, 0, true},
        {"assigning null deletes the last reference",
         [](sptr<Tracked>& held) {
             held = nullptr;
             return g_destroyed.load();
         },
         1, 1, false},
        {"clear deletes the last reference",
         [](sptr<Tracked>& held) {
             held.clear();
             return g_destroyed.load();
         },
         1, 1, false},
        {"assigning a raw pointer to the same object keeps it alive",
         [](sptr<Tracked>& held) {
             held = held.GetRefPtr();
             return held->GetSptrRefCount();
         },
         1, 0, true},
        {"converting copy from a derived pointer shares the count",
         [](sptr<Tracked>& held) {
             sptr<Derived> derived = MakeSptr<Derived>();
             sptr<Tracked> base(derived);
             held = base;
             return derived->GetSptrRefCount();
         },
         3, 1, true},
        {"null pointers compare equal to nullptr on both sides",
         [](sptr<Tracked>&) {
             sptr<Tracked> empty;
             sptr<Tracked> fromNull(nullptr);
             return (empty == nullptr && nullptr == fromNull && !empty && empty == fromNull) ? 1 : 0;
         },
         1, 0, true},
    };
    for (const auto& c : cases) {
        g_destroyed = 0;
        {
            sptr<Tracked> held = MakeSptr<Tracked>(1);
            EXPECT_EQ(c.scenario(held), c.observedCount) << c.name;
            EXPECT_EQ(g_destroyed.load(), c.destroyedAfterScenario) << c.name;
            EXPECT_EQ(held != nullptr, c.heldStillOwns) << c.name;
            if (held) {
                EXPECT_EQ(held->GetSptrRefCount(), 1) << c.name;
            }
        }
        // Whatever the scenario did, every object it made is gone now, each once.
        int made = c.destroyedAfterScenario + (c.heldStillOwns ? 1 : 0);
        EXPECT_EQ(g_destroyed.load(), made) << c.name;
    }
}

TEST_F(RefBaseTest, CopiesOfARefBaseStartAFreshCount)
{
    struct Case {
        const char* name;
        std::function<int(Tracked& original)> scenario;  // returns the copy's count
    };
    const Case cases[] = {
        {"copy construction", [](Tracked& original) { return Tracked(original).GetSptrRefCount(); }},
        {"copy assignment keeps the target's own count",
         [](Tracked& original) {
             sptr<Tracked> target = MakeSptr<Tracked>(9);
             *target = original;
             return target->GetSptrRefCount() - 1;  // one for `target` itself
         }},
        {"a copy owned by its own sptr",
         [](Tracked& original) {
             sptr<Tracked> copy = MakeSptr<Tracked>(original);
             return copy->GetSptrRefCount() - 1;
         }},
    };
    for (const auto& c : cases) {
        sptr<Tracked> a = MakeSptr<Tracked>(1);
        sptr<Tracked> b = a;
        EXPECT_EQ(c.scenario(*a), 0) << c.name;
        EXPECT_EQ(a->GetSptrRefCount(), 2) << c.name;
        EXPECT_EQ(a->id_, 1) << c.name;
    }
}

TEST_F(RefBaseTest, ConcurrentCopiesKeepTheCountAndDeleteOnce)
{
    constexpr int threads = 4;
    constexpr int rounds = 20000;
    sptr<Tracked> shared = MakeSptr<Tracked>(1);
    std::vector<std::thread> workers;
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&shared] {
            for (int i = 0; i < rounds; ++i) {
                sptr<Tracked> copy(shared);
                sptr<Tracked> moved(std::move(copy));
                sptr<Tracked> again;
                again = moved;
            }
        });
    }
    for (auto& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(shared->GetSptrRefCount(), 1);
    EXPECT_EQ(g_destroyed.load(), 0);

    // The last references are dropped by several threads at once: exactly one deletes.
    std::vector<sptr<Tracked>> owners(threads, shared);
    shared = nullptr;
    std::atomic<bool> go{false};
    workers.clear();
    for (int t = 0; t < threads; ++t) {
        workers.emplace_back([&owners, &go, t] {
            while (!go.load()) {
                std::this_thread::yield();
            }
            owners[t] = nullptr;
        });
    }
    go = true;
    for (auto& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(g_destroyed.load(), 1);
}

}  // namespace
