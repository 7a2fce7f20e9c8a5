#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>

#include "lex/lex.h"
#include "parser/parser.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "util/guard.h"

namespace orvo {
namespace {

/// A module of so many megabytes in a file, as pass 1 finds it. Every name is new, so symbol table
/// and strings grow with the text.
struct Source {
    explicit Source(int64_t megabytes) : file(std::tmpfile()) {
        std::fputs("Generated DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n", file.get());
        for (int i = 0; (size = std::ftell(file.get())) < megabytes * 1'000'000; ++i)
            std::fprintf(file.get(), text, i, i, i, i, i, i, i);
        std::fputs("END\n", file.get());
    }
    static constexpr const char* text = R"(
-- message %d and what it is made of --
Message-%d ::= SEQUENCE {
    identifier-%d          INTEGER (0..maxMessage-%d),
    priority               ENUMERATED { low, normal, high, ... } DEFAULT normal,
    alternatives           CHOICE {
        text               IA5String (SIZE (0..255)) (FROM ("a".."z" | "0".."9")),
        earlier            Message-%d
    } OPTIONAL,   -- absent in replies
    ... }
maxMessage-%d INTEGER ::= 65535
id-message-%d OBJECT IDENTIFIER ::= { iso member-body(2) 752 }
)";
    File file;
    int64_t size = 0;
};

/// One run of a function over a fresh module per iteration; the clean-up is not measured.
template <typename Fn> void overModule(benchmark::State& state, const Source& source, Fn&& fn) {
    for (auto _ : state) {
        run.verbose = VERBOSE_NONE;
        auto module = std::make_unique<ModuleRec>();
        std::rewind(source.file.get());
        module->srcFile = source.file.get();
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
    state.SetBytesProcessed(state.iterations() * source.size);
}

void lexModule(benchmark::State& state) {
    overModule(state, Source(state.range(0)), [](ModuleRec&) {
        TokenList list;
        while (NextToken(list) != TOK_EOF) {
            if (list.first == list.last) continue;
            freeToken(list.first); // as the parser would
            list.first = list.last;
        }
        endInput();
    });
}

void parseModule(benchmark::State& state) {
    overModule(state, Source(state.range(0)), [&state](ModuleRec& module) {
        char name[] = "orvo";
        char* arguments[] = {name, nullptr};
        parse(1, arguments);
        if (module.nbStxErrors != 0) state.SkipWithError("the module has syntax errors");
    });
}
BENCHMARK(lexModule)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);
BENCHMARK(parseModule)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace orvo
