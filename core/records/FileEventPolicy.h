#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace tovi {

/// The flag bits of one file-system change event.
namespace fileEvent {
inline constexpr std::uint32_t mustScanSubdirectories = 0x01;
inline constexpr std::uint32_t userDropped = 0x02;
inline constexpr std::uint32_t kernelDropped = 0x04;
inline constexpr std::uint32_t identifiersWrapped = 0x08;
inline constexpr std::uint32_t historyDone = 0x10;
inline constexpr std::uint32_t rootChanged = 0x20;
inline constexpr std::uint32_t mounted = 0x40;
inline constexpr std::uint32_t unmounted = 0x80;
} // namespace fileEvent

/// Which changes below the connected folders are worth a rescan: those of items that the index
/// would record, and those of the rules that decide what it records.
struct FileEventPolicy {
    /// The one spelling of an absolute path that is compared: without empty, "." and ".."
    /// components, and with the short name of a system folder that has two.
    static std::string normalize(std::string_view path);

    /// `flags` are bits of `fileEvent`; all paths are absolute.
    static bool requiresRescan(std::string_view path, std::uint32_t flags,
                               std::span<const std::string> watchedPaths);
};

} // namespace tovi
