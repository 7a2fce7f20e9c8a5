// A text is read from left to right; an alternative that does not fit leaves the reader where it
// was. What a value is compared by follows its form: years, months and so on for dates that are not
// complete, units of the last fraction of a second in UTC for those that are.

#include "check/orvotime.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "tree/types.h"
#include "util/ascii.h"

namespace orvo {
namespace {

/// Digits of a number that is compared.
constexpr size_t mostDigits = 18;

// ---- reading ------------------------------------------------------------------------------------

struct Reader {
    std::string_view rest;

    bool take(char c) {
        if (rest.empty() || rest.front() != c) return false;
        rest.remove_prefix(1);
        return true;
    }
    /// All digits at the front.
    std::string_view digits() {
        size_t count = 0;
        while (count < rest.size() && isDigit(rest[count])) ++count;
        const std::string_view taken = rest.substr(0, count);
        rest.remove_prefix(count);
        return taken;
    }
    /// The next `count` characters, which are digits; empty, and nothing is taken, otherwise.
    std::string_view digits(size_t count) {
        if (rest.size() < count || !std::ranges::all_of(rest.substr(0, count), isDigit)) return {};
        const std::string_view taken = rest.substr(0, count);
        rest.remove_prefix(count);
        return taken;
    }
};

int64_t numberOf(std::string_view digits) {
    int64_t number = 0;
    for (const char digit : digits.substr(0, mostDigits)) number = number * 10 + (digit - '0');
    return number;
}

/// A number of `count` digits within bounds, into `number`.
bool takeNumber(Reader& text, size_t count, int64_t least, int64_t most, int64_t& number) {
    const std::string_view digits = text.digits(count);
    if (digits.empty()) return false;
    number = numberOf(digits);
    return number >= least && number <= most;
}

// ---- dates --------------------------------------------------------------------------------------

bool isLeapYear(int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}
int64_t daysOfMonth(int64_t year, int64_t month) {
    constexpr int64_t days[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeapYear(year) ? 29 : days[month - 1];
}

int64_t floorDiv(int64_t a, int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}
/// Days from the first of January of the year 0 to that of a year of the proleptic calendar.
int64_t daysBefore(int64_t year) {
    const int64_t last = year - 1;
    return year * 365 + floorDiv(last, 4) - floorDiv(last, 100) + floorDiv(last, 400);
}
/// Weekday of the first of January, 0 is Monday. The year 2001 began with one.
int64_t firstWeekday(int64_t year) {
    const int64_t days = daysBefore(year) - daysBefore(2001);
    return days - floorDiv(days, 7) * 7;
}
/// A year has 53 weeks when it begins on a Thursday, or on a Wednesday and is a leap year.
int64_t weeksOf(int64_t year) {
    const int64_t first = firstWeekday(year);
    return first == 3 || (first == 2 && isLeapYear(year)) ? 53 : 52;
}

struct Date {
    std::string form; // C, Y, YM, YMD, YD, YW, YWD
    std::string year; // Basic, Proleptic, Negative, L5 ...
    std::vector<int64_t> parts;
    int64_t day = 0; // of a complete date
    bool isComplete = false, isComparable = true;
};

/// The year, or century, at the front: four or two digits, or with a sign.
bool takeYear(Reader& text, Date& date) {
    const bool negative = text.take('-');
    const bool positive = !negative && text.take('+');
    const std::string_view digits = text.digits();
    const bool isCentury = text.take('C');
    const size_t length = digits.size() + (isCentury ? 2 : 0);
    if (length < 4 || (positive && length < 5) || (!positive && !negative && length > 4))
        return false;
    const int64_t number = numberOf(digits);
    if (negative && number == 0) return false; // ISO 8601 has no minus zero
    date.isComparable = digits.size() <= 9;
    date.form = isCentury ? "C" : "Y";
    const int64_t firstBasic = isCentury ? 15 : 1582;
    if (length > 4)
        date.year = "L" + std::to_string(length);
    else
        date.year = negative ? "Negative" : number < firstBasic ? "Proleptic" : "Basic";
    date.parts.push_back(negative ? -number : number);
    return true;
}

bool takeWeek(Reader& text, int64_t year, Date& date) {
    int64_t week = 0;
    if (!takeNumber(text, 2, 1, weeksOf(year), week)) return false;
    date.parts.push_back(week);
    date.form = "YW";
    if (!text.take('-')) return true;
    int64_t day = 0;
    if (!takeNumber(text, 1, 1, 7, day)) return false;
    date.parts.push_back(day);
    date.form = "YWD";
    date.isComplete = true;
    // The first week is the one with the first Thursday.
    const int64_t first = firstWeekday(year);
    date.day = daysBefore(year) - first + (first > 3 ? 7 : 0) + (week - 1) * 7 + day - 1;
    return true;
}

bool takeMonth(Reader& text, int64_t year, Date& date) {
    int64_t month = 0;
    if (!takeNumber(text, 2, 1, 12, month)) return false;
    date.parts.push_back(month);
    date.form = "YM";
    if (!text.take('-')) return true;
    int64_t day = 0;
    if (!takeNumber(text, 2, 1, daysOfMonth(year, month), day)) return false;
    date.parts.push_back(day);
    date.form = "YMD";
    date.isComplete = true;
    date.day = daysBefore(year) + day - 1;
    for (int64_t before = 1; before < month; ++before) date.day += daysOfMonth(year, before);
    return true;
}

bool takeDate(Reader& text, Date& date) {
    if (!takeYear(text, date)) return false;
    if (date.form == "C" || !text.take('-')) return true;
    const int64_t year = date.isComparable ? date.parts.front() : date.parts.front() % 400;
    if (text.take('W')) return takeWeek(text, year, date);
    int64_t day = 0;
    Reader ordinal = text;
    if (!takeNumber(ordinal, 3, 1, isLeapYear(year) ? 366 : 365, day))
        return takeMonth(text, year, date);
    text = ordinal;
    date.parts.push_back(day);
    date.form = "YD";
    date.isComplete = true;
    date.day = daysBefore(year) + day - 1;
    return true;
}

// ---- times of day -------------------------------------------------------------------------------

struct Clock {
    std::string form;                    // H, HM, HMS, and with a fraction HF1 ...
    std::string zone;                    // L, Z, LD
    TimePart seconds = 0;                // in UTC, in units of the fraction's last digit
    TimePart unit = 1;                   // of these a second has
    bool isStart = false, isEnd = false; // midnight
    bool isComparable = true;
};

/// [(`.` | `,`) digits] behind the last of hours, minutes and seconds, `span` seconds long.
bool takeFraction(Reader& text, int64_t span, Clock& clock, bool& isZero) {
    if (!text.take('.') && !text.take(',')) return true;
    const std::string_view digits = text.digits();
    if (digits.empty()) return false;
    clock.form += "F" + std::to_string(digits.size());
    isZero = digits.find_first_not_of('0') == std::string_view::npos;
    clock.isComparable = digits.size() <= mostDigits;
    if (!clock.isComparable) return true;
    for (size_t i = 0; i < digits.size(); ++i) clock.unit *= 10;
    clock.seconds = clock.seconds * clock.unit + TimePart{numberOf(digits)} * span;
    return true;
}

/// `Z`, or the difference from UTC
bool takeZone(Reader& text, Clock& clock) {
    clock.zone = "L";
    if (text.take('Z')) {
        clock.zone = "Z";
        return true;
    }
    const bool ahead = !text.rest.empty() && text.rest.front() == '+';
    if (!ahead && (text.rest.empty() || text.rest.front() != '-')) return true;
    text.rest.remove_prefix(1);
    clock.zone = "LD";
    int64_t hours = 0;
    int64_t minutes = 0;
    if (!takeNumber(text, 2, 0, 15, hours)) return false;
    if (text.take(':') && !takeNumber(text, 2, 0, 59, minutes)) return false;
    if (!ahead && hours == 0 && minutes == 0) return false;
    const TimePart difference = TimePart{hours * 3600 + minutes * 60} * clock.unit;
    clock.seconds += ahead ? -difference : difference;
    return true;
}

bool takeClock(Reader& text, Clock& clock) {
    int64_t hours = 0;
    int64_t minutes = 0;
    int64_t seconds = 0;
    if (!takeNumber(text, 2, 0, 24, hours)) return false;
    clock.form = "H";
    int64_t span = 3600;
    if (text.take(':')) {
        if (!takeNumber(text, 2, 0, 59, minutes)) return false;
        clock.form = "HM";
        span = 60;
        if (text.take(':')) {
            if (!takeNumber(text, 2, 0, 59, seconds)) return false;
            clock.form = "HMS";
            span = 1;
        }
    }
    clock.seconds = hours * 3600 + minutes * 60 + seconds;
    bool isZero = true;
    if (!takeFraction(text, span, clock, isZero)) return false;
    const bool isHour = minutes == 0 && seconds == 0 && isZero;
    if (hours == 24 && !isHour) return false;
    clock.isStart = isHour && hours == 0;
    clock.isEnd = hours == 24;
    return takeZone(text, clock);
}

// ---- durations ----------------------------------------------------------------------------------

/// Digits of the fraction of a duration's last part as if it had mostDigits of them.
int64_t scaled(std::string_view digits) {
    std::string padded(digits.substr(0, mostDigits));
    padded.resize(mostDigits, '0');
    return numberOf(padded);
}

struct Duration {
    std::string form; // the letters
    std::vector<TimePart> parts;
    bool isComparable = true, ended = false; // ended: a fraction, nothing follows it
};

/// {number letter}, the letters in order, each once
bool takeParts(Reader& text, std::string_view letters, Duration& duration) {
    size_t next = 0;
    while (!duration.ended && !text.rest.empty() && isDigit(text.rest.front())) {
        const std::string_view digits = text.digits();
        std::string_view fraction;
        if (text.take('.') || text.take(',')) {
            fraction = text.digits();
            if (fraction.empty()) return false;
            duration.ended = true;
        }
        const size_t place =
            text.rest.empty() ? letters.npos : letters.find(text.rest.front(), next);
        if (place == letters.npos) return false;
        next = place + 1;
        text.rest.remove_prefix(1);
        duration.form += letters[place];
        duration.isComparable &= digits.size() <= mostDigits && fraction.size() <= mostDigits;
        duration.parts.push_back(numberOf(digits));
        duration.parts.push_back(scaled(fraction));
    }
    return next != 0;
}

/// P n W, or P {n (Y | M | D)} [T {n (H | M | S)}]
bool takeDuration(Reader& text, Duration& duration) {
    if (!text.take('P')) return false;
    Reader weeks = text;
    if (takeParts(weeks, "W", duration)) {
        text = weeks;
        return true;
    }
    duration = {};
    const bool hasDate = !text.rest.empty() && text.rest.front() != 'T';
    if (hasDate && !takeParts(text, "YMD", duration)) return false;
    if (!text.take('T')) return hasDate;
    duration.form += 'T';
    return !duration.ended && takeParts(text, "HMS", duration);
}

// ---- values -------------------------------------------------------------------------------------

/// A date, a time of day or both, into the settings and parts of the value.
bool takePoint(Reader& text, TimeVal& value) {
    Date date;
    Reader at = text;
    std::string basic = "Time";
    if (takeDate(at, date)) {
        text = at;
        value.settings[TIME_DATE] = date.form;
        value.settings[TIME_YEAR] = date.year;
        basic = "Date";
    }
    const bool isDate = basic == "Date";
    value.settings[TIME_SE_POINT] = basic; // its name if this is an end of an interval
    value.isComparable = date.isComparable;
    if (isDate && !(date.isComplete && text.take('T'))) {
        for (const int64_t part : date.parts) value.parts.push_back(part);
        return true;
    }
    Clock clock;
    if (!takeClock(text, clock)) return false;
    value.settings[TIME_TIME] = clock.form;
    value.settings[TIME_LOCAL_OR_UTC] = clock.zone;
    if (clock.isStart || clock.isEnd) value.settings[TIME_MIDNIGHT] = clock.isEnd ? "End" : "Start";
    if (isDate) value.settings[TIME_SE_POINT] = "Date-Time";
    value.isComparable &= clock.isComparable;
    value.parts.push_back(clock.seconds + TimePart{date.day} * 86400 * clock.unit);
    return true;
}

bool takeDurationOf(Reader& text, TimeVal& value) {
    Duration duration;
    if (!takeDuration(text, duration)) return false;
    value.isComparable = duration.isComparable;
    value.parts = std::move(duration.parts);
    value.form = std::move(duration.form);
    return true;
}

/// Both ends of an interval are of one form.
bool takeEnd(Reader& text, TimeVal& value) {
    TimeVal end;
    if (!takePoint(text, end)) return false;
    end.settings[TIME_MIDNIGHT] = value.settings[TIME_MIDNIGHT];
    end.settings[TIME_INTERVAL_TYPE] = value.settings[TIME_INTERVAL_TYPE];
    end.settings[TIME_RECURRENCE] = value.settings[TIME_RECURRENCE];
    return isSameForm(value, end);
}

/// A point, or an interval: start/end, start/duration, duration/end, duration
bool takeValue(Reader& text, TimeVal& value) {
    if (!text.rest.empty() && text.rest.front() == 'P') {
        if (!takeDurationOf(text, value)) return false;
        const bool hasEnd = text.take('/');
        value.settings[TIME_INTERVAL_TYPE] = hasEnd ? "DE" : "D";
        return !hasEnd || takePoint(text, value);
    }
    if (!takePoint(text, value)) return false;
    if (!text.take('/')) {
        value.settings[TIME_BASIC] = std::exchange(value.settings[TIME_SE_POINT], {});
        return true;
    }
    const bool isDuration = !text.rest.empty() && text.rest.front() == 'P';
    value.settings[TIME_INTERVAL_TYPE] = isDuration ? "SD" : "SE";
    return isDuration ? takeDurationOf(text, value) : takeEnd(text, value);
}

/// R [digits] `/`
bool takeRecurrence(Reader& text, TimeVal& value) {
    const std::string_view digits = text.digits();
    value.settings[TIME_RECURRENCE] =
        digits.empty() ? "Unlimited" : "R" + std::to_string(digits.size());
    return text.take('/') && takeValue(text, value) && !value.settings[TIME_INTERVAL_TYPE].empty();
}

} // namespace

bool readTime(std::string_view text, TimeVal& value) {
    value = {};
    Reader reader{text};
    const bool recurs = reader.take('R');
    if (!(recurs ? takeRecurrence(reader, value) : takeValue(reader, value))) return false;
    const bool isInterval = !value.settings[TIME_INTERVAL_TYPE].empty();
    if (isInterval) {
        value.settings[TIME_BASIC] = recurs ? "Rec-Interval" : "Interval";
        value.isComparable &= !recurs && value.settings[TIME_INTERVAL_TYPE] == "D";
    }
    return reader.rest.empty();
}

// ---- settings -----------------------------------------------------------------------------------

namespace {

struct Property {
    std::string_view name;
    std::string_view settings; // separated by blanks; a final `#` stands for a number
};
constexpr Property properties[timeProperties] = {
    {"Basic", "Date Time Date-Time Interval Rec-Interval"},
    {"Date", "C Y YM YMD YD YW YWD"},
    {"Year", "Basic Proleptic Negative L#"},
    {"Time", "H HM HMS HF# HMF# HMSF#"},
    {"Local-or-UTC", "L Z LD"},
    {"Interval-type", "SE D SD DE"},
    {"SE-point", "Date Time Date-Time"},
    {"Recurrence", "Unlimited R#"},
    {"Midnight", "Start End"},
};

/// Takes the text up to the next blank.
std::string_view takeWord(std::string_view& text) {
    const size_t begin = std::min(text.find_first_not_of(" \t\r\n\v\f"), text.size());
    const size_t end = std::min(text.find_first_of(" \t\r\n\v\f", begin), text.size());
    const std::string_view word = text.substr(begin, end - begin);
    text.remove_prefix(end);
    return word;
}

/// A number from 1 on, of years from 5 on, without leading zeros.
bool isCount(std::string_view digits, char unit) {
    if (digits.empty() || digits.front() == '0' || !std::ranges::all_of(digits, isDigit))
        return false;
    return unit != 'L' || digits.size() > 1 || digits.front() >= '5';
}

bool isSetting(const Property& property, std::string_view setting) {
    std::string_view rest = property.settings;
    for (std::string_view name = takeWord(rest); !name.empty(); name = takeWord(rest)) {
        if (name == setting) return true;
        if (name.back() != '#') continue;
        name.remove_suffix(1);
        if (setting.starts_with(name) && isCount(setting.substr(name.size()), name.back()))
            return true;
    }
    return false;
}

} // namespace

bool readTimeSettings(std::string_view text, TimeSettings& settings, std::string_view& fault) {
    settings = {};
    for (fault = takeWord(text); !fault.empty(); fault = takeWord(text)) {
        const size_t equals = std::min(fault.find('='), fault.size());
        const auto* const property =
            std::ranges::find(properties, fault.substr(0, equals), &Property::name);
        if (equals == fault.size() || property == std::end(properties)) return false;
        const std::string_view setting = fault.substr(equals + 1);
        std::string& place = settings[static_cast<size_t>(property - properties)];
        if (!isSetting(*property, setting) || !place.empty()) return false;
        place = setting;
    }
    return std::ranges::any_of(settings, [](const auto& setting) { return !setting.empty(); });
}

TimeSettings settingsOfType(uint8_t typeCode) {
    constexpr std::string_view definitions[] = {
        "Basic=Date Date=YMD Year=Basic",
        "Basic=Time Time=HMS Local-or-UTC=L",
        "Basic=Date-Time Date=YMD Year=Basic Time=HMS Local-or-UTC=L",
        "Basic=Interval Interval-type=D",
    };
    TimeSettings settings;
    std::string_view fault;
    if (typeCode >= TYP_DATE && typeCode <= TYP_DURATION)
        static_cast<void>(readTimeSettings(definitions[typeCode - TYP_DATE], settings, fault));
    return settings;
}

bool hasSettings(const TimeVal& value, const TimeSettings& settings) {
    for (size_t i = 0; i < timeProperties; ++i) {
        if (settings[i].empty() || settings[i] == value.settings[i]) continue;
        if (i != TIME_MIDNIGHT || !value.settings[i].empty()) return false;
    }
    return true;
}

bool isSameForm(const TimeVal& a, const TimeVal& b) {
    const auto yearForm = [](const TimeVal& value) {
        const std::string& year = value.settings[TIME_YEAR];
        return year.starts_with('L') ? std::string_view(year) : std::string_view();
    };
    for (size_t i = 0; i < timeProperties; ++i)
        if (i != TIME_MIDNIGHT && i != TIME_YEAR && a.settings[i] != b.settings[i]) return false;
    return yearForm(a) == yearForm(b) && a.form == b.form;
}

} // namespace orvo
