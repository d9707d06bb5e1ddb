// The analytics switchboard: hooks, private formats and "{public}" markers.
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <tuple>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/event/report_log.h"
#include "kavo/push/event/teldric_helper.h"
#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using Reports = std::vector<std::pair<int, std::string>>;

TEST(TeldricHelperTest, ReportsStripPublicMarkersAndDropPrivateFormats)
{
    // The name, a format taking ("x", 7) or less, and what is reported.
    const std::tuple<const char*, const char*, Reports> cases[] = {
        {"two public markers removed", "Read %{public}s Error %{public}d", {{100002014, "Read x Error 7"}}},
        {"plain conversions are formatted", "Read %s Error %d", {{100002014, "Read x Error 7"}}},
        {"private conversion never reported", "Read %{private}s Error %{public}d", {}},
        {"private marker outside a conversion never reported", "note {private} %{public}s", {}},
        {"marker rebuilt by a removal is removed too", "a{pub{public}lic}b %s", {{100002014, "ab x"}}},
        {"empty text is not reported", "%.0s", {}},
        {"percent escape kept", "100%% %{public}s", {{100002014, "100% x"}}},
    };
    for (const auto& [name, fmt, reports] : cases) {
        KavoTest::ReportRecorder recorder;
        TeldricHelper::AsyncReportCommonException(INNER_ERR_DATA_CONVERT_FAILED, fmt, "x", 7);
        EXPECT_EQ(recorder.Reports(), reports) << name;
    }
}

// A string argument in an unreadable page: formatting it would crash the suite.
TEST(TeldricHelperTest, ArgumentsAreNotFormattedWhenNothingWillBeReported)
{
    const size_t size = static_cast<size_t>(getpagesize());
    auto* page = static_cast<const char*>(mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    ASSERT_NE(page, MAP_FAILED);
    TeldricHelper::AsyncReportCommonException(INNER_ERR_DATA_CONVERT_FAILED, "Read %{public}s Error", page);
    KavoTest::ReportRecorder recorder;
    TeldricHelper::AsyncReportCommonException(INNER_ERR_DATA_CONVERT_FAILED, "Read %{private}s Error", page);
    EXPECT_TRUE(recorder.Reports().empty());
    munmap(const_cast<char*>(page), size);
}

TEST(TeldricHelperTest, AddEventPassesEverythingThroughWhileAHookIsInstalled)
{
    std::vector<std::tuple<int, std::string, int, std::string>> events;
    TeldricHelper::AddEvent(COMPONENT_TIMER, "Dropped", API_STATUS_FAILURE, "no hook yet");
    TeldricHelper::RegisterAddEventMethod([&events](auto component, const auto& api, auto status, const auto& detail) {
        events.emplace_back(component, api, status, detail);
    });
    TeldricHelper::AddEvent(static_cast<ComponentCode>(999), "%{private}s", static_cast<ApiStatusCode>(-4), "%d");
    TeldricHelper::RegisterAddEventMethod(nullptr);
    TeldricHelper::AddEvent(COMPONENT_TIMER, "Dropped", API_STATUS_FAILURE, "hook removed");
    EXPECT_EQ(events, (decltype(events){{999, "%{private}s", -4, "%d"}}));
}

TEST(TeldricHelperTest, LogAndReportEvaluatesOnceThenWritesOneErrorLineThenOneReport)
{
    KavoTest::ScopedEnv privacy("KAVO_LOG_PRIVATE", nullptr);
    Kavo::LogCapture capture;
    Reports reports;
    size_t linesAtReport = 0;
    TeldricHelper::SetReportException([&](PushInnerError const& inner, std::string const& desc) {
        linesAtReport = capture.Lines().size();
        reports.emplace_back(inner, desc);
    });
    int evaluations = 0;
    PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Read %{public}s Error %d", "x", ++evaluations * 7);
    EXPECT_EQ(evaluations, 1);
    TeldricHelper::SetReportException(nullptr);
    EXPECT_EQ(KavoTest::LogLines(capture), std::vector<std::string>{"E Read x Error <private>"});
    EXPECT_EQ(reports, (Reports{{100002014, "Read x Error 7"}}));
    EXPECT_EQ(linesAtReport, 1u) << "the line is written before the report";
}

}  // namespace
