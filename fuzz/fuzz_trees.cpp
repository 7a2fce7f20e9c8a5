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
#include "stx/stxreader.h"
#include "stx/stxvalues.h"
#include "stxdump/stxdump.h"

namespace {

/// Types and values of a file of which all is asked.
constexpr uint32_t mostAsked = 200;

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

/// Everything that the library says of types and values.
void askAll(const std::string& path) {
    std::string error;
    stx::Trees trees;
    const stx::Tree* tree = trees.open(path, error, stx::Unchecked::accept);
    if (tree == nullptr) return;
    const std::vector<stx::TypeRef> defined = stx::definedTypes(trees, *tree);
    stx::declarationOrder(trees, defined);
    stx::pduTypes(trees, defined);
    stx::cNames(defined);
    for (uint32_t nr = 1; nr <= std::min(tree->count(stx::TNODE), mostAsked); ++nr) {
        const stx::TypeRef type{tree, nr};
        for (const stx::View view : {stx::View::Per, stx::View::Full}) {
            stx::effectiveBounds(trees, type, view);
            stx::effectiveSize(trees, type, view);
            stx::effectiveAlphabet(trees, type, view);
            stx::effectiveItems(trees, type, view);
        }
        stx::effectiveText(trees, type);
        stx::structureOf(trees, type);
        stx::firstTagOf(trees, type);
        stx::tableOf(trees, type);
        stx::objectsOf(trees, type);
        stx::fieldsOfClass(trees, type);
        stx::syntaxOfClass(trees, type);
    }
    for (uint32_t nr = 1; nr <= std::min(tree->count(stx::VNODE), mostAsked); ++nr) {
        const stx::ValueRef value{tree, nr};
        stx::valueText(trees, value, {});
        stx::settings(trees, value);
        stx::valueBehind(trees, value);
        stx::integerOf(trees, value);
        stx::boolOf(trees, value);
        stx::bitsOf(trees, value);
        stx::stringOf(trees, value);
        stx::oidOf(trees, value);
        stx::realOf(trees, value);
        stx::elementsOf(trees, value);
        stx::membersOf(trees, value);
        stx::openValueOf(trees, value);
    }
}

void show(std::vector<std::string> arguments) {
    stxdump::Sink out, err;
    const int status = stxdump::run(arguments, out, err);
    if (status != 0 && err.text.empty()) fuzz::finding("a failure without a word");
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

void change(std::string& input, fuzz::Dice& dice) {
    if (input.empty()) input = "0";
    if (dice.oneIn(10)) input[0] = static_cast<char>('0' + dice.below(16));
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

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    fuzz::prepare();
    return 0;
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
    const unsigned flags = static_cast<unsigned>(data[0] - '0');
    std::vector<std::string> options;
    if ((flags & 8) != 0) options.emplace_back("--unchecked");
    const auto showAs = [&options, &first](std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), options.begin(), options.end());
        arguments.push_back(first);
        show(arguments);
    };
    switch (flags & 7) {
    case 1: showAs({"--all"}); break;
    case 2: showAs({"--json"}); break;
    case 3: showAs({"--summary"}); break;
    case 4:
        for (const std::string& name : definitions(first)) showAs({"--type", name});
        break;
    case 5: askAll(first); break;
    default: showAs({}); break;
    }
    fuzz::removeFiles();
    return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize,
                                          unsigned seed) {
    return fuzz::mutateInput(data, size, maxSize, seed, change);
}
