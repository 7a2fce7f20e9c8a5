#include "stxdump/stxdump.h"

#include <gtest/gtest.h>

#include <random>

#include "tools/two_modules.h"

namespace orvo::test {
namespace {

struct Dump {
    int status;
    std::string out, err;
};

Dump dump(std::vector<std::string> arguments) {
    stxdump::Sink out, err;
    const int status = stxdump::run(arguments, out, err);
    return {status, out.text, err.text};
}

/// The dump of module M, the name of the folder left out of the texts.
Dump dumpM(const RunResult& run, std::vector<std::string> arguments) {
    const std::string folder = run.dir->path().string() + '/';
    arguments.push_back(folder + "m.stx");
    Dump result = dump(arguments);
    for (std::string* text : {&result.out, &result.err})
        for (size_t at = 0; (at = text->find(folder, at)) != std::string::npos;)
            text->erase(at, folder.size());
    return result;
}

TEST(StxDump, TextNamesFieldsCodesAndStrings) {
    const Dump result = dumpM(runWith(moduleM(), moduleN()), {});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_TRUE(result.out.starts_with("m.stx: module M\n\nmNode 1  M\n"
                                       "    modTimeStamp    version 2.13, 28.07.2026 10:11.12\n"
                                       "    modName         1  string 1 \"M\"\n"
                                       "    firstTypeAss    1  tNode 1 T\n"
                                       "    recCount        2 4 0 1 0 0 0 6 0 0\n"
                                       "    exportsState    0  all\n"
                                       "    modWords        0 0 0 0 0 0\n"
                                       "mNode 2  N\n"))
        << result.out;
    EXPECT_NE(result.out.find("tNode 2  u\n"
                              "    name            5  string 5 \"u\"\n"
                              "    compStatus      1  TCS_OPTIONAL\n"
                              "    next            3  tNode 3 l\n"
                              "    tags            1  tagRec 1\n"
                              "    checkState      0  NEW\n"
                              "    typeCode        32  TYP_SYNONYM\n"
                              "    refMod          2  mNode 2 N\n"
                              "    ref             1  tNode 1 of module N\n"
                              "    lowerBound      MIN\n"
                              "    upperBound      MAX\n"
                              "tNode 3  l\n"),
              std::string::npos)
        << result.out;
    EXPECT_TRUE(result.out.ends_with("string 5  \"u\"\nstring 6  \"l\"\n")) << result.out;
    EXPECT_NE(dumpM(runWith(moduleM(), moduleN()), {"--all"}).out.find("\n    sizeLimit       0\n"),
              std::string::npos);
}

TEST(StxDump, JsonHoldsEveryFieldWhateverTheStringsHold) {
    TreeBytes m = moduleM();
    m.text(std::string("a\"\\\n\0\x7f", 6));
    m.text("\xc3\xa9");         // UTF-8
    m.text("\xff\xc3");         // not UTF-8
    m.text("\xed\xa0\x80");     // a surrogate in UTF-8 form
    m.text("\xf0\x9f\x98\x80"); // beyond 16 bits
    m.value("", TYP_INTEGER).val.integer = {i64max(), 5};
    m.strings16 = {u"A\xd83d\xde00", u"\xd800"};
    m.strings32 = {U"\x110000"};
    const Dump result = dumpM(runWith(m, moduleN()), {"--json"});
    EXPECT_EQ(result.status, 0) << result.err;
    for (const char* piece :
         {"{\"nr\":7,\"text\":\"a\\\"\\\\\\u000a\\u0000\\u007f\",\"hex\":\"61225c0a007f\"}",
          "{\"nr\":8,\"text\":\"\\u00e9\",\"hex\":\"c3a9\"}",
          "{\"nr\":9,\"text\":\"\\u00ff\\u00c3\",\"hex\":\"ffc3\"}",
          "{\"nr\":10,\"text\":\"\\u00ed\\u00a0\\u0080\",\"hex\":\"eda080\"}",
          "{\"nr\":11,\"text\":\"\\ud83d\\ude00\",\"hex\":\"f09f9880\"}",
          "{\"nr\":1,\"text\":\"A\\ud83d\\ude00\",\"hex\":\"41003dd800de\"}",
          "{\"nr\":2,\"text\":\"\\ufffd\",\"hex\":\"00d8\"}",
          "{\"nr\":1,\"text\":\"\\ufffd\",\"hex\":\"00001100\"}",
          "\"ref\":{\"value\":1,\"kind\":\"tNode\",\"nr\":1,\"module\":2,\"moduleName\":\"N\"}",
          "\"val\":{\"number\":9223372036854775807,"
          "\"exact\":{\"value\":5,\"kind\":\"string\",\"text\":\"u\"}}",
          "\"typeCode\":{\"code\":8,\"name\":\"TYP_SEQOF\"}",
          "\"upperBound\":9223372036854775807}"})
        EXPECT_NE(result.out.find(piece), std::string::npos) << piece << '\n' << result.out;
}

TEST(StxDump, SummaryGivesCountsFinalTagsAndBounds) {
    TreeBytes m = moduleM();
    m.modules[0].modWords[0] = 1 | 1 << 21;
    m.modules[1].importsState = 0x22;
    m.types[0].next = 5;
    TNode& i = m.type("I", TYP_INTEGER, TCS_HEADER);
    i.tags = 2, i.checkFlags = CF_EXTENSIBLE, i.constraint = 1;
    m.subs = {{0, SUB_RANGE, SUBF_LOWER | SUBF_UPPER, {}, 1, 5, 1, 0, 0, 2, 3}};
    m.tags.push_back({TAG_APPLICATION, TAGMODE_IMPLICIT, 7, 0});
    VNode& v = m.value("v", TYP_INTEGER, VST_HEADER);
    v.govType = 5, v.govTypeMod = 1, v.val.integer = {i64max(), m.text("18446744073709551616")};
    m.value("", TYP_INTEGER).val.number = i64of(-5);
    const auto number = m.values[0].val.integer;
    m.value("", TYP_INTEGER).val.integer = number;
    m.modules[0].firstValAss = 1;
    const Dump result = dumpM(runWith(m, moduleN()), {"--summary"});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "m.stx: module M\n"
              "    written     version 2.13, 28.07.2026 10:11.12\n"
              "    exports     all\n"
              "    options     TYP ALLOW\n"
              "    records     mNode 2, tNode 5, vNode 3, tagRec 2, subRec 1, tedRec 0, sNode 0, "
              "string 9, string16 0, string32 0\n"
              "    modules     2 N (n.stx), by IMPORTS\n"
              "    types       2\n"
              "        T  SEQUENCE  [UNIVERSAL 16]                             0 entries\n"
              "        I  INTEGER   [APPLICATION 7]  -5..18446744073709551616  EXTENSIBLE\n"
              "    values      1\n"
              "        v  INTEGER  18446744073709551616\n");
}

TEST(StxDump, TypeIsShownWithTheDefinitionsOfOtherFilesOnce) {
    const Dump result = dumpM(runWith(moduleM(), moduleN()), {"--type", "T"});
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out,
              "M.T  SEQUENCE  [UNIVERSAL 16]\n"
              "    u  N.U = SEQUENCE  [0] [5]  OPTIONAL\n"
              "        N.U  SEQUENCE  [5]  MANDATORY EXTENSIBLE AUTOMATIC_TAGS\n"
              "            x  BOOLEAN  [0]\n"
              "            ...\n"
              "            y  INTEGER  [1]  (1..10)  1..10\n"
              "    l  SEQUENCE OF  [UNIVERSAL 16]  0..MAX\n"
              "        *  N.U = SEQUENCE  [5]\n"
              "            N.U  SEQUENCE  [5]  MANDATORY EXTENSIBLE AUTOMATIC_TAGS  (see above)\n");
}

