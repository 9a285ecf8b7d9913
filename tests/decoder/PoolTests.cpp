#include "base/Cancelled.h"
#include "core/records/IntelligenceError.h"
#include "decoder/client/DecoderPool.h"
#include "platform/Sandbox.h"
#include "tests/decoder/PdfMaker.h"
#include "tests/support/TemporaryTree.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

namespace tovi::decoder {
namespace {

namespace fs = std::filesystem;

FileDescriptor opened(const std::string& path, int flags = O_RDONLY | O_CLOEXEC) {
    return FileDescriptor(::open(path.c_str(), flags));
}

std::size_t openDescriptors() {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator("/proc/self/fd"), {}));
}

std::vector<pid_t> children() {
    std::vector<pid_t> found;
    for (const auto& thread : fs::directory_iterator("/proc/self/task")) {
        std::ifstream list(thread.path() / "children");
        for (pid_t child = 0; list >> child;)
            found.push_back(child);
    }
    return found;
}

template <typename Call>
std::string failureOf(const Call& call) {
    try {
        call();
    } catch (const std::exception& error) {
        return error.what();
    }
    return "no failure";
}

/// Every pool of a test leaves neither processes nor descriptors behind.
class PoolTest : public testing::Test {
  protected:
    ~PoolTest() override {
        EXPECT_EQ(openDescriptors(), before_);
        EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a decoder was not reaped";
    }

    static PdfText readPdf(DecoderPool& pool, const std::string& path, std::stop_token stop = {}) {
        return pool.readPdf(opened(path), 100, 200'000, {}, stop);
    }

    const std::size_t before_ = openDescriptors();
    test::TemporaryTree tree_;
    const std::string pdf_ = tree_.write("a.pdf", test::makePdf({"(Hello)"}));
};

class RealDecoder : public PoolTest {
  protected:
    DecoderPoolOptions options_{TOVI_DECODER, 2};
};

TEST_F(RealDecoder, ReadsPdfsAndPicturesInsideTheSandbox) {
    DecoderPool pool(options_);
    const std::string data = std::string(TOVI_TEST_DATA) + "/decoder/";
    EXPECT_EQ(readPdf(pool, pdf_).text, "Hello");
    const std::string japanese =
        tree_.write("j.pdf", test::makePdf({"<93fa967b8cea>"}, test::japaneseFont("90ms-RKSJ-H")));
    const bool readsTables = pool.confinement({}).landlockVersion > 0;
    EXPECT_EQ(readPdf(pool, japanese).text, readsTables ? "\u65e5\u672c\u8a9e" : "");
    EXPECT_TRUE(readPdf(pool, data + "user-password.pdf").locked);
    for (const char* name : {"screenshot.png", "scan.heic"}) {
        const std::string text = pool.readPictureText(opened(data + name), 2400, 200'000, {}, {});
        EXPECT_TRUE(text.starts_with("Quarterly budget review\nThe heating invoice")) << name;
        const DecodedPicture picture = pool.decodePicture(opened(data + name), 300, {});
        EXPECT_EQ(picture.width, 300);
        EXPECT_EQ(picture.pixels.size(), static_cast<std::size_t>(300 * picture.height * 3));
    }
}

TEST_F(RealDecoder, DrawsLettersOfFontsThatThePdfLeavesOut) {
    DecoderPool pool(options_);
    const auto ink = [&](const std::string& text) {
        const std::string path = tree_.write("page.pdf", test::makePdf({text}));
        const DecodedPicture page = pool.drawPdfPage(opened(path), 792, {});
        return std::ranges::count_if(
            page.pixels, [](char value) { return static_cast<unsigned char>(value) < 128; });
    };
    EXPECT_EQ(ink("(Hello)") > 100, platform::landlockVersion() > 0);
    EXPECT_EQ(ink("( )"), 0);
}

TEST_F(RealDecoder, IsConfined) {
    const Confinement confinement = DecoderPool(options_).confinement({});
    EXPECT_EQ(confinement.landlockVersion, platform::landlockVersion());
    EXPECT_TRUE(confinement.systemCallFilter);
    EXPECT_TRUE(confinement.noNewPrivileges);
    const platform::DecoderSandbox sandbox;
    EXPECT_EQ(confinement.memoryBytes, sandbox.memoryBytes);
    EXPECT_EQ(confinement.cpuSeconds, sandbox.cpuSeconds);
    EXPECT_EQ(confinement.coreBytes, 0u);
}

TEST_F(RealDecoder, SaysWhyAFileCannotBeRead) {
    DecoderPool pool(options_);
    const std::string words = tree_.write("words", "Just words.");
    const FileDescriptor file = opened(words);
    EXPECT_THROW(readPdf(pool, words), IntelligenceError);
    EXPECT_EQ(failureOf([&] { pool.readPictureText(file, 2400, 1000, {}, {}); }),
              "The picture format is not supported.");
    EXPECT_EQ(readPdf(pool, pdf_).text, "Hello");
    EXPECT_EQ(children().size(), 2u) << "a failure that the decoder reports does not end it";
}

TEST_F(RealDecoder, MayBeKilledAtAnyTime) {
    DecoderPool pool(options_);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(readPdf(pool, pdf_).text, "Hello");
        for (const pid_t child : children())
            ::kill(child, SIGKILL);
    }
}

TEST_F(RealDecoder, ServesManyThreadsWithFewProcesses) {
    DecoderPool pool(options_);
    std::atomic<int> right = 0;
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < 8; ++i) {
            threads.emplace_back([&, i] {
                const std::string word = "word" + std::to_string(i);
                const std::string path =
                    tree_.write(word + ".pdf", test::makePdf({"(" + word + ")"}));
                for (int round = 0; round < 10; ++round)
                    right += readPdf(pool, path).text == word ? 1 : 0;
            });
        }
    }
    EXPECT_EQ(right, 80);
    EXPECT_LE(children().size(), 2u);
    pool.endIdle();
    EXPECT_TRUE(children().empty());
}

