// The inter-process channel's client: one transaction sends a request parcel over a Unix stream
// socket and receives the reply parcel, within a deadline. Failures are values (`IpcResult`).
// One client belongs to one thread at a time; distinct clients may be used from any threads.
//
//   IpcClient client;
//   client.Connect("/run/kavo/push.sock");
//   IpcResult result = client.Transact(request, reply, std::chrono::milliseconds(500));
#ifndef KAVO_HOST_IPC_IPC_CHANNEL_H
#define KAVO_HOST_IPC_IPC_CHANNEL_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/host_export.h"
#include "kavo/host/ipc/parcel.h"

namespace Kavo {

// The outcome of one transaction. The values travel in reply frames, so they never change.
enum class IpcResult : int32_t {
    OK = 0,
    // The server's handler declined the request; the connection stays open.
    REFUSED = 1,
    // The other end closed or reset the connection, or there is nobody at the address.
    PEER_GONE = 2,
    // The transaction did not complete before its deadline.
    DEADLINE_PASSED = 3,
    // A length word above the receiving side's maximum frame size.
    FRAME_TOO_LARGE = 4,
    // The connection ended inside a frame, or a reply frame is too short for its status word.
    SHORT_FRAME = 5,
    // A reply frame whose status word is not one a server sends.
    BAD_FRAME = 6,
    // The client has no connection (never connected, or closed after an earlier failure).
    NOT_CONNECTED = 7,
};

// "OK", "REFUSED", "PEER_GONE", ... ; "UNKNOWN" for any other value.
KAVO_HOST_EXPORT const char* IpcResultName(IpcResult result);

// A connected pair of stream sockets (close-on-exec) whose ends serve one channel: one end for
// an `IpcServer`, the other for an `IpcClient`, possibly in a child process. False on failure.
KAVO_HOST_EXPORT bool MakeIpcSocketPair(int& first, int& second);

class KAVO_HOST_EXPORT IpcClient {
public:
    IpcClient() = default;
    // Adopts a connected stream socket (for instance one end of MakeIpcSocketPair).
    explicit IpcClient(int fd);
    IpcClient(IpcClient&& other) noexcept;
    IpcClient& operator=(IpcClient&& other) noexcept;
    IpcClient(const IpcClient&) = delete;
    IpcClient& operator=(const IpcClient&) = delete;
    ~IpcClient();

    // Connects to a server listening at `path`; a path starting with '@' names an abstract socket.
    // Any previous connection is closed first. False when nobody listens there or the path is too long.
    bool Connect(const std::string& path);
    bool IsConnected() const { return fd_ >= 0; }
    void Close();

    // Sends `request` and fills `reply` (up to its maximum capacity) with the server's answer.
    // OK and REFUSED keep the connection; every other failure closes it, except a request larger
    // than the maximum frame size, which is refused before a byte is sent. `reply` is untouched
    // unless the result is OK.
    IpcResult Transact(const Parcel& request, Parcel& reply, std::chrono::milliseconds deadline);

    // Largest request this client sends (default: the parcel's default maximum capacity).
    void SetMaxFrameSize(size_t size) { maxFrameSize_ = size; }

private:
    IpcResult Fail(IpcResult result);

    int fd_ = -1;
    size_t maxFrameSize_ = Parcel::DEFAULT_MAX_CAPACITY;
    std::vector<uint8_t> buffer_;
};

}  // namespace Kavo

#endif  // KAVO_HOST_IPC_IPC_CHANNEL_H
