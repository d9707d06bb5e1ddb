// The analytics switchboard: nothing happens without a hook, private formats never leave,
// "{public}" markers are stripped before formatting, events pass through unchanged.
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>
#include <tuple>
#include <vector>

#include "kavo/host/log/log.h"
#include "kavo/push/event/report_log.h"
#include "kavo/push/event/teldric_helper.h"
#include "tests/support/test_support.h"

namespace {

using namespace Kavo::Push;
using KavoTest::ReportRecorder;
using Event = std::tuple<int, std::string, int, std::string>;

class TeldricHelperTest : public ::testing::Test {
protected:
    void TearDown() override
    {
        TeldricHelper::SetReportException(nullptr);
        TeldricHelper::RegisterAddEventMethod(nullptr);
    }
    static void RecordEventsInto(std::vector<Event>& events)
    {
        TeldricHelper::RegisterAddEventMethod(
            [&events](ComponentCode component, std::string const& api, ApiStatusCode status,
                      std::string const& detail) { events.emplace_back(component, api, status, detail); });
    }
};

TEST_F(TeldricHelperTest, ReportsStripPublicMarkersAndDropPrivateFormats)
{
    struct Case {
        const char* name;
        const char* fmt;  // every format takes (const char*, int) or fewer
        std::vector<std::pair<int, std::string>> reports;
    };
    const Case cases[] = {
        {"two public markers removed", "Read %{public}s Error %{public}d", {{100002014, "Read x Error 7"}}},
        {"plain conversions are formatted", "Read %s Error %d", {{100002014, "Read x Error 7"}}},
        {"private conversion never reported", "Read %{private}s Error %{public}d", {}},
        {"private marker outside a conversion never reported", "note {private} %{public}s", {}},
        {"marker rebuilt by a removal is removed too", "a{pub{public}lic}b %s", {{100002014, "ab x"}}},
        {"format without conversions", "ReadFromParcel Error", {{100002014, "ReadFromParcel Error"}}},
        {"empty text is not reported", "", {}},
        {"text of only an empty argument is not reported", "%.0s", {}},
        {"percent escape kept", "100%% %{public}s", {{100002014, "100% x"}}},
    };
    for (const auto& c : cases) {
        ReportRecorder recorder;
        TeldricHelper::AsyncReportCommonException(INNER_ERR_DATA_CONVERT_FAILED, c.fmt, "x", 7);
        EXPECT_EQ(recorder.Reports(), c.reports) << c.name;
    }
}

TEST_F(TeldricHelperTest, ReportTextsLongerThan4096AreDropped)
{
    struct Case {
        const char* name;
        size_t length;
        bool reported;
    };
    const Case cases[] = {{"4096 characters reported", 4096, true}, {"4097 characters dropped", 4097, false}};
    for (const auto& c : cases) {
        ReportRecorder recorder;
        std::string text(c.length, 'r');
        TeldricHelper::AsyncReportCommonException(INNER_ERR_TIMER_FAILED, "%{public}s", text.c_str());
        EXPECT_EQ(recorder.Reports().size(), c.reported ? 1u : 0u) << c.name;
    }
}

TEST_F(TeldricHelperTest, BuildAndStripHelpers)
{
    struct Case {
        const char* name;
        std::string text;
        std::string marker;
        std::string stripped;
    };
    const Case cases[] = {
        {"every occurrence removed", "a{public}b{public}c", "{public}", "abc"},
        {"adjacent occurrences", "{public}{public}", "{public}", ""},
        {"occurrence formed by a removal", "{pub{public}lic}", "{public}", ""},
        {"no occurrence", "plain %s", "{public}", "plain %s"},
        {"other marker left alone", "%{private}s", "{public}", "%{private}s"},
        {"empty marker changes nothing", "abc", "", "abc"},
    };
    for (const auto& c : cases) {
        std::string text = c.text;
        TeldricHelper::FormatLogStr(text, c.marker);
        EXPECT_EQ(text, c.stripped) << c.name;
    }
    EXPECT_EQ(TeldricHelper::BuildLogReportDesc("%{public}s:%{public}d", "uid", 5), "uid:5");
    EXPECT_EQ(TeldricHelper::BuildLogReportDesc("%{private}s", "uid"), "");
}

// A string argument that lies in an unreadable page: formatting it would crash.
class UnreadableString {
public:
    UnreadableString()
    {
        page_ = mmap(nullptr, static_cast<size_t>(getpagesize()), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    }
    ~UnreadableString() { munmap(page_, static_cast<size_t>(getpagesize())); }
    const char* Get() const { return static_cast<const char*>(page_); }

private:
    void* page_;
};

TEST_F(TeldricHelperTest, ArgumentsAreNotFormattedWhenNothingWillBeReported)
{
    struct Case {
        const char* name;
        bool hook;
        const char* fmt;
    };
    const Case cases[] = {
        {"no hook installed", false, "Read %{public}s Error"},
        {"private format with a hook", true, "Read %{private}s Error"},
    };
    UnreadableString unreadable;
    ASSERT_NE(unreadable.Get(), MAP_FAILED);
    for (const auto& c : cases) {
        EXPECT_EXIT(
            {
                ReportRecorder* recorder = c.hook ? new ReportRecorder : nullptr;
                TeldricHelper::AsyncReportCommonException(INNER_ERR_DATA_CONVERT_FAILED, c.fmt, unreadable.Get());
                bool quiet = recorder == nullptr || recorder->Reports().empty();
                std::_Exit(quiet ? 0 : 1);
            },
            ::testing::ExitedWithCode(0), "")
            << c.name;
    }
}

TEST_F(TeldricHelperTest, AddEventPassesEverythingThroughToTheLatestHook)
{
    std::vector<Event> first;
    std::vector<Event> second;
    RecordEventsInto(first);
    TeldricHelper::AddEvent(COMPONENT_ACCOUNT, "QueryActiveOsAccountIds", API_STATUS_FAILURE, "ret 5");
    RecordEventsInto(second);
    TeldricHelper::AddEvent(COMPONENT_TIMER, "StartTimer", API_STATUS_SUCCESS, "");
    TeldricHelper::AddEvent(static_cast<ComponentCode>(999), "%{private}s", static_cast<ApiStatusCode>(-4), "%d");
    EXPECT_EQ(first, (std::vector<Event>{{35, "QueryActiveOsAccountIds", 1, "ret 5"}}));
    EXPECT_EQ(second, (std::vector<Event>{{18, "StartTimer", 0, ""}, {999, "%{private}s", -4, "%d"}}));
    TeldricHelper::RegisterAddEventMethod(nullptr);
    TeldricHelper::AddEvent(COMPONENT_TIMER, "StopTimer", API_STATUS_FAILURE, "");
    EXPECT_EQ(second.size(), 2u);
}

TEST_F(TeldricHelperTest, LogAndReportWritesOneErrorLineThenOneReport)
{
    struct Case {
        const char* name;
        bool hook;
        const char* logText;
        std::vector<std::pair<int, std::string>> reports;
    };
    const Case cases[] = {
        {"with a hook", true, "Read x Error <private>", {{100002014, "Read x Error 7"}}},
        {"without a hook the line is still written", false, "Read x Error <private>", {}},
    };
    KavoTest::ScopedEnv privacy("KAVO_LOG_PRIVATE", nullptr);
    for (const auto& c : cases) {
        std::vector<std::pair<int, std::string>> reports;
        Kavo::LogCapture capture;
        size_t linesAtReport = 0;
        if (c.hook) {
            TeldricHelper::SetReportException([&](PushInnerError const& inner, std::string const& desc) {
                linesAtReport = capture.Lines().size();
                reports.emplace_back(inner, desc);
            });
        }
        PUSH_LOGE_AND_REPORT(INNER_ERR_DATA_CONVERT_FAILED, "Read %{public}s Error %d", "x", 7);
        auto lines = capture.Lines();
        ASSERT_EQ(lines.size(), 1u) << c.name;
        EXPECT_EQ(lines[0].level, Kavo::LOG_ERROR) << c.name;
        EXPECT_EQ(lines[0].text, c.logText) << c.name;
        EXPECT_EQ(reports, c.reports) << c.name;
        EXPECT_EQ(linesAtReport, c.hook ? 1u : 0u) << c.name << ": the line is written before the report";
        TeldricHelper::SetReportException(nullptr);
    }
}

}  // namespace
