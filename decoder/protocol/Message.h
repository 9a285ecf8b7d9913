#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

namespace tovi::decoder {

/// What the two ends say to each other. Every message is one packet of `packetSize` bytes:
///
///     u32 magic, u16 version, u16 kind, 6 x u32 fields       (little-endian)
///
/// A request travels with exactly one descriptor, the file, open for reading only. Text, pixels
/// and sentences are not in the packet but at the start of the result area, a memory file of
/// `resultCapacity` bytes that the client makes, seals against resizing and shares at the start.
/// The client believes no number that it has not checked: `parseReply` bounds each field by
/// itself, `answers` holds it against the request.
inline constexpr std::uint16_t protocolVersion = 1;
inline constexpr std::size_t packetSize = 32;

inline constexpr std::uint32_t maximumPagesPerRequest = 100'000;
inline constexpr std::uint32_t maximumCharactersPerRequest = 1'000'000;
inline constexpr std::uint32_t maximumTextBytes = 8 * 1024 * 1024;
inline constexpr std::uint32_t maximumSentenceBytes = 512;
inline constexpr std::uint32_t maximumRecognisedSide = 8192; // pixels
inline constexpr std::uint32_t maximumPixelsSide = 2048;     // pixels
inline constexpr std::uint32_t maximumPixels = 100'000'000;  // of a picture in a file
inline constexpr std::size_t resultCapacity =
    std::size_t{maximumPixelsSide} * maximumPixelsSide * 3;

/// Where the decoder finds its end of the socket and the result area when it starts.
inline constexpr int socketDescriptor = 3;
inline constexpr int resultDescriptor = 4;

/// A decoder serves one task from its start to its end, named by its only argument.
enum class Task : std::uint16_t { pdfText = 1, pictureText = 2, picturePixels = 3, pdfPixels = 4 };

std::string_view nameOf(Task task);
std::optional<Task> taskNamed(std::string_view name);

struct Request {
    Task task = Task::pdfText;
    std::uint32_t maximumPages = 0;      // of a PDF
    std::uint32_t maximumCharacters = 0; // of text, as a person sees them
    std::uint32_t maximumSide = 0;       // of a picture or a page, in pixels

    bool operator==(const Request&) const = default;
};

/// The decoder is ready. Landlock's version is 0 where the kernel has none.
struct Ready {
    std::uint32_t landlockVersion = 0;
    bool operator==(const Ready&) const = default;
};

/// `pages` pages are done, and there is more to do.
struct Progress {
    std::uint32_t pages = 0;
    bool operator==(const Progress&) const = default;
};

struct PdfDone {
    bool locked = false;
    bool reachedCharacterLimit = false;
    std::uint32_t pageCount = 0;
    std::uint32_t pagesRead = 0;
    std::uint32_t textBytes = 0;
    bool operator==(const PdfDone&) const = default;
};

struct TextDone {
    std::uint32_t textBytes = 0;
    bool operator==(const TextDone&) const = default;
};

/// RGB, 8 bits each, rows from top to bottom without padding, scaled down from a picture of the
/// full width and height.
struct PixelsDone {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t fullWidth = 0;
    std::uint32_t fullHeight = 0;
    bool operator==(const PixelsDone&) const = default;
};

/// The file could not be read; `wrongFormat` if it is not what the task reads at all.
struct Failed {
    bool wrongFormat = false;
    std::uint32_t sentenceBytes = 0;
    bool operator==(const Failed&) const = default;
};

using Reply = std::variant<Ready, Progress, PdfDone, TextDone, PixelsDone, Failed>;
using Packet = std::array<std::byte, packetSize>;

Packet encode(const Request& request);
Packet encode(const Reply& reply);

/// Nothing for whatever `encode` cannot have made.
std::optional<Request> parseRequest(std::span<const std::byte> bytes);
std::optional<Reply> parseReply(std::span<const std::byte> bytes);

/// Whether `reply` can follow `request` when `pagesBefore` is the last progress reported for it.
bool answers(const Reply& reply, const Request& request, std::uint32_t pagesBefore);

} // namespace tovi::decoder