TEST_F(RealDecoder, GivesAwayReadOnlyDescriptorsOfFilesOnly) {
    DecoderPool pool(options_);
    for (const FileDescriptor& file :
         {opened(pdf_, O_RDWR | O_CLOEXEC), opened(pdf_, O_PATH | O_CLOEXEC),
          opened(tree_.path(), O_RDONLY | O_CLOEXEC), opened("/dev/zero")})
        EXPECT_THROW(pool.readPdf(file, 1, 1, {}, {}), std::invalid_argument);
}

TEST_F(RealDecoder, IsMissing) {
    DecoderPool pool({tree_.path("nothing"), 1});
    EXPECT_EQ(failureOf([&] { readPdf(pool, pdf_); }),
              "The decoder could not be started: No such file or directory");
}

class FakeDecoder : public PoolTest {
  protected:
    DecoderPoolOptions behaving(const std::string& behaviour) {
        DecoderPoolOptions options{tree_.link(behaviour, TOVI_FAKE_DECODER), 1};
        options.pdfText = {std::chrono::minutes(1), std::chrono::minutes(1)};
        return options;
    }
    std::size_t starts(const std::string& behaviour) {
        return test::readFile(tree_.path(behaviour + ".starts")).size();
    }
};

TEST_F(FakeDecoder, FailsAFileThatEndsItsDecoderTwice) {
    for (const std::string behaviour :
         {"crash", "huge-length", "too-many-pages", "wrong-kind", "garbage", "descriptor",
          "same-progress", "long-message", "not-utf8"}) {
        DecoderPool pool(behaving(behaviour));
        EXPECT_EQ(failureOf([&] { readPdf(pool, pdf_); }), "The file could not be decoded safely.")
            << behaviour;
        EXPECT_EQ(starts(behaviour), 2u) << behaviour;
        EXPECT_TRUE(children().empty()) << behaviour;
    }
}

TEST_F(FakeDecoder, TriesAFileOnceMore) {
    for (const std::string behaviour : {"crash-once", "end-at-first-start"}) {
        DecoderPool pool(behaving(behaviour));
        EXPECT_EQ(readPdf(pool, pdf_).text, "fine");
        EXPECT_EQ(readPdf(pool, pdf_).text, "fine");
        EXPECT_EQ(starts(behaviour), 2u);
    }
}

TEST_F(FakeDecoder, IsReplacedByAFreshOneWhenWorn) {
    DecoderPool pool(behaving("fine"));
    for (int served = 0; served < 500; ++served)
        readPdf(pool, pdf_);
    EXPECT_EQ(starts("fine"), 1U);
    readPdf(pool, pdf_);
    EXPECT_EQ(starts("fine"), 2U);
}

TEST_F(FakeDecoder, LosesPatience) {
    DecoderPoolOptions options = behaving("hang");
    ASSERT_EQ(::mkfifo(tree_.path("hang.arrived").c_str(), 0600), 0);
    const FileDescriptor arrival = opened(tree_.path("hang.arrived"), O_RDWR | O_CLOEXEC);
    options.pdfText = {std::chrono::milliseconds(20), std::chrono::minutes(1)};
    DecoderPool pool(options);
    EXPECT_EQ(failureOf([&] { readPdf(pool, pdf_); }), "Decoding the file took too long.");
    EXPECT_EQ(starts("hang"), 1u) << "what is slow once is not tried again";

    options = behaving("never-ready");
    options.start = std::chrono::seconds(0);
    DecoderPool unready(options);
    EXPECT_EQ(failureOf([&] { readPdf(unready, pdf_); }),
              "The decoder could not be started: it does not get ready.");
    DecoderPool ended(behaving("end-at-start"));
    EXPECT_EQ(failureOf([&] { readPdf(ended, pdf_); }),
              "The decoder could not be started: it does not get ready.");
}

TEST_F(FakeDecoder, StopsAtOnce) {
    DecoderPool pool(behaving("hang"));
    ASSERT_EQ(::mkfifo(tree_.path("hang.arrived").c_str(), 0600), 0);
    std::stop_source source;
    std::atomic<int> cancelled = 0;
    const auto read = [&] {
        try {
            readPdf(pool, pdf_, source.get_token());
        } catch (const Cancelled&) {
            ++cancelled;
        }
    };
    {
        const std::jthread working(read);
        const std::jthread waitingForItsTurn(read);
        opened(tree_.path("hang.arrived")); // until a request has reached the decoder
        source.request_stop();
    }
    EXPECT_EQ(cancelled, 2);
    EXPECT_EQ(starts("hang"), 1u);
    EXPECT_TRUE(children().empty());
}

} // namespace
} // namespace tovi::decoder
