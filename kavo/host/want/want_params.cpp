#include "kavo/host/want/want_params.h"

#include <new>
#include <utility>

namespace Kavo::AAFwk {

namespace {

// The smallest entry on the wire: an empty key (length word and terminator, padded: 8 bytes),
// a tag and a 4-byte value. A count larger than the remaining bytes allow is refused up front.
constexpr size_t MIN_ENTRY_BYTES = 16;

WantParams::Value DeepCopy(const WantParams::Value& value)
{
    if (const auto* nested = std::get_if<std::shared_ptr<WantParams>>(&value)) {
        return std::make_shared<WantParams>(**nested);
    }
    return value;
}

}  // namespace

// A nested map is written one level deeper than the map that holds it.
bool WantParams::WriteValue(Parcel& parcel, const Value& value, int depth)
{
    switch (value.index()) {
        case 0:
            return parcel.WriteInt32(static_cast<int32_t>(WantValueType::STRING)) &&
                   parcel.WriteString(std::get<std::string>(value));
        case 1:
            return parcel.WriteInt32(static_cast<int32_t>(WantValueType::BOOL)) &&
                   parcel.WriteBool(std::get<bool>(value));
        case 2:
            return parcel.WriteInt32(static_cast<int32_t>(WantValueType::INT32)) &&
                   parcel.WriteInt32(std::get<int32_t>(value));
        case 3:
            return parcel.WriteInt32(static_cast<int32_t>(WantValueType::INT64)) &&
                   parcel.WriteInt64(std::get<int64_t>(value));
        case 4:
            return parcel.WriteInt32(static_cast<int32_t>(WantValueType::DOUBLE)) &&
                   parcel.WriteDouble(std::get<double>(value));
        default:
            return parcel.WriteInt32(static_cast<int32_t>(WantValueType::PARAMS)) &&
                   std::get<std::shared_ptr<WantParams>>(value)->MarshallingAt(parcel, depth + 1);
    }
}

namespace {

// The value is read in place; on failure `out` holds an unspecified value of type T.
template <typename T, typename Reader>
bool ReadInto(WantParams::Value& out, Reader read)
{
    return read(out.emplace<T>());
}

bool ReadValue(Parcel& parcel, int depth, WantParams::Value& out)
{
    int32_t tag = 0;
    if (!parcel.ReadInt32(tag)) {
        return false;
    }
    switch (static_cast<WantValueType>(tag)) {
        case WantValueType::STRING:
            return ReadInto<std::string>(out, [&](std::string& v) { return parcel.ReadString(v); });
        case WantValueType::BOOL:
            return ReadInto<bool>(out, [&](bool& v) { return parcel.ReadBool(v); });
        case WantValueType::INT32:
            return ReadInto<int32_t>(out, [&](int32_t& v) { return parcel.ReadInt32(v); });
        case WantValueType::INT64:
            return ReadInto<int64_t>(out, [&](int64_t& v) { return parcel.ReadInt64(v); });
        case WantValueType::DOUBLE:
            return ReadInto<double>(out, [&](double& v) { return parcel.ReadDouble(v); });
        case WantValueType::PARAMS: {
            std::unique_ptr<WantParams> nested(WantParams::Unmarshalling(parcel, depth + 1));
            if (nested == nullptr) {
                return false;
            }
            out = std::shared_ptr<WantParams>(std::move(nested));
            return true;
        }
    }
    return false;
}

}  // namespace

WantParams::WantParams(const WantParams& other) : RefBase(other), Parcelable(other)
{
    for (const auto& [key, value] : other.params_) {
        params_.emplace(key, DeepCopy(value));
    }
}

WantParams::WantParams(WantParams&& other) noexcept
    : RefBase(other), Parcelable(other), params_(std::move(other.params_))
{
}

WantParams& WantParams::operator=(WantParams&& other) noexcept
{
    params_ = std::move(other.params_);
    return *this;
}

WantParams& WantParams::operator=(const WantParams& other)
{
    if (this != &other) {
        WantParams copy(other);
        params_.swap(copy.params_);
    }
    return *this;
}

void WantParams::SetParam(const std::string& key, const Value& value)
{
    const auto* nested = std::get_if<std::shared_ptr<WantParams>>(&value);
    if (nested != nullptr && *nested == nullptr) {
        params_[key] = std::make_shared<WantParams>();  // a nested map is never null
        return;
    }
    params_[key] = DeepCopy(value);
}

void WantParams::SetParam(const std::string& key, const WantParams& nested)
{
    params_[key] = std::make_shared<WantParams>(nested);
}

const WantParams::Value* WantParams::GetParam(const std::string& key) const
{
    auto it = params_.find(key);
    return it == params_.end() ? nullptr : &it->second;
}

bool WantParams::operator==(const WantParams& other) const
{
    if (params_.size() != other.params_.size()) {
        return false;
    }
    for (auto a = params_.begin(), b = other.params_.begin(); a != params_.end(); ++a, ++b) {
        if (a->first != b->first || a->second.index() != b->second.index()) {
            return false;
        }
        const auto* na = std::get_if<std::shared_ptr<WantParams>>(&a->second);
        if (na != nullptr) {
            if (**na != *std::get<std::shared_ptr<WantParams>>(b->second)) {
                return false;
            }
        } else if (a->second != b->second) {
            return false;
        }
    }
    return true;
}

bool WantParams::Marshalling(Parcel& parcel) const
{
    return MarshallingAt(parcel, 1);
}

bool WantParams::MarshallingAt(Parcel& parcel, int depth) const
{
    if (depth > MAX_DEPTH || !parcel.WriteInt32(static_cast<int32_t>(params_.size()))) {
        return false;
    }
    for (const auto& [key, value] : params_) {
        if (!parcel.WriteString(key) || !WriteValue(parcel, value, depth)) {
            return false;
        }
    }
    return true;
}

bool WantParams::ReadCount(Parcel& parcel, int depth, int32_t& count)
{
    if (depth < 1 || depth > MAX_DEPTH) {
        return false;
    }
    return parcel.ReadInt32(count) && count >= 0 &&
           static_cast<size_t>(count) <= parcel.GetReadableBytes() / MIN_ENTRY_BYTES;
}

bool WantParams::ReadEntries(Parcel& parcel, int depth, int32_t count)
{
    for (int32_t i = 0; i < count; ++i) {
        std::string key;
        if (!parcel.ReadString(key)) {
            return false;
        }
        // Keys arrive in order from our own writer, so the end is the right hint. The value is
        // read straight into its entry; a repeated key keeps its last value, and a failed read
        // leaves a map that is thrown away.
        auto entry = params_.try_emplace(params_.end(), std::move(key));
        if (!ReadValue(parcel, depth, entry->second)) {
            return false;
        }
    }
    return true;
}

WantParams* WantParams::Unmarshalling(Parcel& parcel, int depth)
{
    int32_t count = 0;
    if (!ReadCount(parcel, depth, count)) {
        return nullptr;
    }
    std::unique_ptr<WantParams> params(new (std::nothrow) WantParams);
    if (params == nullptr || !params->ReadEntries(parcel, depth, count)) {
        return nullptr;
    }
    return params.release();
}

bool WantParams::ReadFromParcel(Parcel& parcel, int depth)
{
    int32_t count = 0;
    return ReadCount(parcel, depth, count) && ReadEntries(parcel, depth, count);
}

}  // namespace Kavo::AAFwk
