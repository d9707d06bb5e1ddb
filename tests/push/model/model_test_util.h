#ifndef KAVO_TESTS_PUSH_MODEL_MODEL_TEST_UTIL_H
#define KAVO_TESTS_PUSH_MODEL_MODEL_TEST_UTIL_H

#include <algorithm>
#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/log/log.h"
#include "kavo/host/want/want_params.h"
#include "kavo/push/common/push_error.h"
#include "kavo/push/model/entity_setting.h"
#include "kavo/push/model/msg_time_points.h"
#include "kavo/push/model/push_extension_info.h"
#include "kavo/push/model/push_payload.h"
#include "kavo/push/model/remote_location_request.h"
#include "kavo/push/model/remote_notification_content.h"
#include "kavo/push/model/remote_notification_info.h"
#include "kavo/push/model/remote_notification_request.h"
#include "kavo/push/model/remote_notification_result.h"
#include "kavo/push/model/remote_want_agent.h"
#include "kavo/push/model/report_voip_call_params.h"
#include "kavo/push/model/subscribe_notification_setting.h"
#include "kavo/push/model/voip_info.h"
#include "kavo/push/model/voip_request.h"
#include "kavo/push/model/voip_result.h"
#include "tests/support/test_support.h"

namespace ModelTest {

using Bytes = std::vector<uint8_t>;
using Texts = std::vector<std::string>;

// Expected parcel bytes built from the wire format itself (little-endian, 4-byte items), so
// layouts are checked against the format rather than against the Parcel that wrote them.
class Wire {
public:
    template <typename V>
    Wire& Put(V v)
    {
        const auto* p = reinterpret_cast<const uint8_t*>(&v);
        bytes_.insert(bytes_.end(), p, p + sizeof(v));
        return *this;
    }
    Wire& I32(int32_t v) { return Put(v); }
    Wire& I64(int64_t v) { return Put(v); }
    Wire& U64(uint64_t v) { return Put(v); }
    Wire& Str(const std::string& s)
    {
        return I32(static_cast<int32_t>(s.size())).Raw(Bytes(s.c_str(), s.c_str() + s.size() + 1));
    }
    Wire& Raw(const Bytes& raw)
    {
        bytes_.insert(bytes_.end(), raw.begin(), raw.end());
        bytes_.resize((bytes_.size() + 3) / 4 * 4);
        return *this;
    }
    operator Bytes() const { return bytes_; }

private:
    Bytes bytes_;
};

inline Bytes Marshal(const Kavo::Parcelable& record)
{
    Kavo::Parcel parcel;
    EXPECT_TRUE(record.Marshalling(parcel));
    return Bytes(parcel.GetData(), parcel.GetData() + parcel.GetDataSize());
}

// A parcel holding the first `size` bytes of `bytes`.
inline Kavo::Parcel ParcelOf(const Bytes& bytes, size_t size = SIZE_MAX)
{
    Kavo::Parcel parcel;
    parcel.ParseFrom(bytes.data(), std::min(size, bytes.size()));
    return parcel;
}

inline std::shared_ptr<Kavo::AAFwk::WantParams> Params()
{
    auto params = std::make_shared<Kavo::AAFwk::WantParams>();
    params->SetParam("k", Kavo::AAFwk::WantParams::Value(int32_t{7}));
    return params;
}

// Params() behind its presence word.
inline Bytes ParamsWire()
{
    return Wire().I32(1).I32(1).Str("k").I32(3).I32(7);
}

inline Kavo::Push::EntitySetting Entity(const std::shared_ptr<bool>& enable,
                                        const std::shared_ptr<Kavo::AAFwk::WantParams>& extraInfo, int32_t type = 3)
{
    Kavo::Push::EntitySetting entity;
    entity.SetEntityId("e1");
    entity.SetEntityName("n");
    entity.SetEnable(enable);
    entity.SetEntityType(static_cast<Kavo::Push::EntityType>(type));
    entity.SetExtraInfo(extraInfo);
    return entity;
}

inline Kavo::Push::SubscribeNotificationSetting Subscription(const std::shared_ptr<bool>& enabled)
{
    Kavo::Push::SubscribeNotificationSetting setting;
    setting.SetBundleName("com.a");
    setting.SetEnabled(enabled);
    return setting;
}

inline std::shared_ptr<Kavo::Push::RemoteWantAgent> Agent(const std::string& ability, const std::string& parameters)
{
    auto agent = std::make_shared<Kavo::Push::RemoteWantAgent>();
    agent->SetAbilityName(ability);
    agent->SetParameters(parameters);
    return agent;
}

// A content holding the parts whose bits are set in `mask`: title "T", text "xy", a 1x1 icon,
// badge number 5, set badge number -1, agent ("ab", "p=1") and time points 1 to 6.
inline Kavo::Push::RemoteNotificationContent ContentOf(unsigned mask)
{
    auto icon = std::make_shared<Kavo::Media::PixelMap>(1, 1, Kavo::Media::PixelFormat::ALPHA_8);
    icon->SetPixels({0xAB});
    Kavo::Push::RemoteNotificationContent content;
    content.SetTitle((mask & 0x01) ? std::make_shared<std::string>("T") : nullptr);
    content.SetText((mask & 0x02) ? std::make_shared<std::string>("xy") : nullptr);
    content.SetOverlayIcon((mask & 0x04) ? icon : nullptr);
    content.SetBadgeNumber((mask & 0x08) ? std::make_shared<long>(5) : nullptr);
    content.SetSetBadgeNumber((mask & 0x10) ? std::make_shared<long>(-1) : nullptr);
    content.SetWantAgent((mask & 0x20) ? Agent("ab", "p=1") : nullptr);
    auto p = (mask & 0x40) ? std::make_shared<Kavo::Push::MsgTimePoints>() : nullptr;
    if (p != nullptr) {
        std::tie(p->timePoint0_, p->timePoint1_, p->timePoint2_, p->timePoint3_, p->timePoint4_, p->timePoint5_) =
            std::make_tuple(1, 2, 3, 4, 5, 6);
    }
    content.SetMsgTimePoints(p);
    return content;
}

// Watches the log and the analytics hook for its lifetime.
class Watch {
public:
    // The lines are exactly `texts`, each at error level under the push tag, and every one of
    // them but the time points' own is reported with the data-conversion code.
    void Expect(const Texts& texts, const std::string& where = "") const
    {
        static const std::set<std::string> logOnly = {"Read MsgTimePoints from parcel error",
                                                      "Write msg time points info error", "Read MsgTimePoints error",
                                                      "New MsgTimePoints error"};
        EXPECT_EQ(log_.Texts(), texts) << where;
        for (const auto& line : log_.Lines()) {
            EXPECT_TRUE(line.level == Kavo::LEVEL_ERROR && line.domain == 0xD005300u && line.tag == "push") << where;
        }
        std::vector<std::pair<int, std::string>> expected;
        for (const auto& text : texts) {
            if (logOnly.count(text) == 0) {
                expected.emplace_back(Kavo::Push::INNER_ERR_DATA_CONVERT_FAILED, text);
            }
        }
        EXPECT_EQ(reports_.Reports(), expected) << where;
    }

private:
    Kavo::LogCapture log_;
    KavoTest::ReportRecorder reports_;
};

// Reads a parcel: -1 when nothing came out, 1 when the expected record came out and used the
// whole parcel, 0 otherwise.
using Reader = std::function<int(Kavo::Parcel&)>;

template <typename T>
Reader ReaderOf(const T& expected)
{
    return [expected](Kavo::Parcel& parcel) {
        Kavo::sptr<T> read = T::Unmarshalling(parcel);
        return read == nullptr ? -1 : static_cast<int>(*read == expected && parcel.GetReadableBytes() == 0);
    };
}

// The outcome of every cut (or capacity) below `end` that no earlier region claimed.
struct Region {
    size_t end;
    Texts logs;
    bool decodes = false;
};

struct Row {
    std::string name;
    std::shared_ptr<Kavo::Parcelable> record;
    Reader read;
    Bytes bytes;
    std::vector<Region> cuts;    // none: the cuts are checked on another row
    std::vector<Region> writes;  // none: the failed writes are checked on another row
};

template <typename T>
Row RowOf(const std::string& name, const T& record, const Bytes& bytes, std::vector<Region> cuts = {},
          std::vector<Region> writes = {})
{
    return {name, std::make_shared<T>(record), ReaderOf(record), bytes, std::move(cuts), std::move(writes)};
}

inline const Region& RegionOf(const std::vector<Region>& regions, size_t position)
{
    return *std::find_if(regions.begin(), regions.end(), [position](const Region& r) { return position < r.end; });
}

// The record is written as exactly `bytes` without a line and reads back equal; every prefix
// of the bytes reads as its cut region says; a parcel of every smaller capacity fails the
// write with the lines its write region says, and one of the exact size takes it silently.
inline void ExpectRow(const Row& row)
{
    Watch written;
    EXPECT_EQ(Marshal(*row.record), row.bytes) << row.name;
    Kavo::Parcel whole = ParcelOf(row.bytes);
    EXPECT_EQ(row.read(whole), 1) << row.name;
    written.Expect({}, row.name);
    for (size_t cut = 0; !row.cuts.empty() && cut < row.bytes.size(); ++cut) {
        const Region& region = RegionOf(row.cuts, cut);
        Kavo::Parcel parcel = ParcelOf(row.bytes, cut);
        Watch watch;
        EXPECT_EQ(row.read(parcel) >= 0, region.decodes) << row.name << " cut at " << cut;
        watch.Expect(region.logs, row.name + " cut at " + std::to_string(cut));
    }
    for (size_t capacity = 0; !row.writes.empty() && capacity <= row.bytes.size(); ++capacity) {
        const bool fits = capacity == row.bytes.size();
        Kavo::Parcel parcel;
        ASSERT_TRUE(parcel.SetMaxCapacity(capacity));
        Watch watch;
        EXPECT_EQ(row.record->Marshalling(parcel), fits) << row.name << " with capacity " << capacity;
        watch.Expect(fits ? Texts{} : RegionOf(row.writes, capacity).logs,
                     row.name + " with capacity " + std::to_string(capacity));
    }
}

}  // namespace ModelTest

#endif  // KAVO_TESTS_PUSH_MODEL_MODEL_TEST_UTIL_H
