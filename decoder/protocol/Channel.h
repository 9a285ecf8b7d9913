#pragma once

#include "base/FileDescriptor.h"
#include "decoder/protocol/Message.h"

#include <optional>
#include <span>

namespace tovi::decoder {

struct Received {
    Packet packet{};
    FileDescriptor file; // not open if none came along
};

/// Sends one packet on a connected SOCK_SEQPACKET socket, with a descriptor unless `file` is
/// negative. False once the other end is gone. Never raises SIGPIPE.
bool sendPacket(int socket, const Packet& packet, int file = -1);

/// Waits for the next packet. Nothing once the other end is gone, or for a message that is not one
/// packet with at most one descriptor.
std::optional<Received> receivePacket(int socket);

} // namespace tovi::decoder
