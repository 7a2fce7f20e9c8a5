#pragma once

// Runs of the built program. Tests of runs live in namespace orvo::test.

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvo::test {

/// A file of a run; the name is relative to the run's directory, folders in it are made.
struct SourceFile {
    std::string name;
    std::string text;
};

/// A directory that is removed with its last owner.
class TempDir {
  public:
    TempDir();
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    ~TempDir();
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }
    void write(const SourceFile& file) const;

  private:
    std::filesystem::path path_;
};

/// What a run of the program left behind. Copies share its directory.
struct RunResult {
    int status =
        -1; // exit status; 128 + signal when it was killed (also after a minute without end)
    std::string out, err;
    std::shared_ptr<TempDir> dir;

    /// A file of the run's directory, byte by byte; empty when there is none.
    [[nodiscard]] std::string file(const std::string& name) const;
    [[nodiscard]] bool has(const std::string& name) const;
    /// The listing PREFIX.lst with the time stamp made "on DATE".
    [[nodiscard]] std::string listing(const std::string& prefix) const;
    /// The lines of that listing which are diagnostics (of a syntax error both).
    [[nodiscard]] std::string diagnostics(const std::string& prefix) const;
    /// The bytes of the tree file PREFIX.stx.
    [[nodiscard]] std::string tree(const std::string& prefix) const;
};

/// Runs a program, given by its path, in a fresh directory that holds the files. `environment` adds
/// "NAME=value" texts.
RunResult runProgram(const std::string& program, const std::vector<SourceFile>& files,
                     const std::vector<std::string>& arguments,
                     const std::vector<std::string>& environment = {});
/// The same with the compiler.
RunResult runOrvo(const std::vector<SourceFile>& files, const std::vector<std::string>& arguments,
                  const std::vector<std::string>& environment = {});
/// Compiles the first file, with options in front of its name.
RunResult compile(const std::vector<SourceFile>& files, std::vector<std::string> options = {});
/// Runs the compiler in the directory of an earlier run.
RunResult runAgain(const RunResult& earlier, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment = {});

/// "Processed by ORVO 2.13 on 1.2.2026 at 9:15.00" becomes "Processed by ORVO 2.13 on DATE".
std::string maskTimeStamp(std::string text);

} // namespace orvo::test
