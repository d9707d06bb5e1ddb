// The JSON form of every record type of the library, and the table of those types that
// `decode`, `encode`, `types` and `validate` share. Each record's fields are named once, in one
// mapping that serves both directions. Plain functions on their arguments; one thread at a time.
//
//   const RecordType* type = FindRecordType("PushPayload");
//   Json::Value json;
//   if (type->decode(parcel, json)) { WriteStdout(JsonText(json)); }
#ifndef KAVO_TOOLS_KAVO_PUSH_RECORDS_RECORD_JSON_H
#define KAVO_TOOLS_KAVO_PUSH_RECORDS_RECORD_JSON_H

#include <json/json.h>

#include <string>
#include <vector>

#include "kavo/host/ipc/parcel.h"

namespace KavoTool {

struct RecordType {
    const char* name;
    const char* description;
    // Reads one record with the library's Unmarshalling and gives its JSON form; false when the
    // library gives no record (it has logged why).
    bool (*decode)(Kavo::Parcel& parcel, Json::Value& json);
    // Builds the record from its JSON form and writes it with its Marshalling; false with
    // `error` naming the field ("content.overlayIcon.width: expected a 32-bit integer").
    bool (*encode)(const Json::Value& json, Kavo::Parcel& parcel, std::string& error);
};

// In the order `types` lists them.
const std::vector<RecordType>& RecordTypes();
// Null for a name that is not in the table.
const RecordType* FindRecordType(const std::string& name);

// Strict JSON: one value, no duplicate keys, nothing after it.
bool ParseJson(const std::string& text, Json::Value& json, std::string& error);
// Indented with two spaces, ending in a line break.
std::string JsonText(const Json::Value& json);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_RECORDS_RECORD_JSON_H
