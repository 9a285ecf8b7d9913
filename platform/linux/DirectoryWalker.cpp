#include "platform/DirectoryWalker.h"

#include "base/Cancelled.h"
#include "base/SystemError.h"

#include <algorithm>
#include <deque>
#include <optional>
#include <vector>

#include <dirent.h>
#include <fcntl.h>
#include <string.h>
#include <sys/syscall.h>

namespace tovi::platform {
namespace {

/// Ancestors further up than this are closed while the walk is below them, so that a deep tree
/// does not use up the descriptors of the process.
constexpr std::size_t openLevels = 64;

constexpr std::size_t listingBuffer = 64 * 1024; // bytes

std::optional<FileType> typeOfEntry(unsigned char type) {
    switch (type) {
    case DT_REG:
        return FileType::regular;
    case DT_DIR:
        return FileType::directory;
    case DT_LNK:
        return FileType::symbolicLink;
    case DT_UNKNOWN:
        return std::nullopt;
    default:
        return FileType::other;
    }
}

/// The names of one directory in byte order, in one block of memory.
class Listing {
  public:
    struct Entry {
        std::size_t name;
        unsigned char type;
    };

    /// Throws `std::system_error`.
    void read(const FileDescriptor& directory, const std::string& path, std::vector<char>& buffer) {
        names_.clear();
        entries_.clear();
        for (;;) {
            const long got =
                ::syscall(SYS_getdents64, directory.get(), buffer.data(), buffer.size());
            if (got < 0) throw systemError(path);
            if (got == 0) break;
            for (std::size_t at = 0; at < static_cast<std::size_t>(got);) {
                const auto* entry = reinterpret_cast<const dirent64*>(buffer.data() + at);
                at += entry->d_reclen;
                const std::string_view name = entry->d_name;
                if (name == "." || name == "..") continue;
                entries_.push_back({names_.size(), entry->d_type});
                names_.append(name).push_back('\0');
            }
        }
        std::sort(entries_.begin(), entries_.end(), [this](const Entry& left, const Entry& right) {
            return ::strcmp(name(left), name(right)) < 0;
        });
    }

    const std::vector<Entry>& entries() const { return entries_; }
    const char* name(const Entry& entry) const { return names_.data() + entry.name; }

    bool contains(std::string_view wanted) const {
        const auto found = std::lower_bound(
            entries_.begin(), entries_.end(), wanted,
            [this](const Entry& entry, std::string_view value) { return name(entry) < value; });
        return found != entries_.end() && name(*found) == wanted;
    }

  private:
    std::string names_;
    std::vector<Entry> entries_;
};

class Walk {
  public:
    Walk(WalkVisitor& visitor, const std::stop_token& stop) : visitor_(visitor), stop_(stop) {}

    void run(FileDescriptor directory, const std::string& root) {
        path_ = root;
        const FileAttributes attributes = attributesOf(directory, root);
        push(std::move(directory), attributes);
        while (depth_ > 0) {
            throwIfCancelled(stop_);
            Level& level = top();
            if (level.next == level.listing.entries().size()) {
                visitor_.leave();
                pop();
            } else {
                visit(level, level.listing.entries()[level.next++]);
            }
        }
    }

  private:
    struct Level {
        FileDescriptor descriptor;
        FileAttributes attributes;
        Listing listing;
        std::size_t next = 0;
        std::size_t pathLength = 0;
    };

    class Item final : public WalkItem {
      public:
        Item(const Level& level, const Listing::Entry& entry, const std::string& path)
            : level_(level), entry_(entry), path_(path) {}

        const std::string& path() const override { return path_; }
        std::string_view name() const override { return level_.listing.name(entry_); }
        const FileDescriptor& directory() const override { return level_.descriptor; }
        FileType type() override {
            if (const auto type = typeOfEntry(entry_.type)) return *type;
            return attributes().type;
        }
        const FileAttributes& attributes() override {
            if (!attributes_) {
                attributes_ = attributesAt(level_.descriptor, level_.listing.name(entry_), path_);
            }
            return *attributes_;
        }

