// Reading and writing the fields of one JSON object, for the record mappings of record_json.cpp.
// A mapping is one function template over the direction:
//
//   template <class Io> bool Map(Io& io, PushPayload& r)
//   {
//       std::string type = r.GetType(), data = r.GetData();
//       if (!io.Field("type", type) || !io.Field("data", data)) { return false; }
//       r = PushPayload(type, data);  // writing assigns the same values back
//       return true;
//   }
//
// JsonOut fills an object from the values; JsonIn fills the values from an object, checking each
// type and naming the field on failure ("content.title: expected a string"); it also refuses keys
// no mapping asked for. Plain values used on one thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_RECORDS_JSON_FIELDS_H
#define KAVO_TOOLS_KAVO_PUSH_RECORDS_JSON_FIELDS_H

#include <json/json.h>

#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "kavo/host/media/pixel_map.h"
#include "kavo/host/want/want_params.h"

namespace KavoTool {

// The values a field may hold besides a record. Non-const references, so that these win over the
// record templates below.
void Put(Json::Value& json, std::string& value);
void Put(Json::Value& json, bool& value);
void Put(Json::Value& json, int32_t& value);
void Put(Json::Value& json, uint32_t& value);
void Put(Json::Value& json, int64_t& value);
void Put(Json::Value& json, Kavo::AAFwk::WantParams& value);
void Put(Json::Value& json, Kavo::Media::PixelMap& value);
bool Get(const Json::Value& json, const std::string& path, std::string& value, std::string& error);
bool Get(const Json::Value& json, const std::string& path, bool& value, std::string& error);
bool Get(const Json::Value& json, const std::string& path, int32_t& value, std::string& error);
bool Get(const Json::Value& json, const std::string& path, uint32_t& value, std::string& error);
bool Get(const Json::Value& json, const std::string& path, int64_t& value, std::string& error);
bool Get(const Json::Value& json, const std::string& path, Kavo::AAFwk::WantParams& value, std::string& error);
bool Get(const Json::Value& json, const std::string& path, Kavo::Media::PixelMap& value, std::string& error);
// A record: through its mapping (defined in record_json.cpp, beside the mappings).
template <class R>
void Put(Json::Value& json, R& record);
template <class R>
bool Get(const Json::Value& json, const std::string& path, R& record, std::string& error);

class JsonOut {
public:
    static constexpr bool READING = false;
    explicit JsonOut(Json::Value& json) : json_(json) { json_ = Json::Value(Json::objectValue); }

    template <typename T>
    bool Field(const char* name, T& value)
    {
        Put(json_[name], value);
        return true;
    }
    // An absent value leaves the key out.
    template <typename T>
    bool Optional(const char* name, std::shared_ptr<T>& value)
    {
        if (value != nullptr) {
            Put(json_[name], *value);
        }
        return true;
    }

private:
    Json::Value& json_;
};

class JsonIn {
public:
    static constexpr bool READING = true;
    // `path` names the object in messages; empty for the whole document.
    JsonIn(const Json::Value& json, const std::string& path, std::string& error)
        : json_(json), path_(path), error_(error)
    {
    }

    // False unless the value is an object; call first.
    bool Open();
    template <typename T>
    bool Field(const char* name, T& value)
    {
        seen_.insert(name);
        if (!json_.isMember(name)) {
            return Fail(name, "missing");
        }
        return Get(json_[name], Path(name), value, error_);
    }
    // A missing key or null leaves the value absent.
    template <typename T>
    bool Optional(const char* name, std::shared_ptr<T>& value)
    {
        seen_.insert(name);
        if (!json_.isMember(name) || json_[name].isNull()) {
            value = nullptr;
            return true;
        }
        auto read = std::make_shared<T>();
        if (!Get(json_[name], Path(name), *read, error_)) {
            return false;
        }
        value = read;
        return true;
    }
    // False on a key that no Field or Optional asked for; call last.
    bool Close();
    // Sets the error on the named field; returns false.
    bool Fail(const char* name, const std::string& message);

private:
    std::string Path(const std::string& name) const { return path_.empty() ? name : path_ + "." + name; }

    const Json::Value& json_;
    std::string path_;
    std::string& error_;
    std::set<std::string> seen_;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_RECORDS_JSON_FIELDS_H
