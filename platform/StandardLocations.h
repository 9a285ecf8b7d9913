#pragma once

#include <optional>
#include <string>

namespace tovi::platform {

/// Folders of the current user, absolute and without a slash at the end. Relative values in the
/// environment are ignored, as the XDG Base Directory rules ask.
/// https://specifications.freedesktop.org/basedir-spec/latest/
std::string homeDirectory();
std::string dataHome();
std::string cacheHome();

/// The folder that the user's desktop saves downloads to (user-dirs.dirs), where it names one;
/// links in its path are resolved.
std::optional<std::string> downloadsDirectory();

} // namespace tovi::platform
