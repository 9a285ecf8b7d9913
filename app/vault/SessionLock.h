#pragma once

#include "app/vault/VaultModel.h"
#include "platform/SessionSignals.h"

namespace tovi {

/// Locks the vault when the machine goes to sleep or its session is locked or left, for as long as
/// it lives. Made and destroyed on the main thread; what it is given outlives it.
class SessionLock {
  public:
    SessionLock(platform::SessionSignals& signals, Executor& executor, VaultModel& vault);
    ~SessionLock();
    SessionLock(const SessionLock&) = delete;
    SessionLock& operator=(const SessionLock&) = delete;

  private:
    platform::SessionSignals& signals_;
};

} // namespace tovi
