#include "service/load_report.h"

#include <cstdio>
#include <sstream>

#include "service/service_reply.h"

namespace KavoTool {

namespace {

constexpr int HISTOGRAM_ROWS = 11;
constexpr int HISTOGRAM_WIDTH = 40;

Json::Value SampleJson(const ProcSample& sample)
{
    Json::Value json;
    json["threads"] = static_cast<Json::Int64>(sample.threads);
    json["fds"] = static_cast<Json::Int64>(sample.fds);
    json["children"] = static_cast<Json::Int64>(sample.children);
    json["rssKib"] = static_cast<Json::Int64>(sample.rssKib);
    return json;
}

std::string Fixed(double value, const char* format)
{
    char text[32];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

}  // namespace

bool PhasePassed(const LoadPlan& plan, const LoadPhase& phase)
{
    const LoadTally& t = phase.tally;
    return t.CheckFailures() == 0 && t.notSent == 0 && t.answered == plan.requests &&
           (plan.baseline || phase.watch.settled);
}

double RequestsPerSecond(const LoadPhase& phase)
{
    return phase.seconds > 0 ? static_cast<double>(phase.tally.answered) / phase.seconds : 0;
}

double RssGrowth(const ServiceWatch& watch)
{
    return watch.early.rssKib > 0 ? static_cast<double>(watch.end.rssKib) / static_cast<double>(watch.early.rssKib) : 0;
}

std::string PhaseText(const std::string& title, const LoadPlan& plan, const LoadPhase& phase)
{
    const LoadTally& t = phase.tally;
    const ServiceWatch& w = phase.watch;
    std::ostringstream out;
    out << title << ": " << plan.socket << " (pid " << w.pid << "), " << plan.clients << " clients over " << plan.apps
        << " applications, " << plan.requests << " requests\n";
    out << "  faults asked for:";
    for (const auto& [fault, count] : t.faults) {
        out << " " << fault << " " << count;
    }
    out << "\n  time " << Fixed(phase.seconds, "%.2f") << " s, " << Fixed(RequestsPerSecond(phase), "%.0f")
        << " requests/s\n";
    out << "  latency p50 " << FormatMicros(t.latency.Percentile(0.5)) << ", p99 "
        << FormatMicros(t.latency.Percentile(0.99)) << ", p99.9 " << FormatMicros(t.latency.Percentile(0.999))
        << ", max " << FormatMicros(t.latency.Max()) << "\n";
    out << t.latency.Bars(HISTOGRAM_ROWS, HISTOGRAM_WIDTH);
    out << "  codes:\n";
    for (const auto& [code, count] : t.codes) {
        std::string message = PublicMessage(code);
        out << "    " << code << "  " << count << (message.empty() ? "" : "  " + message) << "\n";
    }
    out << "  checks: lost " << t.lost << ", refused " << t.refused << ", duplicated " << t.duplicated
        << ", misdirected " << t.misdirected << ", wrong code " << t.wrongCode << ", not sent " << t.notSent;
    if (plan.chaos) {
        out << "; outage codes in chaos windows " << t.outage;
    }
    out << "\n";
    if (!t.firstProblem.empty()) {
        out << "  first problem: " << t.firstProblem << "\n";
    }
    for (const std::string& peer : phase.hostile) {
        out << "  hostile peer: " << peer << "\n";
    }
    if (!plan.baseline) {
        out << "  service at start:   " << DescribeSample(w.start) << "\n";
        out << "  after " << w.earlyAt << " requests: " << DescribeSample(w.early) << "\n";
        out << "  at end:             " << DescribeSample(w.end) << " ("
            << (w.settled ? "back to start" : "NOT back to start") << " after " << w.settleTook.count() << " ms; rss "
            << Fixed((RssGrowth(w) - 1) * 100, "%+.1f") << "% since the early sample)\n";
    }
    out << "  verdict: " << (PhasePassed(plan, phase) ? "passed" : "FAILED") << "\n";
    return out.str();
}

Json::Value PhaseJson(const LoadPlan& plan, const LoadPhase& phase)
{
    const LoadTally& t = phase.tally;
    Json::Value json;
    json["socket"] = plan.socket;
    json["clients"] = plan.clients;
    json["apps"] = plan.apps;
    json["requests"] = static_cast<Json::UInt64>(plan.requests);
    json["seconds"] = phase.seconds;
    json["requestsPerSecond"] = RequestsPerSecond(phase);
    Json::Value latency;
    latency["p50Us"] = static_cast<Json::UInt64>(t.latency.Percentile(0.5));
    latency["p99Us"] = static_cast<Json::UInt64>(t.latency.Percentile(0.99));
    latency["p999Us"] = static_cast<Json::UInt64>(t.latency.Percentile(0.999));
    latency["maxUs"] = static_cast<Json::UInt64>(t.latency.Max());
    json["latency"] = latency;
    for (const auto& [code, count] : t.codes) {
        json["codes"][std::to_string(code)] = static_cast<Json::UInt64>(count);
    }
    for (const auto& [fault, count] : t.faults) {
        json["faults"][fault] = static_cast<Json::UInt64>(count);
    }
    Json::Value checks;
    checks["lost"] = static_cast<Json::UInt64>(t.lost);
    checks["refused"] = static_cast<Json::UInt64>(t.refused);
    checks["duplicated"] = static_cast<Json::UInt64>(t.duplicated);
    checks["misdirected"] = static_cast<Json::UInt64>(t.misdirected);
    checks["wrongCode"] = static_cast<Json::UInt64>(t.wrongCode);
    checks["notSent"] = static_cast<Json::UInt64>(t.notSent);
    checks["outage"] = static_cast<Json::UInt64>(t.outage);
    checks["firstProblem"] = t.firstProblem;
    json["checks"] = checks;
    for (const std::string& peer : phase.hostile) {
        json["hostile"].append(peer);
    }
    if (!plan.baseline) {
        json["service"]["pid"] = phase.watch.pid;
        json["service"]["start"] = SampleJson(phase.watch.start);
        json["service"]["early"] = SampleJson(phase.watch.early);
        json["service"]["earlyAt"] = static_cast<Json::UInt64>(phase.watch.earlyAt);
        json["service"]["end"] = SampleJson(phase.watch.end);
        json["service"]["settled"] = phase.watch.settled;
        json["service"]["settleMs"] = static_cast<Json::Int64>(phase.watch.settleTook.count());
        json["service"]["rssGrowth"] = RssGrowth(phase.watch);
    }
    json["passed"] = PhasePassed(plan, phase);
    return json;
}

}  // namespace KavoTool
