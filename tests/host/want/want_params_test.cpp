#include "kavo/host/want/want_params.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace {

using Kavo::Parcel;
using Kavo::AAFwk::WantParams;

WantParams Sample()
{
    WantParams inner;
    inner.SetParam("flag", true);
    inner.SetParam("big", int64_t{1} << 40);
    WantParams params;
    params.SetParam("name", "push");
    params.SetParam("count", int32_t{-3});
    params.SetParam("ratio", 0.25);
    params.SetParam("inner", inner);
    return params;
}

std::unique_ptr<WantParams> RoundTrip(const WantParams& params)
{
    Parcel parcel;
    EXPECT_TRUE(params.Marshalling(parcel));
    std::unique_ptr<WantParams> back(WantParams::Unmarshalling(parcel, 1));
    EXPECT_EQ(parcel.GetReadableBytes(), 0u);
    return back;
}

TEST(WantParamsTest, EveryValueTypeSurvivesAParcel)
{
    WantParams params = Sample();
    auto back = RoundTrip(params);
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(*back, params);
    ASSERT_NE(back->GetParam("name"), nullptr);
    EXPECT_EQ(std::get<std::string>(*back->GetParam("name")), "push");
    EXPECT_TRUE(RoundTrip(WantParams())->IsEmpty());
}

TEST(WantParamsTest, CopiesAreDeepAndStringLiteralsStayStrings)
{
    WantParams params = Sample();
    WantParams copy = params;
    auto nested = std::get<std::shared_ptr<WantParams>>(*copy.GetParam("inner"));
    nested->SetParam("flag", false);
    EXPECT_NE(copy, params) << "changing the copy's nested map must not reach the original";
    EXPECT_TRUE(std::holds_alternative<std::string>(*params.GetParam("name")));
}

// A chain of `levels` nested maps, each holding the next under key "n".
Parcel NestedChain(int levels)
{
    Parcel parcel;
    for (int i = 0; i < levels - 1; ++i) {
        parcel.WriteInt32(1);
        parcel.WriteString("n");
        parcel.WriteInt32(static_cast<int32_t>(Kavo::AAFwk::WantValueType::PARAMS));
    }
    parcel.WriteInt32(0);
    return parcel;
}

TEST(WantParamsTest, NestingIsLimitedToThirtyTwoLevels)
{
    struct Case {
        int levels;
        bool accepted;
    };
    const Case cases[] = {{1, true}, {32, true}, {33, false}, {10000, false}};
    for (const auto& c : cases) {
        Parcel parcel = NestedChain(c.levels);
        auto start = std::chrono::steady_clock::now();
        std::unique_ptr<WantParams> back(WantParams::Unmarshalling(parcel, 1));
        EXPECT_EQ(back != nullptr, c.accepted) << c.levels << " levels";
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
    }
}

TEST(WantParamsTest, MalformedInputIsRefused)
{
    struct Case {
        const char* name;
        void (*write)(Parcel&);
    };
    const Case cases[] = {
        {"count larger than the data allows", [](Parcel& p) { p.WriteInt32(0x7FFFFFFF); }},
        {"negative count", [](Parcel& p) { p.WriteInt32(-1); }},
        {"unknown type tag",
         [](Parcel& p) {
             p.WriteInt32(1);
             p.WriteString("k");
             p.WriteInt32(77);
             p.WriteInt32(0);
         }},
        {"value cut short",
         [](Parcel& p) {
             p.WriteInt32(1);
             p.WriteString("k");
             p.WriteInt32(static_cast<int32_t>(Kavo::AAFwk::WantValueType::INT64));
             p.WriteInt32(0);
         }},
    };
    for (const auto& c : cases) {
        Parcel parcel;
        c.write(parcel);
        std::unique_ptr<WantParams> back(WantParams::Unmarshalling(parcel, 1));
        EXPECT_EQ(back, nullptr) << c.name;
    }
}

TEST(WantParamsTest, ReadStrongParcelableStartsAtDepthOne)
{
    Parcel parcel;
    WantParams params = Sample();
    ASSERT_TRUE(parcel.WriteParcelable(&params));
    Kavo::sptr<WantParams> back = parcel.ReadStrongParcelable<WantParams>();
    ASSERT_NE(back, nullptr);
    EXPECT_EQ(*back, params);

    Parcel deep = NestedChain(32);
    Parcel wrapped;
    wrapped.WriteInt32(1);
    wrapped.WriteBuffer(deep.GetData(), deep.GetDataSize());
    EXPECT_NE(wrapped.ReadStrongParcelable<WantParams>(), nullptr);
}

}  // namespace
