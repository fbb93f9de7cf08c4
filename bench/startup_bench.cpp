// The shortest session: the program is started where its hash library lies, and told to exit. Its neighbour
// does nothing at all.

#include "neighbour.h"
#include "support/tempdir.h"

namespace vantorel::bench {
namespace {

void exit_against_true(benchmark::State& state) {
    const test::TempDir directory;
    const std::string script = directory.file("script", "exit\n");
    const test::InDirectory root(VANTOREL_ROOT);
    Pair pair;
    for (auto _ : state)
        pair.run(
            state, [&] { runprogram({VANTOREL_PROGRAM}, script.c_str()); },
            [] { runprogram({"/bin/true"}); });
    pair.report(state, kMilli);
    state.counters["difference"] = (pair.ours() - pair.neighbour()) / kMilli;
}

BENCHMARK(exit_against_true)->UseManualTime()->Iterations(rounds(501))->Unit(benchmark::kMillisecond);

} // namespace
} // namespace vantorel::bench

BENCHMARK_MAIN();
