#include "demo/demo_trace.h"

#include <sstream>
#include <variant>

#include "cli_io.h"
#include "kavo/push/common/push_error_message.h"
#include "records/record_json.h"

namespace KavoTool {

namespace {

// Bytes shown whole in the text form; longer ones keep their head and tail.
constexpr size_t SHOWN_BYTES = 48;
constexpr size_t TAIL_BYTES = 8;

// A text of up to SHOWN_BYTES bytes in hex, whole; a longer one by its head and tail, so that
// every line of the text form fits on a screen.
std::string ShortText(const std::string& text)
{
    if (text.size() <= 2 * SHOWN_BYTES) {
        return text;
    }
    return text.substr(0, 2 * (SHOWN_BYTES - TAIL_BYTES)) + " ... " + text.substr(text.size() - 2 * TAIL_BYTES);
}

std::string HexText(const std::string& bytes)
{
    return ShortText(std::string(ToHex(bytes)));
}

// The result with its long strings (the pixels of an icon, in hex) shortened.
Json::Value WithShortTexts(const Json::Value& json)
{
    if (json.isString()) {
        return ShortText(json.asString());
    }
    Json::Value shortened = json;
    for (auto member = shortened.begin(); member != shortened.end(); ++member) {
        *member = WithShortTexts(*member);
    }
    return shortened;
}

// "  DOMAIN NAME, type T" and one line per parameter, so that no event runs past a screen's width.
void PrintEvent(std::ostream& out, const Kavo::SysEventRecord& event)
{
    out << "  " << event.domain << " " << event.name << ", type " << static_cast<int>(event.type) << "\n";
    for (const auto& param : event.params) {
        out << "     " << param.key << ": ";
        std::visit([&out](const auto& value) { out << value; }, param.value);
        out << "\n";
    }
}

Json::Value EventJson(const Kavo::SysEventRecord& event)
{
    Json::Value json;
    std::string ignored;
    ParseJson(Kavo::SysEventToJson(event), json, ignored);
    return json;
}

std::string Pid(int pid)
{
    return pid > 0 ? std::to_string(pid) : "not started";
}

}  // namespace

void DemoTrace::Step(const std::string& name, const std::string& outcome, const std::string& detail)
{
    TraceStep step{name, outcome, detail, {}};
    std::vector<Kavo::LogLine> lines = capture_.Lines();
    for (size_t i = logged_; i < lines.size(); ++i) {
        step.log.push_back(Kavo::LogLevelName(lines[i].level) + " " + lines[i].text);
    }
    logged_ = lines.size();
    steps_.push_back(std::move(step));
}

bool DemoTrace::Step(const std::string& name, const Kavo::Push::PushBaseRsp& rsp, const std::string& detail)
{
    if (rsp.Succeed()) {
        Step(name, "ok", detail);
        return true;
    }
    Step(name, "failed", rsp.GetInfo());
    return false;
}

void DemoTrace::Crossed(const std::string& from, const std::string& to, const Kavo::Parcel& parcel)
{
    Crossed(from, to, std::string(reinterpret_cast<const char*>(parcel.GetData()), parcel.GetDataSize()));
}

void DemoTrace::Crossed(const std::string& from, const std::string& to, std::string bytes)
{
    crossings_.push_back({from, to, std::move(bytes)});
}

void DemoTrace::SetProcesses(int servicePid, int extensionPid)
{
    servicePid_ = servicePid;
    extensionPid_ = extensionPid;
}

void DemoTrace::Finish(const Kavo::Push::PushBaseRsp& rsp, const Json::Value& result)
{
    code_ = rsp.GetErrAsInt32();
    message_ = rsp.Succeed() ? "" : Kavo::Push::PushErrorMessage::RebuildPushRsp(code_).GetErrDescription();
    result_ = result;
}

std::string DemoTrace::Text() const
{
    std::ostringstream out;
    out << "scenario: " << scenario_ << "\nprocesses: service pid " << servicePid_ << ", extension pid "
        << Pid(extensionPid_) << "\n\n";
    for (size_t i = 0; i < steps_.size(); ++i) {
        const TraceStep& step = steps_[i];
        out << i + 1 << ". " << step.name << ": " << step.outcome << (step.detail.empty() ? "" : " - ") << step.detail
            << "\n";
        for (const auto& line : step.log) {
            out << "     log " << line << "\n";
        }
    }
    out << "\nbytes that crossed:\n";
    for (const auto& c : crossings_) {
        out << "  " << c.from << " -> " << c.to << ", " << c.bytes.size() << " bytes: " << HexText(c.bytes) << "\n";
    }
    out << "\nsystem events:\n";
    for (const auto& event : events_) {
        PrintEvent(out, event);
    }
    out << "\ncode: " << code_ << "\nmessage: " << (message_.empty() ? "(success)" : message_)
        << "\nresult: " << (result_.isNull() ? "none\n" : "\n" + JsonText(WithShortTexts(result_)));
    return out.str();
}

Json::Value DemoTrace::ToJson() const
{
    Json::Value json;
    json["scenario"] = scenario_;
    json["processes"]["service"] = servicePid_;
    json["processes"]["extension"] = extensionPid_;
    json["steps"] = Json::Value(Json::arrayValue);
    for (const auto& step : steps_) {
        Json::Value s;
        s["name"] = step.name;
        s["outcome"] = step.outcome;
        s["detail"] = step.detail;
        s["log"] = Json::Value(Json::arrayValue);
        for (const auto& line : step.log) {
            s["log"].append(line);
        }
        json["steps"].append(s);
    }
    json["bytes"] = Json::Value(Json::arrayValue);
    for (const auto& c : crossings_) {
        Json::Value b;
        b["from"] = c.from;
        b["to"] = c.to;
        b["size"] = static_cast<Json::UInt64>(c.bytes.size());
        b["hex"] = std::string(ToHex(c.bytes));
        json["bytes"].append(b);
    }
    json["events"] = Json::Value(Json::arrayValue);
    for (const auto& event : events_) {
        json["events"].append(EventJson(event));
    }
    json["code"] = code_;
    json["message"] = message_;
    json["result"] = result_;
    return json;
}

}  // namespace KavoTool
