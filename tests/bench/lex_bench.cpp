#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "generated_module.h"
#include "lex/lex.h"
#include "parser/parser.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "util/guard.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr size_t megabyte = 1'000'000;

/// A module in a file, as pass 1 finds it.
class Source {
  public:
    explicit Source(const std::string& text)
        : size_(static_cast<int64_t>(text.size())), file_(std::tmpfile()) {
        std::fwrite(text.data(), 1, text.size(), file_.get());
    }
    [[nodiscard]] std::FILE* rewound() const {
        std::rewind(file_.get());
        return file_.get();
    }
    [[nodiscard]] int64_t size() const { return size_; }

  private:
    int64_t size_;
    File file_;
};

/// One run of a function over a fresh module per iteration; the clean-up is not measured.
template <typename Fn> void overModule(benchmark::State& state, const Source& source, Fn&& fn) {
    for (auto _ : state) {
        run.verbose = VERBOSE_NONE;
        auto module = std::make_unique<ModuleRec>();
        module->srcFile = source.rewound();
        changeCMP(module.get());
        fn(*module);
        state.PauseTiming();
        flushRecs(-1);
        cMP = nullptr;
        module.reset();
        resetStore();
        resetTokens();
        resetSymbols();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * source.size());
}

void lexSource(benchmark::State& state, const Source& source) {
    overModule(state, source, [](ModuleRec&) {
        TokenList list;
        while (NextToken(list) != TOK_EOF) {
            if (list.first == list.last) continue;
            freeToken(list.first); // as the parser would
            list.first = list.last;
        }
        endInput();
    });
}

void parseSource(benchmark::State& state, const Source& source) {
    overModule(state, source, [&state](ModuleRec& module) {
        char name[] = "orvo";
        char* arguments[] = {name, nullptr};
        parse(1, arguments);
        if (module.nbStxErrors != 0) state.SkipWithError("the module has syntax errors");
    });
}

Source generated(const benchmark::State& state) {
    return Source(generatedModule(static_cast<size_t>(state.range(0)) * megabyte));
}
void lexModule(benchmark::State& state) {
    lexSource(state, generated(state));
}
void parseModule(benchmark::State& state) {
    parseSource(state, generated(state));
}
BENCHMARK(lexModule)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(parseModule)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

/// Measures the files that ORVO_BENCH_SOURCES names, separated by colons.
int registerFiles() {
    const char* names = std::getenv("ORVO_BENCH_SOURCES");
    std::istringstream list(names == nullptr ? "" : names);
    for (std::string name; std::getline(list, name, ':');) {
        std::ostringstream text;
        text << std::ifstream(name, std::ios::binary).rdbuf();
        const auto source = std::make_shared<Source>(text.str());
        const std::string file = name.substr(name.rfind('/') + 1);
        benchmark::RegisterBenchmark(
            concat("lexFile/", file).c_str(),
            [source](benchmark::State& state) { lexSource(state, *source); })
            ->Unit(benchmark::kMillisecond);
        benchmark::RegisterBenchmark(
            concat("parseFile/", file).c_str(),
            [source](benchmark::State& state) { parseSource(state, *source); })
            ->Unit(benchmark::kMillisecond);
    }
    return 0;
}
[[maybe_unused]] const int filesRegistered = registerFiles();

} // namespace
} // namespace orvo
