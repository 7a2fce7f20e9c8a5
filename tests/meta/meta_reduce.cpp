// Takes away from a project what can go.

#include "meta_run.h"

namespace orvo::meta {

namespace {

/// Where the text that begins at `at` ends: before a separator, or before the brace that closes.
size_t endOfItem(const std::string& text, size_t at) {
    int depth = 0;
    for (; at < text.size(); ++at) {
        const char ch = text[at];
        if (ch == '{' || ch == '(' || ch == '[') ++depth;
        if (ch == '}' || ch == ')' || ch == ']') {
            if (depth == 0) return at;
            --depth;
        }
        if (depth == 0 && ch == ',') break;
    }
    while (at > 0 && (text[at - 1] == ' ' || text[at - 1] == '\n')) --at;
    return at;
}

} // namespace

std::vector<std::string> smallerTexts(const std::string& text) {
    std::vector<std::string> list;
    const auto without = [&](size_t from, size_t to) {
        if (to > from) list.push_back(text.substr(0, from) + text.substr(to));
    };
    for (size_t at = 0; at < text.size(); ++at) {
        const char ch = text[at];
        if (ch == ',') {
            size_t from = at;
            while (from > 0 && (text[from - 1] == ' ' || text[from - 1] == '\n')) --from;
            without(from, endOfItem(text, at + 1));
        }
        if (ch == '{') {
            const size_t end = endOfItem(text, at + 1);
            const size_t comma = text.find(',', end);
            if (comma != std::string::npos && comma <= end + 6) without(at + 1, comma + 1);
        }
        if (ch == '(') {
            size_t end = at;
            for (int depth = 0; end < text.size(); ++end) {
                if (text[end] == '(') ++depth;
                if (text[end] == ')' && --depth == 0) break;
            }
            if (end < text.size()) without(at, end + 1);
        }
        for (const char* word :
             {" OPTIONAL", " DEFAULT ", " EXPLICIT", "SEQUENCE OF ", "[APPLICATION"})
            if (text.compare(at, std::string(word).size(), word) == 0) {
                if (word[1] == 'D')
                    without(at, endOfItem(text, at));
                else if (word[0] == '[')
                    without(at, text.find(']', at) + 1);
                else
                    without(at, at + std::string(word).size());
            }
    }
    return list;
}

namespace {

bool isUsed(const Project& project, size_t at) {
    for (size_t other = 0; other < project.definitions.size(); ++other)
        if (other != at)
            for (const std::string& word : wordsOf(project.definitions[other].text))
                if (word == project.definitions[at].name) return true;
    return false;
}

/// The arrangements without the definition.
std::vector<Arrangement> withoutDefinition(std::vector<Arrangement> list, int gone) {
    for (Arrangement& arrangement : list)
        for (std::vector<int>& module : arrangement.modules) {
            std::erase(module, gone);
            for (int& nr : module)
                if (nr > gone) --nr;
        }
    return list;
}

} // namespace

Project reduce(Project project, std::vector<Arrangement>& pair, const Fails& fails) {
    for (bool again = true; again;) {
        again = false;
        for (size_t at = project.definitions.size(); at-- > 0;) {
            if (isUsed(project, at)) continue;
            Project smaller = project;
            smaller.definitions.erase(smaller.definitions.begin() + static_cast<long>(at));
            const std::vector<Arrangement> list = withoutDefinition(pair, static_cast<int>(at));
            if (!fails(smaller, list)) continue;
            project = smaller;
            pair = list;
            again = true;
        }
        for (size_t at = project.definitions.size(); at-- > 0;)
            for (bool found = true; found;) {
                found = false;
                for (const std::string& text : smallerTexts(project.definitions[at].text)) {
                    Project smaller = project;
                    smaller.definitions[at].text = text;
                    if (!fails(smaller, pair)) continue;
                    project = smaller;
                    found = again = true;
                    break;
                }
            }
    }
    return project;
}

} // namespace orvo::meta
