// Shared helpers of the record suites: an independent encoder of the parcel wire format for
// expected bytes, a watcher of log lines and analytics reports, and drivers that cut a parcel
// at every byte or fail a record's writes at every byte of capacity.
#ifndef KAVO_TESTS_PUSH_MODEL_MODEL_TEST_UTIL_H
#define KAVO_TESTS_PUSH_MODEL_MODEL_TEST_UTIL_H

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/log/log.h"
#include "kavo/push/common/push_error.h"
#include "tests/support/test_support.h"

namespace ModelTest {

using Bytes = std::vector<uint8_t>;
using Texts = std::vector<std::string>;

// Builds expected parcel bytes from the wire format itself (little-endian, 4-byte items), so
// layouts are checked against the format rather than against the Parcel that wrote them.
class Wire {
public:
    Wire& I32(int32_t v) { return Put(&v, sizeof(v)); }
    Wire& U32(uint32_t v) { return Put(&v, sizeof(v)); }
    Wire& I64(int64_t v) { return Put(&v, sizeof(v)); }
    Wire& U64(uint64_t v) { return Put(&v, sizeof(v)); }
    Wire& Bool(bool v) { return I32(v ? 1 : 0); }
    Wire& Str(const std::string& s)
    {
        I32(static_cast<int32_t>(s.size()));
        bytes_.insert(bytes_.end(), s.begin(), s.end());
        bytes_.push_back(0);
        return Pad();
    }
    Wire& Raw(const Bytes& raw)
    {
        bytes_.insert(bytes_.end(), raw.begin(), raw.end());
        return Pad();
    }
    Wire& Append(const Bytes& more)
    {
        bytes_.insert(bytes_.end(), more.begin(), more.end());
        return *this;
    }
    size_t Size() const { return bytes_.size(); }
    Bytes Done() const { return bytes_; }

private:
    Wire& Put(const void* v, size_t n)
    {
        const auto* p = static_cast<const uint8_t*>(v);
        bytes_.insert(bytes_.end(), p, p + n);
        return *this;
    }
    Wire& Pad()
    {
        while (bytes_.size() % 4 != 0) {
            bytes_.push_back(0);
        }
        return *this;
    }

