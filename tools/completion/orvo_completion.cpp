// Writes the completion script of a shell from the table of global options: "bash" or "zsh".

#include <cctype>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "options/orvoopt_glb.h"

namespace orvo {
namespace {

/// What a shell can offer for the value of an option.
struct Completion {
    std::string name; // "-INT="
    std::string help;
    std::vector<std::string> values; // the alternatives that are no placeholders
    bool directory = false;
    [[nodiscard]] bool takesValue() const { return name.ends_with('='); }
};

Completion completionOf(const GlbOption& option) {
    Completion result{"-" + std::string(option.name), std::string(option.help), {}, false};
    std::string rest = optionValues(option);
    result.directory = rest == "<directory>";
    while (!rest.empty()) {
        const size_t end = rest.find('|');
        const std::string value = rest.substr(0, end);
        if (value.find_first_of("<.") == std::string::npos) result.values.push_back(value);
        rest = end == std::string::npos ? std::string() : rest.substr(end + 1);
    }
    return result;
}

/// The options that are typed; comments for the back ends are not.
std::vector<Completion> completions() {
    std::vector<Completion> all;
    for (const GlbOption& option : glbOptions())
        if (option.name.find('/') == std::string_view::npos) all.push_back(completionOf(option));
    return all;
}

std::string joined(const std::vector<std::string>& words) {
    std::string text;
    for (const std::string& word : words) text += (text.empty() ? "" : " ") + word;
    return text;
}

// The word is taken from the line: bash would split it at "=" and ":", and expects back what
// follows the last of these.
constexpr std::string_view bashFrame = R"(
_orvo() {
    local line=${COMP_LINE:0:COMP_POINT} word value candidate values=
    word=${line##*[[:blank:]]}
    COMPREPLY=()
    case $word in
    +*) mapfile -t COMPREPLY < <(compgen -f -P + -- "${word#+}"); return ;;
    -*=*) value=${word##*[=:]} ;;
    -*) values=$_orvo_options value=$word ;;
    *) mapfile -t COMPREPLY < <(compgen -f -X '!*.asn' -- "$word"; compgen -d -S / -- "$word")
       compopt -o nospace 2>/dev/null
       return ;;
    esac
    if [[ $word == -*=* ]]; then
        values=$(_orvo_values "${word%%=*}=")
        if [[ $values == directory ]]; then
            mapfile -t COMPREPLY < <(compgen -d -S / -- "$value")
            compopt -o nospace 2>/dev/null
            return
        fi
    fi
    for candidate in $values; do
        [[ ${candidate^^} == "${value^^}"* ]] && COMPREPLY+=("$candidate")
    done
    [[ ${#COMPREPLY[@]} == 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
    return 0
}
complete -F _orvo orvo
)";

void writeBash(std::ostream& out) {
    out << "# Completion of the options of orvo for bash.\n\n_orvo_options='";
    for (const Completion& option : completions()) out << option.name << ' ';
    out << "'\n\n_orvo_values() {\n    case ${1^^} in\n";
    for (const Completion& option : completions()) {
        if (!option.takesValue() || (option.values.empty() && !option.directory)) continue;
        out << "    " << option.name << ") echo '"
            << (option.directory ? "directory" : joined(option.values)) << "' ;;\n";
    }
    out << "    esac\n}\n" << bashFrame;
}

/// A description inside a specification of _arguments.
std::string zshText(std::string_view text) {
    std::string escaped;
    for (const char c : text) {
        if (c == '\'')
            escaped += "'\\''";
        else if (c == '[' || c == ']' || c == ':' || c == '\\')
            (escaped += '\\') += c;
        else
            escaped += c;
    }
    return escaped;
}

void writeZsh(std::ostream& out) {
    out << "#compdef orvo\n# Completion of the options of orvo for zsh.\n\n_arguments \\\n";
    for (const Completion& option : completions()) {
        out << "    '*" << option.name << (option.takesValue() ? "-" : "") << '['
            << zshText(option.help) << ']';
        if (option.directory)
            out << ":directory:_files -/";
        else if (option.takesValue())
            out << ":value:(" << joined(option.values) << ')';
        out << "' \\\n";
    }
    out << "    '*:file:{ if compset -P +; then _files; else _files -g \"*.asn\"; fi }'\n";
}

} // namespace
} // namespace orvo

int main(int argc, char** argv) {
    const std::string_view shell = argc == 2 ? argv[1] : "";
    if (shell == "bash")
        orvo::writeBash(std::cout);
    else if (shell == "zsh")
        orvo::writeZsh(std::cout);
    else
        std::cerr << "usage: orvo_completion bash|zsh\n";
    return shell == "bash" || shell == "zsh" ? 0 : 1;
}
