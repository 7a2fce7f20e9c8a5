#include "stxnumber.h"

#include <algorithm>
#include <charconv>

// Decimal digits: the numbers of a tree come and go as decimals, and all that is done with them is
// to compare them and to step to a neighbour.

namespace stx {
namespace {

void increment(std::string& digits) {
    for (size_t at = digits.size(); at-- > 0;) {
        if (digits[at] != '9') {
            ++digits[at];
            return;
        }
        digits[at] = '0';
    }
    digits.insert(digits.begin(), '1');
}

/// Of digits that are not "0".
void decrement(std::string& digits) {
    size_t at = digits.size() - 1;
    for (; digits[at] == '0'; --at) digits[at] = '9';
    --digits[at];
    if (digits[0] == '0' && digits.size() > 1) digits.erase(0, 1);
}

template <typename Word> std::optional<Word> wordOf(const std::string& text) {
    Word word{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), word);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return word;
}

/// Order of lower bounds: none stands before all.
bool lowerLess(const std::optional<Integer>& a, const std::optional<Integer>& b) {
    if (!b) return false;
    return !a || *a < *b;
}

/// Order of upper bounds: none stands behind all.
bool upperLess(const std::optional<Integer>& a, const std::optional<Integer>& b) {
    if (!a) return false;
    return !b || *a < *b;
}

bool isEmpty(const Range& range) {
    return range.lower && range.upper && *range.upper < *range.lower;
}

} // namespace

Integer::Integer(int64_t number) : negative_(number < 0), digits_(std::to_string(number)) {
    if (negative_) digits_.erase(0, 1);
}

bool Integer::parse(std::string_view decimal, Integer& number) {
    const bool negative = decimal.starts_with('-');
    if (negative) decimal.remove_prefix(1);
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    if (decimal.empty() || !std::ranges::all_of(decimal, isDigit)) return false;
    decimal.remove_prefix(std::min(decimal.find_first_not_of('0'), decimal.size() - 1));
    number.digits_ = decimal;
    number.negative_ = negative && decimal != "0";
    return true;
}

std::optional<int64_t> Integer::signed64() const {
    return wordOf<int64_t>(text());
}

std::optional<uint64_t> Integer::unsigned64() const {
    return wordOf<uint64_t>(text());
}

Integer Integer::next() const {
    Integer result = *this;
    if (!negative_) {
        increment(result.digits_);
        return result;
    }
    decrement(result.digits_);
    result.negative_ = result.digits_ != "0";
    return result;
}

Integer Integer::previous() const {
    Integer result = *this;
    if (negative_ || digits_ == "0") {
        increment(result.digits_);
        result.negative_ = true;
        return result;
    }
    decrement(result.digits_);
    return result;
}

std::strong_ordering operator<=>(const Integer& a, const Integer& b) {
    if (a.negative_ != b.negative_)
        return a.negative_ ? std::strong_ordering::less : std::strong_ordering::greater;
    const Integer& large = a.negative_ ? b : a; // of negative ones the digits count the other way
    const Integer& small = a.negative_ ? a : b;
    const auto sizes = large.digits_.size() <=> small.digits_.size();
    return sizes != 0 ? sizes : large.digits_ <=> small.digits_;
}

Ranges allIntegers() {
    return {Range()};
}

Ranges rangeOf(std::optional<Integer> lower, std::optional<Integer> upper) {
    return asSet({{std::move(lower), std::move(upper)}});
}

Ranges asSet(Ranges ranges) {
    std::erase_if(ranges, isEmpty);
    std::ranges::sort(ranges,
                      [](const Range& a, const Range& b) { return lowerLess(a.lower, b.lower); });
    Ranges set;
    for (Range& range : ranges) {
        Range* last = set.empty() ? nullptr : &set.back();
        const bool joined = last != nullptr &&
                            (!last->upper || !range.lower || *range.lower <= last->upper->next());
        if (!joined)
            set.push_back(std::move(range));
        else if (upperLess(last->upper, range.upper))
            last->upper = std::move(range.upper);
    }
    return set;
}

Ranges unionOf(const Ranges& a, const Ranges& b) {
    Ranges both = a;
    both.insert(both.end(), b.begin(), b.end());
    return asSet(std::move(both));
}

Ranges intersectionOf(const Ranges& a, const Ranges& b) {
    Ranges set;
    for (size_t i = 0, j = 0; i < a.size() && j < b.size();) {
        Range common{lowerLess(a[i].lower, b[j].lower) ? b[j].lower : a[i].lower,
                     upperLess(a[i].upper, b[j].upper) ? a[i].upper : b[j].upper};
        if (!isEmpty(common)) set.push_back(std::move(common));
        upperLess(a[i].upper, b[j].upper) ? ++i : ++j;
    }
    return set;
}

Ranges complementOf(const Ranges& a) {
    Ranges set;
    std::optional<Integer> from; // where the gap begins; none: without bound
    for (const Range& range : a) {
        if (range.lower) set.push_back({from, range.lower->previous()});
        if (!range.upper) return set;
        from = range.upper->next();
    }
    set.push_back({from, std::nullopt});
    return set;
}

bool contains(const Ranges& set, const Integer& number) {
    const auto at = std::ranges::partition_point(
        set, [&](const Range& range) { return range.upper && *range.upper < number; });
    return at != set.end() && (!at->lower || *at->lower <= number);
}

std::optional<Integer> lowerOf(const Ranges& set) {
    return set.empty() ? std::nullopt : set.front().lower;
}

std::optional<Integer> upperOf(const Ranges& set) {
    return set.empty() ? std::nullopt : set.back().upper;
}

std::string rangesText(const Ranges& set) {
    std::string text;
    for (const Range& range : set) {
        if (!text.empty()) text += " | ";
        text += range.lower ? range.lower->text() : "MIN";
        if (range.lower && range.lower == range.upper) continue;
        text += ".." + (range.upper ? range.upper->text() : "MAX");
    }
    return text;
}

} // namespace stx
