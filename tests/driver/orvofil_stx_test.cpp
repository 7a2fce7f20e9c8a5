#include "driver/orvofil_stx.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "support/run.h"
#include "support/store.h"
#include "util/guard.h"

namespace orvo {
namespace {

/// Bytes written as hexadecimal digits; blanks are free, "*N" repeats the byte before N times in
/// all.
std::string bytes(const std::string& hex) {
    std::istringstream words(hex);
    std::string result;
    for (std::string word; words >> word;) {
        if (word.front() == '*') {
            result.append(std::stoul(word.substr(1)) - 1, result.back());
            continue;
        }
        for (size_t at = 0; at < word.size(); at += 2)
            result += static_cast<char>(std::stoi(word.substr(at, 2), nullptr, 16));
    }
    return result;
}

class TreeFile : public StoreTest {
  protected:
    TreeFile() : treeDir(run.stxDir, dir.path().string() + "/") { a.generationPrefix = "abc"; }
    /// Stores the module's own node with the counts of what is there, and writes the file.
    std::string write() {
        flushRecs(-1);
        mNode = {};
        a.nextRecNr[KIND_MNODE] = 2;
        for (int kind = 0; kind < fileKindCount; ++kind)
            mNode.recCount[kind] = a.nextRecNr[kind] - 1;
        mNode.modTimeStamp = {213, 213, 20260907, 70503};
        mNode.modName = 1;
        mNode.exportsState = 2;
        mNode.importsState = 0x21;
        mNode.modWords[5] = 0x01020304;
        writeRec(&a, MNodeNr{1});
        writeTree(&a);
        std::ifstream in(dir.path() / "abc.stx", std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    }

    test::TempDir dir;
    Restore<std::string> treeDir;
};

TEST_F(TreeFile, IsTheRecordsByKindInLittleEndianOrder) {
    putStri(&a, "M");
    putStri(&a, "");
    putStri16(&a, u"\u00e4\u2260");
    putStri32(&a, U"\U0001F600");
    newRec<KIND_VNODE>();
    vNode.name = -2;
    vNode.valStatus = 100;
    vNode.valCode = TYP_REAL;
    vNode.val.real = {{-1, 0xFFFFFFFE}, 10, -3};
    newRec<KIND_VNODE>();
    vNode.valCode = TYP_BITSTR;
    vNode.val.str = {0x0102, 0, 7, 0};
    newRec<KIND_VNODE>();
    vNode.valCode = TYP_BOOLEAN;
    vNode.val.boole = 1;
    newRec<KIND_TAG>();
    tagRec = {TAG_PRIVATE, TAGMODE_EXPLICIT, 2097151, 0};
    newRec<KIND_TED>();
    tedRec.tedKind = 3;
    tedRec.text = 2;

    const std::string expected =
        // the module's node: time stamp, name, chains, counts, states, source, words
        "d500 d500 2b283501 67130100 01000000 00 *20 "
        "01000000 00000000 03000000 01000000 00000000 01000000 00000000 02000000 01000000 01000000 "
        "02 21 00 00 00 *28 04030201 "
        // three values: REAL, BIT STRING, BOOLEAN
        "feffffff 64000000 00 *30 03 00 00 *16 ffffffff feffffff 0a00 fdff 00 *8 "
        "00 *38 04 00 00 *16 0201 0000 07000000 00000000 00 *8 "
        "00 *38 00 00 00 *16 01 00 *19 "
        // a tag, an option
        "03000000 01000000 ffff1f00 00000000 "
        "03 000000 02000000 "
        // "M", "", two and one wide characters
        "0200 4d00  0100 00 "
        "0300 e400 6022 0000  0200 00f60100 00000000";
    EXPECT_EQ(write(), bytes(expected));
}

class TreeFileDeathTest : public TreeFile {};

TEST_F(TreeFileDeathTest, FailuresEndTheRun) {
    std::filesystem::create_directories(dir.path() / "abc.stx");
    EXPECT_EXIT(write(), testing::ExitedWithCode(2),
                "Can not open file for writing\n              .*/abc.stx\n\n");
    std::filesystem::remove(dir.path() / "abc.stx");
    std::filesystem::create_symlink("/dev/full", dir.path() / "abc.stx");
    EXPECT_EXIT(write(), testing::ExitedWithCode(2),
                "Can not close file\n              Syntax tree file\n\n");
    for (int i = 0; i < 10000; ++i) newRec<KIND_TAG>();
    EXPECT_EXIT(write(), testing::ExitedWithCode(2), "Can not write into file\n\n");
}

} // namespace
} // namespace orvo
