#include "platform/system/answer_body.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

constexpr std::size_t blockSize = std::size_t{1} << 20;

}  // namespace

void AnswerBody::start(std::size_t maximumSize) {
    blocks_ = {};
    budget_.giveBack(std::exchange(size_, 0));
    maximumSize_ = maximumSize;
}

bool AnswerBody::append(ByteView bytes) {
    if (bytes.size() > maximumSize_ - size_ || !budget_.take(bytes.size()))
        return false;
    size_ += bytes.size();
    appendToBlocks(bytes);
    return true;
}

void AnswerBody::appendToBlocks(ByteView bytes) {
    while (!bytes.empty()) {
        if (blocks_.empty() || blocks_.back().size() == blockSize)
            blocks_.emplace_back();
        Bytes& block = blocks_.back();
        // Most bodies are far smaller than a block; only those that have filled one get whole ones.
        if (blocks_.size() > 1)
            block.reserve(blockSize);
        const ByteView part = bytes.first(std::min(bytes.size(), blockSize - block.size()));
        block.insert(block.end(), part.begin(), part.end());
        bytes = bytes.subspan(part.size());
    }
}

Bytes AnswerBody::take() {
    Bytes whole;
    if (blocks_.size() == 1) {
        whole = std::move(blocks_.front());
    } else {
        whole.reserve(size_);
        for (Bytes& block : blocks_) {
            whole.insert(whole.end(), block.begin(), block.end());
            block = Bytes{};
        }
    }
    start(0);
    return whole;
}

}  // namespace corvane
