#include "cli/Interruption.h"

#include "cli/Context.h"

#include <pthread.h>
#include <unistd.h>

namespace tovi::cli {
namespace {

constexpr int endSignal = SIGUSR1; // sent to the waiting thread only

}

Interruption::Interruption() {
    sigemptyset(&signals_);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, endSignal})
        sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
    thread_ = std::thread([this] { wait(); });
}

Interruption::~Interruption() {
    pthread_kill(thread_.native_handle(), endSignal);
    thread_.join();
}

void Interruption::wait() {
    for (;;) {
        int signal = 0;
        if (sigwait(&signals_, &signal) != 0) continue;
        if (signal == endSignal) return;
        if (!source_.request_stop()) ::_exit(ExitCode::interrupted);
    }
}

} // namespace tovi::cli