TEST(StxDump, SetsShowTheirObjectsAndComponentsOfWhatItBringsIn) {
    const RunResult run =
        compile({{"m.asn", "M DEFINITIONS AUTOMATIC TAGS ::= BEGIN\n"
                           "C ::= CLASS { &id INTEGER, &Type OPTIONAL, &b BOOLEAN DEFAULT TRUE }\n"
                           "one C ::= { &id 1, &Type NULL }\n"
                           "Set C ::= { one | { &id 2, &b FALSE }, ... }\n"
                           "A ::= SEQUENCE { a NULL, b T2, ..., c NULL }\n"
                           "B ::= SEQUENCE { x NULL, COMPONENTS OF A, y NULL }\n"
                           "T1 ::= INTEGER (0..100)\nT2 ::= T1 (5..10)\nEND\n"}},
                {"-STANDARD-VERSION=2021"});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    EXPECT_EQ(dumpM(run, {"--type", "Set"}).out, "M.Set  C = CLASS\n"
                                                 "    one  {&id 1, &Type NULL, &b TRUE}\n"
                                                 "    *  {&id 2, &b FALSE}\n"
                                                 "    ...\n");
    EXPECT_EQ(dumpM(run, {"--type", "B"}).out,
              "M.B  SEQUENCE  [UNIVERSAL 16]  MANDATORY AUTOMATIC_TAGS\n"
              "    x  NULL  [0]\n"
              "    COMPONENTS OF  A = SEQUENCE\n"
              "        a  NULL  [1]\n"
              "        b  T2 = INTEGER  [2]  5..10\n"
              "            M.T2  T1 = INTEGER  [UNIVERSAL 2]  (5..10)  5..10\n"
              "                M.T1  INTEGER  [UNIVERSAL 2]  (0..100)  0..100\n"
              "    y  NULL  [3]\n");
}

