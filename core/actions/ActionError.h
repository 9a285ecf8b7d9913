#pragma once

#include <stdexcept>

namespace tovi {

/// Why a file action was refused or stopped; `what()` is the whole sentence for the user.
class ActionError : public std::runtime_error {
    using runtime_error::runtime_error;
};

} // namespace tovi
