#include "core/cleanup/CleanupApplicationBundle.h"

#include "base/Text.h"
#include "core/files/BinaryPropertyList.h"
#include "core/files/Sha256.h"
#include "core/files/XmlPropertyList.h"
#include "platform/DirectoryEntry.h"
#include "platform/DirectoryWalker.h"
#include "platform/ReadFile.h"

#include <array>
#include <memory>
#include <span>

#include <fcntl.h>

namespace tovi {
namespace {

using platform::DirectoryEntry;
using platform::FileType;

constexpr std::int64_t tooLarge = 5'000'000'001; // bytes

constexpr const char* gone =
    "This app is no longer fully available on your Mac. Show it in Finder to check it.";
constexpr const char* unchecked = "This app could not be checked. Show it in Finder.";
constexpr const char* changedOnReading =
    "This app changed while it was being checked. Refresh and try again.";
constexpr const char* changedOnWalking =
    "The app changed while it was being checked. Refresh and try again.";
constexpr const char* tooMany =
    "This app contains too many items for this cleanup review. Show it in Finder.";
constexpr const char* linked = "This app contains linked components. Show it in Finder to remove "
                               "the whole app safely.";
constexpr const char* protectedItems =
    "This app contains protected items. Show it in Finder to review it.";
constexpr const char* partUnreadable =
    "Tovi could not read every app component. Show this app in Finder.";
constexpr const char* wholeUnreadable =
    "Tovi could not read this whole app. Show it in Finder to review it.";
constexpr const char* notLocal = "Some app components are unavailable or need a separate review. "
                                 "Show this app in Finder.";
constexpr const char* over5GB = "Apps over 5 GB need to be reviewed in Finder.";
constexpr const char* sizeUnreadable = "The app size could not be read. Show it in Finder.";
constexpr const char* needsReview = "This app needs to be reviewed in Finder.";

/// An entry below the open bundle, its folders opened one by one without following a link.
std::optional<DirectoryEntry> entryBelow(const FileDescriptor& bundle, const std::string& path,
                                         std::span<const std::string> components) {
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    FileDescriptor folder(::openat(bundle.get(), ".", flags));
    std::string name = path;
    for (const std::string& component : components.first(components.size() - 1)) {
        folder = FileDescriptor(::openat(folder.get(), component.c_str(), flags));
        if (!folder.isOpen()) return std::nullopt;
        name += "/" + component;
    }
    return DirectoryEntry(std::make_shared<FileDescriptor>(std::move(folder)),
                          name + "/" + components.back());
}

bool isName(const std::string& text) {
    return !text.empty() && text != "." && text != ".." &&
           text.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
}

class Inspector final : public platform::WalkVisitor {
  public:
    struct LimitReached {};

    Inspector(CleanupApplicationBundle::Inspection& result, std::size_t limit,
              std::size_t rootLength, std::uint64_t device,
              const platform::Availability& availability)
        : result_(result),
          limit_(limit),
          rootLength_(rootLength),
          device_(device),
          availability_(availability) {}

    void enter(const platform::WalkDirectory&) override {}
    void leave() override {}

    Step visit(platform::WalkItem& item) override {
        if (result_.entryCount == limit_) throw LimitReached{};
        ++result_.entryCount;
        const platform::FileAttributes& attributes = attributesOf(item);
        const bool isFile = attributes.type == FileType::regular;
        const bool isFolder = attributes.type == FileType::directory;
        add(item.path(), attributes);
        if (attributes.type == FileType::symbolicLink) report(linked);
        const bool isOther = attributes.type == FileType::other || attributes.device != device_;
        if (isOther) report(protectedItems);
        if ((isFile || isFolder) &&
            !availability_.isAvailableLocally(
                item.path(), platform::ExtendedAttributes(item.path(), item.directory()))) {
            report(notLocal);
        }
        if (isFile) result_.size += attributes.size;
        return isFolder && !isOther ? Step::descend : Step::skip;
    }

    void failed(const std::string&, const std::system_error&) override {
        report(isSizeUnreadable_ ? sizeUnreadable : partUnreadable);
        isSizeUnreadable_ = false;
        result_.isWholeMeasured = false;
    }

    void report(const char* problem) {
        if (!result_.problem) result_.problem = problem;
    }

    std::string digest() { return hexadecimal(sum_.finish()); }

  private:
    const platform::FileAttributes& attributesOf(platform::WalkItem& item) {
        isSizeUnreadable_ = true; // while this throws
        const platform::FileAttributes& attributes = item.attributes();
        isSizeUnreadable_ = false;
        return attributes;
    }

