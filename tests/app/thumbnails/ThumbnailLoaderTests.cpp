#include "app/thumbnails/ThumbnailLoader.h"

#include <algorithm>
#include <future>
#include <map>
#include <stdexcept>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {
namespace {

using testing::ElementsAre;

/// Makes thumbnails of files that are named by what comes of them.
class Maker {
  public:
    Thumbnail make(const FileThumbnailKey& key, const std::stop_token& stop) {
        std::unique_lock lock(mutex_);
        started_.push_back(key.path);
        mostAtOnce_ = std::max(mostAtOnce_, ++running_);
        changed_.notify_all();
        changed_.wait(lock, stop, [&] { return !isClosed_[key.path]; });
        --running_;
        if (key.path == "broken") throw std::runtime_error("broken");
        if (key.path == "none") return nullptr;
        const auto bytes = key.path == "large" ? std::size_t{40'000'000} : 3;
        return std::make_shared<DecodedPicture>(
            DecodedPicture{1, 1, std::string(bytes, 'x'), 1, 1});
    }
    void close(const std::string& path, bool isClosed = true) {
        const std::lock_guard lock(mutex_);
        isClosed_[path] = isClosed;
        changed_.notify_all();
    }
    void waitForStarts(std::size_t count) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return started_.size() >= count; });
    }
    std::vector<std::string> started() {
        const std::lock_guard lock(mutex_);
        return started_;
    }
    int mostAtOnce() const { return mostAtOnce_; }

  private:
    std::mutex mutex_;
    std::condition_variable_any changed_;
    std::map<std::string, bool> isClosed_;
    std::vector<std::string> started_;
    int running_ = 0;
    int mostAtOnce_ = 0;
};

class Thumbnails : public testing::Test {
  protected:
    Thumbnail image(const std::string& path, int pixels = 1, std::stop_token stop = {}) {
        return loader_.image({path, {}, 0, pixels}, stop);
    }
    std::future<Thumbnail> ask(const std::string& path, std::stop_token stop = {}) {
        return std::async(std::launch::async, [=, this] { return image(path, 1, stop); });
    }

    double now_ = 0;
    Maker maker_;
    ThumbnailLoader loader_{
        [this](const auto& key, const auto& stop) { return maker_.make(key, stop); },
        [this] { return Date{now_}; }};
};

TEST_F(Thumbnails, AreMadeOnceForAllWhoAsk) {
    maker_.close("a");
    std::vector<std::future<Thumbnail>> asked;
    for (int i = 0; i < 10; ++i)
        asked.push_back(ask("a"));
    maker_.waitForStarts(1);
    maker_.close("a", false);
    const Thumbnail first = asked[0].get();
    ASSERT_NE(first, nullptr);
    for (std::size_t i = 1; i < 10; ++i)
        EXPECT_EQ(asked[i].get(), first);
    EXPECT_EQ(image("a"), first);
    EXPECT_THAT(maker_.started(), ElementsAre("a"));
    EXPECT_NE(image("a", 2), first);
}

TEST_F(Thumbnails, AreMadeTwoAtATimeInTheOrderOfAsking) {
    maker_.close("a");
    maker_.close("b");
    auto a = ask("a");
    maker_.waitForStarts(1);
    auto b = ask("b");
    maker_.waitForStarts(2);
    std::stop_source gone;
    auto dropped = ask("dropped", gone.get_token());
    auto c = ask("c");
    gone.request_stop();
    EXPECT_EQ(dropped.get(), nullptr);
    EXPECT_THAT(maker_.started(), ElementsAre("a", "b"));
    maker_.close("a", false);
    EXPECT_NE(c.get(), nullptr);
    maker_.close("b", false);
    EXPECT_NE(b.get(), nullptr);
    EXPECT_THAT(maker_.started(), ElementsAre("a", "b", "c"));
    EXPECT_EQ(maker_.mostAtOnce(), 2);
}

TEST_F(Thumbnails, AreStoppedWhenNobodyWaits) {
    maker_.close("a");
    std::stop_source one;
    std::stop_source other;
    auto first = ask("a", one.get_token());
    maker_.waitForStarts(1);
    auto second = ask("a", other.get_token());
    one.request_stop();
    EXPECT_EQ(first.get(), nullptr);
    other.request_stop();
    EXPECT_EQ(second.get(), nullptr);
    EXPECT_EQ(image("a", 1, other.get_token()), nullptr);
    maker_.close("a", false);
    EXPECT_NE(image("a"), nullptr) << "what was given up is no failure";
}

TEST_F(Thumbnails, AreNotTriedAgainForThirtySeconds) {
    for (const char* name : {"broken", "none"}) {
        EXPECT_EQ(image(name), nullptr);
        now_ += 29.9;
        EXPECT_EQ(image(name), nullptr);
        now_ += 0.1;
        EXPECT_EQ(image(name), nullptr);
        now_ -= 60; // the clock was set back
        EXPECT_EQ(image(name), nullptr);
    }
    EXPECT_THAT(maker_.started(),
                ElementsAre("broken", "broken", "broken", "none", "none", "none"));
}

TEST_F(Thumbnails, AreForgottenBeyondTheLimits) {
    for (int pixels = 1; pixels <= 401; ++pixels)
        image("small", pixels);
    image("small", 2);
    EXPECT_EQ(maker_.started().size(), 401U);
    image("small", 1);
    EXPECT_EQ(maker_.started().size(), 402U);
    image("large", 1);
    image("large", 2); // 80 MB together
    image("large", 1);
    EXPECT_EQ(maker_.started().size(), 405U);
}

TEST(FileThumbnailKey, ChangesWithTheFile) {
    const FileThumbnailKey key{"/a|b", Date{978'307'200.5}, 7, 64};
    EXPECT_EQ(key.cacheKey(), "/a|b|4602678819172646912|7|64") << "the bits of 0.5";
}

} // namespace
} // namespace tovi
