#include "kavo/host/ipc/parcel.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Kavo::Parcel;
using Bytes = std::vector<uint8_t>;

const auto DataOf = [](const Parcel& p, size_t cut = 0) {
    return Bytes(p.GetData(), p.GetData() + p.GetDataSize() - cut);
};

// Every other item's bytes are pinned by the record layouts, which are built from the wire format.
TEST(Parcel, AnEmptyStringIsItsLengthAndAZeroWordAndANullParcelableOneZeroWord)
{
    Parcel parcel;
    ASSERT_TRUE(parcel.WriteString("") && parcel.WriteParcelable(nullptr));
    EXPECT_EQ(DataOf(parcel), Bytes(12, 0));
}

// Checked reads fail without moving or touching their output; no length is trusted past the data.
TEST(Parcel, ReadsOfShortOrHostileDataFailWithoutMoving)
{
    const Bytes cases[] = {
        {1, 2, 3},
        {0xFF, 0xFF, 0xFF, 0x7F, 'x', 'x', 'x', 'x'},  // the largest string length
        {0xFF, 0xFF, 0xFF, 0xFF, 'x', 'x', 'x', 'x'},  // a negative one
        {0, 0, 0, 0x80},                               // the most negative one
        {4, 0, 0, 0, 'x', 'x', 'x', 'x'},              // no room left for the zero
    };
    for (const auto& data : cases) {
        Parcel parcel;
        ASSERT_TRUE(parcel.ParseFrom(data.data(), data.size()));
        std::string text = "kept";
        EXPECT_FALSE(parcel.ReadString(text) || text != "kept") << data.size();
        EXPECT_EQ(parcel.ReadString(), "");
        EXPECT_EQ(parcel.ReadBuffer(data.size() + 1), nullptr);
        EXPECT_EQ(parcel.ReadBuffer(SIZE_MAX), nullptr);
        EXPECT_EQ(parcel.GetReadPosition(), 0u);
    }
    Parcel three;
    ASSERT_TRUE(three.ParseFrom(cases[0].data(), 3));
    int32_t i32 = 42;
    int64_t i64 = 42;
    EXPECT_FALSE(three.ReadInt32(i32) || three.ReadInt64(i64) || i32 != 42 || i64 != 42);
    EXPECT_FALSE(three.ReadInt32() || three.ReadUint64() || three.ReadBool() || three.GetReadPosition());
}

TEST(Parcel, AFullParcelWritesNothingAndParseFromKeepsExactBytes)
{
    Parcel parcel;
    ASSERT_TRUE(parcel.SetMaxCapacity(12) && parcel.WriteInt64(1));
    EXPECT_FALSE(parcel.WriteInt64(2) || parcel.WriteString("abcd") || parcel.GetDataSize() != 8);
    EXPECT_TRUE(parcel.WriteInt32(-7));
    EXPECT_FALSE(parcel.WriteBool(true) || parcel.GetDataSize() != 12);
    EXPECT_FALSE(parcel.SetMaxCapacity(4)) << "below the data already written";
    EXPECT_EQ(parcel.ReadInt64(), 1);
    EXPECT_TRUE(parcel.ReadBool()) << "any non-zero word is true";

    Parcel source;
    source.WriteString("hello");
    source.WriteInt64(-5);
    EXPECT_FALSE(parcel.ParseFrom(source.GetData(), source.GetDataSize())) << "past the maximum capacity";
    Parcel copy;
    ASSERT_TRUE(copy.ParseFrom(source.GetData(), source.GetDataSize() - 1));
    EXPECT_EQ(DataOf(copy), DataOf(source, 1)) << "no padding added";
    EXPECT_EQ(copy.ReadString(), "hello");
    EXPECT_EQ(copy.ReadInt64(), 0) << "the cut item is gone";
    EXPECT_TRUE(copy.RewindRead(0) && copy.ReadString() == "hello");
    EXPECT_FALSE(copy.RewindRead(copy.GetDataSize() + 1));
    EXPECT_NE(source.ReadBuffer(10), nullptr);
    EXPECT_EQ(source.GetReadPosition(), 12u) << "a buffer's padding is read too";
}

TEST(Parcel, AMovedFromParcelIsEmptyAndItsReadsFailLeavingOutputsAlone)
{
    Parcel from;
    ASSERT_TRUE(from.WriteString("abc") && from.WriteInt64(9) && from.ReadString() == "abc");
    Parcel to(std::move(from));
    Parcel assigned;
    assigned = std::move(to);
    EXPECT_EQ(assigned.ReadInt64(), 9) << "the read position moves with the bytes";
    for (Parcel* moved : {&from, &to}) {
        std::string text = "kept";
        int64_t number = 42;
        EXPECT_FALSE(moved->ReadString(text) || moved->ReadInt64(number) || moved->ReadBuffer(4) != nullptr);
        EXPECT_TRUE(text == "kept" && number == 42 && moved->GetDataSize() == 0 && moved->GetReadPosition() == 0);
    }
}

}  // namespace
