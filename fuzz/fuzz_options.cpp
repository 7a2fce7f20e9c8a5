// Command lines and option files: the first text of an input holds the arguments, one a line, the
// second and the third the option files "o" and "p", the fourth m.asn in place of the module that
// is there otherwise.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "driver/orvo.h"
#include "mutate.h"
#include "options/orvoopt_glb.h"
#include "process.h"

namespace {

constexpr std::string_view otherModule = "N DEFINITIONS ::= BEGIN\nU ::= INTEGER (0..9)\nEND\n";
constexpr std::string_view givenModule =
    "--$INT=U8 $NAMELEN=64-- M DEFINITIONS AUTOMATIC TAGS ::= BEGIN IMPORTS U FROM N;\n"
    "T ::= SEQUENCE { a INTEGER (0..5) --$INT=U16 $CNAME=x--, b SEQUENCE OF U --$DYNARR--,\n"
    "  c CHOICE { d REAL, e BOOLEAN } --$CHOICE=8-- } --$ENTRY=PDU $TPREF=p_--\n"
    "v T ::= { a 1, b {2}, c e : TRUE } --$VCONV=HU--\nC ::= CLASS { &id INTEGER } --$CLNAME=k--\n"
    "END\n";

/// The table of options, each with every value that it names, and without.
std::vector<std::string> optionLines() {
    std::vector<std::string> lines = {"+o",
                                      "+p",
                                      "m",
                                      "n",
                                      "m.asn",
                                      "-BEGIN-SCOPE=m",
                                      "-END-SCOPE",
                                      "-PREFIX=M:m",
                                      "-PREFIX=N:n:g",
                                      "# x",
                                      "-END-OF-OPTIONS"};
    for (const orvo::GlbOption& row : orvo::glbOptions()) {
        const std::string name = "-" + std::string(row.name);
        std::string values = orvo::optionValues(row);
        lines.push_back(name);
        for (size_t at = 0; at < values.size();) {
            const size_t end = std::min(values.find('|', at), values.size());
            lines.push_back(name + values.substr(at, end - at));
            at = end + 1;
        }
    }
    return lines;
}

} // namespace

void fuzz::change(std::string& input, Dice& dice) {
    static const std::vector<std::string> words = optionLines();
    std::vector<std::string> texts = fuzz::split(input);
    if (texts.size() < 4 && dice.oneIn(8)) texts.emplace_back(texts.size() == 3 ? givenModule : "");
    std::string& text = dice.of(texts);
    if (&text - texts.data() == 3) {
        std::vector<std::string> modules = {text};
        fuzz::mutateModules(modules, dice);
        text = modules[0];
    } else {
        fuzz::mutateLines(text, words, dice);
    }
    input = fuzz::join(texts);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<std::string> texts = fuzz::split({reinterpret_cast<const char*>(data), size});
    texts.resize(4);
    std::vector<std::string> arguments = {"orvo"};
    for (size_t at = 0; at < texts[0].size();) {
        const size_t end = std::min(texts[0].find('\n', at), texts[0].size());
        arguments.emplace_back(texts[0].substr(at, end - at).c_str()); // ends at a zero byte
        at = end + 1;
    }
    fuzz::writeFile("o", texts[1]);
    fuzz::writeFile("p", texts[2]);
    fuzz::writeFile("m.asn", texts[3].empty() ? givenModule : texts[3]);
    fuzz::writeFile("n.asn", otherModule);
    const int status = fuzz::runAsProcess(orvo::orvo_main, arguments);
    if (status < 0 || status > 2) fuzz::finding("status " + std::to_string(status));
    fuzz::removeFiles();
    return 0;
}
