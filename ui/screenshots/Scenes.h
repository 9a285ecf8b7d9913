#pragma once

#include "ui/screenshots/Photographer.h"

#include <map>

namespace tovi {

/// What is done before a picture of a full library, by its name; a name that is not here is that of
/// a section, shown as it is.
const std::map<QString, std::function<void(Photographer&)>>& scenes();

/// Leaves whatever a scene has opened above the window.
void leaveScene(Photographer& at);

} // namespace tovi
