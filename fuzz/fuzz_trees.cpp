// Tree files: the first byte of an input chooses what to show, the rest are files, each behind a
// line with its name; the first is shown. The reader must take each or refuse it with a message.

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "mutate.h"
#include "process.h"
#include "stx/stxcomponents.h"
#include "stx/stxconstraint.h"
#include "stx/stxnotation.h"
#include "stx/stxobjects.h"
#include "stx/stxvalues.h"
#include "stxdump/stxdump.h"

namespace {

struct Named {
    std::string name, bytes;
};

Named named(const std::string& text) {
    const size_t end = std::min(text.find('\n'), text.size());
    Named file{text.substr(0, end), text.substr(std::min(end + 1, text.size()))};
    std::erase_if(file.name, [](char c) { return c == '/' || c == '\0'; });
    if (file.name.empty() || file.name.starts_with('.')) file.name = "x.stx";
    file.name.resize(std::min<size_t>(file.name.size(), 60));
    return file;
}

/// Names of definitions of the first file, so that all of it can be shown.
std::vector<std::string> definitions(const std::string& path) {
    std::vector<std::string> names;
    std::string error;
    stx::Trees trees;
    const stx::Tree* tree = trees.open(path, error, stx::Unchecked::accept);
    if (tree == nullptr && error.empty()) fuzz::finding("refused without a word");
    if (tree == nullptr) return names;
    for (uint32_t nr = 1; nr <= tree->count(stx::TNODE) && names.size() < 20; ++nr) {
        const std::string_view name = stxdump::recordName(*tree, stx::TNODE, nr);
        if (!name.empty()) names.emplace_back(name);
    }
    for (uint32_t nr = 1; nr <= tree->count(stx::VNODE) && names.size() < 40; ++nr) {
        const std::string_view name = stxdump::recordName(*tree, stx::VNODE, nr);
        if (!name.empty()) names.emplace_back(name);
    }
    return names;
}

void show(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "--unchecked");
    stxdump::Sink out, err;
    const int status = stxdump::run(arguments, out, err);
    if (status != 0 && err.text.empty()) fuzz::finding("a failure without a word");
}

/// Everything that the library can be asked about each record.
void askAll(const std::string& path) {
    std::string error;
    stx::Trees trees;
    const stx::Tree* tree = trees.open(path, error, stx::Unchecked::accept);
    if (tree == nullptr) return;
    for (uint32_t nr = 1; nr <= tree->count(stx::TNODE); ++nr) {
        const stx::TypeRef type{tree, nr};
        for (const stx::View view : {stx::View::Per, stx::View::Full}) {
            (void)stx::effectiveBounds(trees, type, view);
            (void)stx::effectiveSize(trees, type, view);
            (void)stx::effectiveAlphabet(trees, type, view);
            (void)stx::effectiveItems(trees, type, view);
        }
        (void)stx::cNames(*stx::structureOf(trees, type));
        (void)stx::firstTagOf(trees, type);
        (void)stx::tableOf(trees, type);
        (void)stx::objectsOf(trees, type);
        (void)stx::fieldsOfClass(trees, type);
        (void)stx::syntaxOfClass(trees, type);
    }
    for (uint32_t nr = 1; nr <= tree->count(stx::VNODE); ++nr) {
        const stx::ValueRef value{tree, nr};
        (void)stx::bytesOf(trees, value);
        (void)stx::stringOf(trees, value);
        (void)stx::oidOf(trees, value);
        (void)stx::realOf(trees, value);
        (void)stx::openValueOf(trees, value);
        (void)stx::settings(trees, value);
        (void)stx::valueText(trees, value, {});
        (void)stx::valueText(trees, value, {stx::Naming::Followed, nullptr});
    }
    const std::vector<stx::TypeRef> types = stx::definedTypes(trees, *tree);
    (void)stx::declarationOrder(trees, types);
    (void)stx::pduTypes(trees, types);
    (void)stx::cNames(types);
}

/// A number of 4 bytes becomes another of the file, one next to it, or one at an end.
void changeWord(std::string& bytes, fuzz::Dice& dice) {
    if (bytes.size() < 8) return;
    const size_t words = bytes.size() / 4;
    char* const at = bytes.data() + dice.below(words) * 4;
    const char* const other = bytes.data() + dice.below(words) * 4;
    constexpr uint32_t ends[] = {0, 1, 2, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF, 0xFFFF, 0x10000};
    uint32_t word = 0;
    std::memcpy(&word, at, sizeof word);
    switch (dice.below(6)) {
    case 0: std::memcpy(&word, other, sizeof word); break;
    case 1: ++word; break;
    case 2: --word; break;
    case 3: word = dice.of(ends); break;
    case 4: word = static_cast<uint32_t>(dice.below(64)); break;
    default: word = ~word + 1; break;
    }
    std::memcpy(at, &word, sizeof word);
}

} // namespace

void fuzz::change(std::string& input, Dice& dice) {
    if (input.empty()) input = "0";
    if (dice.oneIn(10)) input[0] = static_cast<char>('0' + dice.below(6));
    std::vector<std::string> texts = fuzz::split(std::string_view(input).substr(1));
    Named file = named(dice.of(texts));
    const size_t index = dice.below(texts.size());
    file = named(texts[index]);
    const size_t times = 1 + dice.below(4);
    for (size_t i = 0; i < times; ++i) {
        if (!dice.oneIn(8)) {
            changeWord(file.bytes, dice);
        } else if (!file.bytes.empty()) { // a part of the file once more, or left out
            const size_t first = dice.below(file.bytes.size()) / 4 * 4;
            const size_t length = dice.below(64) * 4;
            if (dice.oneIn(2))
                file.bytes.insert(first, file.bytes.substr(first, length));
            else
                file.bytes.erase(first, length);
        }
    }
    texts[index] = file.name + "\n" + file.bytes;
    input = input.substr(0, 1) + fuzz::join(texts);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    std::string first;
    for (const std::string& each : fuzz::split(text)) {
        const Named file = named(each);
        fuzz::writeFile(file.name, file.bytes);
        if (first.empty()) first = file.name;
    }
    switch (data[0]) {
    case '1': show({"--all", first}); break;
    case '2': show({"--json", first}); break;
    case '3': show({"--summary", first}); break;
    case '4':
        for (const std::string& name : definitions(first)) show({"--type", name, first});
        break;
    case '5': askAll(first); break;
    default: show({first}); break;
    }
    fuzz::removeFiles();
    return 0;
}
