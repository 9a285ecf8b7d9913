#include "core/indexing/KnownFiles.h"

#include "core/indexing/ContentExtractor.h"

#include <algorithm>
#include <cstring>

namespace tovi {
namespace {

constexpr std::size_t usualBlock = 1024 * 1024; // bytes

KnownFiles::Reading readingOf(std::string_view status) {
    if (status.starts_with("Unavailable")) return KnownFiles::Reading::unavailable;
    if (status.starts_with(contentStatus::failed)) return KnownFiles::Reading::failed;
    if (status == contentStatus::sourceDisabled) return KnownFiles::Reading::sourceDisabled;
    return KnownFiles::Reading::done;
}

} // namespace

std::string_view KnownFiles::keep(std::string_view text) {
    if (blockSize_ - blockUsed_ < text.size()) {
        blockSize_ = std::max(usualBlock, text.size());
        blocks_.push_back(std::make_unique_for_overwrite<char[]>(blockSize_));
        blockUsed_ = 0;
    }
    char* const place = blocks_.back().get() + blockUsed_;
    std::copy(text.begin(), text.end(), place);
    blockUsed_ += text.size();
    return {place, text.size()};
}

std::size_t KnownFiles::slotOf(std::string_view relativePath) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = std::hash<std::string_view>{}(relativePath)&mask;
    while (slots_[slot] != 0 && files_[slots_[slot] - 1].path != relativePath) {
        slot = (slot + 1) & mask;
    }
    return slot;
}

void KnownFiles::grow() {
    slots_.assign(std::max<std::size_t>(1024, slots_.size() * 2), 0);
    for (std::size_t index = 0; index < files_.size(); ++index) {
        slots_[slotOf(files_[index].path)] = static_cast<std::uint32_t>(index + 1);
    }
}

void KnownFiles::add(const IndexScanRecord& record) {
    if (record.path.size() <= rootLength_) return;
    if (2 * (files_.size() + 1) > slots_.size()) grow();
    const std::string_view relativePath = std::string_view(record.path).substr(rootLength_);
    const std::size_t slot = slotOf(relativePath);
    if (slots_[slot] == 0) {
        files_.emplace_back();
        files_.back().path = keep(relativePath);
        slots_[slot] = static_cast<std::uint32_t>(files_.size());
    }
    File& file = files_[slots_[slot] - 1];
    file.size = record.size;
    file.modifiedAt = record.modifiedAt;
    file.reading = readingOf(record.contentStatus);
    file.met = false;
    file.downloadedAt = record.downloadedAt;
    if (record.sourceURL) sources_[&file] = *record.sourceURL;
}

KnownFiles::File* KnownFiles::find(const std::string& path) {
    if (slots_.empty() || path.size() <= rootLength_) return nullptr;
    const std::uint32_t index = slots_[slotOf(std::string_view(path).substr(rootLength_))];
    return index == 0 ? nullptr : &files_[index - 1];
}

std::optional<std::string> KnownFiles::sourceOf(const File& file) const {
    const auto found = sources_.find(&file);
    if (found == sources_.end()) return std::nullopt;
    return found->second;
}

void KnownFiles::forEachNotMet(
    const std::function<void(std::string_view relativePath)>& each) const {
    for (const File& file : files_) {
        if (!file.met) each(file.path);
    }
}

} // namespace tovi
