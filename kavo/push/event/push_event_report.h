// System event reports of the push service: the fixed event catalogue (event to name and type)
// and SendEvent, which writes one event of domain "PUSH_MANAGER". The catalogue is built at
// load time and never changes; SendEvent may be called from any thread.
//
//   PushEventReport::SendEvent(PushEvent::START_EXTENSION,
//                              PushEventInfo("push", "com.example.mail", "PushExt", 100, 0));
#ifndef KAVO_PUSH_EVENT_PUSH_EVENT_REPORT_H
#define KAVO_PUSH_EVENT_PUSH_EVENT_REPORT_H

#include <string>

#include "kavo/host/sysevent/sys_event.h"
#include "kavo/push/common/push_export.h"
#include "kavo/push/event/push_event_info.h"

namespace Kavo::Push {

enum class PushEvent : int {
    START_EXTENSION = 0,
    START_EXTENSION_ERROR = 1,
    CONNECT_PUSHSERVICE_ERROR = 2,
    UNCONNECT_PUSHSERVICE_ERROR = 3,
    INVOKE_PUSH_SERVICE = 4,
};

using EventType = Kavo::SysEventType;

// One catalogue entry.
class KAVO_PUSH_EXPORT PushEventLevel {
public:
    PushEventLevel(std::string const& name, EventType const& type);
    virtual ~PushEventLevel();

    std::string GetName() const { return name_; }
    EventType GetEventType() const { return type_; }

private:
    std::string name_;
    EventType type_;
};

class KAVO_PUSH_EXPORT PushEventReport {
public:
    // An extension record writes its extension, bundle, ability, account and result; a service
    // record writes its uri, bundle, account and result, plus the cost for INVOKE_PUSH_SERVICE.
    // An event outside the catalogue throws std::out_of_range; a refused write is dropped.
    static void SendEvent(PushEvent const& event, PushEventInfo const& info);
};

}  // namespace Kavo::Push

#endif  // KAVO_PUSH_EVENT_PUSH_EVENT_REPORT_H
