// Banner, notice and counters. Listings and the terminal show the same lines, so every text is made
// here once and written to whatever stream the caller has.

#include "diag/orvoerr_hello.h"

#include <algorithm>
#include <ctime>

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

void getTimeStamp(TimeStamp& timeStamp) {
    timeStamp = {orvoVersion, orvoVersion, 0, 0};
    const std::time_t now = std::time(nullptr);
    const std::tm* local = std::localtime(&now);
    if (local == nullptr) return;
    timeStamp.date = 19000000 + local->tm_year * 10000 + (local->tm_mon + 1) * 100 + local->tm_mday;
    timeStamp.time = local->tm_hour * 10000 + local->tm_min * 100 + local->tm_sec;
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
