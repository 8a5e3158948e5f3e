#include "platform/processes/Parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace tavrin {

void inParallel(std::size_t count, std::size_t mostThreads, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next{0};
    std::mutex mutex;
    std::exception_ptr failure;
    const auto share = [&] {
        try {
            for (std::size_t number = next++; number < count; number = next++)
                work(number);
        } catch (...) {
            next = count;
            const std::lock_guard lock(mutex);
            if (!failure)
                failure = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> helpers;
        try {
            while (helpers.size() + 1 < std::min(count, mostThreads))
                helpers.emplace_back(share);
        } catch (const std::system_error&) {
        }
        share();
    }
    if (failure)
        std::rethrow_exception(failure);
}

} // namespace tavrin
