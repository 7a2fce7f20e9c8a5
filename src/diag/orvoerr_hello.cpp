// Banner, notice and counters. Listings and the terminal show the same lines, so every text is made
// here once and written to whatever stream the caller has.

#include "diag/orvoerr_hello.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <optional>

#include "tree/orvomod.h"
#include "util/ascii.h"
#include "util/text.h"

namespace orvo {
namespace {

constexpr std::string_view releaseMonth = "February";
constexpr std::string_view releaseYear = "2002";
constexpr std::string_view makersNotice = "(c) The orvo authors. All rights reserved.";

/// The digits at the front of the text, cut at 9999; the text is left behind them.
int takeNumber(std::string_view& text) {
    int number = 0;
    while (!text.empty() && isDigit(text.front())) {
        number = std::min(number * 10 + (text.front() - '0'), 9999);
        text.remove_prefix(1);
    }
    return number;
}

} // namespace

namespace {

/// The end of the year 9999.
constexpr int64_t lastSecond = 253402300799;

/// The time that SOURCE_DATE_EPOCH gives, so that builds can be repeated; none when it is unset or
/// no number of seconds.
std::optional<std::time_t> timeOfBuild() {
    const char* const text = std::getenv("SOURCE_DATE_EPOCH");
    if (text == nullptr) return {};
    const char* const end = text + std::strlen(text);
    int64_t seconds = 0;
    const auto [rest, error] = std::from_chars(text, end, seconds);
    if (error == std::errc() && rest == end && *text != '-' && seconds <= lastSecond)
        return static_cast<std::time_t>(seconds);
    put(stderr, concat("\nWARNING : SOURCE_DATE_EPOCH ignored, no number of seconds from 0 to ",
                       std::to_string(lastSecond), "\n"));
    return {};
}

} // namespace

void getTimeStamp(TimeStamp& timeStamp) {
    timeStamp = {orvoVersion, orvoVersion, 0, 0};
    const std::optional<std::time_t> fixed = timeOfBuild();
    const std::time_t now = fixed ? *fixed : std::time(nullptr);
    const std::tm* at = fixed ? std::gmtime(&now) : std::localtime(&now);
    if (at == nullptr) return;
    timeStamp.date = 19000000 + at->tm_year * 10000 + (at->tm_mon + 1) * 100 + at->tm_mday;
    timeStamp.time = at->tm_hour * 10000 + at->tm_min * 100 + at->tm_sec;
}

std::string printTimeStamp(std::string_view prefix, const TimeStamp& timeStamp,
                           std::string_view suffix) {
    const int32_t date = timeStamp.date, time = timeStamp.time;
    return concat(prefix, "on ", padLeft(date % 100, 2, '0'), ".",
                  padLeft(date / 100 % 100, 2, '0'), ".", std::to_string(date / 10000), " at ",
                  std::to_string(time / 10000), ":", padLeft(time / 100 % 100, 2, '0'), ".",
                  padLeft(time % 100, 2, '0'), suffix);
}

std::string printVersionStri(std::string_view prefix, int version, int patch,
                             std::string_view suffix) {
    std::string text =
        concat(prefix, std::to_string(version / 100), ".", padLeft(version % 100, 2, '0'));
    if (patch >= 1) text += concat(".", std::to_string(patch));
    return concat(text, suffix);
}

std::string bannerLine(int version, int patch) {
    return printVersionStri("Compiler for Abstract Syntax Notation One Version ", version, patch,
                            concat(" ", releaseMonth, " ", releaseYear, "\n"));
}

std::string formatToolNotice() {
    std::string text;
    for (size_t at = 0; at < makersNotice.size(); ++at) {
        text += makersNotice[at];
        if (makersNotice[at] != '.') continue;
        text += '\n';
        while (at + 1 < makersNotice.size() && makersNotice[at + 1] == ' ') ++at;
    }
    return text;
}

void sayHello(std::FILE* stream, int version, int patch) {
    put(stream, concat("\n", bannerLine(version, patch), formatToolNotice(), "\n"));
}

void printNotice(std::FILE* stream, const TimeStamp& timeStamp) {
    put(stream, printVersionStri("Processed by ORVO ", timeStamp.version, 0, ""));
    put(stream, printTimeStamp(" ", timeStamp, "\n"));
}

void printFileName(std::FILE* stream, std::string_view name) {
    put(stream, concat("FILE = ", name, "\n"));
}

void printInfo(std::FILE* stream, std::string_view text, size_t width) {
    std::string_view lead = "INFO = ";
    do {
        put(stream, concat(lead, text.substr(0, width), "\n"));
        text.remove_prefix(std::min(width, text.size()));
        lead = "       ";
    } while (!text.empty());
}

void sayBye(std::FILE* stream, int syntaxErrors, int semanticErrors, int undefinedSymbols,
            int warnings) {
    put(stream, concat("\nSyntax errors     : ", std::to_string(syntaxErrors),
                       "\nSemantic errors   : ", std::to_string(semanticErrors),
                       "\nUndefined symbols : ", std::to_string(undefinedSymbols), "\n"));
    if (run.verboseEx >= 2)
        put(stream, concat("Warnings          : ", std::to_string(warnings), "\n"));
}

void printProgress(std::string_view text) {
    put(stdout, concat("ORVO>>> ", text, "\n"));
}

int rcsRevision2betVersion(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_of("0123456789"), text.size()));
    const int first = takeNumber(text);
    int second = 0;
    if (!text.empty() && text.front() == '.') {
        text.remove_prefix(1);
        second = takeNumber(text);
    }
    return first * 100 + (second > 99 ? 0 : second);
}

std::string printRcsId(std::string_view name) {
    std::string identifier(name);
    for (char& c : identifier) c = c == '-' || c == '.' ? '_' : toLower(c);
    if (!identifier.empty()) identifier += '_';
    return concat("static char ", identifier, "rcsid [] = \"$Id$\" ;\n");
}

} // namespace orvo
