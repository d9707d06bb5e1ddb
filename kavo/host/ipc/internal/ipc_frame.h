// Frame input and output on a stream socket for the channel's client and server. A frame is a
// little-endian 32-bit length word and that many bytes; a reply's bytes open with its status word.
// Every wait is a poll() bounded by the transaction's deadline. Stateless: any thread, any fd.
#ifndef KAVO_HOST_IPC_INTERNAL_IPC_FRAME_H
#define KAVO_HOST_IPC_INTERNAL_IPC_FRAME_H

#include <sys/socket.h>
#include <sys/un.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "kavo/host/ipc/ipc_channel.h"

namespace Kavo {
namespace internal {

constexpr size_t FRAME_HEADER_SIZE = sizeof(uint32_t);
constexpr size_t STATUS_SIZE = sizeof(int32_t);

// Little-endian 32-bit words as the frames carry them.
void StoreWord(uint8_t* out, uint32_t value);
uint32_t LoadWord(const uint8_t* in);

class Deadline {
public:
    using Clock = std::chrono::steady_clock;
    // A deadline that never passes.
    Deadline() = default;
    explicit Deadline(std::chrono::milliseconds budget) : at_(Clock::now() + budget), bounded_(true) {}

    bool Passed() const { return bounded_ && Clock::now() >= at_; }
    // The poll() timeout that ends at the deadline: -1 when unbounded, 0 once passed, else rounded up.
    int PollTimeout() const;

private:
    Clock::time_point at_{};
    bool bounded_ = false;
};

// Fills a Unix socket address; a leading '@' names an abstract socket. False when the path is
// empty or too long for the address.
bool MakeSocketAddress(const std::string& path, sockaddr_un& address, socklen_t& length);

// Writes every byte of the pieces in order. OK, PEER_GONE or DEADLINE_PASSED.
IpcResult SendAll(int fd, const void* first, size_t firstSize, const void* second, size_t secondSize,
                  const Deadline& deadline);

// Waits until the socket has a byte to read or reports its end. OK, PEER_GONE or DEADLINE_PASSED.
IpcResult WaitReadable(int fd, const Deadline& deadline);

// Reads one frame of at most `maxSize` bytes into `payload`. The buffer grows with the bytes that
// actually arrived, never with what the length word claims. Results: OK; PEER_GONE when the stream
// ended (or was reset) before the frame's first byte; SHORT_FRAME when it ended inside the frame;
// FRAME_TOO_LARGE as soon as the length word exceeds `maxSize`; DEADLINE_PASSED.
IpcResult ReadFrame(int fd, size_t maxSize, const Deadline& deadline, std::vector<uint8_t>& payload);

// Sends a reply frame: its status word, then `size` bytes of `data`.
IpcResult SendReply(int fd, IpcResult status, const uint8_t* data, size_t size, const Deadline& deadline);

// Sends a reply frame holding only `status` if the socket takes it at once; used just before a
// connection is closed for a failure, so the peer learns which one.
void SendRefusal(int fd, IpcResult status);

}  // namespace internal
}  // namespace Kavo

#endif  // KAVO_HOST_IPC_INTERNAL_IPC_FRAME_H
