#include "stx/stxobjects.h"

#include <gtest/gtest.h>

#include "stx/stxvalues.h"
#include "support/tree.h"

namespace orvo::test {
namespace {

constexpr const char* text = R"(M DEFINITIONS AUTOMATIC TAGS ::= BEGIN
IMPORTS Far FROM N;
C ::= CLASS { &id INTEGER UNIQUE, &Type, &Opt OPTIONAL, &e ENUMERATED { no, yes } DEFAULT no,
              &Set INTEGER DEFAULT { 4 | 5 }, &Dflt DEFAULT BOOLEAN, &v &Type OPTIONAL,
              &obj C OPTIONAL, &Objs C OPTIONAL }
    WITH SYNTAX { ID &id TYPE &Type [OPT &Opt , E &e] [OF &Objs [OBJ &obj]] [V &v] }
a C ::= { ID 1 TYPE INTEGER }
b C ::= { ID 2 TYPE NULL OPT OCTET STRING , E yes OF { a | { ID 8 TYPE NULL } } OBJ a V NULL }
b2 C ::= b
p {INTEGER:n} C ::= { ID n TYPE NULL }
P {C:Par, INTEGER:n} C ::= { Par | { ID n TYPE NULL } }
S1 C ::= { a, ..., b }
S2 C ::= { S1 | { ID 3 TYPE NULL } }
Msg {C:Set} ::= SEQUENCE {
  id C.&id ({Set}), id2 C.&id ({Set}),
  in SEQUENCE { v C.&Type ({Set}{@id}), w C.&Type ({Set}{@.k.j, @id}), k SEQUENCE { j C.&id ({Set}) } },
  li SEQUENCE OF SEQUENCE { z C.&Type ({Set}{@..id2}) },
  no C.&Type }
)";
constexpr const char* far = R"(N DEFINITIONS ::= BEGIN
IMPORTS C FROM M;
Far C ::= { { ID 50 TYPE NULL } | b }
b C ::= { ID 51 TYPE NULL }
END
)";

std::string ids(stx::Trees& trees, stx::TypeRef set) {
    const stx::Result<stx::ObjectSet> found = stx::objectsOf(trees, set);
    if (!found) return found.error.substr(found.error.find("is "));
    std::string line;
    for (size_t nr = 0; nr < found->objects.size(); ++nr) {
        if (nr == found->rootCount) line += "| ";
        const stx::Result<stx::Settings> fields = stx::settings(trees, found->objects[nr]);
        line += stx::integerOf(trees, fields->fields.at(0).value)->text() + ' ';
    }
    return line + (found->extensible ? "..." : "");
}

TEST(StxObjects, SetsAreWorkedOut) {
    const struct {
        const char *notation, *expected;
    } cases[] = {
        {"C ::= { a | b }", "1 2 "},
        {"C ::= { a | b2 | a | b }", "1 2 "},
        {"C ::= { ... }", "..."},
        {"C ::= { ..., a }", "| 1 ..."},
        {"C ::= { S1 }", "1 | 2 ..."},
        {"C ::= { S2 }", "1 3 | 2 ..."},
        {"C ::= { S2 EXCEPT a }", "3 | 2 ..."},
        {"C ::= { S2 ^ (b | a) }", "1 | 2 ..."},
        {"C ::= { b2.&Objs }", "1 8 "},
        {"C ::= { b.&obj | p {6} | p {7} }", "1 6 7 "},
        {"C ::= { P {{S1}, 9} }", "1 9 | 2 ..."},
        {"C ::= { Far | b }", "50 51 2 "},
        {"::= INTEGER", "is no class"},
    };
    std::string source = text;
    int nr = 0;
    for (const auto& row : cases) source += "T" + std::to_string(++nr) + ' ' + row.notation + '\n';
    const RunResult run =
        compile({{"m.asn", source + "END\n"}, {"n.asn", far}}, {"-STANDARD-VERSION=2021"});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m") << run.diagnostics("n");
    const TreeFacts facts(run, "m");
    nr = 0;
    for (const auto& row : cases) {
        SCOPED_TRACE(row.notation);
        EXPECT_EQ(ids(facts.trees(), facts.type("T" + std::to_string(++nr))), row.expected);
    }
}

