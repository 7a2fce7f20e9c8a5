// The table of global options and what each of its rows does with a value. Invariant: a check that
// returns false has changed nothing. A value is stored only after the whole of it has been found
// valid.

#include <algorithm>
#include <array>

#include "diag/orvozov.h"
#include "driver/orvofil_fix.h"
#include "options/orvoopt_glb.h"
#include "options/orvovar.h"
#include "tree/orvorec.h"
#include "util/ascii.h"

namespace orvo {
namespace {

constexpr std::span<const ValueName> noNames;

/// The text up to the next separator; `rest` becomes what follows it, `more` tells whether there
/// was one.
std::string_view nextPart(std::string_view& rest, char separator, bool& more) {
    const size_t end = rest.find(separator);
    more = end != std::string_view::npos;
    const std::string_view part = rest.substr(0, end);
    rest = more ? rest.substr(end + 1) : std::string_view();
    return part;
}

// ---- plain values -------------------------------------------------------------------------------

bool accept(const OptUse&, const GlbOption&, std::string_view) {
    return true;
}
bool reject(const OptUse&, const GlbOption&, std::string_view) {
    return false;
}
template <uint8_t OptionBlock::*field>
bool byte(const OptUse& use, const GlbOption& row, std::string_view value) {
    return byteOptionOK(value, row.min, row.max, row.names, use.block.*field);
}
template <int32_t OptionBlock::*field>
bool int32(const OptUse& use, const GlbOption& row, std::string_view value) {
    return int32OptionOK(value, row.min, row.max, use.block.*field);
}
template <bool OptionBlock::*field>
bool boole(const OptUse& use, const GlbOption&, std::string_view value) {
    return booleOptionOK(value, use.block.*field);
}
template <uint8_t OptionBlock::*field>
bool size(const OptUse& use, const GlbOption&, std::string_view value) {
    return intSizeOptionOK(value, false, use.block.*field);
}
template <uint8_t OptionBlock::*field>
bool unsignedSize(const OptUse& use, const GlbOption&, std::string_view value) {
    return intSizeOptionOK(value, true, use.block.*field);
}
template <uint8_t OptionBlock::*field>
bool realSize(const OptUse& use, const GlbOption&, std::string_view value) {
    return realSizeOptionOK(value, use.block.*field);
}
template <uint8_t OptionBlock::*field>
bool bits(const OptUse& use, const GlbOption&, std::string_view value) {
    return bitVector8OptionOK(value, use.block.*field);
}
template <std::string OptionBlock::*field>
bool text(const OptUse& use, const GlbOption&, std::string_view value) {
    use.block.*field = value;
    return true;
}
template <std::string OptionBlock::*field>
bool directory(const OptUse& use, const GlbOption&, std::string_view value) {
    return directoryOptionOK(value, use.block.*field);
}
bool treeDirectory(const OptUse&, const GlbOption&, std::string_view value) {
    return directoryOptionOK(value, run.stxDir);
}
bool standardVersion(const OptUse& use, const GlbOption&, std::string_view value) {
    return standardVersionOptionOK(value, use.block.standardVersion);
}
bool realLim(const OptUse& use, const GlbOption&, std::string_view value) {
    if (!realLimOptionOK(value, use.block.realLim)) return false;
    use.block.hasRealLim = true;
    return true;
}
bool allow(const OptUse& use, const GlbOption&, std::string_view) {
    use.block.allow = true;
    return true;
}

// ---- definition category ------------------------------------------------------------------------

/// The categories 1 to 3 generate tables and manage memory themselves.
bool isTableCategory(uint8_t category) {
    return category >= 1 && category <= 3;
}

void setCategory(OptionBlock& block, uint8_t category) {
    block.definitionCategory = category;
    initGenArr(block, category);
    block.memory = 1;
    block.zeroHome = 1;
    block.reentrant = false;
    if (isTableCategory(category)) block.tab = 1;
}

/// [prefix:]category. With a prefix the category is that of the modules whose source file name, up
/// to its first ".", begins so.
bool definitionCategory(const OptUse& use, const GlbOption& row, std::string_view value) {
    std::string_view prefix;
    if (const size_t colon = value.find(':'); colon != std::string_view::npos) {
        prefix = value.substr(0, colon);
        value.remove_prefix(colon + 1);
    }
    uint8_t category = 0;
    if (!byteOptionOK(value, row.min, row.max, row.names, category)) return false;
    if (std::ranges::find(row.names, category, &ValueName::value) == row.names.end()) return false;
    const std::string_view file = use.block.sourceFileName;
    if (file.substr(0, file.find('.')).starts_with(prefix)) setCategory(use.block, category);
    return true;
}

bool tanvo(const OptUse& use, const GlbOption& row, std::string_view value) {
    uint8_t category = 0;
    if (!byteOptionOK(value, row.min, row.max, row.names, category)) return false;
    setCategory(use.block, category);
    return true;
}

/// MEMORY= and ZEROHOME= cannot be switched off in the table categories.
template <uint8_t OptionBlock::*field>
bool categoryFlag(const OptUse& use, const GlbOption& row, std::string_view value) {
    const int32_t min = isTableCategory(use.block.definitionCategory) ? 1 : row.min;
    return byteOptionOK(value, min, row.max, row.names, use.block.*field);
}

/// TABF= reaches no further than TAB=.
bool tableFunctions(const OptUse& use, const GlbOption& row, std::string_view value) {
    return byteOptionOK(value, row.min, use.block.tab, row.names, use.block.tabf);
}

// ---- lists of settings --------------------------------------------------------------------------

/// Up to three settings separated by ":"; an empty one leaves its place as it is.
template <uint8_t (OptionBlock::*field)[3]>
bool settings(const OptUse& use, const GlbOption& row, std::string_view value) {
    uint8_t(&target)[3] = use.block.*field;
    std::array<uint8_t, 3> wanted = std::to_array(target);
    bool more = true;
    for (size_t place = 0; more; ++place) {
        const std::string_view part = nextPart(value, ':', more);
        if (place == wanted.size()) return false;
        if (!part.empty() && !byteOptionOK(part, row.min, row.max, row.names, wanted[place]))
            return false;
    }
    std::ranges::copy(wanted, target);
    return true;
}

/// n:digits, the bit vector of alternative n.
template <uint8_t (OptionBlock::*field)[8]>
bool altBits(const OptUse& use, const GlbOption&, std::string_view value) {
    bool more = false;
    const std::string_view number = nextPart(value, ':', more);
    uint8_t n = 0;
    if (!more || !byteOptionOK(number, 0, use.block.altMax - 1, noNames, n)) return false;
    return bitVector8OptionOK(value, (use.block.*field)[n]);
}

/// Words of C-GENERATION= and the bits they set or clear.
struct CGenerationWord {
    std::string_view word;
    uint32_t sets, clears;
};
constexpr uint32_t allCGeneration = CGEN_OLD | CGEN_REAL | CGEN_COMMONTIME | CGEN_EXTERNAL |
                                    CGEN_SIGNED_CONTROL | CGEN_ANY_FUNCTIONS;
constexpr CGenerationWord optVals[] = {{"OLD", allCGeneration, 0},
                                       {"REAL", CGEN_REAL, 0},
                                       {"REAL-N", 0, CGEN_REAL},
                                       {"COMMONTIME", CGEN_COMMONTIME, 0},
                                       {"DATETIMEZ", 0, CGEN_COMMONTIME},
                                       {"EXTERNAL", CGEN_EXTERNAL, 0},
                                       {"EXTERNAL-N", 0, CGEN_EXTERNAL},
                                       {"SIGNED-CONTROL-MEMBER", CGEN_SIGNED_CONTROL, 0},
                                       {"UNSIGNED-CONTROL-MEMBER", 0, CGEN_SIGNED_CONTROL},
                                       {"ANY-FUNCTIONS", CGEN_ANY_FUNCTIONS, 0},
                                       {"NO-ANY-FUNCTIONS", 0, CGEN_ANY_FUNCTIONS}};

bool cGeneration(const OptUse& use, const GlbOption&, std::string_view value) {
    uint32_t wanted = use.block.cGeneration;
    for (bool more = true; more;) {
        const std::string_view word = nextPart(value, ':', more);
        const auto* row = std::ranges::find_if(
            optVals, [word](const CGenerationWord& val) { return equalNoCase(val.word, word); });
        if (row == std::end(optVals)) return false;
        wanted = (wanted | row->sets) & ~row->clears;
    }
    use.block.cGeneration = wanted;
    return true;
}

/// An item of COMBINE= as it is stored: without ".stx", cut as file prefixes are. Empty = not
/// valid.
std::string_view combineItem(const OptionBlock& block, std::string_view item) {
    constexpr std::string_view extension = ".stx";
    if (item.ends_with(extension)) item.remove_suffix(extension.size());
    item = item.substr(0, block.prefixLen);
    return spanOfName(item, "-_") == item.size() ? item : std::string_view();
}

/// first:second,third...; all different.
bool combine(const OptUse& use, const GlbOption&, std::string_view value) {
    std::vector<std::string> items;
    bool more = !value.empty();
    for (char separator = ':'; more; separator = ',') {
        const std::string_view item = combineItem(use.block, nextPart(value, separator, more));
        if (item.empty()) return false;
        items.emplace_back(item);
    }
    if (items.size() == 1) return false;
    std::vector<std::string> sorted = items;
    std::ranges::sort(sorted);
    if (std::ranges::adjacent_find(sorted) != sorted.end()) return false;
    use.block.combine = std::move(items);
    return true;
}

// ---- options of other units ---------------------------------------------------------------------

bool prefix(const OptUse& use, const GlbOption&, std::string_view value) {
    return prefixOptOK(use.module, value);
}
bool naming(const OptUse& use, const GlbOption& row, std::string_view value) {
    return getFixOpt(&fixRecForKind(use.block, findNameOption(row.name)->kind), row.name, value);
}
bool entry(const OptUse& use, const GlbOption& row, std::string_view value) {
    return getFixOpt(&use.block.entry, row.name, value);
}
bool backEndComment(const OptUse& use, const GlbOption&, std::string_view) {
    if (!use.block.backEndFirst) use.block.backEndFirst = use.record;
    use.block.backEndLast = use.record;
    return true;
}
bool zov(const OptUse&, const GlbOption& row, std::string_view value) {
    return zovOptionOK(std::string(row.name).append(value));
}

// ---- the table ----------------------------------------------------------------------------------

#define OPTION(name, stage, check, min, max, names, dflt, values, help)                            \
    {name, OptStage::stage, check, min, max, names, dflt, values, help},
constexpr GlbOption optionTable[] = {
#include "options/options.def"
};

/// Rows by name, for bisection.
constexpr auto rowsByName = [] {
    std::array<uint8_t, std::size(optionTable)> rows{};
    for (size_t i = 0; i < rows.size(); ++i) rows[i] = static_cast<uint8_t>(i);
    std::ranges::sort(rows, {}, [](uint8_t row) { return optionTable[row].name; });
    return rows;
}();
static_assert(std::size(optionTable) <= UINT8_MAX);

} // namespace

std::span<const GlbOption> glbOptions() {
    return optionTable;
}

std::string optionValues(const GlbOption& row) {
    std::string values(row.values);
    if (!values.empty()) return values;
    for (const ValueName& value : row.names)
        values.append(values.empty() ? "" : "|").append(value.name);
    return values;
}

const GlbOption* findGlbOption(std::string_view text) {
    std::string_view name = text.substr(0, text.find('='));
    if (name.size() < text.size()) name = text.substr(0, name.size() + 1);
    for (const std::string_view comment : {"//", "BEO=//"})
        if (text.starts_with(comment)) name = comment;
    const auto* row = std::ranges::lower_bound(rowsByName, name, {},
                                               [](uint8_t nr) { return optionTable[nr].name; });
    return row != rowsByName.end() && optionTable[*row].name == name ? &optionTable[*row] : nullptr;
}

} // namespace orvo
