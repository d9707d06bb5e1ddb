// Logging, privacy markers and masking: what reaches the platform log, captured as a test sees it.
#include <cstdlib>

#include <kavo/host/log/log.h>
#include <kavo/push/common/push_log.h>
#include <kavo/push/common/push_logger.h>

#include "show.h"

using Kavo::Push::PushLogger;

int main()
{
    unsetenv("KAVO_LOG_PRIVATE");
    // guide: log
    Kavo::LogCapture capture;  // records every line, whatever KAVO_LOG_LEVEL lets through
    std::string address = "192.168.1.10";
    PUSH_LOGE("connect %{public}s failed: %{public}d, token %s", PushLogger::LogGuard(address).c_str(), 110, "t0k3n");
    setenv("KAVO_LOG_PRIVATE", "show", 1);  // a developer's machine: private arguments print
    PUSH_LOGW("token %s", "t0k3n");
    std::vector<Kavo::LogLine> lines = capture.Lines();
    Guide::Show("lines", lines.size(), size_t{2});
    Guide::Show("first line", lines.at(0).text, "connect 1*2.*6*.1.*0 failed: 110, token <private>");
    Guide::Show("its level", Kavo::LogLevelName(lines.at(0).level), "ERROR");
    Guide::Show("its domain is the push service's", lines.at(0).domain == Kavo::Push::PUSH_LOG_DOMAIN, true);
    Guide::Show("its tag", lines.at(0).tag, "push");
    Guide::Show("second line", lines.at(1).text, "token t0k3n");
    // end guide
    return Guide::ExitStatus();
}