TEST(StxDump, WrongUsageAndDamagedFilesHaveTheirExitStatus) {
    const RunResult run = runWith(moduleM(), moduleN());
    const std::string file = (run.dir->path() / "m.stx").string();
    const std::string help = "\nTry stxdump --help.\n";
    const struct {
        std::vector<std::string> arguments;
        int status;
        std::string err;
    } cases[] = {
        {{}, 2, "no file given" + help},
        {{"--jsn", file}, 2, "unknown option --jsn" + help},
        {{"--json", "--summary", file}, 2, "only one of --json, --summary and --type" + help},
        {{"--json", file, file}, 2, "only one file with --json and --type" + help},
        {{file, "--type"}, 2, "--type needs a name" + help},
        {{"--", "--help"}, 1, "--help: no such file\n"},
        {{"--type", "X", file}, 1, file + ": X is not defined in module M\n"}};
    for (const auto& row : cases) {
        const Dump result = dump(row.arguments);
        EXPECT_EQ(result.status, row.status) << row.err;
        EXPECT_EQ(result.err, "stxdump: " + row.err);
    }
}

/// M is sound, and N is not checked, or not what M says of it.
TEST(StxDump, FilesThatAreNotCheckedOrOfAnotherRunAreRefused) {
    const std::string unchecked = "not checked: the run had errors\n";
    const std::string stale = "n.stx: is of another run than m.stx";
    const struct {
        const char* what;
        void (*change)(TreeBytes&);
        std::string text, error;
    } cases[] = {{"head of a type", [](TreeBytes& n) { n.types[0].checkState = CHECK_SOLVED; }, "",
                  "stxdump: n.stx: " + unchecked},
                 {"parameterized",
                  [](TreeBytes& n) {
                      n.types[0].next = 5;
                      TNode& p = n.type("P", TYP_SYNONYM, TCS_HEADER);
                      p.checkState = CHECK_NEW, p.formals = 6;
                      n.type("", TYP_NONE, TCS_FORMAL);
                  },
                  "M.T  SEQUENCE  [UNIVERSAL 16]\n    u  N.U = SEQUENCE  [0] [5]", ""},
                 {"head of a value",
                  [](TreeBytes& n) {
                      n.value("v", TYP_NULL, VST_HEADER).checkState = CHECK_NEW;
                      n.modules[0].firstValAss = 3;
                  },
                  "", "stxdump: n.stx: " + unchecked}};
    for (const auto& row : cases) {
        SCOPED_TRACE(row.what);
        TreeBytes n = moduleN();
        row.change(n);
        const RunResult run = runWith(moduleM(), n);
        const Dump result = dumpM(run, {"--type", "T"});
        EXPECT_EQ(result.err, row.error);
        EXPECT_EQ(result.out.empty(), !row.error.empty());
        EXPECT_TRUE(result.out.starts_with(row.text));
        EXPECT_EQ(dumpM(run, {"--unchecked", "--type", "T"}).status, 0);
        EXPECT_EQ(dumpM(run, {}).err, "") << "no other file is read";
    }
    const RunResult run = runWith(moduleM(), moduleN());
    TreeBytes n = moduleN();
    n.type("", TYP_NONE);
    std::vector<uint8_t> bytes = n.bytes();
    run.dir->write({"n.stx", {bytes.begin(), bytes.end()}});
    EXPECT_EQ(dumpM(run, {"--type", "T"}).err, "stxdump: " + stale + '\n');
    n = moduleN();
    n.modules[0].firstTypeAss = 0;
    bytes = n.bytes();
    run.dir->write({"n.stx", {bytes.begin(), bytes.end()}});
    EXPECT_EQ(dumpM(run, {"--type", "T"}).err, "stxdump: " + stale + '\n');
}

