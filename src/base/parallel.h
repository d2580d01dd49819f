// The same work on many items over several cores.
#pragma once

#include <cstddef>
#include <functional>

namespace pelorin {

/// Cores of this machine, at least 1.
[[nodiscard]] unsigned CoreCount();

/// Calls `work(i)` for every i below `count`, on at most `jobs` threads (0: one a core), in no particular order; with
/// one job in order, on the calling thread. Returns when all calls have returned. What `work` throws first ends the
/// work, as soon as the calls under way have returned, and is thrown again from here.
void ParallelFor(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work);

} // namespace pelorin
