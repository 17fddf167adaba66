#include "tools/vxfile/shell/catalog/InOrder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace vxfile;

TEST(InOrder, DeliversResultsInOrderForAnyDurations) {
    for (const std::size_t threads : {1U, 2U, 9U}) {
        std::vector<std::size_t> taken;
        const auto work = [](std::size_t i) {
            if (i % 97 == 0) std::this_thread::sleep_for(std::chrono::milliseconds(2));
            return 3 * i;
        };
        ForEachInOrder(1000, threads, work, [&](std::size_t i, std::size_t result) {
            EXPECT_EQ(result, 3 * i);
            taken.push_back(i);
        });
        ASSERT_EQ(taken.size(), 1000U);
        for (std::size_t i = 0; i < taken.size(); ++i)
            EXPECT_EQ(taken[i], i);
    }
    ForEachInOrder(
        0, 4, [](std::size_t i) { return i; }, [](std::size_t, std::size_t) { FAIL(); });
}

TEST(InOrder, EndsAllThreadsWhenOneStepThrows) {
    const auto throwsAt = [](std::size_t limit) {
        return [limit](std::size_t i) {
            if (i == limit) throw std::runtime_error("no");
            return i;
        };
    };
    const auto never = std::size_t{1} << 20;
    EXPECT_THROW(ForEachInOrder(500, 3, throwsAt(300), [](std::size_t, std::size_t) {}), std::runtime_error);
    EXPECT_THROW(ForEachInOrder(500, 3, throwsAt(never), [&](std::size_t i, std::size_t) { throwsAt(10)(i); }),
                 std::runtime_error);
}
