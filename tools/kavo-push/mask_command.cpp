// `kavo-push mask`: identifiers as the library masks them before logging.
#include <sstream>

#include "cli_io.h"
#include "command.h"
#include "kavo/push/common/push_logger.h"

namespace KavoTool {

namespace {

using Kavo::Push::PushLogger;

int RunMask(const std::vector<std::string>& args)
{
    Arguments a;
    std::string error;
    if (!ParseArguments(args, {{"--tag"}, {}}, a, error)) {
        return UsageError("mask", error);
    }
    std::vector<std::string> texts = a.positional;
    if (texts.empty()) {
        std::string input;
        if (!ReadInput("-", input, error)) {
            return Failed("mask", error);
        }
        std::istringstream lines(input);
        for (std::string line; std::getline(lines, line);) {
            texts.push_back(line);
        }
    }
    std::string out;
    for (const auto& text : texts) {
        out += (a.Has("--tag") ? PushLogger::LogGuardTag(text) : PushLogger::LogGuard(text)) + "\n";
    }
    WriteStdout(out);
    return EXIT_OK;
}

}  // namespace

KAVO_REGISTER_COMMAND("mask", "mask identifiers the way the library logs them",
                      "usage: kavo-push mask [--tag] [TEXT...]\n\n"
                      "Prints each TEXT masked, one per line; without TEXT, each line of standard\n"
                      "input. Addresses and identifiers lose every second letter or digit\n"
                      "(192.168.1.10 becomes 1*2.*6*.1.*0); with --tag, network and device tags\n"
                      "are masked by their kind (wifi tags, data tags, anything else by half).\n"
                      "Exit status: 0, 1 when standard input cannot be read, 2 on bad usage.\n",
                      RunMask);

}  // namespace KavoTool
