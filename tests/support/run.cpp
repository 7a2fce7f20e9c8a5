#include "support/run.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvo::test {
namespace {

constexpr unsigned secondsPerRun = 60;

std::string readAll(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

/// A stream of the child, caught in a file without a name.
struct Catch {
    std::FILE* file = std::tmpfile();
    std::string take() {
        std::rewind(file);
        std::string text;
        for (int c = std::getc(file); c != EOF; c = std::getc(file)) text += static_cast<char>(c);
        std::fclose(file);
        return text;
    }
};

std::vector<char*> pointersOf(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

[[noreturn]] void beProgram(const std::string& program, const std::filesystem::path& dir,
                            std::vector<char*>& arguments,
                            const std::vector<std::string>& environment, int out, int err) {
    unsetenv("VEXO_PRINT_ASN_OPTIONS");
    for (const std::string& text : environment) {
        const size_t equals = text.find('=');
        setenv(text.substr(0, equals).c_str(), text.substr(equals + 1).c_str(), 1);
    }
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    alarm(secondsPerRun);
    const int nothing = open("/dev/null", O_RDONLY);
    if (chdir(dir.c_str()) == 0 && dup2(nothing, 0) == 0 && dup2(out, 1) == 1 && dup2(err, 2) == 2)
        execv(program.c_str(), arguments.data());
    _exit(127);
}

int statusOf(pid_t child) {
    int status = 0;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

RunResult runIn(std::shared_ptr<TempDir> dir, const std::string& program,
                std::vector<std::string> arguments, const std::vector<std::string>& environment) {
    arguments.insert(arguments.begin(), std::filesystem::path(program).filename());
    std::vector<char*> pointers = pointersOf(arguments);
    Catch out, err;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child < 0) throw std::runtime_error("fork failed");
    if (child == 0)
        beProgram(program, dir->path(), pointers, environment, fileno(out.file), fileno(err.file));
    RunResult run;
    run.status = statusOf(child);
    run.out = out.take();
    run.err = err.take();
    run.dir = std::move(dir);
    return run;
}

bool isSourceLine(const std::string& line) {
    const size_t colon = line.find(":  ");
    return colon != std::string::npos && colon >= 5 &&
           line.find_first_not_of(" 0123456789") == colon;
}
bool isDiagnostic(const std::string& line) {
    return line.starts_with(" *** ERROR on line ") || line.starts_with("  ** ERROR on line ") ||
           line.starts_with("  ** WARNING  line ");
}

} // namespace

TempDir::TempDir() {
    std::string name = std::filesystem::temp_directory_path() / "orvo-run-XXXXXX";
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = name;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

void TempDir::write(const SourceFile& file) const {
    const auto path = path_ / file.name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << file.text;
}

std::string RunResult::file(const std::string& name) const {
    return readAll(dir->path() / name);
}

bool RunResult::has(const std::string& name) const {
    return std::filesystem::exists(dir->path() / name);
}

std::string RunResult::listing(const std::string& prefix) const {
    return maskTimeStamp(file(prefix + ".lst"));
}

std::string RunResult::diagnostics(const std::string& prefix) const {
    std::istringstream lines(file(prefix + ".lst"));
    std::string found;
    bool contextMayFollow = false;
    for (std::string line; std::getline(lines, line);) {
        const bool starts = isDiagnostic(line);
        if (starts || (contextMayFollow && !line.empty() && !isSourceLine(line)))
            found += line + "\n";
        contextMayFollow = starts && line.starts_with(" ***");
    }
    return found;
}

std::string RunResult::tree(const std::string& prefix) const {
    return file(prefix + ".stx");
}

RunResult runProgram(const std::string& program, const std::vector<SourceFile>& files,
                     const std::vector<std::string>& arguments,
                     const std::vector<std::string>& environment) {
    auto dir = std::make_shared<TempDir>();
    for (const SourceFile& file : files) dir->write(file);
    return runIn(std::move(dir), program, arguments, environment);
}

RunResult runOrvo(const std::vector<SourceFile>& files, const std::vector<std::string>& arguments,
                  const std::vector<std::string>& environment) {
    return runProgram(ORVO_PROGRAM, files, arguments, environment);
}

RunResult compile(const std::vector<SourceFile>& files, std::vector<std::string> options) {
    options.push_back(files.at(0).name);
    return runOrvo(files, options);
}

RunResult runAgain(const RunResult& earlier, const std::vector<std::string>& arguments,
                   const std::vector<std::string>& environment) {
    return runIn(earlier.dir, ORVO_PROGRAM, arguments, environment);
}

std::string maskTimeStamp(std::string text) {
    constexpr std::string_view lead = "Processed by ORVO 2.13 on ";
    for (size_t at = text.find(lead); at != std::string::npos; at = text.find(lead, at)) {
        at += lead.size();
        const size_t end = text.find('\n', at);
        const std::string stamp = text.substr(at, end - at);
        // "DD.MM.YYYY at H:MM.SS" or one digit more; anything else stays and makes the test fail
        std::string form = stamp;
        for (char& c : form) c = c >= '0' && c <= '9' ? '9' : c;
        if (form == "99.99.9999 at 9:99.99" || form == "99.99.9999 at 99:99.99")
            text.replace(at, stamp.size(), "DATE");
    }
    return text;
}

} // namespace orvo::test