std::string fieldText(stx::Trees& trees, const stx::Setting& setting) {
    std::string line = std::string(setting.name) + (setting.value ? "=" : ":");
    if (setting.origin == stx::Setting::Origin::Absent) return std::string(setting.name) + "- ";
    if (setting.origin == stx::Setting::Origin::Default) line = '(' + line;
    if (setting.value)
        line += stx::valueText(trees, setting.value);
    else if (setting.kind == stx::FieldKind::ObjectSet)
        line += ids(trees, setting.type);
    else if (setting.kind == stx::FieldKind::ValueSet)
        line += stx::constraintText(trees, *setting.type.tree,
                                    static_cast<uint32_t>(setting.type.node().constraint));
    else
        line += stx::typeText(trees, setting.type);
    return line + (setting.origin == stx::Setting::Origin::Default ? ") " : " ");
}

std::string syntaxText(const std::vector<stx::SyntaxEntry>& list) {
    std::string line;
    for (const stx::SyntaxEntry& entry : list) {
        using Kind = stx::SyntaxEntry::Kind;
        line += line.empty() ? "" : " ";
        line += entry.kind == Kind::Field      ? '&' + entry.text
                : entry.kind == Kind::Comma    ? ","
                : entry.kind == Kind::Optional ? '[' + syntaxText(entry.group) + ']'
                                               : entry.text;
    }
    return line;
}

TEST(StxObjects, SettingsHaveTheDefaultsAndTablesTheirPaths) {
    const RunResult run = compile(
        {{"m.asn", std::string(text) + "U ::= Msg {{S2}}\n"
                                       "t TYPE-IDENTIFIER ::= { NULL IDENTIFIED BY {1 2} }\n"
                                       "END\n"},
         {"n.asn", far}},
        {"-STANDARD-VERSION=2021"});
    ASSERT_EQ(run.status, 0) << run.diagnostics("m");
    const TreeFacts facts(run, "m");
    stx::Trees& trees = facts.trees();
    const struct {
        const char *object, *fields, *syntax;
    } objects[] = {
        {"a", "id=1 Type:INTEGER Opt- (e=no) (Set:(4 | 5)) (Dflt:BOOLEAN) v- obj- Objs- ",
         "ID &id TYPE &Type [OPT &Opt , E &e] [OF &Objs [OBJ &obj]] [V &v]"},
        {"b2",
         "id=2 Type:NULL Opt:OCTET STRING e=yes (Set:(4 | 5)) (Dflt:BOOLEAN) v=NULL obj=a "
         "Objs:1 8  ",
         "ID &id TYPE &Type [OPT &Opt , E &e] [OF &Objs [OBJ &obj]] [V &v]"},
        {"t", "id={1 2} Type:NULL ", "&Type IDENTIFIED BY &id"},
    };
    for (const auto& row : objects) {
        SCOPED_TRACE(row.object);
        const auto result = stx::settings(trees, facts.value(row.object));
        ASSERT_TRUE(result) << result.error;
        std::string line;
        for (const stx::Setting& setting : result->fields) line += fieldText(trees, setting);
        EXPECT_EQ(line, row.fields);
        EXPECT_EQ(syntaxText(result->syntax), row.syntax);
    }
    const struct {
        const char *path, *expected;
    } tables[] = {{"U.id", "1 3 | 2 ..."},
                  {"U.in.v", "1 3 | 2 ... 0:id"},
                  {"U.in.w", "1 3 | 2 ... 1:k.j 0:id"},
                  {"U.in.k.j", "1 3 | 2 ..."},
                  {"U.li.*.z", "1 3 | 2 ... 2:id2"},
                  {"U.no", "none"}};
    for (const auto& row : tables) {
        SCOPED_TRACE(row.path);
        const stx::Result<stx::Table> table = stx::tableOf(trees, facts.type(row.path));
        ASSERT_TRUE(table) << table.error;
        std::string line = table->set ? ids(trees, table->set) : "none";
        for (const stx::RelationPath& path : table->relations) {
            line += ' ' + std::to_string(path.level) + ':';
            for (const auto& step : path.steps) {
                line += (&step == path.steps.data() ? "" : ".") + std::string(step.name);
                EXPECT_TRUE(step.component);
            }
        }
        EXPECT_EQ(line, row.expected);
    }
}

} // namespace
} // namespace orvo::test
