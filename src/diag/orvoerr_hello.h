#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>

#include "tree/orvodef.h"

namespace orvo {

/// Version times 100, as the time stamps of tree files hold it.
inline constexpr uint16_t orvoVersion = 213;
inline constexpr int orvoPatch = 0;

/// Version and the local date and time of now; where SOURCE_DATE_EPOCH gives the seconds since 1970,
/// date and time of that in UTC.
void getTimeStamp(TimeStamp& timeStamp);
/// prefix + "on DD.MM.YYYY at H:MM.SS" + suffix.
std::string printTimeStamp(std::string_view prefix, const TimeStamp& timeStamp,
                           std::string_view suffix);
/// prefix + "2.13" (with a patch from 1 on "2.13.1") + suffix.
std::string printVersionStri(std::string_view prefix, int version, int patch,
                             std::string_view suffix);

/// The line that names the compiler, with its line feed.
std::string bannerLine(int version, int patch);
/// The maker's notice, broken after each full stop.
std::string formatToolNotice();
/// An empty line, the banner line, the notice, an empty line.
void sayHello(std::FILE* stream, int version, int patch);
/// "Processed by ORVO 2.13 on ..." and a line feed.
void printNotice(std::FILE* stream, const TimeStamp& timeStamp);
void printFileName(std::FILE* stream, std::string_view name);
/// The text in lines of at most `width` (from 1) of its characters.
void printInfo(std::FILE* stream, std::string_view text, size_t width);
/// The counters, behind an empty line; warnings from verbosity 2 on.
void sayBye(std::FILE* stream, int syntaxErrors, int semanticErrors, int undefinedSymbols,
            int warnings);

/// "ORVO>>> " + text and a line feed on standard output; whether it is wanted is the caller's to
/// ask (progressShown).
void printProgress(std::string_view text);

/// Version of an RCS revision text: "2.13" gives 213; a second number above 99 counts as 0.
int rcsRevision2betVersion(std::string_view text);
/// The declaration by which generated C files identify themselves.
std::string printRcsId(std::string_view name);

} // namespace orvo
