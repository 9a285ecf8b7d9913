// Walks a folder and reads the attributes of every item: the least a scan has to do.

#include "platform/DirectoryWalker.h"

#include <iostream>

namespace {

using namespace tovi::platform;

class Counter final : public WalkVisitor {
  public:
    Step visit(WalkItem& item) override {
        const FileAttributes& attributes = item.attributes();
        ++items_;
        bytes_ += attributes.size;
        return attributes.type == FileType::directory ? Step::descend : Step::skip;
    }
    void enter(const WalkDirectory&) override {}
    void leave() override {}
    void failed(const std::string& path, const std::system_error& error) override {
        std::cerr << path << ": " << error.code().message() << "\n";
    }

    void print() const { std::cout << items_ << " items, " << bytes_ << " bytes\n"; }

  private:
    std::int64_t items_ = 0;
    std::int64_t bytes_ = 0;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: walk FOLDER\n";
        return 2;
    }
    Counter counter;
    walkDirectory(argv[1], counter, {});
    counter.print();
}
