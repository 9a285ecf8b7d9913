#pragma once

#include "core/indexing/ContentReaders.h"
#include "core/photos/PictureDecoder.h"
#include "decoder/client/DecoderProcess.h"
#include "decoder/protocol/Message.h"

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <vector>

namespace tovi::decoder {

/// A file could not be decoded; `what()` is the whole sentence for the user.
struct DecodingError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct DecoderPoolOptions {
    std::string program;    // the path of tovi-decoder
    unsigned processes = 0; // at work at the same time; 0 for one per core
    DecoderProcess::Patience pdfText{std::chrono::seconds(30), std::chrono::minutes(2)};
    DecoderProcess::Patience pictureText{std::chrono::minutes(2), std::chrono::minutes(2)};
    DecoderProcess::Patience pixels{std::chrono::seconds(30), std::chrono::seconds(30)};
    std::chrono::seconds start{30};
};

/// Reads files through sandboxed decoders, which get a file's descriptor and nothing else.
///
/// A decoder is started when a file needs one, serves one kind of request, and is borrowed by the
/// calling thread for one file. Cancelling, a deadline, a crash and a breach of the protocol all
/// end the same way: the process is killed and the next file gets a fresh one. A file whose
/// decoder ends unexpectedly is tried once more in a fresh one, because the fault may have been a
/// former file's or nobody's; the second time it fails. One that passes its deadline fails at
/// once.
///
/// May be called from any thread. Must outlive its calls; the destructor ends all decoders. Files
/// are open for reading only and regular; they may be closed as soon as the call returns. Besides
/// what the interfaces say, the calls throw `DecodingError`.
class DecoderPool final : public PdfReader, public PictureTextReader, public PictureDecoder {
  public:
    explicit DecoderPool(DecoderPoolOptions options);

    PdfText readPdf(const FileDescriptor& file, int maximumPages, std::size_t maximumCharacters,
                    const ReadOptions& options, const std::stop_token& stop) override;
    std::string readPictureText(const FileDescriptor& file, int maximumSide,
                                std::size_t maximumCharacters, const ReadOptions& options,
                                const std::stop_token& stop) override;

    /// `maximumSide` is 2048 at most.
    DecodedPicture decodePicture(const FileDescriptor& file, int maximumSide,
                                 const std::stop_token& stop) override;

    /// The first page of a PDF on white, drawn so that its longer side has `side` pixels, 2048 at
    /// most. Fonts that the document does not bring along are replaced by the machine's. Throws
    /// `IntelligenceError` for what is not a PDF.
    DecodedPicture drawPdfPage(const FileDescriptor& file, int side, const std::stop_token& stop);

    /// Starts a decoder and asks it, and the kernel about it, how it is confined.
    Confinement confinement(const std::stop_token& stop);

    /// Ends the decoders that wait for work, to give their memory back.
    void endIdle();

  private:
    struct Answer {
        Reply reply;
        std::string bytes;
    };
    struct Started {
        std::unique_ptr<DecoderProcess> process;
        Confinement confinement;
    };
    struct Idle {
        Task task;
        std::unique_ptr<DecoderProcess> process;
    };
    class Turn;

    DecodedPicture pixels(Task task, const FileDescriptor& file, int side,
                          const std::stop_token& stop);
    Answer decode(const Request& request, const FileDescriptor& file,
                  const DecoderProcess::Patience& patience, const std::stop_token& stop);
    Started start(Task task, const std::stop_token& stop);
    std::unique_ptr<DecoderProcess> takeIdle(Task task);
    void giveBack(Task task, std::unique_ptr<DecoderProcess> process);

    const DecoderPoolOptions options_;

    std::mutex mutex_;
    std::condition_variable_any turnFree_;
    unsigned freeTurns_;
    std::vector<Idle> idle_;
};

} // namespace tovi::decoder