    void add(const std::string& path, const platform::FileAttributes& attributes) {
        const auto identity = CleanupFileIdentity::of(attributes);
        const std::array numbers{static_cast<std::int64_t>(attributes.type),
                                 static_cast<std::int64_t>(identity.inode),
                                 identity.size,
                                 identity.modifiedSeconds,
                                 identity.modifiedNanoseconds,
                                 identity.changedSeconds,
                                 identity.changedNanoseconds};
        // The zero byte that ends the path belongs to the sum.
        sum_.update(
            std::as_bytes(std::span(path.c_str() + rootLength_, path.size() - rootLength_ + 1)));
        sum_.update(std::as_bytes(std::span(numbers)));
    }

    CleanupApplicationBundle::Inspection& result_;
    std::size_t limit_;
    std::size_t rootLength_;
    std::uint64_t device_;
    const platform::Availability& availability_;
    Sha256 sum_;
    bool isSizeUnreadable_ = false;
};

} // namespace

CleanupApplicationBundle::CleanupApplicationBundle(const FileDescriptor& parent, std::string path,
                                                   const platform::Availability& availability)
    : parent_(parent), path_(std::move(path)), availability_(availability) {
    const std::string name(lastPathComponent(path_));
    directory_ = FileDescriptor(
        ::openat(parent_.get(), name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!directory_.isOpen()) throw CleanupBundleError(gone);
    identity_ = identityNow();
}

CleanupFileIdentity CleanupApplicationBundle::identityNow() const {
    try {
        const auto attributes =
            platform::attributesAt(parent_, std::string(lastPathComponent(path_)).c_str(), path_);
        if (attributes.type == FileType::directory) return CleanupFileIdentity::of(attributes);
    } catch (const std::system_error&) {
        throw CleanupBundleError(gone);
    }
    throw CleanupBundleError(gone);
}

std::optional<std::string> CleanupApplicationBundle::identifier() const {
    const std::array<std::string, 2> listPath{"Contents", "Info.plist"};
    std::string bytes;
    try {
        const auto entry = entryBelow(directory_, path_, listPath);
        const auto before = entry ? entry->attributes() : std::nullopt;
        if (!before) throw CleanupBundleError(unchecked);
        if (before->type != FileType::regular) throw CleanupBundleError(changedOnReading);
        const FileDescriptor file = entry->openRegularFile();
        const auto opened = platform::attributesOf(file, entry->path());
        if (CleanupFileIdentity::of(opened) != CleanupFileIdentity::of(*before)) {
            throw CleanupBundleError(changedOnReading);
        }
        bytes = platform::readFile(file, maximumPropertyListBytes + 1, entry->path());
    } catch (const std::system_error&) {
        throw CleanupBundleError(unchecked);
    }
    if (bytes.size() > maximumPropertyListBytes) throw CleanupBundleError(unchecked);

    const auto list = readPropertyList(std::as_bytes(std::span(bytes)));
    if (!list) return std::nullopt;
    const auto text = [&](std::string_view key) -> const std::string* {
        const PropertyList* value = list->find(key);
        return value != nullptr ? value->as<std::string>() : nullptr;
    };
    const std::string* type = text("CFBundlePackageType");
    const std::string* identifier = text("CFBundleIdentifier");
    const std::string* executable = text("CFBundleExecutable");
    if (type == nullptr || *type != "APPL" || identifier == nullptr || identifier->empty() ||
        executable == nullptr || !isName(*executable)) {
        return std::nullopt;
    }
    try {
        const std::array<std::string, 3> programPath{"Contents", "MacOS", *executable};
        const auto entry = entryBelow(directory_, path_, programPath);
        const auto program = entry ? entry->attributes() : std::nullopt;
        if (!program || program->type != FileType::regular) return std::nullopt;
    } catch (const std::system_error&) {
        throw CleanupBundleError(unchecked);
    }
    return *identifier;
}

CleanupApplicationBundle::Inspection
CleanupApplicationBundle::inspect(std::size_t limit, const std::stop_token& stop) const {
    Inspection result;
    Inspector inspector(result, limit, path_.size(), identity_.device, availability_);
    try {
        FileDescriptor readable(
            ::openat(directory_.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!readable.isOpen()) throw std::system_error(errno, std::generic_category(), path_);
        platform::walkDirectory(std::move(readable), path_, inspector, stop);
    } catch (const Inspector::LimitReached&) {
        inspector.report(tooMany);
        result.isWholeMeasured = false;
    } catch (const std::system_error&) {
        inspector.report(wholeUnreadable);
        result.isWholeMeasured = false;
    }
    if (result.size >= tooLarge) inspector.report(over5GB);
    if (identityNow() != identity_) inspector.report(changedOnWalking);
    if (!result.problem) result.snapshot = {identity_, inspector.digest()};
    return result;
}

CleanupContentSnapshot CleanupApplicationBundle::snapshot(const std::stop_token& stop) const {
    const Inspection inspection = inspect(itemLimit, stop);
    if (inspection.problem) throw CleanupBundleError(*inspection.problem);
    if (inspection.snapshot.sha256.empty()) throw CleanupBundleError(needsReview);
    return inspection.snapshot;
}

} // namespace tovi
