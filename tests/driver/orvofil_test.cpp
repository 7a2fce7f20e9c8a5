#include "driver/orvofil.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace orvo
