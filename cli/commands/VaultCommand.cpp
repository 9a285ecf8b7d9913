#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/Format.h"
#include "cli/Password.h"
#include "cli/ProgressLine.h"
#include "core/vault/VaultStore.h"
#include "platform/ProcessProtection.h"

#include <algorithm>
#include <filesystem>
#include <stdexcept>
#include <system_error>

#include <fmt/format.h>

namespace tovi::cli {
namespace fs = std::filesystem;
namespace {

struct VaultArguments {
    int passwordDescriptor = -1;
    std::vector<std::string> files;
    std::string item;
    std::string destination = ".";
};

/// The vault of the data directory, its process protected from before the password is read.
class Vault {
  public:
    Vault(const VaultArguments& arguments, const Context& context)
        : descriptor_(arguments.passwordDescriptor), context_(context) {}

    VaultStore& store() { return store_; }
    std::string path() const { return context_.dataDirectory + "/Vault"; }

    void create() {
        const auto password = read("New vault password: ");
        if (descriptor_ < 0 && read("The same again: ")->text() != password->text()) {
            throw std::runtime_error("The two passwords differ.");
        }
        store_.create(password->text(), context_.stop);
    }

    std::vector<VaultItem> unlock() {
        if (store_.status() == VaultStatus::notCreated) {
            throw std::runtime_error("There is no vault yet. Make one with: tovictl vault create");
        }
        return store_.unlock(read("Vault password: ")->text());
    }

  private:
    std::unique_ptr<Password> read(const std::string& prompt) const {
        if (descriptor_ >= 0) return std::make_unique<Password>(descriptor_, context_.stop);
        return std::make_unique<Password>(prompt, context_.stop);
    }

    const platform::ProcessProtection protection_;
    int descriptor_;
    const Context& context_;
    const platform::SystemAvailability availability_;
    VaultStore store_{path(), availability_};
};

/// Counts bytes and shows them as megabytes.
class ByteProgress {
  public:
    ByteProgress(std::int64_t total, const Context& context)
        : line_(total / megabyte, "MB", !context.json) {}

    VaultStore::Progress counter() {
        return [this](std::int64_t bytes) {
            done_ += bytes;
            line_.show(done_ / megabyte, "");
        };
    }

  private:
    static constexpr std::int64_t megabyte = 1'000'000;