TEST(StxDump, DamagedPairsOfFilesEndInADumpOrAnError) {
    const RunResult run = runWith(moduleM(), moduleN());
    const std::string files[] = {run.file("m.stx"), run.file("n.stx")};
    std::mt19937 random(20260728);
    int sound = 0;
    for (int round = 0; round < 500; ++round) {
        for (const auto& [name, bytes] :
             {std::pair("m.stx", files[0]), std::pair("n.stx", files[1])}) {
            std::string bad = bytes;
            for (int flips = 0; flips < 2; ++flips)
                bad[random() % bad.size()] = static_cast<char>(random() % 12);
            run.dir->write({name, bad});
        }
        for (const char* form : {"--all", "--json", "--summary"}) {
            const Dump result = dumpM(run, {form});
            EXPECT_EQ(result.status == 0, result.err.empty()) << result.err;
            sound += result.status == 0 ? 1 : 0;
        }
        EXPECT_LE(dumpM(run, {"--type", "T"}).status, 1);
    }
    EXPECT_GT(sound, 100);
}

TEST(StxDump, TypesNestedWithoutEndAndCirclesOfReferencesEnd) {
    TreeBytes m;
    m.modules[0].modName = m.text("M");
    m.modules[0].firstTypeAss = 1;
    for (uint32_t nr = 1; nr <= 5000; ++nr)
        m.type(nr == 1 ? "T" : "", TYP_SEQOF, nr == 1 ? TCS_HEADER : TCS_MULTIPLE).ref = nr + 1;
    TNode& last = m.type("", TYP_SYNONYM);
    last.refMod = 1, last.ref = 5001;
    const Dump result = dumpM(runWith(m, moduleN()), {"--type", "T"});
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(dumpM(runWith(m, moduleN()), {"--summary"}).status, 0);
    m.types[0].typeCode = TYP_SYNONYM, m.types[0].refMod = 1, m.types[0].ref = 1;
    const Dump circle = dumpM(runWith(m, moduleN()), {"--type", "T"});
    EXPECT_EQ(circle.status, 1);
    EXPECT_EQ(circle.err, "stxdump: m.stx: tNode 1: the reference leads back to itself\n");
}

} // namespace
} // namespace orvo::test
