// WantParams: an ordered map from key to a value that is a string, bool, 32-bit int, 64-bit
// int, double or a nested WantParams. A value; not safe for concurrent mutation.
//
//   WantParams params;
//   params.SetParam("count", int32_t{3});
//   const auto* v = params.GetParam("count");  // holds int32_t 3
//
// Parcel form: an int32 count, then per entry the key (string), an int32 type tag and the
// value; a nested map is its own count and entries.
#ifndef KAVO_HOST_WANT_WANT_PARAMS_H
#define KAVO_HOST_WANT_WANT_PARAMS_H

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <variant>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/parcel.h"
#include "kavo/host/ipc/parcelable.h"

namespace Kavo::AAFwk {

class WantParams;

// Tags of the parcel form, one per value type.
enum class WantValueType : int32_t {
    STRING = 1,
    BOOL = 2,
    INT32 = 3,
    INT64 = 4,
    DOUBLE = 5,
    PARAMS = 6,
};

class KAVO_HOST_EXPORT WantParams : public Parcelable {
public:
    // A nested map is held through a shared_ptr that is never null.
    using Value = std::variant<std::string, bool, int32_t, int64_t, double, std::shared_ptr<WantParams>>;

    static constexpr int MAX_DEPTH = 32;

    WantParams() = default;
    WantParams(const WantParams& other);
    WantParams(WantParams&& other) noexcept;
    WantParams& operator=(const WantParams& other);
    WantParams& operator=(WantParams&& other) noexcept;
    ~WantParams() override = default;

    void SetParam(const std::string& key, const Value& value);
    void SetParam(const std::string& key, const WantParams& nested);
    void SetParam(const std::string& key, const char* value) { SetParam(key, Value(std::string(value))); }
    const Value* GetParam(const std::string& key) const;
    bool HasParam(const std::string& key) const { return params_.count(key) != 0; }
    void Remove(const std::string& key) { params_.erase(key); }
    const std::map<std::string, Value>& GetParams() const { return params_; }
    size_t Size() const { return params_.size(); }
    bool IsEmpty() const { return params_.empty(); }

    // Deep equality: nested maps compare by content.
    bool operator==(const WantParams& other) const;
    bool operator!=(const WantParams& other) const { return !(*this == other); }

    // False for nesting deeper than MAX_DEPTH, which Unmarshalling would refuse.
    bool Marshalling(Parcel& parcel) const override;
    // Caller owns the result; null for nesting deeper than MAX_DEPTH, a count the remaining
    // bytes cannot hold, an unknown type tag or any short read.
    static WantParams* Unmarshalling(Parcel& parcel, int depth = 1);
    // Reads the same form into this map, refusing what Unmarshalling refuses. On failure the
    // map holds part of the entries and is to be thrown away.
    bool ReadFromParcel(Parcel& parcel, int depth = 1);

private:
    // The entry count, checked against the depth limit and the remaining bytes.
    static bool ReadCount(Parcel& parcel, int depth, int32_t& count);
    bool ReadEntries(Parcel& parcel, int depth, int32_t count);
    bool MarshallingAt(Parcel& parcel, int depth) const;
    static bool WriteValue(Parcel& parcel, const Value& value, int depth);

    std::map<std::string, Value> params_;
};

}  // namespace Kavo::AAFwk

#endif  // KAVO_HOST_WANT_WANT_PARAMS_H
