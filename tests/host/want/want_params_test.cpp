#include "kavo/host/want/want_params.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using Kavo::Parcel;
using Kavo::AAFwk::WantParams;
using Kavo::AAFwk::WantValueType;

// Round trips are the fuzzer's work; here what a round trip cannot show.
TEST(WantParams, ALiteralStaysAStringAndCopiesAreDeep)
{
    WantParams inner;
    inner.SetParam("flag", true);
    WantParams params;
    params.SetParam("name", "push");
    params.SetParam("inner", inner);
    EXPECT_EQ(std::get<std::string>(*params.GetParam("name")), "push") << "not taken as a bool";
    WantParams copy = params;
    std::get<std::shared_ptr<WantParams>>(*copy.GetParam("inner"))->SetParam("flag", false);
    EXPECT_NE(copy, params) << "changing the copy's nested map must not reach the original";
}

// `levels` nested maps, each holding the next under key "n"; the innermost is written by `tail`.
TEST(WantParams, NestingIsLimitedToThirtyTwoLevelsAndMalformedInputIsRefusedEarly)
{
    constexpr size_t LEVEL_BYTES = 16;  // count, key "n", tag
    struct Case {
        const char* name;
        int levels;
        void (*tail)(Parcel&);
        bool viaPresenceWord;  // read through ReadStrongParcelable, which starts at depth one
        bool accepted;
    };
    auto empty = [](Parcel& p) { p.WriteInt32(0); };
    const Case cases[] = {
        {"32 levels", 32, empty, false, true},
        {"32 levels behind a presence word", 32, empty, true, true},
        {"33 levels", 33, empty, false, false},
        {"10000 levels", 10000, empty, false, false},
        {"a count the remaining bytes cannot hold", 1, [](Parcel& p) { p.WriteInt32(0x7FFFFFFF); }, false, false},
        {"a negative count", 1, [](Parcel& p) { p.WriteInt32(-1); }, false, false},
        {"an unknown type tag", 1, [](Parcel& p) { p.WriteInt32(1), p.WriteString("k"), p.WriteInt32(77); }, false,
         false},
        {"a value cut short", 1,
         [](Parcel& p) { p.WriteInt32(1), p.WriteString("k"), p.WriteInt32(int32_t(WantValueType::INT64)); }, false,
         false},
    };
    for (const auto& c : cases) {
        Parcel parcel;
        parcel.WriteInt32(c.viaPresenceWord ? 1 : 0);
        for (int i = 0; i < c.levels - 1; ++i) {
            parcel.WriteInt32(1);
            parcel.WriteString("n");
            parcel.WriteInt32(static_cast<int32_t>(WantValueType::PARAMS));
        }
        c.tail(parcel);
        parcel.WriteInt32(0);  // room after the data, so only the data's own faults refuse it
        std::unique_ptr<WantParams> direct;
        if (!c.viaPresenceWord) {
            parcel.ReadInt32();
            direct.reset(WantParams::Unmarshalling(parcel, 1));
        }
        bool accepted = c.viaPresenceWord ? parcel.ReadStrongParcelable<WantParams>() != nullptr : direct != nullptr;
        EXPECT_EQ(accepted, c.accepted) << c.name;
        EXPECT_LE(parcel.GetReadPosition(), (WantParams::MAX_DEPTH + 1) * LEVEL_BYTES + 4)
            << c.name << ": read too far";
    }
    WantParams nested;
    for (int levels = 1; levels <= WantParams::MAX_DEPTH + 1; ++levels) {
        Parcel parcel;
        EXPECT_EQ(nested.Marshalling(parcel), levels <= WantParams::MAX_DEPTH) << levels << " levels written";
        WantParams outer;
        outer.SetParam("n", nested);
        nested = outer;
    }
}

}  // namespace
