#include "decoder/protocol/Channel.h"
#include "decoder/protocol/Message.h"

#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>

namespace tovi::decoder {
namespace {

const std::vector<Request> requests = {
    {Task::pdfText, 100, 200'000, 0},
    {Task::pictureText, 0, 200'000, 2400},
    {Task::picturePixels, 0, 0, maximumPixelsSide},
    {Task::pdfPixels, 0, 0, 1},
};
const std::vector<Reply> replies = {
    Ready{7},
    Progress{99},
    PdfDone{true, false, 150, 100, maximumTextBytes},
    TextDone{12'345},
    PixelsDone{maximumPixelsSide, 1, 10'000, 10'000},
    Failed{true, maximumSentenceBytes},
};

TEST(Message, ReadsWhatItWrites) {
    for (const Request& request : requests)
        EXPECT_EQ(parseRequest(encode(request)), request);
    for (const Reply& reply : replies)
        EXPECT_EQ(parseReply(encode(reply)), reply);
}

TEST(Message, RefusesEveryOtherSizeAndHeader) {
    for (const Packet& packet : {encode(requests[0]), encode(replies[2])}) {
        for (std::size_t size = 0; size < packetSize; ++size) {
            EXPECT_FALSE(parseRequest(std::span(packet).first(size)));
            EXPECT_FALSE(parseReply(std::span(packet).first(size)));
        }
        for (std::size_t at = 0; at < 8; ++at) {
            Packet changed = packet;
            changed[at] ^= std::byte{0x80};
            EXPECT_FALSE(parseRequest(changed)) << at;
            EXPECT_FALSE(parseReply(changed)) << at;
        }
    }
}

TEST(Message, RefusesNumbersOutOfBounds) {
    for (const Request& request : std::vector<Request>{
             {Task::pdfText, maximumPagesPerRequest + 1, 1, 0},
             {Task::pdfText, 1, maximumCharactersPerRequest + 1, 0},
             {Task::pdfText, 1, 1, 1},
             {Task::pictureText, 0, 1, 0},
             {Task::pictureText, 0, 1, maximumRecognisedSide + 1},
             {Task::pictureText, 1, 1, 1},
             {Task::picturePixels, 0, 0, maximumPixelsSide + 1},
             {Task::picturePixels, 0, 1, 1},
         })
        EXPECT_FALSE(parseRequest(encode(request)));
    for (const Reply& reply : std::vector<Reply>{
             PdfDone{false, false, 1, 2, 0},
             PdfDone{false, false, 0x80000000, 1, 0},
             PdfDone{false, false, 1, 1, maximumTextBytes + 1},
             TextDone{maximumTextBytes + 1},
             PixelsDone{0, 1, 1, 1},
             PixelsDone{1, maximumPixelsSide + 1, 1, 10'000},
             PixelsDone{2, 2, 2, 1},
             PixelsDone{1, 1, 10'000, 10'001},
             Failed{false, maximumSentenceBytes + 1},
         })
        EXPECT_FALSE(parseReply(encode(reply))) << reply.index();
}

TEST(Message, KnowsWhichRepliesAnswerARequest) {
    const Request pdf{Task::pdfText, 100, 1, 0};
    const Request pixels{Task::picturePixels, 0, 0, 768};
    EXPECT_TRUE(answers(Progress{100}, pdf, 99));
    EXPECT_FALSE(answers(Progress{99}, pdf, 99));
    EXPECT_FALSE(answers(Progress{101}, pdf, 99));
    EXPECT_TRUE(answers(PdfDone{false, false, 150, 100, 0}, pdf, 100));
    EXPECT_FALSE(answers(PdfDone{false, false, 150, 101, 0}, pdf, 100));
    EXPECT_FALSE(answers(PdfDone{false, false, 150, 99, 0}, pdf, 100));
    EXPECT_TRUE(answers(PixelsDone{768, 1, 768, 1}, pixels, 0));
    EXPECT_FALSE(answers(PixelsDone{1, 769, 1, 769}, pixels, 0));
    EXPECT_FALSE(answers(Progress{1}, pixels, 0));
    EXPECT_FALSE(answers(Ready{}, pdf, 0));
    EXPECT_FALSE(answers(TextDone{1}, pdf, 0));
    EXPECT_FALSE(answers(TextDone{1}, pixels, 0));
    EXPECT_TRUE(answers(Failed{}, pixels, 0));
}

class ChannelTest : public testing::Test {
  protected:
    ChannelTest() {
        int ends[2];
        if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) std::abort();
        here_ = FileDescriptor(ends[0]);
        there_ = FileDescriptor(ends[1]);
    }
    FileDescriptor here_;
    FileDescriptor there_;
};

TEST_F(ChannelTest, CarriesAPacketAndADescriptor) {
    const FileDescriptor file(::open("/dev/null", O_RDONLY | O_CLOEXEC));
    ASSERT_TRUE(sendPacket(here_.get(), encode(requests[0]), file.get()));
    ASSERT_TRUE(sendPacket(here_.get(), encode(requests[1])));
    const auto first = receivePacket(there_.get());
    const auto second = receivePacket(there_.get());
    ASSERT_TRUE(first && second);
    EXPECT_EQ(parseRequest(first->packet), requests[0]);
    EXPECT_TRUE(first->file.isOpen());
    EXPECT_EQ(::fcntl(first->file.get(), F_GETFD), FD_CLOEXEC);
    EXPECT_FALSE(second->file.isOpen());
}

TEST_F(ChannelTest, RefusesOtherSizesAndNoticesTheEnd) {
    for (const std::size_t size : {packetSize - 1, packetSize + 1, std::size_t{100'000}}) {
        const std::vector<std::byte> bytes(size);
        ASSERT_EQ(::send(here_.get(), bytes.data(), size, 0), static_cast<ssize_t>(size));
        EXPECT_FALSE(receivePacket(there_.get())) << size;
    }
    here_.reset();
    EXPECT_FALSE(receivePacket(there_.get()));
    EXPECT_FALSE(sendPacket(there_.get(), encode(requests[0])));
}

} // namespace
} // namespace tovi::decoder
