#include "decoder/protocol/Message.h"

#include <algorithm>

namespace tovi::decoder {
namespace {

constexpr std::uint32_t magic = 0x49564f54; // "TOVI"
constexpr std::size_t fieldCount = 6;
constexpr std::uint16_t firstReplyKind = 0x100;

using Fields = std::array<std::uint32_t, fieldCount>;

struct Envelope {
    std::uint16_t kind = 0;
    Fields fields{};
};

template <typename Integer>
std::byte* put(std::byte* at, Integer value) {
    for (std::size_t i = 0; i < sizeof value; ++i)
        *at++ = static_cast<std::byte>((value >> (8 * i)) & 0xff);
    return at;
}

template <typename Integer>
Integer take(std::span<const std::byte>& bytes) {
    Integer value = 0;
    for (std::size_t i = 0; i < sizeof value; ++i)
        value = static_cast<Integer>(value | (std::to_integer<Integer>(bytes[i]) << (8 * i)));
    bytes = bytes.subspan(sizeof value);
    return value;
}

Packet seal(const Envelope& envelope) {
    Packet packet{};
    std::byte* at = put(packet.data(), magic);
    at = put(at, protocolVersion);
    at = put(at, envelope.kind);
    for (const std::uint32_t field : envelope.fields)
        at = put(at, field);
    return packet;
}

std::optional<Envelope> unseal(std::span<const std::byte> bytes) {
    if (bytes.size() != packetSize) return std::nullopt;
    if (take<std::uint32_t>(bytes) != magic) return std::nullopt;
    if (take<std::uint16_t>(bytes) != protocolVersion) return std::nullopt;
    Envelope envelope;
    envelope.kind = take<std::uint16_t>(bytes);
    for (std::uint32_t& field : envelope.fields)
        field = take<std::uint32_t>(bytes);
    return envelope;
}

Fields fieldsOf(const Ready& ready) {
    return {ready.landlockVersion};
}
Fields fieldsOf(const Progress& progress) {
    return {progress.pages};
}
Fields fieldsOf(const PdfDone& done) {
    return {done.locked, done.reachedCharacterLimit, done.pageCount, done.pagesRead,
            done.textBytes};
}
Fields fieldsOf(const TextDone& done) {
    return {done.textBytes};
}
Fields fieldsOf(const PixelsDone& done) {
    return {done.width, done.height, done.fullWidth, done.fullHeight};
}
Fields fieldsOf(const Failed& failed) {
    return {failed.wrongFormat, failed.sentenceBytes};
}

std::optional<Reply> replyOf(const Envelope& envelope) {
    const Fields& f = envelope.fields;
    switch (envelope.kind - firstReplyKind) {
    case 0:
        return Ready{f[0]};
    case 1:
        return Progress{f[0]};
    case 2:
        if (f[2] > INT32_MAX || f[3] > f[2] || f[4] > maximumTextBytes) return std::nullopt;
        return PdfDone{f[0] != 0, f[1] != 0, f[2], f[3], f[4]};
    case 3:
        if (f[0] > maximumTextBytes) return std::nullopt;
        return TextDone{f[0]};
    case 4:
        if (std::min(f[0], f[1]) == 0 || std::max(f[0], f[1]) > maximumPixelsSide)
            return std::nullopt;
        if (f[2] < f[0] || f[3] < f[1] || std::uint64_t{f[2]} * f[3] > maximumPixels)
            return std::nullopt;
        return PixelsDone{f[0], f[1], f[2], f[3]};
    case 5:
        if (f[1] > maximumSentenceBytes) return std::nullopt;
        return Failed{f[0] != 0, f[1]};
    default:
        return std::nullopt;
    }
}

} // namespace

std::string_view nameOf(Task task) {
    switch (task) {
    case Task::pdfText:
        return "pdf-text";
    case Task::pictureText:
        return "picture-text";
    case Task::picturePixels:
        return "picture-pixels";
    case Task::pdfPixels:
        break;
    }
    return "pdf-pixels";
}

std::optional<Task> taskNamed(std::string_view name) {
    for (const Task task :
         {Task::pdfText, Task::pictureText, Task::picturePixels, Task::pdfPixels}) {
        if (name == nameOf(task)) return task;
    }
    return std::nullopt;
}

Packet encode(const Request& request) {
    return seal({static_cast<std::uint16_t>(request.task),
                 {request.maximumPages, request.maximumCharacters, request.maximumSide}});
}

Packet encode(const Reply& reply) {
    const auto kind = static_cast<std::uint16_t>(firstReplyKind + reply.index());
    return seal({kind, std::visit([](const auto& value) { return fieldsOf(value); }, reply)});
}

std::optional<Request> parseRequest(std::span<const std::byte> bytes) {
    const auto envelope = unseal(bytes);
    if (!envelope) return std::nullopt;
    const Fields& f = envelope->fields;
    const Request request{static_cast<Task>(envelope->kind), f[0], f[1], f[2]};
    if (f[0] > maximumPagesPerRequest || f[1] > maximumCharactersPerRequest) return std::nullopt;
    switch (request.task) {
    case Task::pdfText:
        if (f[2] != 0) return std::nullopt;
        break;
    case Task::pictureText:
        if (f[0] != 0 || f[2] == 0 || f[2] > maximumRecognisedSide) return std::nullopt;
        break;
    case Task::picturePixels:
    case Task::pdfPixels:
        if (f[0] != 0 || f[1] != 0 || f[2] == 0 || f[2] > maximumPixelsSide) return std::nullopt;
        break;
    default:
        return std::nullopt;
    }
    if (!std::ranges::equal(encode(request), bytes)) return std::nullopt;
    return request;
}

std::optional<Reply> parseReply(std::span<const std::byte> bytes) {
    const auto envelope = unseal(bytes);
    if (!envelope) return std::nullopt;
    auto reply = replyOf(*envelope);
    // One value, one packet: fields that a kind does not use are zero, and flags are 0 or 1.
    if (reply && !std::ranges::equal(encode(*reply), bytes)) return std::nullopt;
    return reply;
}

bool answers(const Reply& reply, const Request& request, std::uint32_t pagesBefore) {
    if (std::holds_alternative<Failed>(reply)) return true;
    switch (request.task) {
    case Task::pdfText:
        if (const auto* progress = std::get_if<Progress>(&reply))
            return progress->pages > pagesBefore && progress->pages <= request.maximumPages;
        if (const auto* done = std::get_if<PdfDone>(&reply))
            return done->pagesRead >= pagesBefore && done->pagesRead <= request.maximumPages;
        return false;
    case Task::pictureText:
        return std::holds_alternative<TextDone>(reply);
    case Task::picturePixels:
    case Task::pdfPixels:
        if (const auto* done = std::get_if<PixelsDone>(&reply))
            return std::max(done->width, done->height) <= request.maximumSide;
        return false;
    }
    return false;
}

} // namespace tovi::decoder
