#include "core/actions/ActionLog.h"

#include "base/SystemError.h"
#include "base/Text.h"
#include "core/actions/ActionError.h"
#include "core/actions/ActionJson.h"
#include "platform/AtomicFile.h"

#include <algorithm>
#include <filesystem>
#include <limits>

#include <nlohmann/json.hpp>
#include <sys/stat.h>
#include <unistd.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using platform::DirectoryEntry;

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

ActionError unreadable(const std::string& path, const std::string& reason) {
    return ActionError("The action history cannot be read, so files are left alone: " +
                       printable(path) + ": " + printable(reason));
}

std::optional<Json> readJson(const std::string& path) {
    try {
        const auto text =
            platform::readFile(DirectoryEntry::open(path), std::numeric_limits<std::size_t>::max());
        if (!text) return std::nullopt;
        return Json::parse(*text);
    } catch (const std::system_error& error) {
        throw unreadable(path, reasonOf(error));
    } catch (const Json::exception&) {
        throw unreadable(path, "it is not whole JSON");
    }
}

void writeJson(const std::string& path, const Json& json) {
    try {
        platform::replaceFile(DirectoryEntry::open(path), json.dump());
    } catch (const std::exception& error) {
        throw ActionError("The action history could not be saved: " + printable(error.what()));
    }
}

} // namespace

ActionLog::ActionLog(std::string path) {
    try {
        const fs::path file = fs::absolute(path);
        path_ = folderMadePrivate(file.parent_path()) + "/" + file.filename().string();
    } catch (const std::system_error& error) {
        throw unreadable(path, reasonOf(error));
    }
    load();
}

ActionReceipt* ActionLog::find(const Uuid& id) {
    const auto found = std::find_if(receipts_.begin(), receipts_.end(),
                                    [&](const ActionReceipt& receipt) { return receipt.id == id; });
    return found == receipts_.end() ? nullptr : &*found;
}

std::optional<ProcessLock> ActionLog::tryLock() const {
    try {
        auto lock = ProcessLock::tryTake(path_ + ".lock");
        if (lock) platform::removeUnfinishedReplacements(DirectoryEntry::open(path_));
        return lock;
    } catch (const std::system_error& error) {
        throw ActionError("The action history could not be saved: " + printable(error.what()));
    }
}

ProcessLock ActionLog::lock() const {
    auto taken = tryLock();
    if (!taken) {
        throw ActionError(
            "Another process of Tovi is changing files. Try again when it has finished.");
    }
    return std::move(*taken);
}

void ActionLog::load() {
    const auto json = readJson(path_);
    std::vector<ActionReceipt> receipts;
    try {
        if (json && !json->is_array()) throw std::runtime_error("it is not a list of receipts");
        for (const Json& receipt : json.value_or(Json::array())) {
            receipts.push_back(receiptFromJson(receipt));
        }
    } catch (const Json::exception&) {
        throw unreadable(path_, "a value is missing or of another type");
    } catch (const std::runtime_error& error) {
        throw unreadable(path_, error.what());
    }
    receipts_ = std::move(receipts);
}

void ActionLog::save() const {
    Json json = Json::array();
    for (const ActionReceipt& receipt : receipts_)
        json.push_back(toJson(receipt));
    writeJson(path_, json);
}

std::optional<ActionIntent> ActionLog::intent() const {
    const std::string path = path_ + ".intent";
    const auto json = readJson(path);
    if (!json) return std::nullopt;
    try {
        const auto receipt = Uuid::parse(json->at("receipt").get<std::string>());
        if (!receipt) throw std::runtime_error("an identifier is not a UUID");
        ActionIntent intent{json->at("undo") ? ActionIntent::Kind::undo
                                             : ActionIntent::Kind::execute,
                            *receipt, json->at("remaining"), std::nullopt};
        if (json->contains("entry")) intent.entry = entryFromJson(json->at("entry"));
        return intent;
    } catch (const Json::exception&) {
        throw unreadable(path, "a value is missing or of another type");
    } catch (const std::runtime_error& error) {
        throw unreadable(path, error.what());
    }
}

void ActionLog::writeIntent(const ActionIntent& intent) const {
    Json json{{"receipt", intent.receipt.string()},
              {"undo", intent.kind == ActionIntent::Kind::undo},
              {"remaining", intent.remaining}};
    if (intent.entry) json["entry"] = toJson(*intent.entry);
    writeJson(path_ + ".intent", json);
}

void ActionLog::clearIntent() const {
    const std::string path = path_ + ".intent";
    if (::unlink(path.c_str()) != 0 && errno != ENOENT) {
        throw ActionError("The action history could not be saved: " +
                          printable(systemError(path).what()));
    }
}

} // namespace tovi
