// `kavo-push errors`: the public error codes and the messages applications receive.
#include <iostream>

#include "cli_io.h"
#include "command.h"
#include "kavo/push/common/push_error_message.h"

namespace KavoTool {

namespace {

int RunErrors(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {}, a, error)) {
        return UsageError("errors", error);
    }
    if (a.positional.size() > 1) {
        return UsageError("errors", "expected at most one CODE");
    }
    if (a.positional.size() == 1) {
        int32_t code = 0;
        if (!ParseInt32(a.positional[0], code)) {
            return UsageError("errors", "CODE must be a decimal number");
        }
        if (!Kavo::Push::PushErrorMessage::IsErrorExist(code)) {
            return Failed("errors", std::to_string(code) + " is not a public error code");
        }
        auto rsp = Kavo::Push::PushErrorMessage::RebuildPushRsp(code);
        std::cout << rsp.GetErrAsInt32() << "\t" << rsp.GetErrDescription() << "\n";
        return EXIT_OK;
    }
    for (const auto& [code, message] : Kavo::Push::PushErrorMessage::errorMessageMap) {
        std::cout << static_cast<int>(code) << "\t" << message << "\n";
    }
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("errors", "list the public error codes and their messages",
                      "usage: kavo-push errors [CODE]\n\n"
                      "Prints every public error code with the message an application receives,\n"
                      "one per line as CODE<TAB>MESSAGE, or only the one CODE asked for.\n"
                      "Exit status: 0, 1 when CODE is not a public code, 2 on bad usage.\n",
                      RunErrors);

}  // namespace KavoTool
