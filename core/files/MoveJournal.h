#pragma once

#include "base/Uuid.h"
#include "core/files/JournalFile.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace tovi {

/// The step that is under way, kept beside the journal while files are moved or moved back.
template <typename Entry>
struct MoveIntent {
    enum class Kind { execute, undo };

    Kind kind = Kind::execute;
    Uuid receipt;
    std::size_t remaining = 0;  // files still to change, this step's included
    std::optional<Entry> entry; // as the journal will hold it; none before the first step
};

/// The receipts of all executed plans in one JSON file, the oldest first. The process that writes
/// holds the lock and loads it again first.
///
/// `Form` says what is kept: the types `Receipt`, `Entry` and `Error`, their JSON (`toJson`,
/// `receiptFrom`, `entryFrom`), the most bytes (`limit`), the error for a `JournalError`
/// (`error`), the one for a lock that another process has (`busy`), the receipt's error after an
/// interruption (`stopped`), whether a name leads to an entry's file (`leadsTo`) and whether that
/// file was put in the Trash (`isInTrash`). Everything throws `Form::Error`.
template <typename Form>
class MoveJournal {
  public:
    using Receipt = typename Form::Receipt;
    using Entry = typename Form::Entry;
    using Intent = MoveIntent<Entry>;

    /// Makes the folder of `path` (mode 0700) if it is missing; reads nothing yet.
    explicit MoveJournal(const std::string& path)
        : file_(attempt([&] { return JournalFile(path, Form::limit); })) {}

    std::vector<Receipt>& receipts() { return receipts_; }

    Receipt* find(const Uuid& id) {
        const auto found = std::find_if(receipts_.begin(), receipts_.end(),
                                        [&](const Receipt& receipt) { return receipt.id == id; });
        return found == receipts_.end() ? nullptr : &*found;
    }

    std::vector<Receipt> newestFirst() const { return {receipts_.rbegin(), receipts_.rend()}; }

    /// `tryLock` gives nothing where another process is writing.
    std::optional<ProcessLock> tryLock() const {
        return attempt([&] { return file_.tryLock(); });
    }
    ProcessLock lock() const {
        auto taken = tryLock();
        if (!taken) throw Form::busy();
        return std::move(*taken);
    }

    /// `load` and `save` move the whole journal; a save leaves room for `reserve` more bytes.
    void load() {
        attempt([&] {
            std::vector<Receipt> receipts;
            decode(file_.path(), [&] {
                const auto json = file_.read();
                if (json && !json->is_array()) {
                    throw std::runtime_error("it is not a list of receipts");
                }
                for (const auto& receipt : json.value_or(Json::array()))
                    receipts.push_back(Form::receiptFrom(receipt));
            });
            receipts_ = std::move(receipts);
        });
    }
    void save(std::size_t reserve = 0) const {
        Json json = Json::array();
        for (const Receipt& receipt : receipts_)
            json.push_back(toJson(receipt));
        attempt([&] { file_.write(json, reserve); });
    }

    std::optional<Intent> intent() const {
        return attempt([&] {
            std::optional<Intent> intent;
            decode(file_.intentPath(), [&] {
                const auto json = file_.readIntent();
                if (!json) return;
                const auto receipt = Uuid::parse(json->at("receipt").template get<std::string>());
                if (!receipt) throw std::runtime_error("an identifier is not a UUID");
                intent = Intent{json->at("undo") ? Intent::Kind::undo : Intent::Kind::execute,
                                *receipt, json->at("remaining"), std::nullopt};
                if (json->contains("entry")) intent->entry = Form::entryFrom(json->at("entry"));
            });
            return intent;
        });
    }
    void writeIntent(const Intent& intent) const {
        Json json{{"receipt", intent.receipt.string()},
                  {"undo", intent.kind == Intent::Kind::undo},
                  {"remaining", intent.remaining}};
        if (intent.entry) json["entry"] = toJson(*intent.entry);
        attempt([&] { file_.writeIntent(json); });
    }
    void clearIntent() const {
        attempt([&] { file_.clearIntent(); });
    }

  private:
    using Json = nlohmann::ordered_json;

    template <typename Work>
    static auto attempt(Work work) {
        try {
            return work();
        } catch (const JournalError& error) {
            throw Form::error(error);
        }
    }

    template <typename Work>
    static void decode(const std::string& path, Work work) {
        using Kind = JournalError::Kind;
        try {
            work();
        } catch (const Json::exception&) {
            throw JournalError(Kind::unreadable, path, "a value is missing or of another type");
        } catch (const JournalError&) {
            throw;
        } catch (const std::runtime_error& error) {
            throw JournalError(Kind::unreadable, path, error.what());
        }
    }

    JournalFile file_;
    std::vector<Receipt> receipts_;
};

} // namespace tovi
