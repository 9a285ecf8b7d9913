#include "app/vault/SessionLock.h"

#include <utility>

namespace tovi {
namespace {

using Kind = platform::SessionSignals::Kind;

void tell(VaultModel& vault, platform::SessionSignals::Signal signal) {
    switch (signal.kind) {
    case Kind::sleep:
    case Kind::locked:
    case Kind::left:
        vault.sessionInterrupted(std::move(signal.sleepDelay));
        return;
    case Kind::connected:
    case Kind::disconnected:
        vault.setFollowsSession(signal.kind == Kind::connected);
        return;
    }
}

} // namespace

SessionLock::SessionLock(platform::SessionSignals& signals, Executor& executor, VaultModel& vault)
    : signals_(signals) {
    signals_.start(
        [&executor, model = QPointer<VaultModel>(&vault)](platform::SessionSignals::Signal signal) {
            executor.post([model, signal = std::move(signal)]() mutable {
                if (model) tell(*model, std::move(signal));
            });
        });
}

SessionLock::~SessionLock() {
    signals_.stop();
}

} // namespace tovi
