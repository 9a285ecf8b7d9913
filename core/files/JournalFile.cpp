#include "core/files/JournalFile.h"

#include "base/SystemError.h"
#include "base/Text.h"
#include "platform/AtomicFile.h"

#include <filesystem>

#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using platform::DirectoryEntry;
using Kind = JournalError::Kind;

std::string folderMadePrivate(const fs::path& folder) {
    // Every missing folder is the program's own; what exists keeps its rights.
    fs::path made;
    for (const fs::path& component : folder) {
        made /= component;
        if (::mkdir(made.c_str(), 0700) != 0 && errno != EEXIST && errno != EROFS &&
            errno != EACCES) {
            throw systemError(made.string());
        }
    }
    return fs::canonical(folder).string();
}

std::optional<Json> readJson(const std::string& path) {
    try {
        const auto text =
            platform::readFile(DirectoryEntry::open(path), std::numeric_limits<std::size_t>::max());
        if (!text) return std::nullopt;
        return Json::parse(*text);
    } catch (const std::system_error& error) {
        throw JournalError(Kind::unreadable, path, reasonOf(error));
    } catch (const Json::exception&) {
        throw JournalError(Kind::unreadable, path, "it is not whole JSON");
    }
}

void replace(const std::string& path, const std::string& text) {
    try {
        platform::replaceFile(DirectoryEntry::open(path), text);
    } catch (const std::exception& error) {
        throw JournalError(Kind::unsaved, path, printable(error.what()));
    }
}

} // namespace

JournalFile::JournalFile(const std::string& path, std::size_t limit) : limit_(limit) {
    try {
        const fs::path file = fs::absolute(path);
        path_ = folderMadePrivate(file.parent_path()) + "/" + file.filename().string();
    } catch (const std::system_error& error) {
        throw JournalError(Kind::unreadable, path, reasonOf(error));
    }
}

std::optional<ProcessLock> JournalFile::tryLock() const {
    try {
        auto lock = ProcessLock::tryTake(path_ + ".lock");
        if (lock) platform::removeUnfinishedReplacements(DirectoryEntry::open(path_));
        return lock;
    } catch (const std::system_error& error) {
        throw JournalError(Kind::unsaved, path_, printable(error.what()));
    }
}

std::optional<Json> JournalFile::read() const {
    return readJson(path_);
}

std::optional<Json> JournalFile::readIntent() const {
    return readJson(intentPath());
}

void JournalFile::write(const Json& json, std::size_t reserve) const {
    std::string text;
    try {
        text = json.dump();
    } catch (const Json::exception& error) {
        throw JournalError(Kind::unsaved, path_, printable(error.what()));
    }
    if (text.size() > limit_ || reserve > limit_ - text.size()) {
        throw JournalError(Kind::full, path_, "it has reached its storage limit");
    }
    replace(path_, text);
}

void JournalFile::writeIntent(const Json& json) const {
    try {
        replace(intentPath(), json.dump());
    } catch (const Json::exception& error) {
        throw JournalError(Kind::unsaved, intentPath(), printable(error.what()));
    }
}

void JournalFile::clearIntent() const {
    if (::unlink(intentPath().c_str()) != 0 && errno != ENOENT) {
        throw JournalError(Kind::unsaved, intentPath(),
                           printable(systemError(intentPath()).what()));
    }
}

} // namespace tovi
