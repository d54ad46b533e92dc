#include "platform/system/answer_body.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

namespace corvane {
namespace {

constexpr std::size_t mebibyte = std::size_t{1} << 20;

Bytes numberedBytes(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t index = 0; index < size; ++index)
        bytes[index] = static_cast<std::uint8_t>(index * 31 + (index >> 8U));
    return bytes;
}

TEST(AnswerBody, HandsOutWhatWasAppendedWhereverItsBlocksEnd) {
    for (const std::size_t size :
         {std::size_t{0}, std::size_t{1}, mebibyte - 1, mebibyte, mebibyte + 1, 3 * mebibyte + 5}) {
        VolumeBudget budget(4 * mebibyte);
        AnswerBody body(budget);
        body.start(4 * mebibyte);
        const Bytes sent = numberedBytes(size);
        constexpr std::size_t step = 16'000;
        for (std::size_t start = 0; start < size; start += step)
            ASSERT_TRUE(body.append(ByteView(sent).subspan(start, std::min(step, size - start))));
        EXPECT_EQ(budget.left(), 4 * mebibyte - size) << size;
        EXPECT_TRUE(body.take() == sent) << size;
        EXPECT_EQ(budget.left(), 4 * mebibyte) << size;
    }
}

TEST(AnswerBody, TakesExactlyTheLongestSize) {
    VolumeBudget budget(1000);
    AnswerBody body(budget);
    body.start(10);
    EXPECT_TRUE(body.append(numberedBytes(10)));
    EXPECT_FALSE(body.append(numberedBytes(1)));
    EXPECT_EQ(budget.left(), 990U);
}

TEST(AnswerBody, SharesTheBudgetWithOthersAndGivesItBack) {
    VolumeBudget budget(100);
    AnswerBody one(budget);
    one.start(100);
    EXPECT_TRUE(one.append(numberedBytes(60)));
    {
        AnswerBody other(budget);
        other.start(100);
        EXPECT_FALSE(other.append(numberedBytes(41)));
        EXPECT_TRUE(other.append(numberedBytes(40)));
    }
    EXPECT_EQ(budget.left(), 40U);
    one.start(100);
    EXPECT_EQ(budget.left(), 100U);
    EXPECT_TRUE(one.append(numberedBytes(100)));
    EXPECT_EQ(one.take().size(), 100U);
    EXPECT_TRUE(one.take().empty());
}

}  // namespace
}  // namespace corvane
