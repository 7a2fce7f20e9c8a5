#include "parser/parser_cls.h"

#include "support/pass1.h"

namespace orvo {
namespace {

class Classes : public Pass1Test {
  protected:
    /// The syntax list of the class C: words, ",", &fields, groups in brackets.
    std::string syntaxOf(const std::string& syntax) {
        parseBody("C ::= CLASS { &Type, &id INTEGER UNIQUE } WITH SYNTAX { " + syntax + " }");
        if (!module->errors.empty()) return errors();
        return elements(static_cast<int32_t>(typeAt(head("C")).syntaxList), 0);
    }

  private:
    std::string elements(int32_t first, uint32_t group) {
        std::string text;
        int32_t nr = first;
        for (; nr > 0;) {
            readRec(module, SNodeNr{static_cast<uint32_t>(nr)});
            const SNode node = sNode;
            if (!text.empty()) text += ' ';
            if (node.token == TOK_LBRACKET)
                text += "[" + elements(node.value, static_cast<uint32_t>(nr)) + "]";
            else if (node.token == TOK_TYPEFIELDID || node.token == TOK_VALUEFIELDID)
                text += "&" + std::string(getStri(module, node.value));
            else if (node.token == TOK_TYPEID)
                text += getStri(module, node.value);
            else
                text += "'" + std::string(tokenName(node.token)) + "'";
            nr = node.next;
        }
        EXPECT_EQ(nr, minus(group));
        return text;
    }
};

struct ClassCase {
    const char* text;
    const char* shape;
};

TEST_F(Classes, EveryFormOfFieldGivesItsNode) {
    constexpr ClassCase cases[] = {
        {"&Type", "Type OPEN"},
        {"&Type OPTIONAL", "Type? OPEN"},
        {"&Type DEFAULT SEQUENCE { a NULL }", "Type=type SEQ{a NULL} OPEN"},
        {"&id INTEGER UNIQUE", "id INTEGER"},
        {"&id OBJECT IDENTIFIER UNIQUE OPTIONAL", "id? OBJID"},
        {"&id INTEGER (0..9) DEFAULT 5", "id=5 INTEGER :: ( 0 .. 9 )"},
        {"&obj OTHER DEFAULT { &id 5 }", "obj={ &id 5 } SYNONYM(OTHER)"},
        {"&Set OTHER OPTIONAL", "Set*? SYNONYM(OTHER)"},
        {"&Set INTEGER DEFAULT { 1 | 2 }", "Set*={ 1 | 2 } INTEGER"},
        {"&val &Type", "val FIELDLIST(class.&Type)"},
        {"&Val &obj.&Type DEFAULT { v }", "Val*={ v } FIELDLIST(class.&obj.&Type)"}};
    for (const ClassCase& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(typeOf(std::string("CLASS { ") + row.text + ", &last NULL }"),
                  std::string("CLASS{") + row.shape + ", last NULL}");
    }
}

TEST_F(Classes, FlagsTellTheKindOfField) {
    parseBody("C ::= CLASS { &id INTEGER UNIQUE, &Set C OPTIONAL, &val &Type, &Vals &Type }");
    TNode field = typeAt(TNodeNr{typeAt(head("C")).ref});
    EXPECT_EQ(field.checkFlags, CF_UNIQUE);
    EXPECT_LT(field.name, 0);
    field = typeAt(TNodeNr{field.next});
    EXPECT_EQ(field.nodeFlags, NF_SET);
    EXPECT_GT(field.name, 0);
    field = typeAt(TNodeNr{field.next});
    EXPECT_EQ(field.nodeFlags, NF_VARIABLE);
    EXPECT_EQ(TNodeNr{field.ref}, head("C"));
    field = typeAt(TNodeNr{field.next});
    EXPECT_EQ(field.nodeFlags, NF_SET | NF_VARIABLE);
    EXPECT_EQ(field.next, 0U);
}

TEST_F(Classes, SyntaxIsAListWithNestedGroups) {
    constexpr ClassCase cases[] = {
        {"&Type IDENTIFIED BY &id", "&Type IDENTIFIED 'BY' &id"},
        {"ID &id [PRIORITY &Type]", "ID &id [PRIORITY &Type]"},
        {"[A &id] , [BMPString [&Type]] END", "[A &id] ',' ['BMPString' [&Type]] 'END'"},
        {"[[&id]]", "[[&id]]"},
        {"[A [B [C &id]]] &Type", "[A [B [C &id]]] &Type"},
        {"[[A] [B]] [[C]]", "[[A] [B]] [[C]]"},
        {"RETURN-CODE &id", "RETURN_CODE &id"}};
    for (const ClassCase& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(syntaxOf(row.text), row.shape);
    }
}

TEST_F(Classes, MistakesInSyntaxAreReported) {
    constexpr ClassCase cases[] = {{"&id Alias &Type", "2: Lower case letters not allowed: lias\n"},
                                   {"", "2: } is not allowed after:\n"},
                                   {"[ ]", "2: ] is not allowed after:\n"},
                                   {"[ &id", "2: ] is expected after:\n"},
                                   {"&id | &Type", "2: } is expected after:\n"}};
    for (const ClassCase& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(syntaxOf(row.text), row.shape);
    }
}

TEST_F(Classes, NameHasNoLowerCaseLetters) {
    parseBody("My-class ::= CLASS { &id INTEGER }\nMY-CLASS-2 ::= CLASS { &id INTEGER }");
    EXPECT_EQ(errors(), "2: Lower case letters not allowed: y_class\n");
}

TEST_F(Classes, MistakesInFieldsAreReported) {
    constexpr ClassCase cases[] = {
        {"{ }", "2: } is not allowed after:\n"},
        {"{ &id }", "2: } is not allowed after:\n"},
        {"{ &Type UNIQUE }", "2: UNIQUE is not allowed after:\n"},
        {"{ &id INTEGER, }", "2: } is not allowed after:\n"},
        {"{ &id INTEGER } WITH { &id }", "2: SYNTAX is expected after:\n"},
        {"{ &id INTEGER } ,", "2: , is not allowed after:\n"}};
    for (const ClassCase& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(typeOf(std::string("CLASS ") + row.text).substr(0, std::string(row.shape).size()),
                  row.shape);
    }
}

TEST_F(Classes, GroupsNest500LevelsDeepAndNoDeeper) {
    const auto nested = [](size_t levels) {
        std::string text;
        for (size_t i = 0; i < levels; ++i) text += "[A ";
        return text + "&id" + std::string(levels, ']');
    };
    EXPECT_EQ(syntaxOf(nested(500)).size(), 500 * 4 + 3);
    EXPECT_EQ(syntaxOf(nested(501)), "2: [ is not allowed after:\n");
}

} // namespace
} // namespace orvo