    Bytes bytes_;
};

inline Bytes ToBytes(const Kavo::Parcel& parcel)
{
    return Bytes(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
}

// The bytes of a record as its Marshalling writes them; a failed write fails the test.
inline Bytes Marshal(const Kavo::Parcelable& record)
{
    Kavo::Parcel parcel;
    EXPECT_TRUE(record.Marshalling(parcel));
    return ToBytes(parcel);
}

// A parcel holding the first `size` bytes of `bytes` (all of them by default).
inline Kavo::Parcel ParcelOf(const Bytes& bytes, size_t size = SIZE_MAX)
{
    Kavo::Parcel parcel;
    parcel.ParseFrom(bytes.data(), std::min(size, bytes.size()));
    return parcel;
}

// The few texts that are logged without an analytics report; every other record failure is
// reported with the data-conversion inner code.
inline bool IsLogOnly(const std::string& text)
{
    static const std::set<std::string> logOnly = {
        "Read MsgTimePoints from parcel error",
        "Write msg time points info error",
        "Read MsgTimePoints error",
        "New MsgTimePoints error",
    };
    return logOnly.count(text) != 0;
}

// Watches the log and the analytics hook for its lifetime.
class Watch {
public:
    // The lines logged, in order, are exactly `texts`, each at error level under the push tag,
    // and the reports are the same texts less the log-only ones.
    void Expect(const Texts& texts, const std::string& where = "") const
    {
        std::vector<Kavo::LogLine> lines = log_.Lines();
        EXPECT_EQ(log_.Texts(), texts) << where;
        for (const auto& line : lines) {
            EXPECT_EQ(line.level, Kavo::LOG_ERROR) << where << ": " << line.text;
            EXPECT_EQ(line.domain, 0xD005300u) << where;
            EXPECT_EQ(line.tag, "push") << where;
        }
        std::vector<std::pair<int, std::string>> expected;
        for (const auto& text : texts) {
            if (!IsLogOnly(text)) {
                expected.emplace_back(Kavo::Push::INNER_ERR_DATA_CONVERT_FAILED, text);
            }
        }
        EXPECT_EQ(reports_.Reports(), expected) << where;
    }

private:
    Kavo::LogCapture log_;
    KavoTest::ReportRecorder reports_;
};

// Reads one record from the parcel; true when one came out (and, for EqualTo, when it is the
// expected record and used the whole parcel).
using Decoder = std::function<bool(Kavo::Parcel&)>;

template <typename T>
Decoder DecoderOf()
{
    return [](Kavo::Parcel& parcel) { return T::Unmarshalling(parcel) != nullptr; };
}

template <typename T>
Decoder EqualTo(const T& expected)
{
    return [expected](Kavo::Parcel& parcel) {
        Kavo::sptr<T> record = T::Unmarshalling(parcel);
        return record != nullptr && *record == expected && parcel.GetReadableBytes() == 0;
    };
}

// A record is written as exactly `expected`, without a line, and those bytes read back.
struct LayoutCase {
    const char* name;
    std::shared_ptr<Kavo::Parcelable> record;
    Bytes expected;
    Decoder readBack;
};

inline void ExpectLayouts(const std::vector<LayoutCase>& cases)
{
    for (const auto& c : cases) {
        Watch watch;
        const Bytes bytes = Marshal(*c.record);
        EXPECT_EQ(bytes, c.expected) << c.name;
        Kavo::Parcel parcel = ParcelOf(bytes);
        EXPECT_TRUE(c.readBack(parcel)) << c.name;
        watch.Expect({}, c.name);
    }
}

// Reading `bytes` gives a record or not, with exactly these lines.
struct ParcelCase {
    const char* name;
    Decoder decode;
    Bytes bytes;
    bool decodes;
    Texts logs;
};

inline void ExpectParcels(const std::vector<ParcelCase>& cases)
{
    for (const auto& c : cases) {
        Kavo::Parcel parcel = ParcelOf(c.bytes);
        Watch watch;
        EXPECT_EQ(c.decode(parcel), c.decodes) << c.name;
        watch.Expect(c.logs, c.name);
    }
}

// The outcome of every cut (or capacity) below `end` that no earlier region claimed.
struct Region {
    size_t end;
    bool decodes;
    Texts logs;
};

template <typename R>
const R& RegionOf(const std::vector<R>& regions, size_t position)
{
    return *std::find_if(regions.begin(), regions.end(), [position](const R& r) { return position < r.end; });
}

// `bytes` cut at every position below its size, each prefix read on its own.
struct CutCase {
    const char* name;
    Decoder decode;
    Bytes bytes;
    std::vector<Region> regions;
};

inline void ExpectEveryCut(const std::vector<CutCase>& cases)
{
    for (const auto& c : cases) {
        ASSERT_EQ(c.regions.back().end, c.bytes.size()) << c.name << ": the regions must cover the parcel";
        for (size_t cut = 0; cut < c.bytes.size(); ++cut) {
            const Region& region = RegionOf(c.regions, cut);
            Kavo::Parcel parcel = ParcelOf(c.bytes, cut);
            Watch watch;
            const std::string where = std::string(c.name) + " cut at " + std::to_string(cut);
            EXPECT_EQ(c.decode(parcel), region.decodes) << where;
            watch.Expect(region.logs, where);
        }
    }
}

// The record written into a parcel of every capacity below its size: Marshalling fails with
// the lines of the region holding the capacity, and succeeds without a line at full size.
struct WriteRegion {
    size_t end;
    Texts logs;
};

struct WriteCase {
    const char* name;
    std::shared_ptr<Kavo::Parcelable> record;
    std::vector<WriteRegion> regions;
};

inline void ExpectEveryWriteFailure(const std::vector<WriteCase>& cases)
{
    for (const auto& c : cases) {
        const size_t size = Marshal(*c.record).size();
        ASSERT_EQ(c.regions.back().end, size) << c.name << ": the regions must cover the parcel";
        for (size_t capacity = 0; capacity <= size; ++capacity) {
            Kavo::Parcel parcel;
            ASSERT_TRUE(parcel.SetMaxCapacity(capacity));
            Watch watch;
            const std::string where = std::string(c.name) + " with capacity " + std::to_string(capacity);
            EXPECT_EQ(c.record->Marshalling(parcel), capacity == size) << where;
            watch.Expect(capacity == size ? Texts{} : RegionOf(c.regions, capacity).logs, where);
        }
    }
}

}  // namespace ModelTest

#endif  // KAVO_TESTS_PUSH_MODEL_MODEL_TEST_UTIL_H
