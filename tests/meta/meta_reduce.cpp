// Takes away from a project what can go.

#include <algorithm>
#include <cstring>

#include "meta_run.h"

namespace orvo::meta {

std::vector<std::string> smallerTexts(const std::string& text) {
    std::vector<std::string> list;
    const auto endOf = [&text](size_t at, const char* stops) {
        for (int depth = 0; at < text.size(); ++at) {
            if (depth == 0 && std::strchr(stops, text[at]) != nullptr) break;
            if (std::strchr("{([", text[at]) != nullptr) ++depth;
            if (std::strchr("})]", text[at]) != nullptr && depth-- == 0) break;
        }
        return at;
    };
    const auto without = [&](size_t from, size_t to) {
        if (to <= text.size()) list.push_back(text.substr(0, from) + text.substr(to));
    };
    for (size_t at = 0; at < text.size(); ++at) {
        const char ch = text[at];
        if (ch == ' ' || ch == ',') without(at, endOf(at + 1, ","));
        if (ch == ' ') without(at, endOf(at + 1, " ,\n"));
        if (std::strchr("{([", ch) == nullptr) continue;
        without(at, endOf(at + 1, "") + 1);
        if (const size_t comma = endOf(at + 1, ","); text[comma] == ',') without(at + 1, comma + 1);
    }
    std::ranges::stable_sort(list, {}, &std::string::size);
    return list;
}

namespace {

bool isUsed(const Project& project, const Definition& definition) {
    return std::ranges::any_of(project.definitions, [&](const Definition& other) {
        const std::vector<std::string> words = wordsOf(other.text);
        return &other != &definition && std::ranges::find(words, definition.name) != words.end();
    });
}

/// Takes the first smaller one that fails, if there is any.
bool takeSmaller(Project& project, std::vector<Arrangement>& pair, size_t at, const Fails& fails) {
    Project smaller = project;
    std::vector<Arrangement> list = pair;
    if (!isUsed(project, project.definitions[at])) {
        smaller.definitions.erase(smaller.definitions.begin() + static_cast<long>(at));
        for (Arrangement& arrangement : list)
            for (std::vector<int>& module : arrangement.modules) {
                std::erase(module, static_cast<int>(at));
                for (int& nr : module) nr -= nr > static_cast<int>(at);
            }
        if (fails(smaller, list)) {
            project = smaller;
            pair = list;
            return true;
        }
        smaller = project;
    }
    for (const std::string& text : smallerTexts(project.definitions[at].text)) {
        smaller.definitions[at].text = text;
        if (!fails(smaller, pair)) continue;
        project = smaller;
        return true;
    }
    return false;
}

} // namespace

Project reduce(Project project, std::vector<Arrangement>& pair, const Fails& fails) {
    for (bool again = true; again;) {
        again = false;
        for (size_t at = project.definitions.size(); at-- > 0;)
            while (at < project.definitions.size() && takeSmaller(project, pair, at, fails))
                again = true;
    }
    return project;
}

} // namespace orvo::meta
