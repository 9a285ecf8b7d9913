#include "decoder/process/Service.h"

#include "decoder/process/PdfPage.h"
#include "decoder/process/PdfText.h"
#include "decoder/process/Picture.h"
#include "decoder/process/PictureText.h"
#include "decoder/process/WrongFormat.h"
#include "decoder/protocol/Channel.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include <unistd.h>

namespace tovi::decoder {
namespace {

constexpr std::size_t maximumFileBytes = std::size_t{256} * 1024 * 1024;

using Bytes = std::vector<std::byte>;

/// The whole file, into memory: a mapping would end the process when the file shrinks.
Bytes readAll(const FileDescriptor& file) {
    const off_t end = ::lseek(file.get(), 0, SEEK_END);
    const auto expected = static_cast<std::size_t>(std::max<off_t>(end, 0));
    Bytes bytes(std::min(expected, maximumFileBytes) + 1); // one more tells that the file grew
    std::size_t size = 0;
    while (true) {
        const ssize_t count =
            ::pread(file.get(), bytes.data() + size, bytes.size() - size, static_cast<off_t>(size));
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) throw std::runtime_error(std::strerror(errno));
        if (count == 0) break;
        size += static_cast<std::size_t>(count);
        if (size > maximumFileBytes) throw std::runtime_error("The file is too large to decode.");
        if (size == bytes.size()) bytes.resize(2 * size);
    }
    bytes.resize(size);
    return bytes;
}

std::uint32_t put(std::string_view text, std::span<std::byte> result) {
    std::memcpy(result.data(), text.data(), std::min(text.size(), result.size()));
    return static_cast<std::uint32_t>(text.size());
}

Reply fail(bool wrongFormat, std::string_view sentence, std::span<std::byte> result) {
    return Failed{wrongFormat, put(sentence.substr(0, maximumSentenceBytes), result)};
}

Reply readPdf(const Bytes& bytes, const Request& request, int socket, std::span<std::byte> result) {
    const auto tell = [&](int pages) {
        if (!sendPacket(socket, encode(Progress{static_cast<std::uint32_t>(pages)}))) ::_exit(0);
    };
    const PdfContent content = readPdfText(bytes, static_cast<int>(request.maximumPages),
                                           request.maximumCharacters, maximumTextBytes, tell);
    return PdfDone{content.locked, content.reachedCharacterLimit,
                   static_cast<std::uint32_t>(content.pageCount),
                   static_cast<std::uint32_t>(content.pagesRead), put(content.text, result)};
}

Reply recognise(const Bytes& bytes, const Request& request, std::span<std::byte> result) {
    const std::string text = readPictureText(bytes, static_cast<int>(request.maximumSide),
                                             request.maximumCharacters, maximumTextBytes);
    return TextDone{put(text, result)};
}

Reply putPixels(const Picture& picture, std::span<std::byte> result) {
    std::memcpy(result.data(), picture.pixels.data(), picture.pixels.size());
    return PixelsDone{static_cast<std::uint32_t>(picture.width),
                      static_cast<std::uint32_t>(picture.height),
                      static_cast<std::uint32_t>(picture.fullWidth),
                      static_cast<std::uint32_t>(picture.fullHeight)};
}

Reply answer(const Request& request, FileDescriptor file, int socket, std::span<std::byte> result) {
    try {
        const Bytes bytes = readAll(file);
        file.reset();
        switch (request.task) {
        case Task::pdfText:
            return readPdf(bytes, request, socket, result);
        case Task::pictureText:
            return recognise(bytes, request, result);
        case Task::picturePixels:
            return putPixels(
                loadPicture(bytes, static_cast<int>(request.maximumSide), Colours::rgb), result);
        case Task::pdfPixels:
            break;
        }
        return putPixels(drawFirstPage(bytes, static_cast<int>(request.maximumSide)), result);
    } catch (const WrongFormat& error) {
        return fail(true, error.what(), result);
    } catch (const std::bad_alloc&) {
        return fail(false, "Decoding the file needs too much memory.", result);
    } catch (const std::exception& error) {
        return fail(false, error.what(), result);
    }
}

} // namespace

void prepare(Task task) {
    switch (task) {
    case Task::pdfText:
        return preparePdfText();
    case Task::pdfPixels:
        preparePdfText();
        return preparePdfPages();
    case Task::pictureText:
        preparePictures();
        return preparePictureText();
    case Task::picturePixels:
        return preparePictures();
    }
}

std::vector<std::string> readableFolders(Task task) {
    // The tables for Chinese, Japanese and Korean fonts that a document does not bring along, and
    // the fonts themselves.
    const std::string tables = "/usr/share/poppler";
    if (task == Task::pdfText) return {tables};
    if (task == Task::pdfPixels)
        return {tables, "/usr/share/fonts", "/usr/local/share/fonts", "/usr/share/texmf/fonts"};
    return {};
}

void serve(Task task, int socket, std::span<std::byte> result) {
    while (auto received = receivePacket(socket)) {
        const auto request = parseRequest(received->packet);
        if (!request || request->task != task || !received->file.isOpen()) return;
        if (!sendPacket(socket,
                        encode(answer(*request, std::move(received->file), socket, result))))
            return;
    }
}

} // namespace tovi::decoder
