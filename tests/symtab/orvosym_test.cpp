// Symbol tables: what look-ups find first, replaced symbols, formal parameters, named numbers,
// uses.

#include "symtab/orvosym.h"

#include "support/store.h"
#include "symtab/orvosym_imp.h"
#include "tree/orvoutil.h"
#include "tree/types.h"
#include "tree/values.h"

namespace orvo {
namespace {

class SymbolTables : public StoreTest {
  protected:
    SymbolTables() {
        a.moduleName = "A";
        b.moduleName = "B";
    }
    ~SymbolTables() override { resetSymbols(); }
    int32_t type(const char* name) { return static_cast<int32_t>(putStri(cMP, name).nr); }
    int32_t value(const char* name) { return -type(name); }
    STabNr define(int32_t name) {
        const STabNr symbol = updateSymbTab(name, 0, 1);
        addTypeArc(nullptr, 1);
        return symbol;
    }
    /// The names of a list, in order.
    std::string namesOf(STabNr nr) {
        std::string names;
        for (; nr; nr = STabNr{symAt(nr).next})
            names += std::string(getStri(cMP, symAt(nr).name)) + " ";
        return names;
    }
};

// The list is long enough to be indexed, and grows after it was.
TEST_F(SymbolTables, FormalParametersAreFoundByNameAndPlace) {
    SymTab formals;
    const auto add = [&](int from, int to) {
        for (int i = from; i <= to; ++i)
            handleSymbol(formals, type(("F" + std::to_string(i)).c_str()), SYM_FORMAL, 1);
    };
    add(1, 30);
    handleSymbol(formals, type("F20"), SYM_FORMAL, 2); // reported, and never found
    add(31, 40);
    for (const int place : {1, 8, 9, 20, 40}) {
        int32_t moduleRef = 0, name = type(("F" + std::to_string(place)).c_str());
        EXPECT_TRUE(handleDefined(formals.first, moduleRef, name));
        EXPECT_EQ(moduleRef, REF_FORMAL);
        EXPECT_EQ(name, place <= 30 ? place : place + 1);
        EXPECT_NE(
            symAt(formalAt(formals.first, static_cast<uint32_t>(name))).flags & SYM_FORMAL_USED, 0);
    }
    add(41, 41);
    int32_t moduleRef = 0, name = type("F41");
    EXPECT_TRUE(handleDefined(formals.first, moduleRef, name));
    EXPECT_EQ(name, 42);
    EXPECT_FALSE(formalAt(formals.first, 43));
    EXPECT_FALSE(handleDefined(STabNr{}, moduleRef, name));
    EXPECT_EQ(symAt(formalAt(formals.first, 2)).flags & SYM_FORMAL_USED, 0);
    EXPECT_EQ(a.nbSemErrors, 1);
}

} // namespace
} // namespace orvo
