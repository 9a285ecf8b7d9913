#pragma once

#include "app/model/AppModel.h"
#include "tests/support/FileMoveFakes.h"
#include "tests/support/ManualExecutor.h"
#include "tests/support/TemporaryTree.h"

#include <filesystem>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace tovi {

class FakePicker final : public FolderPicker {
  public:
    void pick(const Request& request, Answer answer) override {
        requests.push_back(request);
        pending = std::move(answer);
    }
    std::vector<Request> requests;
    Answer pending;
};

class FakeClipboard final : public Clipboard {
  public:
    bool setText(const std::string& newText) override {
        if (works) text = newText;
        return works;
    }
    std::string text;
    bool works = true;
};

class FakeOpener final : public FileOpener {
  public:
    bool open(const std::string& path) override { return opened.insert(path).second; }
    bool reveal(const std::string& path) override { return revealed.insert(path).second; }
    std::set<std::string> opened;
    std::set<std::string> revealed;
};

class NoReaders final : public PdfReader, public PictureTextReader {
  public:
    PdfText readPdf(const FileDescriptor&, int, std::size_t, const ReadOptions&,
                    const std::stop_token&) override {
        return {};
    }
    std::string readPictureText(const FileDescriptor&, int, std::size_t, const ReadOptions&,
                                const std::stop_token&) override {
        return {};
    }
};

/// The real model on a tree and a data directory of its own, stepped by hand.
class ModelFixture : public testing::Test {
  protected:
    class Changes final : public FolderChanges {
      public:
        explicit Changes(ModelFixture& fixture) : fixture_(fixture) {}
        void start(const std::vector<std::string>& paths) override { fixture_.watched = paths; }
        void stop() override { fixture_.watched.clear(); }

      private:
        ModelFixture& fixture_;
    };

    std::unique_ptr<AppModel> makeModel() {
        return std::make_unique<AppModel>(
            AppSystem{executor,
                      indexer,
                      {trash, move, bookmarks, availability, [this] { return executor.now(); }},
                      picker,
                      clipboard,
                      opener,
                      [this](FolderListener::Handlers handlers) {
                          filesChange = std::move(handlers.changed);
                          freshness = std::move(handlers.freshness);
                          return std::make_unique<Changes>(*this);
                      }},
            settings);
    }
    /// A model that has started, on the preferences that are there.
    std::unique_ptr<AppModel> start() {
        auto started = makeModel();
        started->prepare();
        executor.settle();
        return started;
    }
    void connectTree() {
        model->folders()->grantFolders({QString::fromStdString(tree.path())});
        executor.settle();
    }
    std::string status() const { return model->notices()->statusMessage().toStdString(); }
    std::string error() const { return model->notices()->errorMessage().toStdString(); }
    std::string preferences() const { return test::readFile(data.path("preferences.json")); }
    static std::vector<std::string> names(const std::vector<FileRecord>& files) {
        std::vector<std::string> result;
        for (const FileRecord& file : files)
            result.push_back(file.name);
        return result;
    }
    QString at(const std::string& relative) const {
        return QString::fromStdString(tree.path(relative));
    }

    test::TemporaryTree tree;
    test::TemporaryTree data;
    test::ManualExecutor executor;
    test::FakeTrash trash{data.path("trash")};
    test::FakeExclusiveMove move;
    platform::SystemBookmarks bookmarks;
    platform::SystemAvailability availability;
    NoReaders readers;
    ContentExtractor extractor{readers, readers};
    std::function<void()> afterReading = [] {}; // on every file of a scan, while it runs
    FileIndexer indexer{availability, extractor, {.downloadsDirectory = {}, .clock = [this] {
                                                      afterReading();
                                                      return executor.now();
                                                  }}};
    FakePicker picker;
    FakeClipboard clipboard;
    FakeOpener opener;
    std::vector<std::string> watched;
    std::function<void()> filesChange;
    std::function<void(const std::vector<platform::FolderFreshness>&)> freshness;
    AppSettings settings{.dataDirectory = data.path(), .isDataDirectoryGiven = true};
    std::unique_ptr<AppModel> model;
};

} // namespace tovi
