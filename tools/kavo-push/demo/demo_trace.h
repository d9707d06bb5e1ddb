// The trace of one demo run: each step with its outcome and the library's log lines written
// during it, the bytes that crossed between the processes, the system events, the two processes
// and the public result. Printed as text for a reader or as one JSON document. Owned by the
// demo's thread.
#ifndef KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_TRACE_H
#define KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_TRACE_H

#include <json/json.h>

#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/ipc/parcel.h"
#include "kavo/host/log/log.h"
#include "kavo/host/sysevent/sys_event.h"
#include "kavo/push/common/push_base_rsp.h"

namespace KavoTool {

struct TraceStep {
    std::string name;
    std::string outcome;  // "ok", "failed", or what was found ("not running", "removed")
    std::string detail;
    std::vector<std::string> log;  // "LEVEL text", masked as on a release device
};

struct TraceBytes {
    std::string from;
    std::string to;
    std::string bytes;
};

class DemoTrace {
public:
    explicit DemoTrace(std::string scenario) : scenario_(std::move(scenario)) {}

    // Closes a step: the log lines captured since the previous step belong to it.
    void Step(const std::string& name, const std::string& outcome, const std::string& detail);
    // A step whose outcome is the library's result: "ok", or "failed" with its GetInfo().
    bool Step(const std::string& name, const Kavo::Push::PushBaseRsp& rsp, const std::string& detail);
    void Crossed(const std::string& from, const std::string& to, const Kavo::Parcel& parcel);
    void Crossed(const std::string& from, const std::string& to, std::string bytes);
    void SetProcesses(int servicePid, int extensionPid);
    // The public code and its message, and the result returned (null when none).
    void Finish(const Kavo::Push::PushBaseRsp& rsp, const Json::Value& result);
    void SetEvents(const std::vector<Kavo::SysEventRecord>& events) { events_ = events; }

    int Code() const { return code_; }
    std::string Text() const;
    Json::Value ToJson() const;

private:
    std::string scenario_;
    Kavo::LogCapture capture_;
    size_t logged_ = 0;
    std::vector<TraceStep> steps_;
    std::vector<TraceBytes> crossings_;
    std::vector<Kavo::SysEventRecord> events_;
    int servicePid_ = 0;
    int extensionPid_ = 0;
    int code_ = 0;
    std::string message_;
    Json::Value result_;
};

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_DEMO_DEMO_TRACE_H
