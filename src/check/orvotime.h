#pragma once

// Time values as they are written: the properties of X.680 (02/2021) clause 38 and what they are
// compared by.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvo {

/// The properties of clause 38.2, in the order of its table.
enum TimeProperty : uint8_t {
    TIME_BASIC,
    TIME_DATE,
    TIME_YEAR,
    TIME_TIME,
    TIME_LOCAL_OR_UTC,
    TIME_INTERVAL_TYPE,
    TIME_SE_POINT,
    TIME_RECURRENCE,
    TIME_MIDNIGHT,
    timeProperties,
};

/// The name of the setting that each property has; empty where it has none. Names with a number
/// have it in decimal: "HMSF3", "L5", "R2".
using TimeSettings = std::array<std::string, timeProperties>;

__extension__ using TimePart = __int128;

/// A time value that was read.
struct TimeVal {
    TimeSettings settings;
    std::string form;            // letters of a duration
    std::vector<TimePart> parts; // most significant first; values of one form compare by them
    bool isComparable = false;   // a point in time, or a duration, within what parts can hold
};

/// Reads a time value in one of the forms of clause 38.3 (the extended ones of ISO 8601) with the
/// rules of the calendar. False when it is none.
[[nodiscard]] bool readTime(std::string_view text, TimeVal& value);

/// Reads the text of SETTINGS (clause 51.10): pairs of a property and its setting, separated by
/// white space. False, with the text that is wrong in `fault`, for an unknown name and for a
/// property that stands twice.
[[nodiscard]] bool readTimeSettings(std::string_view text, TimeSettings& settings,
                                    std::string_view& fault);

/// The settings that a time type other than TIME stands for (clause 38.4); none for TIME.
[[nodiscard]] TimeSettings settingsOfType(uint8_t typeCode);

/// The value has the settings: one that is midnight that of Midnight, any other passes it.
[[nodiscard]] bool hasSettings(const TimeVal& value, const TimeSettings& settings);

/// Two values are written in one form: all settings but those of Midnight and of years of four
/// digits agree.
[[nodiscard]] bool isSameForm(const TimeVal& a, const TimeVal& b);

} // namespace orvo
