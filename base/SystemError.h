#pragma once

#include <cerrno>
#include <exception>
#include <string>
#include <system_error>

namespace tovi {

/// The error of a system call that just failed on `path`: its `what()` is the path, ": " and the
/// system's text.
inline std::system_error systemError(const std::string& path, int code = errno) {
    return {code, std::generic_category(), path};
}

/// What went wrong, without the path in front of it.
inline std::string reasonOf(const std::exception& error) {
    if (const auto* system = dynamic_cast<const std::system_error*>(&error)) {
        return system->code().message();
    }
    return error.what();
}

} // namespace tovi
