#pragma once

#include "app/background/Background.h"
#include "app/model/IndexConnections.h"
#include "app/model/Notices.h"

namespace tovi {

/// What the parts of the model share; owned by `AppModel`.
struct ModelContext {
    Executor& executor;
    Notices& notices;
    SharedIndex index;        // none where it could not be opened
    bool isLoaded = false;    // the settings have been read: they may be changed and saved
    int maintenanceCount = 0; // operations under way that need the scanner stopped

    bool isInMaintenance() const { return maintenanceCount > 0; }
};

} // namespace tovi
