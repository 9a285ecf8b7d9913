#include "app/thumbnails/ThumbnailLoader.h"
#include "app/thumbnails/ThumbnailMaker.h"
#include "base/SystemError.h"
#include "cli/Commands.h"
#include "platform/FileAttributes.h"
#include "platform/StandardLocations.h"

#include <filesystem>
#include <stdexcept>
#include <vector>

#include <fcntl.h>
#include <fmt/core.h>
#include <png.h>

namespace tovi::cli {
namespace {

struct ThumbnailArguments {
    std::string path;
    std::string target;
    int pixels = 256;
};

std::vector<std::byte> toPng(const DecodedPicture& picture) {
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<std::byte> bytes(size);
    if (png_image_write_to_memory(&image, bytes.data(), &size, 0, picture.pixels.data(), 0,
                                  nullptr) == 0)
        throw std::runtime_error(std::string("The thumbnail could not be written: ") +
                                 image.message);
    bytes.resize(size);
    return bytes;
}

/// Replaces nothing. What cannot be written whole is taken away again.
void writeNew(const std::string& path, const std::vector<std::byte>& bytes) {
    const FileDescriptor file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!file.isOpen()) throw systemError(path);
    for (std::size_t done = 0; done < bytes.size();) {
        const ssize_t count = ::write(file.get(), bytes.data() + done, bytes.size() - done);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) {
            const auto error = systemError(path);
            ::unlink(path.c_str());
            throw error;
        }
        done += static_cast<std::size_t>(count);
    }
}

void thumbnail(const ThumbnailArguments& arguments, const Context& context) {
    const std::string path = std::filesystem::canonical(arguments.path).string();
    const platform::FileAttributes attributes = platform::attributesOf(path);
    decoder::DecoderPool decoders({.program = decoderPath(), .processes = 1});
    const platform::SystemAvailability availability;
    const ThumbnailMaker maker(decoders, availability, platform::cacheHome() + "/thumbnails");
    const Thumbnail made =
        maker.make({path, attributes.modifiedAt, attributes.size, arguments.pixels}, context.stop);
    if (made == nullptr) throw std::runtime_error("The file has no thumbnail now.");
    writeNew(arguments.target, toPng(*made));
    if (context.json) {
        context.print(
            {{"path", arguments.target}, {"width", made->width}, {"height", made->height}});
    }
}

} // namespace

void addThumbnailCommand(CLI::App& app, Context& context) {
    CLI::App* command =
        app.add_subcommand("thumbnail", "Write a small picture of a picture or PDF");
    const auto arguments = std::make_shared<ThumbnailArguments>();
    command->add_option("path", arguments->path, "The picture or PDF")->required();
    command->add_option("target", arguments->target, "The PNG file to write; must not exist")
        ->required();
    command->add_option("--pixels", arguments->pixels, "The longer side at the most")
        ->check(CLI::Range(1, 2048))
        ->capture_default_str();
    command->callback([arguments, &context] { thumbnail(*arguments, context); });
}

} // namespace tovi::cli
