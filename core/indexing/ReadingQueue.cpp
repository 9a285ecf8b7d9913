#include "core/indexing/ReadingQueue.h"

#include "base/Cancelled.h"

namespace tovi {
namespace {

constexpr std::size_t maximumFiles = 1024;
constexpr std::size_t maximumText = 32 * 1024 * 1024; // bytes

} // namespace

ReadingQueue::ReadingQueue(Read read, unsigned threads, const std::stop_token& stop)
    : read_(std::move(read)), forward_(stop, [this] { stop_.request_stop(); }) {
    for (unsigned n = 0; n < threads; ++n)
        threads_.emplace_back([this] { work(); });
}

ReadingQueue::~ReadingQueue() {
    stop_.request_stop();
}

bool ReadingQueue::isFull() {
    const std::lock_guard lock(mutex_);
    return entries_.size() >= maximumFiles || textWaiting_ >= maximumText;
}

void ReadingQueue::add(FileToRead file) {
    auto entry = std::make_shared<Entry>(Entry{std::move(file), std::nullopt});
    entries_.push_back(entry);
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(entry));
    }
    changed_.notify_all();
}

std::optional<FileRead> ReadingQueue::takeIfReady() {
    const std::lock_guard lock(mutex_);
    if (entries_.empty() || !entries_.front()->result) return std::nullopt;
    return removeFirst();
}

FileRead ReadingQueue::take() {
    std::unique_lock lock(mutex_);
    if (!changed_.wait(lock, stop_.get_token(),
                       [this] { return entries_.front()->result.has_value(); })) {
        throw Cancelled{};
    }
    return removeFirst();
}

FileRead ReadingQueue::removeFirst() {
    FileRead result = std::move(*entries_.front()->result);
    entries_.pop_front();
    textWaiting_ -= result.extracted.content.size();
    return result;
}

void ReadingQueue::work() {
    const std::stop_token stop = stop_.get_token();
    for (;;) {
        std::shared_ptr<Entry> entry;
        {
            std::unique_lock lock(mutex_);
            if (!changed_.wait(lock, stop, [this] { return !waiting_.empty(); })) return;
            entry = std::move(waiting_.front());
            waiting_.pop_front();
        }
        try {
            FileRead result = read_(std::move(*entry->file), stop);
            const std::lock_guard lock(mutex_);
            textWaiting_ += result.extracted.content.size();
            entry->result = std::move(result);
        } catch (const Cancelled&) {
            return;
        }
        changed_.notify_all();
    }
}

} // namespace tovi
