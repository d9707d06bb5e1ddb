#include "kavo/host/ipc/ref_base.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

using Kavo::MakeSptr;
using Kavo::sptr;

std::atomic<int> g_destroyed{0};

struct Tracked : Kavo::RefBase {
    ~Tracked() override { ++g_destroyed; }
};
struct Derived : Tracked {};
using Ptr = sptr<Tracked>;

const auto Count = [](const Ptr& p) { return p ? p->StrongCount() : -1; };

// Each scenario gets `h` owning a fresh object and returns a count; then `h` owns an object of count 1
// or nothing, and leaving the scope deletes every object exactly once.
TEST(Sptr, EveryOperationKeepsTheCountAndDeletesAtZero)
{
    struct Case {
        const char* name;
        int (*scenario)(Ptr& h);
        int observed;
        int destroyedInside;
    };
    const Case cases[] = {
        {"copy adds one", [](Ptr& h) { return Count(Ptr(h)); }, 2, 0},
        {"move transfers without counting", [](Ptr& h) { return Count(Ptr(std::move(h))); }, 1, 1},
        {"assignment releases the previous object", [](Ptr& h) { return Count(MakeSptr<Tracked>() = h); }, 2, 1},
        {"self assignment keeps it", [](Ptr& h) { return (h = *&h) ? 1 : 0; }, 1, 0},
        {"self move keeps it", [](Ptr& h) { return (h = std::move(*&h)) ? 1 : 0; }, 1, 0},
        {"its own raw pointer keeps it", [](Ptr& h) { return (h = h.GetRefPtr()) ? 1 : 0; }, 1, 0},
        {"null deletes the last reference", [](Ptr& h) { return h = nullptr, g_destroyed.load(); }, 1, 1},
        {"a derived pointer shares its count", [](Ptr& h) { return Count(h = MakeSptr<Derived>()); }, 2, 1},
        {"a copy of the object counts afresh", [](Ptr& h) { return Count(MakeSptr<Tracked>(*h)) + Count(h); }, 2, 1},
        {"assigning the object keeps its count", [](Ptr& h) { return Ptr(h), *h = Tracked(), Count(h); }, 2, 1},
    };
    for (const auto& c : cases) {
        g_destroyed = 0;
        int made = c.destroyedInside;
        {
            Ptr held = MakeSptr<Tracked>();
            EXPECT_EQ(c.scenario(held), c.observed) << c.name;
            EXPECT_EQ(g_destroyed.load(), c.destroyedInside) << c.name;
            made += held ? 1 : 0;
            EXPECT_TRUE(held == nullptr || Count(held) == 1) << c.name;
        }
        EXPECT_EQ(g_destroyed.load(), made) << c.name;
    }
}

TEST(Sptr, ConcurrentCopiesKeepTheCountAndDeleteOnce)
{
    g_destroyed = 0;
    Ptr shared = MakeSptr<Tracked>();
    std::vector<Ptr> owners(4, shared);
    std::vector<std::thread> workers;
    for (auto& owner : owners) {
        workers.emplace_back([&owner] {
            for (int i = 0; i < 20000; ++i) {
                Ptr copy(owner);
                copy = Ptr(std::move(copy));
            }
            owner = nullptr;
        });
    }
    shared = nullptr;
    for (auto& worker : workers) {
        worker.join();
    }
    EXPECT_EQ(g_destroyed.load(), 1);
}

}  // namespace
