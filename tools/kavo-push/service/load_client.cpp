#include "service/load_client.h"

#include <chrono>
#include <random>
#include <variant>
#include <vector>

#include "kavo/host/ipc/ipc_channel.h"
#include "kavo/push/model/remote_notification_request.h"
#include "service/service_reply.h"

namespace KavoTool {

namespace {

using Kavo::Push::RemoteNotificationInfo;
using Kavo::Push::RemoteNotificationRequest;
using Clock = std::chrono::steady_clock;

constexpr int32_t SURVIVAL_SECONDS = 5;
constexpr int32_t HANG_SURVIVAL_SECONDS = 1;  // the shortest there is: a hang costs its application 1 s
constexpr int32_t OVERLAY_ICON_KIB = 2;
constexpr int32_t CONTENT_KIB = 8;
// Every platform query of a request may wait for its service, and a neighbour's hang may come first.
constexpr auto ANSWER_WAIT = std::chrono::seconds(110);
constexpr int ID_CLIENT_SHIFT = 40;

int64_t RequestId(int client, uint64_t seq)
{
    return (static_cast<int64_t>(client + 1) << ID_CLIENT_SHIFT) | static_cast<int64_t>(seq);
}

template <typename T>
bool Param(const Kavo::Push::RemoteNotificationResult& result, const char* key, T& value)
{
    const auto params = result.GetParameters();
    const auto* found = params == nullptr ? nullptr : params->GetParam(key);
    if (found == nullptr || !std::holds_alternative<T>(*found)) {
        return false;
    }
    value = std::get<T>(*found);
    return true;
}

class Client {
public:
    Client(const LoadClientPlan& plan, LoadProgress& progress)
        : plan_(plan), progress_(progress), random_(static_cast<uint32_t>(plan.index) * 7919u + 17u),
          answered_(plan.requests, false)
    {
    }

    LoadTally Run()
    {
        if (plan_.asApp && !BecomeUid(PushAppUid(plan_.app))) {
            return Unsent(0, "client " + std::to_string(plan_.index) + " cannot run as " + plan_.app.bundle);
        }
        if (!channel_.Connect(plan_.socket)) {
            return Unsent(0, "client " + std::to_string(plan_.index) + ": no service listens on " + plan_.socket);
        }
        progress_.connected.fetch_add(1);
        for (uint64_t seq = 0; seq < plan_.requests; ++seq) {
            if (progress_.stop.load() != 0 || !Send(seq)) {
                return Unsent(seq + (progress_.stop.load() != 0 ? 0 : 1), "");
            }
        }
        return tally_;
    }

private:
    LoadTally Unsent(uint64_t from, const std::string& why)
    {
        tally_.notSent += plan_.requests - from;
        if (!why.empty()) {
            tally_.Problem(why);
        }
        return tally_;
    }

    // False when the service can no longer be reached.
    bool Send(uint64_t seq)
    {
        ExtensionBehaviour fault = PickFault(plan_.faults, draw_(random_));
        int64_t id = RequestId(plan_.index, seq);
        Kavo::Parcel request;
        RemoteNotificationRequest(fault == ExtensionBehaviour::HANG ? HANG_SURVIVAL_SECONDS : SURVIVAL_SECONDS,
                                  OVERLAY_ICON_KIB, CONTENT_KIB,
                                  RemoteNotificationInfo("mail", BehaviourName(fault), id))
            .Marshalling(request);
        ++tally_.sent;
        ++tally_.faults[FaultName(fault)];
        auto start = Clock::now();
        Kavo::Parcel answer;
        Kavo::IpcResult result = channel_.Transact(request, answer, ANSWER_WAIT);
        auto took = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count();
        if (result != Kavo::IpcResult::OK) {
            bool closed = result != Kavo::IpcResult::DEADLINE_PASSED;
            ++(closed ? tally_.refused : tally_.lost);
            Failed("request " + std::to_string(id) + " got no answer: " + Kavo::IpcResultName(result) +
                   (closed ? " (the service closed the connection)" : " (none came in time)"));
            return channel_.Connect(plan_.socket);
        }
        ++tally_.answered;
        tally_.latency.Add(static_cast<uint64_t>(took));
        Check(answer, fault, id, seq);
        progress_.done.fetch_add(1, std::memory_order_relaxed);
        return true;
    }

    void Check(Kavo::Parcel& answer, ExtensionBehaviour fault, int64_t id, uint64_t seq)
    {
        ServiceReply reply;
        if (!ReadServiceReply(answer, reply)) {
            ++tally_.wrongCode;
            Failed("request " + std::to_string(id) + ": the answer is not a code, a message and a result");
            return;
        }
        ++tally_.codes[reply.code];
        if (plan_.baseline) {
            return;
        }
        int32_t expected = ExpectedCode(fault);
        if (reply.code != expected) {
            if (plan_.chaos && IsOutageCode(reply.code)) {
                ++tally_.outage;
                return;
            }
            ++tally_.wrongCode;
            Failed("request " + std::to_string(id) + " asking for " + FaultName(fault) + " ended with code " +
                   std::to_string(reply.code) + ", not " + std::to_string(expected));
            return;
        }
        if (reply.result != nullptr) {
            CheckAnswerer(*reply.result, id, seq);
        }
    }

    // The result must be the one the extension rendered for this very request of this application.
    void CheckAnswerer(const Kavo::Push::RemoteNotificationResult& result, int64_t id, uint64_t seq)
    {
        int64_t answered = -1;
        std::string app;
        if (Param(result, "requestId", answered) && Param(result, "app", app) && answered == id &&
            app == plan_.app.bundle && !answered_[seq]) {
            answered_[seq] = true;
            return;
        }
        auto answeredSeq = static_cast<uint64_t>(answered - RequestId(plan_.index, 0));
        bool again = answered >= RequestId(plan_.index, 0) && answeredSeq < answered_.size() &&
                     answered_[answeredSeq] && app == plan_.app.bundle;
        ++(again ? tally_.duplicated : tally_.misdirected);
        Failed("request " + std::to_string(id) + " of " + plan_.app.bundle + " got the answer to request " +
               std::to_string(answered) + " of " + (app.empty() ? "nobody" : app));
    }

    void Failed(const std::string& problem)
    {
        tally_.Problem(problem);
        progress_.failed.fetch_add(1, std::memory_order_relaxed);
    }

    const LoadClientPlan& plan_;
    LoadProgress& progress_;
    std::mt19937_64 random_;
    std::uniform_real_distribution<double> draw_{0.0, 1.0};
    std::vector<bool> answered_;
    Kavo::IpcClient channel_;
    LoadTally tally_;
};

}  // namespace

LoadTally RunLoadClient(const LoadClientPlan& plan, LoadProgress& progress)
{
    return Client(plan, progress).Run();
}

}  // namespace KavoTool
