// Passes 2 and 3 over modules that hold n of something. The reported complexity has to be N.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <ctime>
#include <map>
#include <string>

#include "driver/orvofil.h"
#include "parser/iso8824.h"
#include "parser/parser.h"
#include "solve/solve.h"
#include "solve/solve_pass3.h"
#include "symtab/orvosym.h"
#include "tree/orvorec.h"
#include "util/guard.h"
#include "util/stack.h"

namespace orvo {
namespace {

/// The text n times, "#" being the number and "$" the next one.
std::string repeated(int64_t n, const std::string& text, const char* separator = "\n") {
    std::string result;
    for (int64_t i = 0; i < n; ++i) {
        if (i != 0) result += separator;
        for (const char c : text) {
            if (c == '#' || c == '$')
                result += std::to_string(c == '#' ? i : i + 1);
            else
                result += c;
        }
    }
    return result;
}

using Generator = std::string (*)(int64_t n);
const std::map<std::string, Generator> shapes = {
    {"definitions",
     [](int64_t n) {
         return repeated(n, "T# ::= SEQUENCE { a INTEGER (0..v#), b BOOLEAN DEFAULT TRUE }\n"
                            "v# INTEGER ::= #\nx# T# ::= { a v#, b FALSE }");
     }},
    {"componentsOf",
     [](int64_t n) {
         return repeated(n, "T# ::= SEQUENCE { a# NULL, COMPONENTS OF T$ }") + "\nT" +
                std::to_string(n) + " ::= SEQUENCE { z NULL }\nv T0 ::= { z NULL }";
     }},
    {"enumerationItems",
     [](int64_t n) {
         return "E ::= ENUMERATED {" + repeated(n, "e#", ",") + "}\n" + repeated(n, "v# E ::= e#");
     }},
    {"instances",
     [](int64_t n) {
         return "P{INTEGER:m, X} ::= SEQUENCE { a INTEGER (0..m), b X }\n" +
                repeated(n, "T# ::= P{#, NULL}");
     }},
    {"objects",
     [](int64_t n) {
         return "C ::= CLASS { &id INTEGER UNIQUE, &Type } WITH SYNTAX { ID &id TYPE &Type }\n" +
                repeated(n, "o# C ::= { ID # TYPE INTEGER }\nT# ::= o#.&Type") + "\nS C ::= { " +
                repeated(n, "o#", " | ") +
                " }\nX ::= SEQUENCE { i C.&id ({S}), t C.&Type ({S}{@i}) }";
     }},
};

void overModule(ModuleRec* module, void (*pass)()) {
    changeCMP(module);
    initAnyPassVars();
    pass();
    flushRecs(-1);
}

/// Seconds that passes 2 and 3 take over a module; negative when it has syntax errors.
double solve(const std::string& body) {
    run.verbose = VERBOSE_NONE;
    run.iso8824MP = newModuleRec();
    run.iso8824MP->filePrefix = "iso8824";
    for (void (*pass)() : {parseISO8824, solveRefs1, solveRefs2}) overModule(run.iso8824MP, pass);
    ModuleRec* const module = newModuleRec();
    appendModuleRec(module);
    const File source(std::tmpfile());
    std::fputs(("M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n" + body + "\nEND\n").c_str(),
               source.get());
    std::rewind(source.get());
    module->srcFile = source.get();
    overModule(module, [] {
        char name[] = "orvo";
        char* arguments[] = {name, nullptr};
        parse(1, arguments);
    });
    module->srcFile = nullptr;
    if (module->parseState != PARSE_OK) return -1;
    const std::clock_t start = std::clock();
    overModule(module, solveRefs1);
    overModule(module, solveRefs2);
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

struct Measurement {
    const std::string& body;
    double seconds = 0;
};

/// On a stack like the program's.
double measure(const std::string& body) {
    Measurement measurement{body};
    runOnStack(
        size_t{4} << 30,
        [](void* argument) {
            auto* job = static_cast<Measurement*>(argument);
            job->seconds = solve(job->body);
            return 0;
        },
        &measurement);
    changeCMP(nullptr);
    resetStore();
    resetTokens();
    resetSymbols();
    return measurement.seconds;
}

void solvePasses(benchmark::State& state, Generator generate) {
    const std::string body = generate(state.range(0));
    for (auto _ : state) {
        const double seconds = measure(body);
        if (seconds < 0) return state.SkipWithError("the module has syntax errors");
        state.SetIterationTime(seconds);
    }
    state.SetComplexityN(state.range(0));
}

const bool registered = [] {
    for (const auto& [name, generate] : shapes) {
        benchmark::RegisterBenchmark(("solve/" + name).c_str(), solvePasses, generate)
            ->RangeMultiplier(8)
            ->Iterations(3)
            ->Range(2000, 128000)
            ->UseManualTime()
            ->Unit(benchmark::kMillisecond)
            ->Complexity();
    }
    return true;
}();

} // namespace
} // namespace orvo
