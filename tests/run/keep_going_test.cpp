// Runs that go on (KEEP-GOING=): which modules are out, what is said of them, and what is not.

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>

#include "support/cases.h"

namespace orvo::test {
namespace {

const std::string fine = "ok";
const std::string failed = "errors found - no tree output";
const std::string notChecked = "not checked - no tree output";
const std::string keepGoing = "-KEEP-GOING=yes";

/// Module X in x.asn, whose body begins on line 2, and what comes of it.
struct Module {
    char name;
    std::string body;
    std::string result;
    std::vector<Finding> findings = {};
    std::string undefined = {}; // its messages about undefined symbols
};
/// "x body --> not checked --! findings --? 2: Name": one a line. Where nothing else is said it is
/// fine, with findings or undefined names it has failed.
std::vector<Module> modulesIn(const std::string& text) {
    std::vector<Module> modules;
    for (std::string line : linesOf(text)) {
        Module module = {line[0], {}, fine};
        for (const Finding& name : findingsIn(takeBehind(line, " --? "), 2))
            module.undefined += std::string(1, module.name) + ".asn(" + std::to_string(name.line) +
                                "): *** ERROR: " + name.text + " undefined\n";
        module.findings = findingsIn(takeBehind(line, " --! "), 2);
        if (!module.findings.empty() || !module.undefined.empty()) module.result = failed;
        if (!takeBehind(line, " --> ").empty()) module.result = notChecked;
        module.body = withLines(line.substr(2));
        modules.push_back(module);
    }
    return modules;
}

std::string titleOf(const Module& module) {
    return {static_cast<char>(std::toupper(module.name))};
}

/// The module whose syntax errors are no matter.
constexpr char faultyNotation = 'g';

/// The lines of an output that hold a text.
std::string linesWith(const std::string& output, const std::string& text) {
    std::string lines;
    for (size_t at = 0; at < output.size();) {
        const size_t end = output.find('\n', at);
        const std::string line = output.substr(at, end - at + 1);
        if (line.find(text) != std::string::npos) lines += line;
        at = end == std::string::npos ? output.size() : end + 1;
    }
    return lines;
}

/// Compiles the modules in the order in which they stand: the first is named, all are mapped, so
/// that each is compiled whoever refers to it.
void expectResultsInOrder(const std::vector<Module>& modules, std::vector<std::string> arguments) {
    std::vector<SourceFile> files;
    arguments.push_back(keepGoing);
    bool anyOut = false;
    for (const Module& module : modules) {
        const std::string title = titleOf(module);
        files.push_back(
            {std::string(1, module.name) + ".asn",
             title + " DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n" + module.body + "\nEND\n"});
        arguments.push_back("-PREFIX=" + title + ":" + module.name);
        anyOut |= module.result != fine;
    }
    arguments.emplace_back(1, modules.front().name);
    const RunResult run = runOrvo(files, arguments);
    EXPECT_EQ(run.status, anyOut ? 1 : 0);
    EXPECT_EQ(run.err, "");
    for (const Module& module : modules) {
        SCOPED_TRACE(titleOf(module) + ": " + module.body);
        const std::string prefix(1, module.name);
        if (module.name != faultyNotation) {
            EXPECT_EQ(run.diagnostics(prefix), listed(module.findings));
        }
        EXPECT_EQ(linesWith(run.out, "listing for " + prefix + ".asn"),
                  "ORVO>>> compiler listing for " + prefix + ".asn (" + module.result + ")\n");
        EXPECT_EQ(linesWith(linesWith(run.out, " undefined\n"), prefix + ".asn("),
                  module.undefined);
        EXPECT_EQ(run.has(prefix + ".stx"), module.result == fine);
    }
}

void expectResults(std::vector<Module> modules, const std::vector<std::string>& options = {}) {
    do {
        expectResultsInOrder(modules, options);
    } while (std::ranges::next_permutation(modules, {}, &Module::name).found);
}

TEST(KeepGoing, WhoRefersToAModuleThatIsOutIsOut) {
    // IMPORTS, an external reference, an instance; what is referred to stays.
    expectResults(modulesIn(R"(
a IMPORTS U FROM B; V ::= U --> not checked
b IMPORTS T FROM C W FROM D; U ::= SEQUENCE { t T, w W } --> not checked
c T ::= NULL T ::= NULL --! Symbol already defined: T
d W ::= BOOLEAN
)"));
    expectResults(modulesIn(R"(
a V ::= C.T --> not checked
b IMPORTS W FROM D; X ::= W
c T ::= NULL T ::= NULL --! Symbol already defined: T
d W ::= BOOLEAN
)"));
    expectResults(modulesIn(R"(
a IMPORTS P{} FROM C; V ::= P {NULL} --> not checked
b IMPORTS V FROM A; X ::= SEQUENCE { v V } --> not checked
c P {X} ::= SEQUENCE { x X } U ::= Nothing --? Nothing
)"));
    // A definition does not refer to who makes instances of it.
    expectResults(modulesIn(R"(
a IMPORTS P{} FROM C; V ::= P {T} T ::= NULL T ::= NULL --! Symbol already defined: T
b IMPORTS P{} FROM C; V ::= P {BOOLEAN}
c P {X} ::= SEQUENCE { x X }
)"));
}

TEST(KeepGoing, CirclesAreOutAsAWhole) {
    expectResults(modulesIn(R"(
a IMPORTS B FROM B W FROM D; A ::= CHOICE { b B, w W, n NULL } --> not checked
b IMPORTS C FROM C; B ::= CHOICE { c C, n NULL } --> not checked
c IMPORTS A FROM A; C ::= CHOICE { a A, n NULL, x Nothing } --? Nothing
d W ::= BOOLEAN
)"));
    expectResults(modulesIn(R"(
a IMPORTS B FROM B; A ::= CHOICE { b B, n NULL } --> not checked
b IMPORTS A FROM A; B ::= CHOICE { a A, n NULL } T ::= INTEGER (0..5) v T ::= 6 --! Value out of range constraint(s)
c IMPORTS A FROM A; C ::= A --> not checked
)"));
}

TEST(KeepGoing, WhatPassFiveFindsTakesTheUsersOut) {
    expectResults(modulesIn(R"(
a IMPORTS U FROM B; V ::= U w INTEGER (1..2) ::= 3 --! Value out of range constraint(s)
b IMPORTS T FROM C W FROM D; U ::= SEQUENCE { t T, w W } --> not checked
c IMPORTS W FROM D; T ::= INTEGER (0..5) v T ::= 6 --! Value out of range constraint(s)
d W ::= BOOLEAN
)"));
    // It does not look into what is out already.
    expectResults(modulesIn(R"(
a IMPORTS U FROM B; V ::= U w INTEGER (1..2) ::= 3 --> not checked
b U ::= Nothing --? Nothing
c V ::= NULL w INTEGER (1..2) ::= 3 --! Value out of range constraint(s)
)"));
}

TEST(KeepGoing, ASymbolThatAModuleDoesNotHaveIsUndefinedAsEver) {
    expectResults(modulesIn(R"(
a IMPORTS T, U FROM B; V ::= SEQUENCE { t T, u U } --? U
b T ::= NULL
c EXPORTS ; T ::= NULL
d IMPORTS T FROM C; V ::= T --? T
)"));
}

TEST(KeepGoing, AMissingModuleIsReportedByWhoImportsIt) {
    expectResults(modulesIn(R"(
a IMPORTS B FROM B\nX, y FROM Gone;\nA ::= SEQUENCE { x X DEFAULT y, b B } --! 3: Module file not found: Gone (gone.asn)
b B ::= NULL
c T ::= SEQUENCE {\n x Gone.X, y Gone.Y } --! 3: Module file not found: Gone (gone.asn)
d IMPORTS A FROM A;\nX ::= A\nx X ::= {x foo, b NULL} --> not checked
)"));
    // Two of one prefix; faults of the module itself are found beside it.
    expectResults(modulesIn(R"(
a IMPORTS X FROM Gone-One\nY FROM Gone-Two;\nA ::= SEQUENCE { x X, y Y, z Z }\nv INTEGER ::= TRUE\nw X ::= TRUE --! Module file not found: Gone_One (gone-.asn) ; 3: Module file not found: Gone_Two (gone-.asn) ; 5: INTEGER value syntax --? 4: Z
b IMPORTS X FROM Cat\nY FROM C;\nB ::= SEQUENCE { x X, y Y } --! Module file not found: Cat (cat.asn)
c Y ::= NULL
)"));
}

/// Definitions that use T, P, v, o, CLS and Set of another module, each in a way of its own.
const char* const users[] = {
    "A ::= SEQUENCE { a T DEFAULT red, b SEQUENCE OF T, c INTEGER (0..v) DEFAULT v }",
    "A ::= T (SIZE (1..foo)) B ::= T (WITH COMPONENTS { a (foo) }) C ::= a < T D ::= [v] NULL",
    "A ::= P {BOOLEAN, 5, {o | other}} B {T : p} ::= SEQUENCE { a T (p) } C ::= B {foo}",
    "A ::= SEQUENCE { id CLS.&id ({Set}), val CLS.&Type ({Set}{@id}) } B ::= CLS.&id",
    "o1 CLS ::= { &id 5 } o2 CLS ::= { WORD foo } OS CLS ::= { o1 | o2, ... } B ::= o2.&Type",
    "A ::= o.&Type b INTEGER ::= o.&val C ::= INSTANCE OF CLS ({Set}) d T ::= { a 1, b foo }",
    "S ::= SEQUENCE { COMPONENTS OF T, z NULL } s S ::= { q 7, z NULL } R ::= S "
    "(WITH COMPONENTS { q (5) }) U ::= SEQUENCE { COMPONENTS OF S, x NULL } u U ::= { q foo }",
    "O ::= TYPE-IDENTIFIER o1 O ::= { T IDENTIFIED BY {1 v} } B ::= o1.&Type b B ::= foo",
    "K {CLS:S} ::= SEQUENCE { i CLS.&id ({S}), v CLS.&V ({S}{@i}) } A ::= K {{o}} B ::= K {{Set}}",
    "OWN ::= CLASS { &id T, &o CLS OPTIONAL, &vt &o.&Type OPTIONAL } WITH SYNTAX { ID &id [OBJ &o] "
    "[VT &vt] } o1 OWN ::= { ID red OBJ { WORD 1 } VT foo } A ::= o1.&o.&Type OS OWN ::= { o1 }",
    "I ::= INTEGER { one(v) } i I ::= one j OBJECT IDENTIFIER ::= { v 1 } E ::= INTEGER (1..5 ! T "
    ": foo)",
    "O ::= CLASS { &Type } w O.&Type ::= T : { a foo } C ::= OCTET STRING (CONSTRAINED BY {T : "
    "foo})",
    "VS T ::= { foo | bar } B ::= T (v) C ::= INTEGER (v | INCLUDES T) b CHOICE { t T } ::= t : "
    "foo",
};

/// The same in the notation of today.
const char* const laterUsers[] = {
    "A ::= T (CONTAINING NULL) B ::= T (PATTERN \"a\" | SETTINGS \"b\") S CLS ::= {..., o}",
    "A ::= [5] T B ::= SEQUENCE { a T, ..., [[ 2: b T DEFAULT red ]] } C T ::= {..., foo}",
    "A ::= REAL (1.5..v) B ::= SEQUENCE OF x T b B ::= {x foo} C ::= OCTET STRING (CONTAINING T)",
};

/// Neither the user nor who uses him in turn is blamed, be the module missing or faulty.
void expectNotJudged(const std::string& user, const std::vector<std::string>& options) {
    const std::string head =
        "a IMPORTS T, P{}, v, o, CLS, Set FROM G;\\nZ ::= SEQUENCE { t T, a NULL } " + user;
    const std::string second =
        "\nb IMPORTS Z FROM A; z Z ::= {t foo, a NULL} Y ::= Z (WITH COMPONENTS "
        "{..., t (foo)}) --> not checked";
    expectResults(modulesIn(head + " --! Module file not found: G (g.asn)" + second), options);
    std::vector<Module> modules = modulesIn(head + " --> not checked" + second);
    modules.push_back({faultyNotation, "::= NULL", failed});
    expectResults(modules, options);
}

TEST(KeepGoing, WhatDependsOnAModuleThatCannotBeReadIsNotJudged) {
    const std::vector<std::string> later = {"-STANDARD-VERSION=2021"};
    for (const char* const user : users) {
        expectNotJudged(user, {});
        expectNotJudged(user, later);
    }
    for (const char* const user : laterUsers) {
        expectNotJudged(user, later);
        expectNotJudged(user, {"-STANDARD-VERSION=2021", "-LENIENT=YES"});
    }
    // What a module hands on from one that cannot be read is as unknown.
    expectResults(modulesIn(R"(
a IMPORTS X FROM B; T ::= SEQUENCE { x X DEFAULT foo, y Y } Y ::= NULL --> not checked
b IMPORTS X FROM C; Y ::= X --> not checked
c IMPORTS X FROM G; --! Module file not found: G (g.asn)
)"),
                  later);
}

TEST(KeepGoing, FilesOfTheCommandLineNeedNoPrefix) {
    const SourceFile user = {"m.asn", "M DEFINITIONS ::= BEGIN\nIMPORTS T FROM Second-Part\n"
                                      "U FROM Third;\nV ::= CHOICE { t T, u U }\nEND\n"};
    const SourceFile second = {"second.asn", "Second-Part DEFINITIONS ::= BEGIN\nT ::= NULL END\n"};
    const SourceFile other = {"x.asn", "Another DEFINITIONS ::= BEGIN T = NULL END\n"};
    std::vector<std::string> names = {"m", "second", "x"};
    do {
        std::vector<std::string> arguments = {keepGoing};
        arguments.insert(arguments.end(), names.begin(), names.end());
        const RunResult run = runOrvo({user, second, other}, arguments);
        SCOPED_TRACE(names[0] + names[1]);
        EXPECT_EQ(run.diagnostics("m"), listed({{3, "Module file not found: Third (third.asn)"}}));
        EXPECT_TRUE(run.has("secon.stx")); // five characters of the name, as of a first file
        EXPECT_TRUE(run.has("x.lst"));
        EXPECT_NE(run.listing("m").find("\nT imported from Second_Part\n"), std::string::npos);
        for (const std::string name : {"m", "x"})
            EXPECT_EQ(linesWith(run.out, "listing for " + name + ".asn"),
                      "ORVO>>> compiler listing for " + name + ".asn (" + failed + ")\n");
        EXPECT_EQ(run.status, 1);
    } while (std::ranges::next_permutation(names).found);
}

TEST(KeepGoing, SymbolsThatCountAsKnownAreListedWithTheirUses) {
    const RunResult run = runOrvo({{"m.asn", "M DEFINITIONS ::= BEGIN\nIMPORTS T, v FROM Gone;\n"
                                             "U ::= T\nEND\n"}},
                                  {keepGoing, "m"});
    const std::string listing = run.listing("m");
    EXPECT_NE(listing.find("\nNo undefined types detected\n"), std::string::npos);
    EXPECT_NE(listing.find("\nT imported from Gone\n definition:\n   line     2\n usage     :\n"
                           "   line     3\n"),
              std::string::npos)
        << listing;
}

TEST(KeepGoing, OtherFilesThatAreMissingEndTheRun) {
    const SourceFile user = {"m.asn", "M DEFINITIONS ::= BEGIN IMPORTS T FROM N; U ::= T END\n"};
    const SourceFile options = {"o.opt", "-Keep-Going=true\n"};
    const struct {
        std::vector<std::string> arguments;
        const char* file; // that cannot be opened; none when the run goes on
    } cases[] = {
        {{"m"}, "n.asn"},
        {{"-KEEP-GOING=no", "m"}, "n.asn"},
        {{"-KEEP-GOING=YES", "-KEEP-GOING=0", "m"}, "n.asn"},
        {{"-KEEP-GOINGS=YES", "m"}, "n.asn"},
        {{keepGoing, "x"}, "x.asn"},
        {{keepGoing, "m", "n"}, "n.asn"},
        {{keepGoing, "-PREFIX=Other:other", "m"}, "other.asn"},
        {{keepGoing, "-PREFIX=N:other", "m"}, nullptr},
        {{"+o.opt", "m"}, nullptr},
    };
    for (const auto& [arguments, file] : cases) {
        SCOPED_TRACE(arguments.front() + " " + arguments.back());
        const RunResult run = runOrvo({user, options}, arguments);
        EXPECT_EQ(run.status, file != nullptr ? 2 : 1);
        const std::string message = "\nFATAL ERROR : Can not open file for reading\n              ";
        EXPECT_TRUE(run.err.ends_with(file != nullptr ? message + file + "\n\n" : "")) << run.err;
    }
}

TEST(KeepGoing, LeavesNoTraceInATree) {
    const SourceFile module = {"m.asn",
                               "--$KEEP-GOING=YES-- M DEFINITIONS ::= BEGIN T ::= NULL END\n"};
    const RunResult run = compile({module, {"o.opt", "-KEEP-GOING=1\n"}}, {keepGoing, "+o.opt"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.diagnostics("m"), "");
    const TreeFacts facts(run, "m");
    // The comment of the module is the one option that it stores.
    EXPECT_EQ(facts.tree().count(stx::TED), 1U);
}

} // namespace
} // namespace orvo::test
