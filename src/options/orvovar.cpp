// Invariant: the defaults are those of the table of global options; what the table gives no default
// is empty or zero.

#include "options/orvovar.h"

#include <algorithm>
#include <initializer_list>

#include "options/orvoopt_glb.h"

namespace orvo {
namespace {

/// Four bytes as a word, the first in the lowest.
uint32_t bytes(uint32_t b0, uint32_t b1, uint32_t b2, uint32_t b3) {
    return b0 | b1 << 8 | b2 << 16 | b3 << 24;
}

/// Switches as bits, the first in the lowest.
uint32_t switches(std::initializer_list<bool> values) {
    uint32_t word = 0;
    uint32_t bit = 1;
    for (const bool value : values) {
        if (value) word |= bit;
        bit <<= 1;
    }
    return word;
}

/// 0 for 1994.
uint32_t editionCode(uint16_t standardVersion) {
    return standardVersion == 1990 ? 1 : standardVersion == 2021 ? 2 : 0;
}

} // namespace

void initMetaRec(OptionBlock& block) {
    block = OptionBlock();
    const OptUse use{block, nullptr, {}};
    for (const GlbOption& row : glbOptions())
        if (!row.dflt.empty()) static_cast<void>(row.check(use, row, row.dflt));
}

void initGenArr(OptionBlock& block, uint8_t category) {
    const uint8_t setting = category >= 1 && category <= 3 ? 2 : 1;
    std::ranges::fill(block.codeGen, setting);
    std::ranges::fill(block.testGen, setting);
}

void packModWords(const OptionBlock& block, uint32_t (&words)[6]) {
    const OptionBlock& b = block;
    words[0] = switches({b.typ != 0,    b.def != 0,      b.tab != 0,        b.tabf != 0,
                         b.tdefs != 0,  b.cdefs != 0,    b.tabo != 0,       b.ansiC,
                         b.pushPath,    b.reentrant,     b.plmBoole,        b.nearPtr,
                         b.altTab,      b.asnhc,         b.optVars,         b.omitSkippedFields,
                         b.memory != 0, b.zeroHome != 0, b.extensions != 0, b.xref,
                         b.list,        b.allow,         b.lenient});
    words[1] = bytes(b.definitionCategory, b.generate, b.defLen, b.setN);
    words[2] = bytes(b.intSize, b.listSize, b.compMaskSize, b.choiceSize);
    words[3] = bytes(b.realSize, editionCode(b.standardVersion), b.altMax, b.decimals);
    words[4] = b.cGeneration;
    words[5] = b.entryCount;
}

} // namespace orvo
