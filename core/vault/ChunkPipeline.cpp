#include "core/vault/ChunkPipeline.h"

#include "base/Cancelled.h"
#include "core/vault/VaultError.h"

#include <algorithm>
#include <array>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

namespace tovi::vault {
namespace {

constexpr std::uint64_t bufferCount = 8;

/// How far each stage is. A stage waits until its next chunk is there, the first one until there is
/// room; all give up once one has failed.
class Progress {
  public:
    enum Stage : std::size_t { producing, hashing, consuming };

    /// False where another stage has failed.
    bool waitFor(Stage stage, std::uint64_t index) {
        std::unique_lock lock(mutex_);
        if (stage != producing) {
            produced_.wait(lock, [&] { return failure_ != nullptr || index < done_[producing]; });
        } else if (index - consumed() == bufferCount) {
            // Waking a thread for each chunk would cost a tenth of the time.
            consumed_.wait(
                lock, [&] { return failure_ != nullptr || index - consumed() <= bufferCount / 2; });
        }
        return failure_ == nullptr;
    }

    void finish(Stage stage) {
        const std::lock_guard lock(mutex_);
        ++done_[stage];
        if (stage == producing)
            produced_.notify_all();
        else if (done_[producing] - consumed() <= bufferCount / 2)
            consumed_.notify_one();
    }

    void fail(std::exception_ptr failure) {
        const std::lock_guard lock(mutex_);
        if (failure_ == nullptr) failure_ = std::move(failure);
        produced_.notify_all();
        consumed_.notify_all();
    }

    void rethrow() {
        if (failure_ != nullptr) std::rethrow_exception(failure_);
    }

  private:
    /// How many chunks no stage needs any more.
    std::uint64_t consumed() const { return std::min(done_[hashing], done_[consuming]); }

    std::mutex mutex_;
    std::condition_variable produced_;
    std::condition_variable consumed_;
    std::array<std::uint64_t, 3> done_{};
    std::exception_ptr failure_;
};

} // namespace

void runChunks(std::uint64_t count, std::size_t bufferSize, const ChunkStages& stages,
               const std::stop_token& stop) {
    if (count == 1) { // threads would cost more than they save
        throwIfCancelled(stop);
        std::vector<std::byte> buffer(bufferSize);
        const std::span<std::byte> plaintext = stages.produce(0, buffer);
        stages.hash(plaintext);
        stages.consume(0, plaintext);
        return;
    }

    struct Chunk {
        std::vector<std::byte> buffer;
        std::span<std::byte> plaintext;
    };
    std::array<Chunk, bufferCount> chunks;
    for (Chunk& chunk : chunks)
        chunk.buffer.resize(bufferSize);

    Progress progress;
    const auto run = [&](Progress::Stage stage, const auto& work) {
        try {
            for (std::uint64_t index = 0; index < count; ++index) {
                if (!progress.waitFor(stage, index)) return;
                throwIfCancelled(stop);
                work(index, chunks[index % bufferCount]);
                progress.finish(stage);
            }
        } catch (...) {
            progress.fail(std::current_exception());
        }
    };
    {
        std::jthread producer;
        std::jthread hasher;
        try {
            producer = std::jthread([&] {
                run(Progress::producing, [&](std::uint64_t index, Chunk& chunk) {
                    chunk.plaintext = stages.produce(index, chunk.buffer);
                });
            });
            hasher = std::jthread([&] {
                run(Progress::hashing,
                    [&](std::uint64_t, const Chunk& chunk) { stages.hash(chunk.plaintext); });
            });
        } catch (const std::system_error& error) { // no thread to be had
            progress.fail(std::make_exception_ptr(VaultError::system(error.code().value())));
        }
        run(Progress::consuming, [&](std::uint64_t index, const Chunk& chunk) {
            stages.consume(index, chunk.plaintext);
        });
    }
    progress.rethrow();
}

} // namespace tovi::vault
