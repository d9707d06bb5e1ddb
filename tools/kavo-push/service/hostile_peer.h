// Peers that misuse the service's socket while load's clients run: one that sends frames of
// garbage, one that sends a frame over the size limit, one that sends half a frame and then
// nothing, and one that opens more connections than the service takes. Each should cost the
// service that connection and nothing more. Each runs in a process of its own until load stops it.
#ifndef KAVO_TOOLS_KAVO_PUSH_SERVICE_HOSTILE_PEER_H
#define KAVO_TOOLS_KAVO_PUSH_SERVICE_HOSTILE_PEER_H

#include <string>
#include <vector>

#include "service/load_client.h"

namespace KavoTool {

enum class HostileKind { GARBAGE, OVERSIZED, HALF_FRAME, FLOOD };

// "garbage,oversized,half-frame,flood" or "all".
bool ParseHostileKinds(const std::string& list, std::vector<HostileKind>& kinds, std::string& error);
const char* HostileName(HostileKind kind);

// Plays the peer again and again until `progress.stop` is set; says what it did and what it saw.
std::string RunHostilePeer(HostileKind kind, const std::string& socket, const LoadProgress& progress);

}  // namespace KavoTool

#endif  // KAVO_TOOLS_KAVO_PUSH_SERVICE_HOSTILE_PEER_H
