#include "kavo/host/ipc/parcel.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

namespace {

using Kavo::Parcel;

std::vector<uint8_t> Bytes(const Parcel& parcel)
{
    return std::vector<uint8_t>(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
}

TEST(ParcelWireFormat, ItemsAreLittleEndianAndPaddedToFourBytes)
{
    struct Case {
        const char* name;
        void (*write)(Parcel&);
        std::vector<uint8_t> bytes;
    };
    const Case cases[] = {
        {"bool true is a word of 1", [](Parcel& p) { p.WriteBool(true); }, {1, 0, 0, 0}},
        {"int32 -2", [](Parcel& p) { p.WriteInt32(-2); }, {0xFE, 0xFF, 0xFF, 0xFF}},
        {"uint64", [](Parcel& p) { p.WriteUint64(0x0102030405060708ULL); }, {8, 7, 6, 5, 4, 3, 2, 1}},
        {"empty string keeps its terminator", [](Parcel& p) { p.WriteString(""); }, {0, 0, 0, 0, 0, 0, 0, 0}},
        {"three bytes fill one word with the zero", [](Parcel& p) { p.WriteString("abc"); },
         {3, 0, 0, 0, 'a', 'b', 'c', 0}},
        {"four bytes need a second word for the zero", [](Parcel& p) { p.WriteString("abcd"); },
         {4, 0, 0, 0, 'a', 'b', 'c', 'd', 0, 0, 0, 0}},
        {"buffer padded", [](Parcel& p) { p.WriteBuffer("xy", 2); }, {'x', 'y', 0, 0}},
        {"null parcelable is a zero word", [](Parcel& p) { p.WriteParcelable(nullptr); }, {0, 0, 0, 0}},
    };
    for (const auto& c : cases) {
        Parcel parcel;
        c.write(parcel);
        EXPECT_EQ(Bytes(parcel), c.bytes) << c.name;
    }
}

TEST(ParcelReads, CheckedReadsFailWithoutMovingAndValueReadsGiveZero)
{
    Parcel parcel;
    uint8_t three[] = {1, 2, 3};
    ASSERT_TRUE(parcel.ParseFrom(three, sizeof(three)));
    int32_t i32 = 42;
    int64_t i64 = 42;
    std::string text = "kept";
    EXPECT_FALSE(parcel.ReadInt32(i32));
    EXPECT_FALSE(parcel.ReadInt64(i64));
    EXPECT_FALSE(parcel.ReadString(text));
    EXPECT_EQ(i32, 42);
    EXPECT_EQ(text, "kept");
    EXPECT_EQ(parcel.ReadInt32(), 0);
    EXPECT_EQ(parcel.ReadUint64(), 0u);
    EXPECT_EQ(parcel.ReadString(), "");
    EXPECT_FALSE(parcel.ReadBool());
    EXPECT_EQ(parcel.GetReadPosition(), 0u);
}

TEST(ParcelReads, BoolAcceptsAnyNonZeroWord)
{
    Parcel parcel;
    parcel.WriteInt32(-7);
    bool value = false;
    EXPECT_TRUE(parcel.ReadBool(value));
    EXPECT_TRUE(value);
}

TEST(ParcelReads, HostileStringLengthsAreRefusedWithoutAllocating)
{
    struct Case {
        const char* name;
        int32_t length;
        size_t trailing;
    };
    const Case cases[] = {
        {"maximum length over a short parcel", std::numeric_limits<int32_t>::max(), 8},
        {"negative length", -1, 8},
        {"most negative length", std::numeric_limits<int32_t>::min(), 0},
        {"length equal to the remaining bytes leaves no room for the zero", 8, 8},
    };
    for (const auto& c : cases) {
        Parcel parcel;
        parcel.WriteInt32(c.length);
        std::vector<uint8_t> filler(c.trailing, 'x');
        parcel.WriteBuffer(filler.data(), filler.size());
        std::string value;
        EXPECT_FALSE(parcel.ReadString(value)) << c.name;
        EXPECT_EQ(parcel.GetReadPosition(), 0u) << c.name;
    }
}

TEST(ParcelCapacity, AWriteThatWouldPassTheMaximumWritesNothing)
{
    Parcel parcel;
    ASSERT_TRUE(parcel.SetMaxCapacity(12));
    EXPECT_TRUE(parcel.WriteInt64(1));
    EXPECT_FALSE(parcel.WriteInt64(2));
    EXPECT_FALSE(parcel.WriteString("abcd"));
    EXPECT_EQ(parcel.GetDataSize(), 8u);
    EXPECT_TRUE(parcel.WriteInt32(3));
    EXPECT_FALSE(parcel.WriteBool(true));
    EXPECT_EQ(parcel.GetDataSize(), 12u);
    EXPECT_FALSE(parcel.SetMaxCapacity(4)) << "below the data already written";
}

TEST(ParcelRawAccess, ParseFromKeepsExactBytesAndRewinds)
{
    Parcel source;
    source.WriteString("hello");
    source.WriteInt64(-5);
    Parcel copy;
    ASSERT_TRUE(copy.ParseFrom(source.GetData(), source.GetDataSize() - 1));
    EXPECT_EQ(copy.GetDataSize(), source.GetDataSize() - 1) << "no padding added";
    EXPECT_EQ(copy.ReadString(), "hello");
    int64_t value = 0;
    EXPECT_FALSE(copy.ReadInt64(value)) << "the cut item is gone";
    EXPECT_TRUE(copy.RewindRead(0));
    EXPECT_EQ(copy.ReadString(), "hello");
    EXPECT_FALSE(copy.RewindRead(copy.GetDataSize() + 1));
}

TEST(ParcelRawAccess, ReadBufferRefusesRunsPastTheData)
{
    Parcel parcel;
    parcel.WriteBuffer("abcdef", 6);
    EXPECT_EQ(parcel.ReadBuffer(9), nullptr);
    EXPECT_EQ(parcel.ReadBuffer(std::numeric_limits<size_t>::max()), nullptr);
    const uint8_t* bytes = parcel.ReadBuffer(6);
    ASSERT_NE(bytes, nullptr);
    EXPECT_EQ(std::memcmp(bytes, "abcdef", 6), 0);
    EXPECT_EQ(parcel.GetReadPosition(), 8u);
}

TEST(ParcelMove, MovedParcelKeepsContentsAndPosition)
{
    Parcel parcel;
    parcel.WriteInt32(1);
    parcel.WriteInt32(2);
    parcel.ReadInt32();
    Parcel moved(std::move(parcel));
    EXPECT_EQ(moved.ReadInt32(), 2);
}

}  // namespace
