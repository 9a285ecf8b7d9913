#include "decoder/process/Service.h"
#include "decoder/protocol/Channel.h"
#include "platform/Sandbox.h"

#include <exception>

#include <linux/close_range.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

/// tovi-decoder TASK: started by the client with the socket and the result area as descriptors 3
/// and 4. It reads what it needs, locks itself in, says that it is ready, and serves.
int main(int argc, char** argv) {
    using namespace tovi::decoder;
    const auto task = argc == 2 ? taskNamed(argv[1]) : std::nullopt;
    if (!task) return 2;
    try {
        void* area = ::mmap(nullptr, resultCapacity, PROT_READ | PROT_WRITE, MAP_SHARED,
                            resultDescriptor, 0);
        if (area == MAP_FAILED) return 1;
        ::syscall(SYS_close_range, socketDescriptor + 1, ~0u, 0);
        const std::span result(static_cast<std::byte*>(area), resultCapacity);

        prepare(*task);
        tovi::platform::DecoderSandbox sandbox;
        sandbox.readableFolders = readableFolders(*task);
        const int landlock = tovi::platform::enterDecoderSandbox(sandbox);
        if (!sendPacket(socketDescriptor, encode(Ready{static_cast<std::uint32_t>(landlock)})))
            return 0;
        serve(*task, socketDescriptor, result);
    } catch (const std::exception&) {
        return 1;
    }
    // Not through the destructors of the libraries, which a hostile file may have prepared.
    ::_exit(0);
}
