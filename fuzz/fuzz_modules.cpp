// Modules: the first byte of an input chooses options, the rest are modules. What the compiler
// makes of them must end as a run of it ends, and trees that it writes must please the reader.

#include <cctype>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "driver/orvo.h"
#include "mutate.h"
#include "process.h"
#include "stx/stxreader.h"
#include "stxdump/stxdump.h"

namespace {

enum Flag : unsigned {
    FLAG_VERSION = 3,
    FLAG_KEEP_GOING = 4,
    FLAG_LONG_NAMES = 8,
    FLAG_STRICT = 16,
    FLAG_ALLOW = 32,
};

/// The options begin at '0', so that inputs can be read: "0" none, "1" STANDARD-VERSION=2021 ...
std::vector<std::string> optionsOf(unsigned flags) {
    constexpr const char* versions[] = {"1994", "2021", "1990", "2021"};
    std::vector<std::string> options = {"orvo", "-V=2", "-PREFIXLEN=32"};
    options.push_back(std::string("-STANDARD-VERSION=") + versions[flags & FLAG_VERSION]);
    if ((flags & FLAG_VERSION) == 3) options.emplace_back("-LENIENT=YES");
    if ((flags & FLAG_KEEP_GOING) != 0) options.emplace_back("-KEEP-GOING=YES");
    if ((flags & FLAG_LONG_NAMES) != 0) options.emplace_back("-NAMELEN=128");
    if ((flags & FLAG_ALLOW) != 0) options.emplace_back("-ALLOW");
    if ((flags & FLAG_STRICT) != 0)
        options.insert(options.end(), {"-RECURSION=ERROR", "-TAGUSAGE=WARNING", "-EXPLICIT=1",
                                       "-STRICTSTANDARD", "-ZOV-PREFIX=z"});
    return options;
}

/// The first word outside of comments.
std::string nameOf(std::string_view text) {
    std::string name;
    bool isComment = false;
    for (size_t at = 0; at < text.size(); ++at) {
        if (text.substr(at).starts_with("--"))
            isComment = !isComment, ++at;
        else if (text[at] == '\n')
            isComment = false;
        else if (!isComment && (std::isalnum(static_cast<unsigned char>(text[at])) != 0 ||
                                (!name.empty() && text[at] == '-')))
            name += text[at];
        else if (!name.empty())
            break;
    }
    return name.empty() ? "M" : name;
}

void checkTrees() {
    for (const std::string& name : fuzz::filesEndingIn(".stx")) {
        std::string error;
        stx::Trees trees;
        const stx::Tree* tree = trees.open(name, error, stx::Unchecked::accept);
        if (tree == nullptr)
            fuzz::finding(
                std::string("the reader does not accept ").append(name).append(": ").append(error));
        stxdump::Sink out;
        stxdump::dumpSummary(trees, *tree, out);
    }
}

} // namespace

void fuzz::change(std::string& input, Dice& dice) {
    if (input.empty()) input = "0M DEFINITIONS ::= BEGIN END";
    if (dice.oneIn(10)) input[0] = static_cast<char>('0' + dice.below(64));
    std::vector<std::string> modules = fuzz::split(std::string_view(input).substr(1));
    fuzz::mutateModules(modules, dice);
    input = input.substr(0, 1) + fuzz::join(modules);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const unsigned flags = (data[0] - '0') & 63U;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::vector<std::string> arguments = optionsOf(flags);
    char file[] = "a.asn"; // b.asn, ...
    for (const std::string& module : fuzz::split(text)) {
        fuzz::writeFile(file, module);
        if (file[0] == 'a' || (flags & FLAG_KEEP_GOING) != 0) arguments.emplace_back(file);
        if ((flags & FLAG_KEEP_GOING) == 0)
            arguments.push_back("-PREFIX=" + nameOf(module) + ":" + file[0]);
        if (++file[0] > 'h') break;
    }
    const int status = fuzz::runAsProcess(orvo::orvo_main, arguments);
    if (status < 0 || status > 2) fuzz::finding("status " + std::to_string(status));
    checkTrees();
    fuzz::removeFiles();
    return 0;
}

extern "C" size_t LLVMFuzzerCustomCrossOver(const uint8_t* data1, size_t size1,
                                            const uint8_t* data2, size_t size2, uint8_t* out,
                                            size_t maxSize, unsigned seed) {
    const auto text = [](const uint8_t* data, size_t size) {
        return std::string_view(reinterpret_cast<const char*>(data), size);
    };
    return fuzz::crossInputs(text(data1, size1), text(data2, size2), out, maxSize, seed, 1);
}
