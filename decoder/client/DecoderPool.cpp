#include "decoder/client/DecoderPool.h"

#include "base/Cancelled.h"
#include "base/SystemError.h"
#include "base/Text.h"
#include "core/records/IntelligenceError.h"

#include <algorithm>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>

namespace tovi::decoder {
namespace {

using Patience = DecoderProcess::Patience;
using Trouble = DecoderProcess::Trouble;

/// A decoder may do to its descriptor whatever the mode of opening allows.
void requireReadable(const FileDescriptor& file) {
    struct stat status {};
    const int flags = ::fcntl(file.get(), F_GETFL);
    if (flags < 0 || ::fstat(file.get(), &status) != 0) throw systemError("descriptor");
    if ((flags & (O_ACCMODE | O_PATH)) != O_RDONLY || !S_ISREG(status.st_mode))
        throw std::invalid_argument("Only regular files open for reading are decoded.");
}

/// How many bytes of the result area belong to a reply.
std::size_t resultSize(const Reply& reply) {
    if (const auto* pdf = std::get_if<PdfDone>(&reply)) return pdf->textBytes;
    if (const auto* text = std::get_if<TextDone>(&reply)) return text->textBytes;
    if (const auto* failed = std::get_if<Failed>(&reply)) return failed->sentenceBytes;
    if (const auto* pixels = std::get_if<PixelsDone>(&reply))
        return std::size_t{pixels->width} * pixels->height * 3;
    return 0;
}

Patience scaled(const Patience& patience, double factor) {
    const auto times = [factor](DecoderProcess::Clock::duration duration) {
        return std::chrono::duration_cast<DecoderProcess::Clock::duration>(duration * factor);
    };
    return {times(patience.step), times(patience.whole)};
}

std::uint32_t bounded(std::size_t value, std::uint32_t maximum) {
    return static_cast<std::uint32_t>(std::min<std::size_t>(value, maximum));
}

std::uint32_t bounded(int value, std::uint32_t maximum) {
    return bounded(static_cast<std::size_t>(std::max(value, 1)), maximum);
}

} // namespace

/// The right to keep one decoder busy; waits for it.
class DecoderPool::Turn {
  public:
    Turn(DecoderPool& pool, const std::stop_token& stop) : pool_(pool) {
        std::unique_lock lock(pool_.mutex_);
        if (!pool_.turnFree_.wait(lock, stop, [this] { return pool_.freeTurns_ > 0; }))
            throw Cancelled{};
        --pool_.freeTurns_;
    }
    ~Turn() {
        {
            const std::lock_guard lock(pool_.mutex_);
            ++pool_.freeTurns_;
        }
        pool_.turnFree_.notify_one();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

  private:
    DecoderPool& pool_;
};

DecoderPool::DecoderPool(DecoderPoolOptions options)
    : options_(std::move(options)),
      freeTurns_(options_.processes > 0 ? options_.processes
                                        : std::max(std::thread::hardware_concurrency(), 1u)) {}

PdfText DecoderPool::readPdf(const FileDescriptor& file, int maximumPages,
                             std::size_t maximumCharacters, const ReadOptions& options,
                             const std::stop_token& stop) {
    const Request request{Task::pdfText, bounded(maximumPages, maximumPagesPerRequest),
                          bounded(maximumCharacters, maximumCharactersPerRequest), 0};
    Answer answer = decode(request, file, scaled(options_.pdfText, options.deadlineFactor), stop);
    const auto& done = std::get<PdfDone>(answer.reply);
    return {done.locked, static_cast<int>(done.pageCount), static_cast<int>(done.pagesRead),
            done.reachedCharacterLimit, std::move(answer.bytes)};
}

std::string DecoderPool::readPictureText(const FileDescriptor& file, int maximumSide,
                                         std::size_t maximumCharacters, const ReadOptions& options,
                                         const std::stop_token& stop) {
    const Request request{Task::pictureText, 0,
                          bounded(maximumCharacters, maximumCharactersPerRequest),
                          bounded(maximumSide, maximumRecognisedSide)};
    return decode(request, file, scaled(options_.pictureText, options.deadlineFactor), stop).bytes;
}

DecodedPicture DecoderPool::decodePicture(const FileDescriptor& file, int maximumSide,
                                          const std::stop_token& stop) {
    return pixels(Task::picturePixels, file, maximumSide, stop);
}

DecodedPicture DecoderPool::drawPdfPage(const FileDescriptor& file, int side,
                                        const std::stop_token& stop) {
    return pixels(Task::pdfPixels, file, side, stop);
}

DecodedPicture DecoderPool::pixels(Task task, const FileDescriptor& file, int side,
                                   const std::stop_token& stop) {
    const Request request{task, 0, 0, bounded(side, maximumPixelsSide)};
    Answer answer = decode(request, file, options_.pixels, stop);
    const auto& done = std::get<PixelsDone>(answer.reply);
    return {static_cast<int>(done.width), static_cast<int>(done.height), std::move(answer.bytes),
            static_cast<int>(done.fullWidth), static_cast<int>(done.fullHeight)};
}

Confinement DecoderPool::confinement(const std::stop_token& stop) {
    const Turn turn(*this, stop);
    return start(Task::pdfText, stop).confinement;
}

void DecoderPool::endIdle() {
    std::vector<Idle> ended;
    const std::lock_guard lock(mutex_);
    ended.swap(idle_);
}

DecoderPool::Answer DecoderPool::decode(const Request& request, const FileDescriptor& file,
                                        const Patience& patience, const std::stop_token& stop) {
    requireReadable(file);
    const Turn turn(*this, stop);
    for (const bool mayReuse : {true, false}) {
        throwIfCancelled(stop);
        auto process = mayReuse ? takeIdle(request.task) : nullptr;
        if (process == nullptr) process = start(request.task, stop).process;
        const auto outcome = process->ask(request, file.get(), patience, stop);
        if (!outcome.reply && outcome.trouble == Trouble::late)
            throw DecodingError("Decoding the file took too long.");
        if (!outcome.reply) continue;

        Answer answer{*outcome.reply, process->result(resultSize(*outcome.reply))};
        const bool isText = !std::holds_alternative<PixelsDone>(answer.reply);
        if (isText && !isValidUtf8(answer.bytes)) continue;
        giveBack(request.task, std::move(process));
        if (const auto* failed = std::get_if<Failed>(&answer.reply)) {
            const std::string sentence = printable(answer.bytes);
            if (failed->wrongFormat &&
                (request.task == Task::pdfText || request.task == Task::pdfPixels))
                throw IntelligenceError::inaccessible(sentence);
            throw DecodingError(sentence);
        }
        return answer;
    }
    throw DecodingError("The file could not be decoded safely.");
}

DecoderPool::Started DecoderPool::start(Task task, const std::stop_token& stop) {
    constexpr int attempts = 2; // somebody may have ended the first, which no file can have done
    for (int attempt = 0; attempt < attempts; ++attempt) {
        std::unique_ptr<DecoderProcess> process;
        try {
            process = std::make_unique<DecoderProcess>(options_.program, task);
        } catch (const std::exception& error) {
            throw DecodingError("The decoder could not be started: " + reasonOf(error));
        }
        if (const auto confinement = process->awaitReady(options_.start, stop))
            return {std::move(process), *confinement};
    }
    throw DecodingError("The decoder could not be started: it does not get ready.");
}

void DecoderPool::giveBack(Task task, std::unique_ptr<DecoderProcess> process) {
    if (process->isWorn()) return;
    const std::lock_guard lock(mutex_);
    idle_.push_back({task, std::move(process)});
}

std::unique_ptr<DecoderProcess> DecoderPool::takeIdle(Task task) {
    const std::lock_guard lock(mutex_);
    const auto found = std::find_if(idle_.rbegin(), idle_.rend(),
                                    [task](const Idle& idle) { return idle.task == task; });
    if (found == idle_.rend()) return nullptr;
    auto process = std::move(found->process);
    idle_.erase(std::next(found).base());
    return process;
}

} // namespace tovi::decoder
