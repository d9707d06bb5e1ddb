// Events and analytics hooks: a system event the service writes when it starts an extension,
// and the two hooks through which the library reports its own failures.
#include <string>
#include <vector>

#include <kavo/host/device/device.h>
#include <kavo/host/sysevent/sys_event.h>
#include <kavo/push/codec/push_base64_convert.h>
#include <kavo/push/event/push_event_report.h>
#include <kavo/push/event/teldric_helper.h>
#include <kavo/push/platform/push_account_helper.h>

#include "show.h"

using namespace Kavo::Push;

int main()
{
    // guide: event
    Kavo::SysEventRecorder recorder;  // a test's view; KAVO_SYSEVENT_FILE also writes them to a file
    PushEventReport::SendEvent(PushEvent::START_EXTENSION,
                               PushEventInfo("remoteNotification", "com.example.mail", "MailExtension", 100, 0));
    std::vector<Kavo::SysEventRecord> events = recorder.Events();
    Guide::Show("events", events.size(), size_t{1});
    Guide::Show("as JSON", events.empty() ? "" : Kavo::SysEventToJson(events[0]),
                R"({"domain":"PUSH_MANAGER","name":"START_EXTENSION","type":4,"params":{)"
                R"("EXTENSION_TYPE":"remoteNotification","BUNDLE_NAME":"com.example.mail",)"
                R"("ABILITY_NAME":"MailExtension","ACCOUNT_ID":100,"ERROR_CODE":0}})");
    // end guide

    // guide: hooks
    std::vector<std::string> reports, analytics;
    TeldricHelper::SetReportException([&reports](PushInnerError const& inner, std::string const& desc) {
        reports.push_back(std::to_string(inner) + " " + desc);
    });
    TeldricHelper::RegisterAddEventMethod(
        [&analytics](ComponentCode component, std::string const& api, ApiStatusCode status, std::string const& detail) {
            analytics.push_back(std::to_string(component) + " " + api + " " + std::to_string(status) + " " + detail);
        });
    PushBase64Convert::Base64Decode(SecureString("not base64!"));  // a failed conversion is reported

    Kavo::Host::Device device;
    device.Activate();
    device.SetReturnCode(Kavo::Host::Device::ACCOUNT_SERVICE, "GetOsAccountLocalIdFromUid", 5);
    int localId = 0;
    PushAccountHelper::GetOsAccountLocalIdFromUid(20010042, localId);  // a refused account call is an event
    Guide::Show("report", reports.empty() ? "" : reports[0], "100002014 Base64Decode error: bio read fail");
    Guide::Show("analytics event", analytics.empty() ? "" : analytics[0], "35 GetOsAccountLocalIdFromUid 1 5");
    // end guide
    TeldricHelper::SetReportException(nullptr);
    TeldricHelper::RegisterAddEventMethod(nullptr);
    return Guide::ExitStatus();
}
