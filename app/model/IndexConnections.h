#pragma once

#include "core/store/IndexStore.h"

#include <memory>

namespace tovi {

/// The open index. A scan writes through `store`, whose lock it takes once a file; `reader` has a
/// lock of its own, so that no search waits for a scan, and `counter` another, so that no search
/// waits for the counting of a large index. Shared with the jobs that use it.
struct IndexConnections {
    explicit IndexConnections(const std::string& path)
        : store(path),
          reader(path, IndexStore::Access::readOnly),
          counter(path, IndexStore::Access::readOnly) {}

    IndexStore store;
    IndexStore reader;
    IndexStore counter;
};

using SharedIndex = std::shared_ptr<IndexConnections>;

} // namespace tovi
