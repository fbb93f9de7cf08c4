#pragma once
// What the benchmarks share. A time alone says as much about the machine as about the program, so every
// result is a ratio: ours and a named neighbour's time, taken in turn in the same run.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <iostream>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace vantorel::bench {

/// Seconds that `run()` takes.
template <typename Run>
[[nodiscard]] double seconds(Run run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

[[nodiscard]] inline double median(std::vector<double> values) {
    if (values.empty()) return 0;
    std::ranges::sort(values);
    return values[values.size() / 2];
}

/// Times of ours and of the neighbour, in seconds, one of each for every iteration of a benchmark.
class Pair {
public:
    /// Runs both, now the one first and now the other, so that neither always finds the caches warmed. The
    /// time of the iteration is ours.
    template <typename Ours, typename Neighbour>
    void run(benchmark::State& state, Ours mine, Neighbour other) {
        const bool isoursfirst = own.size() % 2 == 0;
        if (isoursfirst) own.push_back(seconds(mine));
        theirs.push_back(seconds(other));
        if (!isoursfirst) own.push_back(seconds(mine));
        state.SetIterationTime(own.back());
    }

    /// Adds the medians (in units of `unit` seconds) and their ratio, ours / neighbour, to the benchmark's
    /// line.
    void report(benchmark::State& state, double unit) const {
        state.counters["ours"] = ours() / unit;
        state.counters["neighbour"] = neighbour() / unit;
        state.counters["ratio"] = ours() / neighbour();
    }

    [[nodiscard]] double ours() const { return median(own); }
    [[nodiscard]] double neighbour() const { return median(theirs); }

private:
    std::vector<double> own;
    std::vector<double> theirs;
};

/// How often a benchmark runs: `wanted` times, or no more often than VANTOREL_ROUNDS says in the environment,
/// for a trial.
[[nodiscard]] inline int64_t rounds(int64_t wanted) {
    const char* most = std::getenv("VANTOREL_ROUNDS");
    return most == nullptr ? wanted : std::clamp<int64_t>(std::atoll(most), 1, wanted);
}

inline constexpr double kMilli = 1e-3;
inline constexpr double kMicro = 1e-6;

/// Runs a program to its end, its input taken from the file `input` and its output thrown away. Ends the
/// benchmark when the program cannot be run or fails: a ratio to nothing would look splendid.
inline void runprogram(const std::vector<std::string>& words, const char* input = "/dev/null") {
    std::vector<char*> arguments;
    arguments.reserve(words.size() + 1);
    for (const auto& word : words)
        arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, input, O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int status = posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (status != 0 || waitpid(child, &status, 0) != child || status != 0) {
        fprintf(stderr, "%s did not run\n", arguments[0]);
        std::exit(1);
    }
}

/// `main` of a program whose subject prints at every level: what it prints goes nowhere, and the figures go
/// to standard error instead.
inline int runsilenced(int argc, char** argv) {
    if (std::freopen("/dev/null", "w", stdout) == nullptr) return 1;
    benchmark::Initialize(&argc, argv);
    benchmark::ConsoleReporter reporter(benchmark::ConsoleReporter::OO_None);
    reporter.SetOutputStream(&std::cerr);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}

} // namespace vantorel::bench
