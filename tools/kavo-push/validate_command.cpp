// `kavo-push validate`: the library's checks of a remote notification request and of the content
// an extension produced for it, one line per check.
#include <iostream>

#include "cli_io.h"
#include "command.h"
#include "kavo/push/common/push_error_message.h"
#include "kavo/push/validate/remote_notification_extension_validate.h"
#include "records/record_json.h"

namespace KavoTool {

namespace {

using Kavo::Push::PushBaseRsp;
using Kavo::Push::RemoteNotificationContent;
using Kavo::Push::RemoteNotificationExtensionValidate;
using Kavo::Push::RemoteNotificationRequest;

// The parcel bytes of one record: read as they are, as hex, or built from the record's JSON form.
bool LoadParcel(const std::string& path, const Arguments& a, const char* typeName, Kavo::Parcel& parcel,
                std::string& error)
{
    std::string bytes;
    if (!a.Has("--json")) {
        if (!ReadBytes(path, a.Has("--hex"), bytes, error)) {
            return false;
        }
        if (!parcel.ParseFrom(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size())) {
            error = path + ": larger than a parcel holds";
            return false;
        }
        return true;
    }
    Json::Value json;
    if (!ReadInput(path, bytes, error) || !ParseJson(bytes, json, error)) {
        return false;
    }
    if (!FindRecordType(typeName)->encode(json, parcel, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

// "CHECK<TAB>passed", or "CHECK<TAB>failed<TAB>CODE<TAB>public message<TAB>GetInfo()".
bool Report(const char* check, const PushBaseRsp& rsp)
{
    if (rsp.Succeed()) {
        std::cout << check << "\tpassed\n";
        return true;
    }
    std::cout << check << "\tfailed\t" << rsp.GetErrAsInt32() << "\t"
              << Kavo::Push::PushErrorMessage::RebuildPushRsp(rsp.GetErrAsInt32()).GetErrDescription() << "\t"
              << rsp.GetInfo() << "\n";
    return false;
}

int RunValidate(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{"--hex", "--json"}, {"--request", "--content"}}, a, error)) {
        return UsageError("validate", error);
    }
    if (!a.Has("--request") || !a.positional.empty() || (a.Has("--hex") && a.Has("--json"))) {
        return UsageError("validate", "expected --request FILE, optionally --content FILE, and --hex or --json");
    }
    ShowErrorLog();
    Kavo::Parcel requestParcel;
    Kavo::Parcel contentParcel;
    const bool withContent = a.Has("--content");
    if (!LoadParcel(a.Value("--request"), a, "RemoteNotificationRequest", requestParcel, error) ||
        (withContent && !LoadParcel(a.Value("--content"), a, "RemoteNotificationContent", contentParcel, error))) {
        return Failed("validate", error);
    }
    auto request = RemoteNotificationRequest::Unmarshalling(requestParcel);
    if (request == nullptr) {
        return Failed("validate", "the request does not decode");
    }
    bool passed = Report("request", RemoteNotificationExtensionValidate::ValidateRemoteNotificationRequest(*request));
    if (!withContent) {
        return passed ? EXIT_OK : EXIT_FAILED;
    }
    auto content = RemoteNotificationContent::Unmarshalling(contentParcel);
    if (content == nullptr) {
        return Failed("validate", "the content does not decode");
    }
    // The size of a content is what it takes on the channel: the bytes of its parcel.
    content->SetContentSize(static_cast<long>(contentParcel.GetDataSize()));
    passed &=
        Report("content", RemoteNotificationExtensionValidate::ValidateRemoteNotificationContent(*request, *content));
    passed &= Report("overlay icon",
                     RemoteNotificationExtensionValidate::ValidateRemoteNotificationOverlayIcon(*request, *content));
    return passed ? EXIT_OK : EXIT_FAILED;
}

}  // namespace

KAVO_REGISTER_COMMAND("validate", "check a remote notification request and its content",
                      "usage: kavo-push validate --request FILE [--content FILE] [--hex | --json]\n\n"
                      "Reads a RemoteNotificationRequest, and optionally the RemoteNotificationContent\n"
                      "produced for it, as parcel bytes (hex text with --hex, their JSON form with\n"
                      "--json; FILE - is standard input) and runs the library's checks: the request's\n"
                      "survival time and limits, then the content's size (the bytes of its parcel)\n"
                      "and its overlay icon against the request. Prints one line per check:\n"
                      "  CHECK<TAB>passed\n"
                      "  CHECK<TAB>failed<TAB>CODE<TAB>MESSAGE<TAB>DETAIL\n"
                      "with the public code, the message an application receives and the details.\n"
                      "Exit status: 0 when every check passes; 1 when one fails or an input cannot\n"
                      "be read or decoded; 2 on bad usage.\n",
                      RunValidate);

}  // namespace KavoTool
