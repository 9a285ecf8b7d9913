#include "core/vault/VaultStore.h"

#include <array>
#include <cstdio>
#include <string>

#include <openssl/crypto.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace tovi;

namespace {

/// Tells how the process is protected, then lets it be looked at until the next line comes.
void pause(const char* state) {
    rlimit cores{};
    ::getrlimit(RLIMIT_CORE, &cores);
    std::printf("%s dumpable=%d cores=%d\n", state, ::prctl(PR_GET_DUMPABLE), cores.rlim_cur != 0);
    std::fflush(stdout);
    ::prctl(PR_SET_DUMPABLE, 1);
    char line = 0;
    while (::read(STDIN_FILENO, &line, 1) == 1 && line != '\n') {
    }
}

} // namespace

/// KeyHolder VAULT FILE COPY: works with a new vault, its password from the first line of standard
/// input, and stops where its memory is of interest.
int main(int, char** argv) {
    const rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
    ::setrlimit(RLIMIT_CORE, &unlimited);
    std::array<char, 64> line{};
    std::size_t length = 0;
    while (::read(STDIN_FILENO, &line[length], 1) == 1 && line[length] != '\n')
        ++length;

    const platform::SystemAvailability availability;
    VaultStore store(argv[1], availability);
    store.create({line.data(), length});
    store.lock();
    store.unlock({line.data(), length});
    OPENSSL_cleanse(line.data(), line.size());
    const VaultItem item = store.importFile(argv[2]);
    store.exportFile(item.id, argv[3]);
    pause("unlocked");
    store.lock();
    pause("locked");
}
