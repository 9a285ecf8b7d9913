#pragma once

#include "app/preferences/Preferences.h"
#include "core/files/ProcessLock.h"
#include "core/records/FileRecord.h"
#include "core/store/IndexStore.h"

#include <functional>
#include <memory>
#include <stop_token>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

namespace tovi::cli {

using Json = nlohmann::ordered_json;

/// What the program ends with; documented in `tovictl --help` and the manual.
enum ExitCode {
    done = 0,
    failed = 1,
    wrongUsage = 2,
    needsAttention = 3,
    interrupted = 130,
};

/// What the commands share. One object, filled by the command line, lives through `main`.
struct Context {
    std::string dataDirectory;
    bool json = false;
    std::stop_token stop; // requested by Ctrl-C or a termination signal
    int exitCode = ExitCode::done;

    std::string indexPath() const { return dataDirectory + "/index.sqlite"; }
    std::string preferencesPath() const; // links resolved

    /// The index for reading; throws a sentence that names the next step where there is none.
    std::unique_ptr<IndexStore> openIndexForReading() const;
    std::unique_ptr<IndexStore> openIndexForWriting() const;

    /// To be held by a command that writes the index or the settings. Throws a sentence where
    /// another process holds it.
    ProcessLock lockForWriting() const;

    /// Calls `follow(store)` to bring the index in line with files that were moved, unless Tovi
    /// runs and notices by itself. Where that fails, the next scan does it.
    void updateIndex(const std::function<void(IndexStore&)>& follow) const;

    /// The folders of the settings, then those with files in the index; some may be in both.
    std::vector<std::string> connectedFolders() const;

    bool hasIndex() const;
    Preferences readPreferences() const;

    void print(const Json& value) const;
};

/// `path` made absolute against the working directory, without "." and ".." and final slashes.
std::string absolutePath(const std::string& path);

/// tovi-decoder, which is installed beside this program.
std::string decoderPath();

} // namespace tovi::cli