      private:
        const Level& level_;
        const Listing::Entry& entry_;
        const std::string& path_;
        std::optional<FileAttributes> attributes_;
    };

    class Directory final : public WalkDirectory {
      public:
        Directory(const Level& level, const std::string& path) : level_(level), path_(path) {}
        const std::string& path() const override { return path_; }
        const FileDescriptor& descriptor() const override { return level_.descriptor; }
        bool contains(std::string_view name) const override {
            return level_.listing.contains(name);
        }

      private:
        const Level& level_;
        const std::string& path_;
    };

    Level& top() { return levels_[depth_ - 1]; }

    void visit(Level& level, const Listing::Entry& entry) {
        const char* name = level.listing.name(entry);
        path_.resize(level.pathLength);
        if (path_.back() != '/') path_ += '/';
        path_ += name;
        Item item(level, entry, path_);
        try {
            if (visitor_.visit(item) == WalkVisitor::Step::skip) return;
            if (item.type() != FileType::directory) return;
            FileDescriptor directory(::openat(level.descriptor.get(), name,
                                              O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (!directory.isOpen()) throw systemError(path_);
            const FileAttributes attributes = attributesOf(directory, path_);
            if (isAncestor(attributes)) throw systemError(path_, ELOOP);
            push(std::move(directory), attributes);
        } catch (const std::system_error& error) {
            visitor_.failed(path_, error);
        }
    }

    bool isAncestor(const FileAttributes& attributes) const {
        return std::any_of(levels_.begin(), levels_.begin() + static_cast<std::ptrdiff_t>(depth_),
                           [&](const Level& level) {
                               return level.attributes.inode == attributes.inode &&
                                      level.attributes.device == attributes.device;
                           });
    }

    void push(FileDescriptor directory, const FileAttributes& attributes) {
        // Levels are kept for reuse: their blocks of names have grown to a useful size.
        if (depth_ == levels_.size()) levels_.emplace_back();
        Level& level = levels_[depth_];
        level.listing.read(directory, path_, buffer_);
        level.descriptor = std::move(directory);
        level.attributes = attributes;
        level.next = 0;
        level.pathLength = path_.size();
        ++depth_;
        if (depth_ > openLevels) levels_[depth_ - openLevels - 1].descriptor.reset();
        visitor_.enter(Directory(level, path_));
    }

    void pop() {
        FileDescriptor left = std::move(top().descriptor);
        --depth_;
        if (depth_ == 0 || top().descriptor.isOpen()) return;
        // The parent was closed on the way down; it must still be the same directory.
        Level& level = top();
        path_.resize(level.pathLength);
        try {
            level.descriptor =
                FileDescriptor(::openat(left.get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            if (!level.descriptor.isOpen()) throw systemError(path_);
            const FileAttributes found = attributesOf(level.descriptor, path_);
            if (found.inode != level.attributes.inode || found.device != level.attributes.device) {
                throw systemError(path_, ESTALE);
            }
        } catch (const std::system_error& error) {
            visitor_.failed(path_, error);
            level.next = level.listing.entries().size();
        }
    }

    WalkVisitor& visitor_;
    const std::stop_token& stop_;
    std::string path_;
    std::deque<Level> levels_; // a level stays where it is while the stack grows
    std::size_t depth_ = 0;
    std::vector<char> buffer_ = std::vector<char>(listingBuffer);
};

} // namespace

void walkDirectory(const std::string& root, WalkVisitor& visitor, const std::stop_token& stop) {
    FileDescriptor directory(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    if (!directory.isOpen()) throw systemError(root);
    walkDirectory(std::move(directory), root, visitor, stop);
}

void walkDirectory(FileDescriptor root, const std::string& path, WalkVisitor& visitor,
                   const std::stop_token& stop) {
    Walk(visitor, stop).run(std::move(root), path);
}

} // namespace tovi::platform
