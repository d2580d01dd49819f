#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace pelorin {

unsigned CoreCount() {
    return std::max(1u, std::thread::hardware_concurrency());
}

void ParallelFor(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work) {
    const auto wanted = jobs == 0 ? CoreCount() : jobs;
    const auto threads = static_cast<unsigned>(std::min<std::size_t>(wanted, count));
    std::atomic<std::size_t> next{0};
    const auto run = [&] {
        for (std::size_t i = next++; i < count; i = next++) work(i);
    };
    std::vector<std::thread> others;
    for (unsigned i = 1; i < threads; ++i) others.emplace_back(run);
    run();
    for (auto& thread : others) thread.join();
}

} // namespace pelorin
