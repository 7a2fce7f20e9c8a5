// kavrimol: the first byte of an input chooses what it is to do, the rest are texts in files. What
// it says must be said with the right status, and an option file that it writes must be one.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "kavrimol/kavrimol.h"
#include "mutate.h"
#include "process.h"

namespace {

void run(const std::vector<std::string>& arguments) {
    const kavrimol::Result result = kavrimol::run(arguments);
    if (result.status < 0 || result.status > 2 || (result.status != 0 && result.err.empty()))
        fuzz::finding("status " + std::to_string(result.status) + ": " + result.err);
}

} // namespace

void fuzz::change(std::string& input, Dice& dice) {
    if (input.empty()) input = "0M DEFINITIONS ::= BEGIN END";
    if (dice.oneIn(10)) input[0] = static_cast<char>('0' + dice.below(16));
    std::vector<std::string> modules = fuzz::split(std::string_view(input).substr(1));
    fuzz::mutateModules(modules, dice);
    input = input.substr(0, 1) + fuzz::join(modules);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const unsigned flags = static_cast<unsigned>(data[0] - '0');
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::vector<std::string> arguments;
    if ((flags & 2) != 0) arguments.emplace_back("-PREFIXLEN=3");
    if ((flags & 4) != 0) arguments.emplace_back("-A=.");
    if ((flags & 8) != 0) arguments.emplace_back("-STANDARD-VERSION=2021");
    char file[] = "a.asn"; // b.asn, ...
    for (const std::string& module : fuzz::split(text)) {
        fuzz::writeFile(file, module);
        if (file[0] == 'a' || (flags & 4) == 0) arguments.emplace_back(file);
        if (++file[0] > 'h') break;
    }
    if ((flags & 1) == 0) {
        arguments.emplace_back("-option-file=x.opt");
        run(arguments);
    } else {
        arguments.emplace_back("-split=s");
        run(arguments);
        run(arguments); // the files are there now, and the same
    }
    fuzz::removeFiles();
    return 0;
}
