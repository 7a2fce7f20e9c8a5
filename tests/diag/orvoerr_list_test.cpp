#include "diag/orvoerr_list.h"

#include <gtest/gtest.h>

#include "diag/orvoerr.h"
#include "util/guard.h"

namespace orvo {
namespace {

/// What the function writes to a stream.
template <typename Fn> std::string written(Fn&& fn) {
    const File file(std::tmpfile());
    fn(file.get());
    std::rewind(file.get());
    std::string text;
    for (int c = std::getc(file.get()); c != EOF; c = std::getc(file.get()))
        text += static_cast<char>(c);
    return text;
}

class Listing : public testing::Test {
  protected:
    Listing() : currentModule(cMP, &module), verbosity(run.verboseEx, 3) {}
    std::string list(bool numberLines, std::string_view text) {
        return written([&](std::FILE* out) { printListing(out, numberLines, nullptr, text); });
    }
    std::string listFile(const std::string& text) {
        const File source(std::tmpfile());
        std::fwrite(text.data(), 1, text.size(), source.get());
        std::rewind(source.get());
        return written([&](std::FILE* out) { printListing(out, true, source.get(), {}); });
    }
    void add(ErrClass errClass, uint32_t line) {
        recordError(&module, errClass,
                    errClass == ERR_WARNING ? Msg::OptionsIgnored : Msg::IncompatibleTypes, line);
    }

    ModuleRec module;
    Restore<ModuleRec*> currentModule;
    Restore<int32_t> verbosity;
};

TEST_F(Listing, PutsEveryDiagnosticBehindItsLine) {
    add(ERR_SEMANTIC, 2);
    add(ERR_SEMANTIC, 0);
    add(ERR_SEMANTIC, 9);
    const std::string expected = "  ** ERROR on line   0 : Incompatible types\n"
                                 "    1:  one\n"
                                 "    2:  two\n"
                                 "  ** ERROR on line   2 : Incompatible types\n"
                                 "    3:  three\n"
                                 "  ** ERROR on line   9 : Incompatible types\n";
    EXPECT_EQ(list(true, "one\ntwo\nthree"), expected);
    EXPECT_EQ(listFile("one\ntwo\nthree"), expected);
}

TEST_F(Listing, KeepsLongLinesAndForeignBytes) {
    const std::string line = std::string(40000, 'x') + std::string("\0\xff\r", 3);
    EXPECT_EQ(listFile(line + "\n\n"), "    1:  " + line + "\n    2:  \n");
}

TEST_F(Listing, HidesWarningsAtVerbosityOne) {
    add(ERR_WARNING, 1);
    add(ERR_SEMANTIC, 1);
    const std::string error = "  ** ERROR on line   1 : Incompatible types\n";
    run.verboseEx = 1;
    EXPECT_EQ(list(true, "a\n"), "    1:  a\n" + error);
    run.verboseEx = 2;
    EXPECT_EQ(list(true, "a\n"),
              "    1:  a\n  ** WARNING  line   1 : $Option(s) ignored\n" + error);
}

} // namespace
} // namespace orvo
