#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "generated_module.h"
#include "lex/lex.h"
#include "parser/parser.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "util/guard.h"

namespace orvo {
namespace {

constexpr size_t megabyte = 1'000'000;

/// A generated module in a file, as pass 1 finds it.
class Source {
  public:
    explicit Source(size_t size) : text_(generatedModule(size)), file_(std::tmpfile()) {
        std::fwrite(text_.data(), 1, text_.size(), file_.get());
    }
    [[nodiscard]] std::FILE* rewound() const {
        std::rewind(file_.get());
        return file_.get();
    }
    [[nodiscard]] int64_t size() const { return static_cast<int64_t>(text_.size()); }

  private:
    std::string text_;
    File file_;
};

/// One run of a function over a fresh module per iteration; the clean-up is not measured.
template <typename Fn> void overModule(benchmark::State& state, Fn&& fn) {
    const Source source(static_cast<size_t>(state.range(0)) * megabyte);
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

void lexModule(benchmark::State& state) {
    overModule(state, [](ModuleRec&) {
        TokenList list;
        while (NextToken(list) != TOK_EOF) {
            if (list.first == list.last) continue;
            freeToken(list.first); // as the parser would
            list.first = list.last;
        }
        endInput();
    });
}
BENCHMARK(lexModule)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

void parseModule(benchmark::State& state) {
    overModule(state, [&state](ModuleRec& module) {
        char name[] = "orvo";
        char* arguments[] = {name, nullptr};
        parse(1, arguments);
        if (module.nbStxErrors != 0) state.SkipWithError("the module has syntax errors");
    });
}
BENCHMARK(parseModule)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace orvo
