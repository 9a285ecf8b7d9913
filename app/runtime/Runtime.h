#pragma once

#include "app/background/ThreadExecutor.h"
#include "core/actions/FileActionService.h"
#include "core/indexing/FileIndexer.h"
#include "decoder/client/DecoderPool.h"
#include "platform/Availability.h"
#include "platform/Bookmark.h"
#include "platform/ExclusiveMove.h"
#include "platform/RunningPrograms.h"
#include "platform/Trash.h"

#include <string>

namespace tovi {

/// The real objects that the models of a program stand on; outlives them. Made on the main thread,
/// which needs an event loop.
class Runtime {
  public:
    /// `decoderProgram` is the path of tovi-decoder.
    explicit Runtime(const std::string& decoderProgram);

    ThreadExecutor& executor() { return executor_; }
    const FileIndexer& indexer() const { return indexer_; }
    decoder::DecoderPool& decoders() { return decoders_; }
    const platform::Availability& availability() const { return availability_; }
    const platform::RunningPrograms& programs() const { return programs_; }
    FileActionSystem actions() { return {trash_, move_, bookmarks_, availability_, Date::now}; }

  private:
    platform::SystemTrash trash_;
    platform::SystemExclusiveMove move_;
    platform::SystemBookmarks bookmarks_;
    platform::SystemAvailability availability_;
    platform::SystemRunningPrograms programs_;
    decoder::DecoderPool decoders_;
    ContentExtractor extractor_;
    FileIndexer indexer_;
    ThreadExecutor executor_; // the first to go: it waits for the jobs that use the others
};

} // namespace tovi
