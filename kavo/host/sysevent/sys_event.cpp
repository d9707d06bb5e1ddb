#include "kavo/host/sysevent/sys_event.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <set>

namespace Kavo {

namespace {

// The recorders and the locks are never destroyed: detached threads may still write events
// while the process exits.
struct Writers {
    std::mutex recordersMutex;
    std::set<SysEventRecorder*> recorders;
    std::mutex fileMutex;
};

Writers& Shared()
{
    static Writers& writers = *new Writers;
    return writers;
}

void AppendJsonString(std::string& out, const std::string& text)
{
    out += '"';
    for (unsigned char c : text) {
        switch (c) {
            case '"':
                out += "\\\"";
                break;
            case '\\':
                out += "\\\\";
                break;
            case '\n':
                out += "\\n";
                break;
            case '\r':
                out += "\\r";
                break;
            case '\t':
                out += "\\t";
                break;
            default:
                if (c < 0x20) {
                    char escaped[8];
                    std::snprintf(escaped, sizeof(escaped), "\\u%04x", c);
                    out += escaped;
                } else {
                    out += static_cast<char>(c);
                }
        }
    }
    out += '"';
}

void AppendValue(std::string& out, const SysEventParam& param)
{
    if (const auto* text = std::get_if<std::string>(&param.value)) {
        AppendJsonString(out, *text);
    } else if (const auto* number = std::get_if<int32_t>(&param.value)) {
        out += std::to_string(*number);
    } else {
        out += std::to_string(std::get<uint64_t>(param.value));
    }
}

bool IsValid(const std::string& domain, const std::string& name, SysEventType type,
             const std::vector<SysEventParam>& params)
{
    int typeValue = static_cast<int>(type);
    if (domain.empty() || name.empty() || typeValue < 1 || typeValue > 4) {
        return false;
    }
    for (const auto& param : params) {
        if (param.key.empty()) {
            return false;
        }
    }
    return true;
}

// One write of the whole line, so that lines of concurrent writers never interleave.
void AppendToFile(const std::string& line)
{
    const char* path = std::getenv("KAVO_SYSEVENT_FILE");
    if (path == nullptr || *path == '\0') {
        return;
    }
    std::lock_guard<std::mutex> lock(Shared().fileMutex);
    int fd = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644);
    if (fd < 0) {
        return;
    }
    size_t done = 0;
    while (done < line.size()) {
        ssize_t n = write(fd, line.data() + done, line.size() - done);
        if (n <= 0) {
            break;
        }
        done += static_cast<size_t>(n);
    }
    close(fd);
}

}  // namespace

std::string SysEventToJson(const SysEventRecord& record)
{
    std::string out = "{\"domain\":";
    AppendJsonString(out, record.domain);
    out += ",\"name\":";
    AppendJsonString(out, record.name);
    out += ",\"type\":" + std::to_string(static_cast<int>(record.type)) + ",\"params\":{";
    for (size_t i = 0; i < record.params.size(); ++i) {
        if (i != 0) {
            out += ',';
        }
        AppendJsonString(out, record.params[i].key);
        out += ':';
        AppendValue(out, record.params[i]);
    }
    out += "}}";
    return out;
}

int SysEventWrite(const std::string& domain, const std::string& name, SysEventType type,
                  const std::vector<SysEventParam>& params)
{
    if (!IsValid(domain, name, type, params)) {
        return SYS_EVENT_INVALID;
    }
    SysEventRecord record{domain, name, type, params};
    {
        std::lock_guard<std::mutex> lock(Shared().recordersMutex);
        for (SysEventRecorder* recorder : Shared().recorders) {
            recorder->Record(record);
        }
    }
    AppendToFile(SysEventToJson(record) + "\n");
    return SYS_EVENT_OK;
}

struct SysEventRecorder::State {
    mutable std::mutex mutex;
    std::vector<SysEventRecord> events;
};

SysEventRecorder::SysEventRecorder() : state_(new State)
{
    std::lock_guard<std::mutex> lock(Shared().recordersMutex);
    Shared().recorders.insert(this);
}

SysEventRecorder::~SysEventRecorder()
{
    {
        std::lock_guard<std::mutex> lock(Shared().recordersMutex);
        Shared().recorders.erase(this);
    }
    delete state_;
}

std::vector<SysEventRecord> SysEventRecorder::Events() const
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    return state_->events;
}

void SysEventRecorder::Clear()
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->events.clear();
}

void SysEventRecorder::Record(const SysEventRecord& record)
{
    std::lock_guard<std::mutex> lock(state_->mutex);
    state_->events.push_back(record);
}

}  // namespace Kavo
