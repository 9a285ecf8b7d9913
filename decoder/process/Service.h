#pragma once

#include "decoder/protocol/Message.h"

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace tovi::decoder {

/// Loads all that serving `task` reads from files, so that no file need be opened afterwards.
void prepare(Task task);

/// What the libraries look up while they serve `task`, in folders of the system.
std::vector<std::string> readableFolders(Task task);

/// Answers requests for `task` on `socket` until the other end is gone or breaks the protocol.
/// Text, pixels and sentences go to the start of `result`. A file is closed before it is decoded.
void serve(Task task, int socket, std::span<std::byte> result);

} // namespace tovi::decoder
