#include "base/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
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
    std::once_flag failed;
    std::exception_ptr failure;
    const auto run = [&] {
        try {
            for (std::size_t i = next++; i < count; i = next++) work(i);
        } catch (...) {
            std::call_once(failed, [&] { failure = std::current_exception(); });
            next = count;
        }
    };
    {
        std::vector<std::jthread> others;
        for (unsigned i = 1; i < threads; ++i) others.emplace_back(run);
        run();
    }
    if (failure) std::rethrow_exception(failure);
}

} // namespace pelorin
