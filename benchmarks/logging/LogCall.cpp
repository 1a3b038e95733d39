// log-call-1, log-call-4: the caller's time for one Info line of 80 characters with two numbers,
// single calls, while the worker is awake.
#include "logging/OurLogging.h"
#include "logging/PeerLogging.h"
#include "support/Clock.h"
#include "support/Options.h"
#include "support/Process.h"
#include "support/Statistics.h"

#include <barrier>
#include <thread>

namespace benchmarks {
namespace {

/// A burst starts with calls that are not timed: they wake the worker and give it a backlog, so
/// that it stays awake during the timed ones. A burst of all threads together fits the peer's
/// queue, which would otherwise make the caller wait for the file.
struct Plan {
    int threads;
    int untimed;
    int timed;
    int bursts;
};

constexpr Plan kOneThread{1, 300, 3000, 100};
constexpr Plan kFourThreads{4, 150, 1500, 60};

/// Both numbers keep their number of digits, so every line is 80 characters long.
long frameNumber(int burst, int call) {
    return 1'000'000'000L + burst * 10'000L + call;
}

template <class Logging, class Barrier>
void callBurst(Logging& logging, const Plan& plan, int burst, Barrier& workerAwake,
               std::vector<std::uint64_t>& ticks) {
    for (int call = 0; call < plan.untimed; ++call) {
        logging.log(frameNumber(burst, call), 1000 + call % 9000);
    }
    workerAwake.arrive_and_wait();
    for (int call = 0; call < plan.timed; ++call) {
        const long frame = frameNumber(burst, call);
        const std::uint64_t before = Clock::ticks();
        logging.log(frame, 1000 + call % 9000);
        ticks.push_back(Clock::ticks() - before);
    }
}

template <class Logging>
Figures measure(const Plan& plan, const std::string& folder) {
    const Clock clock = Clock::calibrate();
    Logging logging(folder, {});
    std::vector<double> backlogs;
    std::vector<std::vector<std::uint64_t>> ticks(static_cast<std::size_t>(plan.threads));
    std::barrier drained(plan.threads, [&]() noexcept {
        backlogs.push_back(static_cast<double>(logging.backlog()));
        logging.drain();
    });
    std::barrier workerAwake(plan.threads, [&]() noexcept {
        // The untimed lines are queued, and the worker has begun to take them.
        while (logging.backlog() >= static_cast<std::size_t>(plan.threads * plan.untimed)) {
            std::this_thread::yield();
        }
    });
    std::vector<std::jthread> threads;
    for (auto& own : ticks) {
        own.reserve(static_cast<std::size_t>(plan.timed * plan.bursts));
        threads.emplace_back([&] {
            for (int burst = 0; burst < plan.bursts; ++burst) {
                callBurst(logging, plan, burst, workerAwake, own);
                drained.arrive_and_wait();
            }
        });
    }
    threads.clear();
    std::vector<std::uint64_t> calls;
    for (const auto& own : ticks) {
        calls.insert(calls.end(), own.begin(), own.end());
    }
    return {{"p50", clock.percentile(calls, 0.5)},
            {"p99", clock.percentile(calls, 0.99)},
            {"p99.9", clock.percentile(calls, 0.999)},
            {"note lines waiting at the end of a burst", median(backlogs)},
            {"note clock overhead taken off each call, ns", clock.overheadNanoseconds()}};
}

} // namespace

static int run(const Options& options) {
    const bool four = options.name == "log-call-4";
    const std::string name = four ? "log-call-4" : "log-call-1";
    const Plan plan = four ? kFourThreads : kOneThread;
    const std::string folder = options.emptyFolder(name).string();
    using enum Row::Goal;
    Comparison comparison(
        {{"ours",
          [&] { return inChildProcess([&] { return measure<OurLogging>(plan, folder); }); }},
         {"spdlog",
          [&] { return inChildProcess([&] { return measure<PeerLogging>(plan, folder); }); }}},
        {{name + " p50", "p50", "ns", four ? None : AtMost, 0.8},
         {name + " p99", "p99", "ns", AtMost, 1.0},
         {name + " p99.9", "p99.9", "ns", None, 0.0}});
    return comparison.run(options.repetitionsOr(9));
}

} // namespace benchmarks

int main(int argc, char** argv) {
    return benchmarks::runBenchmark(argc, argv, benchmarks::run);
}
