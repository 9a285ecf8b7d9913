#include "app/browser/FolderBrowserModel.h"

#include "app/lists/QtConversions.h"
#include "base/Text.h"
#include "platform/StandardLocations.h"

#include <QCollator>
#include <algorithm>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <utility>

#include <fmt/format.h>

namespace tovi {
namespace {

namespace fs = std::filesystem;
using Entry = FolderBrowserModel::Entry;

/// Absolute, without "." and ".." and without a slash at the end.
fs::path resolved(const std::string& path, const std::string& folder) {
    const bool isOfHome = path == "~" || path.starts_with("~/");
    const fs::path whole = isOfHome ? fs::path(platform::homeDirectory() + path.substr(1))
                                    : fs::path(folder.empty() ? "/" : folder) / path;
    const fs::path normal = whole.lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();
}

/// Nothing for what is hidden, gone, or neither a folder nor a file that is wanted.
std::optional<Entry> entryOf(const fs::directory_entry& found, bool withFiles) {
    std::string path = found.path().string();
    QString name = toQt(found.path().filename().string());
    std::error_code error;
    if (name.startsWith(u'.')) return std::nullopt;
    if (found.is_directory(error)) return Entry{std::move(path), std::move(name), true, 0};
    if (!withFiles || !found.is_regular_file(error)) return std::nullopt;
    const std::uintmax_t size = found.file_size(error);
    if (error) return std::nullopt;
    return Entry{std::move(path), std::move(name), false, static_cast<std::int64_t>(size)};
}

std::vector<Entry> sorted(std::vector<Entry> entries) {
    // The collator of "C" knows neither cases nor numbers.
    const QLocale locale;
    QCollator collator(locale.language() == QLocale::C ? QLocale(QLocale::English) : locale);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    struct Keyed {
        QCollatorSortKey key;
        Entry entry;
    };
    std::vector<Keyed> keyed;
    keyed.reserve(entries.size());
    for (Entry& entry : entries)
        keyed.push_back({collator.sortKey(entry.name), std::move(entry)});
    std::sort(keyed.begin(), keyed.end(), [](const Keyed& left, const Keyed& right) {
        if (left.entry.isFolder != right.entry.isFolder) return left.entry.isFolder;
        const int order = left.key.compare(right.key);
        return order != 0 ? order < 0 : left.entry.path < right.entry.path;
    });
    entries.clear();
    for (Keyed& each : keyed)
        entries.push_back(std::move(each.entry));
    return entries;
}

struct Contents {
    fs::path folder;
    std::vector<Entry> entries;
    int start = 0; // a row
};

/// Throws `std::runtime_error` with a whole sentence.
Contents read(fs::path folder, const fs::path& from, bool withFiles, const std::stop_token& stop) {
    fs::path start = from;
    std::error_code error;
    if (withFiles && fs::is_regular_file(folder, error)) {
        start = folder;
        folder = folder.parent_path();
    }
    std::vector<Entry> entries;
    fs::directory_iterator at(folder, error);
    for (; !error && at != fs::directory_iterator(); at.increment(error)) {
        throwIfCancelled(stop);
        if (auto entry = entryOf(*at, withFiles)) entries.push_back(*std::move(entry));
    }
    if (error) {
        throw std::runtime_error(
            fmt::format("“{}” cannot be opened: {}.", printable(folder.string()), error.message()));
    }
    entries = sorted(std::move(entries));
    const auto found = std::find_if(entries.begin(), entries.end(),
                                    [&](const Entry& entry) { return entry.path == start; });
    const auto row = found == entries.end() ? 0 : found - entries.begin();
    return {std::move(folder), std::move(entries), static_cast<int>(row)};
}

} // namespace

FolderBrowserModel::FolderBrowserModel(Executor& executor, std::size_t mostEntries)
    : executor_(executor),
      mostEntries_(mostEntries),
      entries_(
          [](const Entry& entry) { return entry.path; },
          {{"path", [](const Entry& entry) { return toQt(entry.path); }},
           {"name", [](const Entry& entry) { return entry.name; }},
           {"isFolder", [](const Entry& entry) { return entry.isFolder; }},
           {"size", [](const Entry& entry) { return QVariant::fromValue<qint64>(entry.size); }}}) {}

void FolderBrowserModel::open(const QString& path, bool withFiles) {
    isLoading_ = true;
    Q_EMIT changed();
    runLatest(
        executor_, this, generation_,
        [path = fromQt(path), from = fromQt(folder_), withFiles](const std::stop_token& stop) {
            return read(resolved(path, from), from, withFiles, stop);
        },
        [this](Outcome<Contents> outcome) {
            isLoading_ = false;
            error_ = toQt(outcome.error);
            if (!outcome) return Q_EMIT changed();
            auto& [folder, entries, start] = *outcome.value;
            folder_ = toQt(folder.string());
            isCut_ = entries.size() > mostEntries_;
            if (isCut_) entries.resize(mostEntries_);
            entries_.replace({});
            entries_.replace(std::move(entries));
            Q_EMIT changed();
            Q_EMIT opened(start < entries_.count() ? start : 0);
        });
}

int FolderBrowserModel::rowBeginningWith(const QString& text, int row) const {
    const int count = entries_.count();
    for (int step = 0; step < count; ++step) {
        const int at = (std::max(row, 0) + step) % count;
        if (entries_.rows()[static_cast<std::size_t>(at)].name.startsWith(text,
                                                                          Qt::CaseInsensitive))
            return at;
    }
    return -1;
}

} // namespace tovi
