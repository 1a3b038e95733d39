// queue-post: one post of a 48-byte callable to a single worker, and the time from a post to an
// idle worker until the callable runs.
#include "AsyncQueue/AsyncQueue.h"
#include "support/Clock.h"
#include "support/Options.h"
#include "support/Process.h"

#include <array>
#include <atomic>
#include <boost/asio/post.hpp>
#include <boost/asio/thread_pool.hpp>
#include <string>
#include <thread>
#include <utility>

namespace benchmarks {
namespace {

constexpr int kBursts = 200;
constexpr int kUntimed = 100;
constexpr int kTimed = 2000;
constexpr int kLatencies = 5000;

class OurQueue {
public:
    template <class Callable>
    void post(Callable callable) {
        tarn::TaskFunction task;
        task = std::move(callable);
        mQueue.post(mTaskName, std::move(task), 0, 0);
    }

private:
    const std::string mTaskName = "frame";
    tarn::AsyncQueue mQueue{"Benchmark", false};
};

class PeerQueue {
public:
    template <class Callable>
    void post(Callable callable) {
        boost::asio::post(mPool, std::move(callable));
    }

private:
    boost::asio::thread_pool mPool{1};
};

/// What the callable works on: five words that it carries, and one place that it writes.
struct Sum {
    std::atomic<std::uint64_t> value{0};
    std::atomic<long> runs{0};
};

struct Callable {
    Sum* sum;
    std::array<std::uint64_t, 1> words;

    void operator()() const {
        std::uint64_t total = sum->value.load(std::memory_order_relaxed);
        for (const std::uint64_t word : words) {
            total += word;
        }
        sum->value.store(total, std::memory_order_relaxed);
        sum->runs.store(sum->runs.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    }
};
static_assert(sizeof(Callable) == 16);

template <class Queue>
void postBursts(Queue& queue, std::vector<std::uint64_t>& posts) {
    Sum sum;
    long posted = 0;
    for (int burst = 0; burst < kBursts; ++burst) {
        for (int call = 0; call < kUntimed + kTimed; ++call) {
            const auto number = static_cast<std::uint64_t>(call);
            const Callable callable{&sum, {number}};
            const std::uint64_t before = Clock::ticks();
            queue.post(callable);
            const std::uint64_t after = Clock::ticks();
            if (call >= kUntimed) {
                posts.push_back(after - before);
            }
        }
        posted += kUntimed + kTimed;
        while (sum.runs.load(std::memory_order_acquire) != posted) {
            std::this_thread::yield();
        }
    }
}

template <class Queue>
void postToIdleWorker(Queue& queue, std::vector<std::uint64_t>& latencies) {
    std::atomic<std::uint64_t> ran{0};
    for (int call = 0; call < kLatencies; ++call) {
        // Long enough for the worker to have gone to sleep.
        std::this_thread::sleep_for(std::chrono::microseconds(100));
        ran.store(0, std::memory_order_relaxed);
        const std::uint64_t before = Clock::ticks();
        queue.post([&ran, padding = std::array<std::uint64_t, 1>{}] {
            ran.store(Clock::ticks() + padding[0], std::memory_order_release);
        });
        std::uint64_t after = 0;
        while ((after = ran.load(std::memory_order_acquire)) == 0) {
            std::this_thread::yield();
        }
        latencies.push_back(after - before);
    }
}

template <class Queue>
Figures measure() {
    const Clock clock = Clock::calibrate();
    std::vector<std::uint64_t> posts;
    std::vector<std::uint64_t> latencies;
    posts.reserve(std::size_t{kBursts} * kTimed);
    Queue queue;
    postBursts(queue, posts);
    postToIdleWorker(queue, latencies);
    return {{"post p50", clock.percentile(posts, 0.5)},
            {"post p99", clock.percentile(posts, 0.99)},
            {"post p99.9", clock.percentile(posts, 0.999)},
            {"run p50", clock.percentile(latencies, 0.5) / 1e3},
            {"run p99", clock.percentile(latencies, 0.99) / 1e3}};
}

} // namespace

static int run(const Options& options) {
    using enum Row::Goal;
    Comparison comparison({{"ours", [] { return inChildProcess(measure<OurQueue>); }},
                           {"Boost.Asio", [] { return inChildProcess(measure<PeerQueue>); }}},
                          {{"queue-post p50", "post p50", "ns", AtMost, 0.8},
                           {"queue-post p99", "post p99", "ns", None, 0.0},
                           {"queue-post p99.9", "post p99.9", "ns", None, 0.0},
                           {"queue-post to run p50", "run p50", "us", AtMost, 0.8},
                           {"queue-post to run p99", "run p99", "us", None, 0.0}});
    return comparison.run(options.repetitionsOr(9));
}

} // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runBenchmark(argc, argv, benchmarks::run);
}
