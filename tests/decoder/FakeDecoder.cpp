// A decoder that misbehaves as its own file name says. Every start adds a byte to the file beside
// it that is named after it with ".starts".
#include "decoder/protocol/Channel.h"

#include <csignal>
#include <cstdint>
#include <cstring>
#include <string>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace tovi::decoder;

namespace {

void say(const Reply& reply, int file = -1) {
    if (!sendPacket(socketDescriptor, encode(reply), file)) ::_exit(0);
}

void say(const Packet& packet) {
    if (!sendPacket(socketDescriptor, packet)) ::_exit(0);
}

[[noreturn]] void hang() {
    while (true)
        ::pause();
}

/// A reply whose field `index` is beyond what `encode` is meant for.
Packet forged(const Reply& reply, std::size_t index, std::uint32_t value) {
    Packet packet = encode(reply);
    std::memcpy(packet.data() + 8 + 4 * index, &value, sizeof value);
    return packet;
}

void answer(const std::string& behaviour, const std::string& program, bool firstStart,
            char* result) {
    if (behaviour == "crash" || (behaviour == "crash-once" && firstStart)) ::raise(SIGKILL);
    if (behaviour == "hang") {
        // Opening the other end of this pipe tells the test that the request has arrived.
        const int told = ::open((program + ".arrived").c_str(), O_WRONLY);
        ::close(told);
        hang();
    }
    if (behaviour == "huge-length") return say(forged(PdfDone{}, 4, UINT32_MAX));
    if (behaviour == "too-many-pages") return say(PdfDone{false, false, 500, 500, 0});
    if (behaviour == "wrong-kind") return say(PixelsDone{1, 1, 1, 1});
    if (behaviour == "garbage") return say(Packet{});
    if (behaviour == "descriptor") return say(PdfDone{}, STDIN_FILENO);
    if (behaviour == "same-progress") {
        while (true)
            say(Progress{1});
    }
    if (behaviour == "long-message") {
        const std::string bytes(100'000, 'x');
        ::send(socketDescriptor, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        hang();
    }
    const std::string text = behaviour == "not-utf8" ? "\xff\xfe\xfd\xfc" : "fine";
    std::memcpy(result, text.data(), text.size());
    say(Progress{1});
    say(PdfDone{false, false, 1, 1, static_cast<std::uint32_t>(text.size())});
}

} // namespace

int main(int, char** argv) {
    const std::string program = argv[0];
    const std::string behaviour = program.substr(program.rfind('/') + 1);
    const int starts = ::open((program + ".starts").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    if (::write(starts, "x", 1) != 1) return 1;
    const bool firstStart = ::lseek(starts, 0, SEEK_END) == 1;
    ::close(starts);
    if (behaviour == "end-at-start" || (behaviour == "end-at-first-start" && firstStart)) return 1;
    if (behaviour == "never-ready") hang();
    auto* result = static_cast<char*>(
        ::mmap(nullptr, resultCapacity, PROT_READ | PROT_WRITE, MAP_SHARED, resultDescriptor, 0));
    say(Ready{});
    while (const auto received = receivePacket(socketDescriptor))
        answer(behaviour, program, firstStart, result);
}
