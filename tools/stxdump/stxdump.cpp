#include "stxdump.h"

namespace stxdump {
namespace {

constexpr std::string_view helpText =
    "usage: stxdump [--all] FILE...       every record as text\n"
    "       stxdump --json FILE           every record as one JSON document\n"
    "       stxdump --summary FILE...     counts, modules, types with tags and bounds, values\n"
    "       stxdump --type NAME FILE      one definition as a tree, references followed\n"
    "       stxdump --help\n"
    "\n"
    "FILE is a syntax tree file (.stx). The text leaves out fields that say \"none\"; --all shows\n"
    "them too. For --type and --summary the files of other modules are looked for beside FILE.\n"
    "Trees of a run that had errors are not checked: bounds, tags and numbers of items are not\n"
    "filled in. They are refused; --unchecked shows them all the same.\n"
    "\n"
    "exit status: 0 done; 1 a file is damaged, not checked or cannot be read, a name is not\n"
    "defined, or the output cannot be written; 2 wrong usage\n";

enum class Mode { Text, Json, Summary, Type };

struct Request {
    Mode mode = Mode::Text;
    bool all = false;
    stx::Unchecked unchecked = stx::Unchecked::refuse;
    bool help = false;
    std::string name;
    std::vector<std::string> files;
};

/// "" or what is wrong with the arguments.
std::string readArguments(const std::vector<std::string>& arguments, Request& request) {
    bool options = true;
    const auto choose = [&](Mode mode) {
        const bool first = request.mode == Mode::Text;
        request.mode = mode;
        return first;
    };
    for (size_t at = 0; at < arguments.size(); ++at) {
        const std::string& argument = arguments[at];
        bool ok = true;
        if (!options || argument.size() < 2 || argument[0] != '-')
            request.files.push_back(argument);
        else if (argument == "--")
            options = false;
        else if (argument == "--help" || argument == "-h")
            request.help = true;
        else if (argument == "--all")
            request.all = true;
        else if (argument == "--unchecked")
            request.unchecked = stx::Unchecked::accept;
        else if (argument == "--json")
            ok = choose(Mode::Json);
        else if (argument == "--summary")
            ok = choose(Mode::Summary);
        else if (argument == "--type") {
            ok = choose(Mode::Type);
            if (++at == arguments.size()) return "--type needs a name";
            request.name = arguments[at];
        } else
            return "unknown option " + argument;
        if (!ok) return "only one of --json, --summary and --type";
    }
    if (request.help) return "";
    if (request.files.empty()) return "no file given";
    const bool single = request.mode == Mode::Json || request.mode == Mode::Type;
    return single && request.files.size() > 1 ? "only one file with --json and --type" : "";
}

bool dumpNamed(stx::Trees& trees, const stx::Tree& tree, const Request& request, Sink& out,
               std::string& error) {
    const uint32_t typeNr = stx::findType(tree, request.name);
    if (typeNr != 0) return dumpType(trees, {&tree, typeNr}, out, error);
    const uint32_t valueNr = stx::findValue(tree, request.name);
    if (valueNr != 0) {
        dumpValue(trees, {&tree, valueNr}, out);
        return true;
    }
    error = tree.path() + ": " + request.name + " is not defined in module " +
            std::string(tree.moduleName());
    return false;
}

/// The forms that follow references into other files.
bool dumpResolved(stx::Trees& trees, const stx::Tree& tree, const Request& request, Sink& out,
                  std::string& error) {
    Sink whole; // nothing is shown of what rests on a file that is not checked
    bool ok = true;
    if (request.mode == Mode::Summary)
        dumpSummary(trees, tree, whole);
    else
        ok = dumpNamed(trees, tree, request, whole, error);
    if (!trees.refused().empty()) {
        error = trees.refused();
        return false;
    }
    out.add(whole.text);
    return ok;
}

bool dumpFile(const std::string& path, const Request& request, Sink& out, std::string& error) {
    stx::Trees trees;
    const stx::Tree* tree = trees.open(path, error, request.unchecked);
    if (tree == nullptr) return false;
    switch (request.mode) {
    case Mode::Text: dumpText(*tree, request.all, out); break;
    case Mode::Json: dumpJson(*tree, out); break;
    case Mode::Summary:
    case Mode::Type: return dumpResolved(trees, *tree, request, out, error);
    }
    return true;
}

} // namespace

void Sink::flush() {
    if (stream == nullptr) return;
    failed |= std::fwrite(text.data(), 1, text.size(), stream) != text.size();
    failed |= std::fflush(stream) != 0;
    text.clear();
}

int run(const std::vector<std::string>& arguments, Sink& out, Sink& err) {
    Request request;
    const std::string wrong = readArguments(arguments, request);
    if (!wrong.empty()) {
        err.add("stxdump: " + wrong + "\nTry stxdump --help.\n");
        return 2;
    }
    bool ok = true;
    if (request.help) out.add(helpText);
    for (size_t at = 0; !request.help && at < request.files.size(); ++at) {
        std::string error;
        if (at > 0) out.add("\n");
        if (dumpFile(request.files[at], request, out, error)) continue;
        out.flush();
        err.add("stxdump: " + error + '\n');
        ok = false;
    }
    out.flush();
    if (out.failed) err.add("stxdump: the output cannot be written\n");
    return ok && !out.failed ? 0 : 1;
}

} // namespace stxdump
