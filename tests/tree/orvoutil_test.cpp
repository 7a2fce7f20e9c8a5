#include "tree/orvoutil.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "support/store.h"
#include "tree/orvoutil_mem.h"
#include "tree/orvoutil_wstr.h"

namespace orvo {
namespace {

using Lists = StoreTest;
using ListsDeathTest = StoreTest;

TEST(MemoryDeathTest, NothingIsAllocatedForNothing) {
    const auto dies = testing::ExitedWithCode(2);
    const char* zero = "Internal error\n.*Allocation request 0 bytes\\.";
    const char* null = "Internal error\n.*NULL pointer duplication\\.";
    EXPECT_EXIT((void)ezalloc(0), dies, zero);
    EXPECT_EXIT((void)ecalloc(0, 4), dies, zero);
    EXPECT_EXIT((void)ecalloc(4, 0), dies, zero);
    EXPECT_EXIT((void)erealloc(nullptr, 0), dies, zero);
    EXPECT_EXIT((void)estrdup(nullptr), dies, null);
    EXPECT_EXIT((void)ememdup("x", 0), dies, null);
}

TEST(Memory, CachesRecycleRecordsInBatchesOfTen) {
    struct Rec {
        int number;
        const char* text;
    };
    GenericCache<Rec> cache;
    std::set<Rec*> seen;
    for (int i = 0; i < 10; ++i) {
        Rec* rec = genericCacheAlloc(cache);
        rec->number = i + 1;
        EXPECT_TRUE(seen.insert(rec).second);
    }
    EXPECT_EQ(cache.batches.size(), 1U);
    Rec* back = *seen.begin();
    genericCacheFree(back, cache);
    EXPECT_EQ(genericCacheAlloc(cache), back);
    EXPECT_EQ(back->number, 0);
    EXPECT_FALSE(seen.contains(genericCacheAlloc(cache)));
    EXPECT_EQ(cache.batches.size(), 2U);
}

TEST_F(Lists, UniqueNodesArePushedOnce) {
    NodeList list{.kind = NODES_VALUE};
    const VNodeNr first = newRec<KIND_VNODE>();
    addFstNode(list);
    EXPECT_FALSE(pushNodeUnique(list));
    newRec<KIND_VNODE>();
    EXPECT_TRUE(pushNodeUnique(list));
    addFstNode(list); // on it twice now
    delFstNode(list);
    EXPECT_FALSE(pushNodeUnique(list));
    delFstNode(list);
    EXPECT_TRUE(pushNodeUnique(list));
    changeCMP(&b);
    newRec<KIND_VNODE>();
    EXPECT_TRUE(pushNodeUnique(list)); // the same number in another module
    NodeList other{.kind = NODES_VALUE};
    mvFstNode(other, list);
    EXPECT_EQ(other.nodes.back(), (NodeRef{&b, 1}));
    EXPECT_FALSE(containsNode(list, {&b, 1}));
    EXPECT_TRUE(containsNode(list, {&a, first.nr}));
    deleteNodes(list);
    EXPECT_FALSE(containsNode(list, {&a, first.nr}));
}

TEST_F(Lists, EnclosingStructuresAreReadFromTheEnds) {
    NodeList types{.kind = NODES_TYPE}, constraints{.kind = NODES_SUB};
    EXPECT_FALSE(outerEnclStru(types));
    EXPECT_FALSE(innerEnclStru(types));
    newRec<KIND_SUB>();
    addFstNode(constraints);
    EXPECT_FALSE(outerEnclStru(constraints));
    const TNodeNr outer = newRec<KIND_TNODE>();
    addFstNode(types);
    EXPECT_FALSE(innerEnclStru(types)); // the outermost has none around it
    const TNodeNr inner = newRec<KIND_TNODE>();
    addFstNode(types);
    newRec<KIND_TNODE>();
    EXPECT_TRUE(innerEnclStru(types));
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, inner);
    EXPECT_TRUE(innerEnclStru(types));
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, outer);
    EXPECT_TRUE(outerEnclStru(types));
    EXPECT_EQ(currentRec<KIND_TNODE>().nr, outer);
}

TEST_F(ListsDeathTest, NothingComesOffAnEmptyList) {
    NodeList list, other;
    EXPECT_EXIT(delFstNode(list), testing::ExitedWithCode(2), "Internal error");
    EXPECT_EXIT(mvFstNode(other, list), testing::ExitedWithCode(2), "Internal error");
}

TEST_F(Lists, DynaNodesAreRecycledWithTheirChildren) {
    DynaNode *head = nullptr, *tail = nullptr;
    std::set<DynaNode*> made;
    newRec<KIND_TNODE>();
    for (int i = 0; i < 3; ++i) {
        DynaNode* entry = insDynaNode(head, tail);
        made.insert(entry);
        for (int child = 0; child < 2; ++child) made.insert(insDynaNode(entry->head, entry->tail));
    }
    EXPECT_EQ(made.size(), 9U);
    EXPECT_EQ(head->next->next, tail);
    EXPECT_EQ(tail->mode, 5);
    EXPECT_EQ(tail->value, -1);
    EXPECT_EQ(tail->nr, 1U);
    EXPECT_EQ(tail->module, &a);
    delDynaNodes(head, tail);
    EXPECT_EQ(head, nullptr);
    for (int i = 0; i < 9; ++i) EXPECT_TRUE(made.contains(insDynaNode(head, tail)));
    delDynaNodes(head, tail);
}

TEST(Names, ComparisonIgnoresCaseUpToTheGivenLength) {
    EXPECT_EQ(strCaseComp("aBc", "AbC"), 0);
    EXPECT_LT(strCaseComp("ab", "ABC"), 0);
    EXPECT_GT(strCaseComp("B", "a"), 0);
    EXPECT_EQ(strnCaseComp("PREFIX=x", "prefix=", 7), 0);
    EXPECT_NE(strnCaseComp("pre", "prefix=", 7), 0);
    EXPECT_EQ(strnCaseComp("pre", "PRE", 7), 0);
    EXPECT_EQ(strnCaseComp("a", "b", 0), 0);
}

TEST(Names, PrefixesAreFiveCharactersInLowerCase) {
    EXPECT_EQ(str2prefix("My_Module"), "my-mo");
    EXPECT_EQ(str2prefix("AB"), "ab");
    EXPECT_EQ(convertHyphens("a-b-"), "a_b_");
    EXPECT_EQ(remSpaces(" \t-A=x y \r\n"), "-A=x y");
    EXPECT_EQ(remSpaces(" \n "), "");
}

TEST(WideStrings, EndAtTheirTerminator) {
    std::u16string text;
    strcpy16(text, std::u16string_view(u"ab\0c", 4));
    strcat16(text, u"\x3042");
    EXPECT_EQ(text, u"ab\x3042");
    EXPECT_EQ(strlen32(std::u32string_view(U"ab\0c", 4)), 2U);
    EXPECT_EQ(strchr16(u"abcb", u'b'), u"bcb");
    EXPECT_EQ(strchr32(U"abc", U'x').data(), nullptr);
    EXPECT_EQ(strcmp16(u"a\x3042", u"a\x3040"), 2);
    EXPECT_EQ(strcmp16(u"a", u"ab"), -int{u'b'});
    EXPECT_EQ(strcmp16(u"", std::u16string_view(u"\0z", 2)), 0);
    EXPECT_EQ(strcmp32(U"a", U"b"), 1);
}

} // namespace
} // namespace orvo
