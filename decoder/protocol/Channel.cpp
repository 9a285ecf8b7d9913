#include "decoder/protocol/Channel.h"

#include <cerrno>
#include <cstring>

#include <sys/socket.h>
#include <sys/uio.h>

namespace tovi::decoder {

bool sendPacket(int socket, const Packet& packet, int file) {
    Packet copy = packet;
    iovec part{copy.data(), copy.size()};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    if (file >= 0) {
        message.msg_control = control;
        message.msg_controllen = sizeof control;
        cmsghdr* header = CMSG_FIRSTHDR(&message);
        header->cmsg_level = SOL_SOCKET;
        header->cmsg_type = SCM_RIGHTS;
        header->cmsg_len = CMSG_LEN(sizeof file);
        std::memcpy(CMSG_DATA(header), &file, sizeof file);
    }
    ssize_t sent = 0;
    do {
        sent = ::sendmsg(socket, &message, MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(packet.size());
}

std::optional<Received> receivePacket(int socket) {
    Received received;
    iovec part{received.packet.data(), received.packet.size()};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr message{};
    message.msg_iov = &part;
    message.msg_iovlen = 1;
    message.msg_control = control;
    message.msg_controllen = CMSG_LEN(sizeof(int)); // CMSG_SPACE would have room for two
    ssize_t size = 0;
    do {
        size = ::recvmsg(socket, &message, MSG_CMSG_CLOEXEC);
    } while (size < 0 && errno == EINTR);
    if (size < 0) return std::nullopt;

    const cmsghdr* header = CMSG_FIRSTHDR(&message);
    if (header != nullptr && header->cmsg_level == SOL_SOCKET && header->cmsg_type == SCM_RIGHTS &&
        header->cmsg_len == CMSG_LEN(sizeof(int))) {
        int file = -1;
        std::memcpy(&file, CMSG_DATA(header), sizeof file);
        received.file = FileDescriptor(file);
    }
    if (size != static_cast<ssize_t>(packetSize)) return std::nullopt;
    if ((message.msg_flags & (MSG_TRUNC | MSG_CTRUNC)) != 0) return std::nullopt;
    return received;
}

} // namespace tovi::decoder
