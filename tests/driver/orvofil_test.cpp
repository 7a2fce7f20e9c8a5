#include "driver/orvofil.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "support/run.h"
#include "tree/orvorec.h"

namespace orvo {
namespace {

constexpr struct {
    const char *name, *source, *listing;
} nameCases[] = {
    {"foo", "foo.asn", "foo.lst"},
    {"foo.txt", "foo.txt", "foo.lst"},
    {"a.b/foo", "a.b/foo.asn", "a.b/foo.lst"},
    {"a.b/foo.x.y", "a.b/foo.x.y", "a.b/foo.x.lst"},
    {"/.hidden", "/.hidden", "/.lst"},
    {"dir/", "dir/.asn", "dir/.lst"},
};

TEST(FileNames, ExtensionCountsFromTheLastPointOfTheLastPart) {
    for (const auto& [name, source, listing] : nameCases) {
        SCOPED_TRACE(name);
        EXPECT_EQ(setFileName(name, ".asn", false), source);
        EXPECT_EQ(setFileName(name, ".lst", true), listing);
    }
}

TEST(SearchPath, TheFirstDirectoryThatHasTheFileCounts) {
    const test::TempDir dir;
    dir.write({"a/other.asn", ""});
    dir.write({"b/x.asn", "b"});
    dir.write({"c/x.asn", "c"});
    std::filesystem::create_directories(dir.path() / "a/x.asn"); // a directory is no source
    const std::string root = dir.path().string() + "/";
    std::vector<std::string> path;
    addDirToSearchPath(path, "");
    for (const char* part : {"a/", "b/", "c/"}) addDirToSearchPath(path, root + part);
    ASSERT_EQ(path.size(), 3U);

    std::string found = "unset";
    std::FILE* file = fopenTextFileInSearchPathForRd(path, "x.asn", found);
    EXPECT_EQ(found, root + "b/");
    closeFile(file, "");
    EXPECT_EQ(file, nullptr);
    file = fopenTextFileInSearchPathForRd(path, root + "c/x.asn", found);
    EXPECT_EQ(found, "");
    closeFile(file, "");
}

} // namespace
} // namespace orvo
