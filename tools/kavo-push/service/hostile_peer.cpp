#include "service/hostile_peer.h"

#include <poll.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <random>
#include <sstream>
#include <thread>

#include "kavo/host/ipc/ipc_channel.h"
#include "service/raw_socket.h"
#include "service/service_reply.h"

namespace KavoTool {

namespace {

using std::chrono::milliseconds;

const char* const NAMES[] = {"garbage", "oversized", "half-frame", "flood"};

constexpr milliseconds PAUSE{5};
constexpr milliseconds FLOOD_HOLD{200};
constexpr size_t GARBAGE_BYTES = 64;
constexpr uint32_t OVERSIZED_LENGTH = 64u << 20;  // far over any frame the service takes
constexpr uint32_t HALF_FRAME_LENGTH = 1000;
constexpr size_t HALF_FRAMES = 4;
constexpr size_t FLOOD_CONNECTIONS = 200;

bool Stopped(const LoadProgress& progress)
{
    return progress.stop.load() != 0;
}

// Waits until the service closes the socket; false when it is still open after `wait`.
bool ClosedWithin(int fd, milliseconds wait)
{
    pollfd entry = {fd, POLLIN, 0};
    char byte = 0;
    auto until = std::chrono::steady_clock::now() + wait;
    while (poll(&entry, 1, static_cast<int>(wait.count())) > 0) {
        if (read(fd, &byte, 1) <= 0) {
            return true;
        }
        if (std::chrono::steady_clock::now() >= until) {
            break;
        }
    }
    return false;
}

std::string Garbage(const std::string& socket, const LoadProgress& progress)
{
    std::mt19937 random(7);
    std::map<std::string, uint64_t> seen;
    Kavo::IpcClient client;
    while (!Stopped(progress)) {
        if (!client.IsConnected() && !client.Connect(socket)) {
            ++seen["not connected"];
            std::this_thread::sleep_for(PAUSE);
            continue;
        }
        Kavo::Parcel frame;
        for (size_t i = 0; i < GARBAGE_BYTES / sizeof(uint32_t); ++i) {
            frame.WriteUint32(static_cast<uint32_t>(random()));
        }
        Kavo::Parcel answer;
        Kavo::IpcResult result = client.Transact(frame, answer, milliseconds(5000));
        ServiceReply reply;
        if (result == Kavo::IpcResult::OK && ReadServiceReply(answer, reply)) {
            ++seen["code " + std::to_string(reply.code)];
        } else {
            ++seen[Kavo::IpcResultName(result)];
        }
        std::this_thread::sleep_for(PAUSE);
    }
    std::ostringstream out;
    out << "garbage frames answered:";
    for (const auto& [what, count] : seen) {
        out << " " << what << " x" << count;
    }
    return out.str();
}

std::string Oversized(const std::string& socket, const LoadProgress& progress)
{
    uint64_t sent = 0;
    uint64_t closed = 0;
    while (!Stopped(progress)) {
        int fd = ConnectUnix(socket);
        uint32_t length = OVERSIZED_LENGTH;
        if (fd >= 0 && WriteAll(fd, &length, sizeof(length))) {
            ++sent;
            closed += ClosedWithin(fd, milliseconds(5000)) ? 1 : 0;
        }
        if (fd >= 0) {
            close(fd);
        }
        std::this_thread::sleep_for(PAUSE);
    }
    return "oversized frames: " + std::to_string(sent) + " sent, " + std::to_string(closed) +
           " connections closed by the service";
}

std::string HalfFrame(const std::string& socket, const LoadProgress& progress)
{
    std::vector<int> held;
    for (size_t i = 0; i < HALF_FRAMES; ++i) {
        int fd = ConnectUnix(socket);
        uint8_t half[4 + HALF_FRAME_LENGTH / 2] = {};
        uint32_t length = HALF_FRAME_LENGTH;
        __builtin_memcpy(half, &length, sizeof(length));
        if (fd >= 0 && WriteAll(fd, half, sizeof(half))) {
            held.push_back(fd);
        } else if (fd >= 0) {
            close(fd);
        }
    }
    while (!Stopped(progress)) {
        std::this_thread::sleep_for(milliseconds(50));
    }
    size_t closed = 0;
    for (int fd : held) {
        closed += ClosedWithin(fd, milliseconds(0)) ? 1 : 0;
        close(fd);
    }
    return "half frames: " + std::to_string(held.size()) + " connections held silent, " + std::to_string(closed) +
           " closed by the service meanwhile";
}

std::string Flood(const std::string& socket, const LoadProgress& progress)
{
    uint64_t rounds = 0;
    uint64_t opened = 0;
    uint64_t shut = 0;
    while (!Stopped(progress)) {
        std::vector<int> fds;
        for (size_t i = 0; i < FLOOD_CONNECTIONS; ++i) {
            int fd = ConnectUnix(socket);
            if (fd >= 0) {
                fds.push_back(fd);
            }
        }
        std::this_thread::sleep_for(FLOOD_HOLD);
        for (int fd : fds) {
            shut += ClosedWithin(fd, milliseconds(0)) ? 1 : 0;
            close(fd);
        }
        opened += fds.size();
        ++rounds;
        std::this_thread::sleep_for(FLOOD_HOLD);
    }
    return "flood: " + std::to_string(rounds) + " rounds of " + std::to_string(FLOOD_CONNECTIONS) + " connections, " +
           std::to_string(opened) + " opened, " + std::to_string(shut) + " closed by the service as they arrived";
}

}  // namespace

bool ParseHostileKinds(const std::string& list, std::vector<HostileKind>& kinds, std::string& error)
{
    std::istringstream in(list == "all" ? "garbage,oversized,half-frame,flood" : list);
    std::string item;
    std::vector<HostileKind> parsed;
    while (std::getline(in, item, ',')) {
        bool known = false;
        for (size_t i = 0; i < std::size(NAMES); ++i) {
            if (item == NAMES[i]) {
                parsed.push_back(static_cast<HostileKind>(i));
                known = true;
            }
        }
        if (!known) {
            error = "unknown hostile peer '" + item + "' (garbage, oversized, half-frame, flood or all)";
            return false;
        }
    }
    kinds = parsed;
    return true;
}

const char* HostileName(HostileKind kind)
{
    return NAMES[static_cast<int>(kind)];
}

std::string RunHostilePeer(HostileKind kind, const std::string& socket, const LoadProgress& progress)
{
    switch (kind) {
        case HostileKind::GARBAGE:
            return Garbage(socket, progress);
        case HostileKind::OVERSIZED:
            return Oversized(socket, progress);
        case HostileKind::HALF_FRAME:
            return HalfFrame(socket, progress);
        default:
            return Flood(socket, progress);
    }
}

}  // namespace KavoTool
