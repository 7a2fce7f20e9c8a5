// Outputs appear whole or not at all.

#include "util/outfile.h"

#include <gtest/gtest.h>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "support/run.h"

namespace orvo::test {
namespace {

std::string textOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path).rdbuf();
    return text.str();
}

size_t filesIn(const std::string& folder) {
    return static_cast<size_t>(std::ranges::distance(std::filesystem::directory_iterator(folder)));
}

class Outfile : public testing::Test {
  protected:
    TempDir folder;
    std::string path = folder.path().string() + "/m.stx";
};

TEST_F(Outfile, TakesThePlaceOfAnEarlierOneWhenItIsWhole) {
    std::ofstream(path) << "earlier";
    chmod(path.c_str(), 0640);
    std::FILE* file = openOutput(path, "wb");
    ASSERT_NE(file, nullptr);
    std::fputs("new", file);
    EXPECT_EQ(textOf(path), "earlier");
    EXPECT_TRUE(closeOutput(file));
    EXPECT_EQ(textOf(path), "new");
    struct stat status = {};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0640U);
    EXPECT_EQ(filesIn(folder.path().string()), 1U);
}

TEST_F(Outfile, FollowsLinksAndWritesWhatIsNoRegularFileDirectly) {
    std::ofstream(path) << "earlier";
    const std::string link = folder.path().string() + "/link.stx";
    std::filesystem::create_symlink("m.stx", link);
    std::FILE* file = openOutput(link, "w");
    ASSERT_NE(file, nullptr);
    std::fputs("new", file);
    EXPECT_TRUE(closeOutput(file));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
    EXPECT_EQ(textOf(path), "new");
    file = openOutput("/dev/full", "w");
    ASSERT_NE(file, nullptr);
    std::fputs("text", file);
    EXPECT_FALSE(closeOutput(file));
    EXPECT_EQ(openOutput(folder.path().string() + "/none/m.stx", "w"), nullptr);
    EXPECT_EQ(filesIn(folder.path().string()), 2U);
}

TEST_F(Outfile, LeavesNothingOfAFailure) {
    std::ofstream(path) << "earlier";
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small = {1000, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &small);
    std::FILE* file = openOutput(path, "w");
    std::fputs(std::string(5000, 'x').c_str(), file);
    const bool closed = closeOutput(file);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_FALSE(closed);
    EXPECT_EQ(textOf(path), "earlier");
    EXPECT_EQ(filesIn(folder.path().string()), 1U);
}

TEST_F(Outfile, LeavesNothingOfAnInterruptedRun) {
    for (const int signal : {SIGINT, SIGTERM, SIGPIPE, SIGHUP}) {
        const pid_t child = fork();
        if (child == 0) {
            dropOutputsOnSignals();
            std::FILE* file = openOutput(path, "w");
            if (file == nullptr || filesIn(folder.path().string()) != 1) _exit(1);
            std::raise(signal);
            _exit(2);
        }
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
        EXPECT_EQ(filesIn(folder.path().string()), 0U);
    }
}

} // namespace
} // namespace orvo::test
