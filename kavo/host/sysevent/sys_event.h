// The system event service's writer: one event is a domain, a name, a type and an ordered list
// of parameters (string, 32-bit signed or 64-bit unsigned values). Every live SysEventRecorder
// keeps each written event; when KAVO_SYSEVENT_FILE names a file, each event is also appended
// to it as one JSON object on one line. Thread-safe: lines of concurrent writers never mix.
//
//   Kavo::SysEventWrite("PUSH_MANAGER", "START_EXTENSION", Kavo::SysEventType::BEHAVIOR,
//                       {{"BUNDLE_NAME", std::string("com.example.mail")}, {"ACCOUNT_ID", int32_t{100}}});
#ifndef KAVO_HOST_SYSEVENT_SYS_EVENT_H
#define KAVO_HOST_SYSEVENT_SYS_EVENT_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "kavo/host/host_export.h"

namespace Kavo {

enum class SysEventType : int32_t {
    FAULT = 1,
    STATISTIC = 2,
    SECURITY = 3,
    BEHAVIOR = 4,
};

struct SysEventParam {
    std::string key;
    std::variant<std::string, int32_t, uint64_t> value;
};

struct SysEventRecord {
    std::string domain;
    std::string name;
    SysEventType type = SysEventType::FAULT;
    std::vector<SysEventParam> params;
};

// Writer results.
constexpr int SYS_EVENT_OK = 0;
constexpr int SYS_EVENT_INVALID = -1;  // empty domain or name, unknown type, or an empty key

KAVO_HOST_EXPORT int SysEventWrite(const std::string& domain, const std::string& name, SysEventType type,
                                   const std::vector<SysEventParam>& params);

// The JSON line an event is written as (without the newline).
KAVO_HOST_EXPORT std::string SysEventToJson(const SysEventRecord& record);

// Keeps every event written while it lives, from every thread. Recorders may nest.
class KAVO_HOST_EXPORT SysEventRecorder {
public:
    SysEventRecorder();
    ~SysEventRecorder();
    SysEventRecorder(const SysEventRecorder&) = delete;
    SysEventRecorder& operator=(const SysEventRecorder&) = delete;

    std::vector<SysEventRecord> Events() const;
    void Clear();

    void Record(const SysEventRecord& record);  // called by the writer

private:
    struct State;
    State* state_;
};

}  // namespace Kavo

#endif  // KAVO_HOST_SYSEVENT_SYS_EVENT_H
