#include "base/parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>

namespace pelorin {
namespace {

TEST(Parallel, AllItemsOnceAndTheFirstFailureComesBack) {
    for (const unsigned jobs : {1u, 4u}) {
        std::atomic<int> sum = 0, calls = 0;
        ParallelFor(100, jobs, [&](std::size_t i) { sum += static_cast<int>(i); });
        EXPECT_EQ(sum, 4950);
        const auto fail = [&](std::size_t i) {
            ++calls;
            if (i >= 2) throw std::runtime_error("no");
        };
        EXPECT_THROW(ParallelFor(1000, jobs, fail), std::runtime_error);
        EXPECT_LE(calls, 2 + static_cast<int>(jobs));
    }
}

} // namespace
} // namespace pelorin