    ProgressLine line_;
    std::int64_t done_ = 0;
};

Json toJson(const VaultItem& item) {
    return {{"id", item.id.string()},
            {"name", item.name},
            {"size", item.size},
            {"importedAt", iso8601(item.importedAt)},
            {"sha256", item.sha256}};
}

void create(const VaultArguments& arguments, const Context& context) {
    Vault vault(arguments, context);
    vault.create();
    if (context.json)
        context.print({{"vault", vault.path()}});
    else
        fmt::print("A vault was made in {}\n", printable(vault.path()));
}

void status(const Context& context) {
    const platform::SystemAvailability availability;
    const std::string path = context.dataDirectory + "/Vault";
    const bool exists = VaultStore(path, availability).status() != VaultStatus::notCreated;
    if (context.json) {
        context.print({{"vault", path}, {"status", exists ? "locked" : "notCreated"}});
    } else {
        fmt::print("{} {}\n", exists ? "There is a vault in" : "There is no vault in",
                   printable(path));
    }
}

void list(const VaultArguments& arguments, const Context& context) {
    const std::vector<VaultItem> items = Vault(arguments, context).unlock();
    if (context.json) {
        Json all = Json::array();
        for (const VaultItem& item : items)
            all.push_back(toJson(item));
        context.print({{"items", std::move(all)}});
        return;
    }
    for (const VaultItem& item : items) {
        fmt::print("{}  {:>9}  {}  {}\n", dim(item.id.string()), formatSize(item.size),
                   formatDate(item.importedAt), bold(printable(item.name)));
    }
    if (items.empty()) fmt::print("The vault is empty.\n");
}

std::int64_t totalSize(const std::vector<std::string>& paths) {
    std::int64_t total = 0;
    for (const std::string& path : paths) {
        std::error_code unknown;
        const auto size = fs::file_size(path, unknown);
        if (!unknown) total += static_cast<std::int64_t>(size);
    }
    return total;
}

void add(const VaultArguments& arguments, Context& context) {
    std::vector<std::string> paths;
    for (const std::string& file : arguments.files)
        paths.push_back(absolutePath(file));
    Vault vault(arguments, context);
    vault.unlock();

    Json results = Json::array();
    std::size_t added = 0;
    const auto report = [&](const VaultStore::Import& result) {
        const std::string& path = paths[result.index];
        if (result.item) ++added;
        if (context.json) {
            Json entry{{"path", path}};
            if (result.item) entry["item"] = toJson(*result.item);
            if (result.error) entry["error"] = result.error->what();
            if (result.isQuarantineLeftOut) entry["quarantineLeftOut"] = true;
            results.push_back(std::move(entry));
        } else if (result.error) {
            fmt::print(stderr, "{}: {}\n", printable(path), result.error->what());
        } else if (result.isQuarantineLeftOut) {
            fmt::print(stderr,
                       "{}: added without its quarantine mark, which is longer than a vault "
                       "keeps\n",
                       printable(path));
        }
    };
    ByteProgress progress(totalSize(paths), context);
    vault.store().importFiles(paths, report, progress.counter(), context.stop);
    if (context.json) {
        context.print({{"results", std::move(results)}});
    } else {
        fmt::print("{} added; the originals are where they were\n",
                   formatCount(static_cast<std::int64_t>(added), "file"));
    }
    if (added < paths.size()) {
        context.exitCode = added == 0 ? ExitCode::failed : ExitCode::needsAttention;
    }
}

/// By its id, or by its name where only one item has it.
const VaultItem& find(const std::vector<VaultItem>& items, const std::string& wanted) {
    const auto id = Uuid::parse(wanted);
    const auto matches = [&](const VaultItem& item) {
        return id ? item.id == *id : item.name == wanted;
    };
    const auto found = std::find_if(items.begin(), items.end(), matches);
    if (found == items.end()) throw VaultError(VaultError::Kind::itemNotFound);
    if (std::count_if(items.begin(), items.end(), matches) > 1) {
        throw std::runtime_error(
            "Several files of that name are in the vault. Name the one you want by its id.");
    }
    return *found;
}

void exportItem(const VaultArguments& arguments, const Context& context) {
    Vault vault(arguments, context);
    const std::vector<VaultItem> items = vault.unlock();
    const VaultItem& item = find(items, arguments.item);
    fs::path destination = absolutePath(arguments.destination);
    std::error_code missing; // the store says what is wrong with the folder
    if (fs::is_directory(destination, missing)) destination /= item.name;
    const fs::path folder = fs::canonical(destination.parent_path(), missing);
    if (!missing) destination = folder / destination.filename();
    {
        ByteProgress progress(item.size, context);
        vault.store().exportFile(item.id, destination.string(), context.stop, progress.counter());
    }
    if (context.json)
        context.print({{"path", destination.string()}, {"item", toJson(item)}});
    else
        fmt::print("{}\n", printable(destination.string()));
}

void verify(const VaultArguments& arguments, Context& context) {
    Vault vault(arguments, context);
    std::int64_t total = 0;
    for (const VaultItem& item : vault.unlock())
        total += item.size;
    VaultStore::Verification result;
    {
        ByteProgress progress(total, context);
        result = vault.store().verify(progress.counter(), context.stop);
    }
    if (!result.damaged.empty() || !result.unlisted.empty()) {
        context.exitCode = ExitCode::needsAttention;
    }
    if (context.json) {
        Json damaged = Json::array();
        for (const auto& damage : result.damaged) {
            damaged.push_back({{"item", toJson(damage.item)}, {"reason", damage.reason}});
        }
        context.print({{"intact", result.intact},
                       {"damaged", std::move(damaged)},
                       {"unlisted", result.unlisted}});
        return;
    }
    for (const auto& damage : result.damaged) {
        fmt::print("{}  {}: {}\n", damage.item.id.string(), printable(damage.item.name),
                   damage.reason);
    }
    for (const std::string& name : result.unlisted) {
        fmt::print("{}: the vault's list does not name this encrypted file\n", printable(name));
    }
    fmt::print("{} intact, {} damaged\n",
               formatCount(static_cast<std::int64_t>(result.intact), "file"),
               formatCount(static_cast<std::int64_t>(result.damaged.size())));
}

} // namespace

void addVaultCommand(CLI::App& app, Context& context) {
    CLI::App* const vault =
        app.add_subcommand("vault", "Keep encrypted copies of files under a password");
    vault->require_subcommand(1);
    vault->fallthrough();
    const auto arguments = std::make_shared<VaultArguments>();
    vault
        ->add_option("--password-fd", arguments->passwordDescriptor,
                     "Read the password from a line of this open descriptor, not from the terminal")
        ->check(CLI::NonNegativeNumber);

    CLI::App* const creating = vault->add_subcommand("create", "Make the vault");
    creating->callback([arguments, &context] { create(*arguments, context); });

    CLI::App* const adding = vault->add_subcommand(
        "add", "Add encrypted copies of files; the originals are not touched");
    adding->add_option("file", arguments->files, "Files to add")->required();
    adding->callback([arguments, &context] { add(*arguments, context); });

    CLI::App* const listing = vault->add_subcommand("list", "Show what is in the vault");
    listing->callback([arguments, &context] { list(*arguments, context); });

    CLI::App* const exporting =
        vault->add_subcommand("export", "Write a readable copy; nothing is ever replaced");
    exporting->add_option("item", arguments->item, "The id or the name of a file in the vault")
        ->required();
    exporting->add_option("destination", arguments->destination, "A new file, or a folder for it")
        ->capture_default_str();
    exporting->callback([arguments, &context] { exportItem(*arguments, context); });

    CLI::App* const verifying =
        vault->add_subcommand("verify", "Decrypt everything to nowhere and report any damage");
    verifying->callback([arguments, &context] { verify(*arguments, context); });

    CLI::App* const telling = vault->add_subcommand("status", "Tell whether there is a vault");
    telling->callback([&context] { status(context); });
}

} // namespace tovi::cli
