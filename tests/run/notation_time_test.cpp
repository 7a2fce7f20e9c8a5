// Values of the time types and of IRIs: what is written, and what the calendar and the labels
// allow.

#include <gtest/gtest.h>

#include "support/cases.h"

namespace orvo::test {
namespace {

TEST(NotationTime, ReadsValues) {
    expectRows(R"(
v DATE ::= "2020-02-29" -- a leap year
v DATE ::= t t TIME ::= "1582-01-01" -- the first year of Basic
v TIME ::= "1500-02-28" -- proleptic
v TIME ::= "2020-W53-7" -- begins on a Wednesday, leap year
v TIME ::= "2020-366"
v TIME ::= "19C"
v TIME ::= "-0001-12"
v TIME ::= "+12345-12-01"
v TIME ::= "15"
v TIME ::= "15:27.5+01:30"
v TIME-OF-DAY ::= "24:00:00" -- the end of the day
v DATE-TIME ::= "2020-12-31T23:59:59"
v TIME ::= "2020-01-01T10Z/2020-01-01T12Z"
v TIME ::= "R5/2020-01-01/P1D"
v TIME ::= "R/P1DT2H/2020-01-01"
v TIME ::= "R12/2020-01-01/2020-02-01"
v DURATION ::= "PT1.5H"
v DURATION ::= "P3W"
v TIME (SETTINGS "Basic=Date  Date=YMD") ::= "2020-01-01"
v TIME (SETTINGS "Basic=Time Time=HMSF3 Midnight=Start") ::= "10:00:00.123" -- Midnight says nothing of other times.
v TIME (SETTINGS "Midnight=End" | SETTINGS "Basic=Date") ::= "24:00:00,0"
T ::= TIME (SETTINGS "Year=L15 Recurrence=R2")
v DATE ("2020-01-01".."2020-12-31") ::= "2020-01-01"
v DATE-TIME ("2020-12-31T00:00:00".."2021-01-01T00:00:00") ::= "2020-12-31T24:00:00"
v TIME ("10:00+01:00".."11:00+01:00") ::= "11:30+02:00" -- 09:30 in UTC, between 09:00 and 10:00.
T ::= DURATION ("P1Y".."P2Y")
v OID-IRI ::= "/ISO/2/xé_~.-1"
v RELATIVE-OID-IRI ::= "a/0/b"
)",
               {edition});
}

TEST(NotationTime, RefusesWhatIsNone) {
    expectRows(R"(
v DATE ::= "2100-02-29" --! Invalid DATE value
v DATE ::= "1581-12-31" --! Invalid DATE value
v DATE ::= "20200229" --! Invalid DATE value
v DATE ::= t t TIME ::= "2020-001" --! Invalid DATE value
v TIME ::= "2021-366" --! Invalid TIME value
v TIME ::= "2021-W53-7" --! Invalid TIME value
v TIME ::= "12345-12-01" --! Invalid TIME value
v TIME ::= "15:27-00:00" --! Invalid TIME value
v TIME ::= "2020-01T10" --! Invalid TIME value
v TIME ::= "2020-01-01T10/2020-01-01T12:00" --! Invalid TIME value
v TIME ::= "R5/2020-01-01" --! Invalid TIME value
v TIME ::= "R/2020-01-01T10/2020-01-01" --! Invalid TIME value
v TIME ::= "" --! Invalid TIME value
v TIME-OF-DAY ::= "24:00:01" --! Invalid TIME-OF-DAY value
v TIME-OF-DAY ::= "23:59:60" --! Invalid TIME-OF-DAY value
v TIME-OF-DAY ::= "23:59:59Z" --! Invalid TIME-OF-DAY value
v DURATION ::= "P1T2H" --! Invalid DURATION value
v DURATION ::= "P1M1Y" --! Invalid DURATION value
v DURATION ::= "P1.5DT1H" --! Invalid DURATION value
v DURATION ::= "P3W1D" --! Invalid DURATION value
v DURATION ::= "PT" --! Invalid DURATION value
T ::= SEQUENCE { d DATE DEFAULT "2020-13-01" } --! Invalid DATE value ; Invalid default value
v TIME (SETTINGS "Date=YMD") ::= "2020-001" --! Value out of SETTINGS constraint(s)
v TIME (SETTINGS "Midnight=Start") ::= "24:00" --! Value out of SETTINGS constraint(s)
T ::= TIME (SETTINGS "Year=L4") --! Property or setting of a time that is unknown or stands twice: Year=L4 ; Invalid SETTINGS constraint(s)
T ::= TIME (SETTINGS "Basic=Date Basic=Date") --! Property or setting of a time that is unknown or stands twice: Basic=Date ; Invalid SETTINGS constraint(s)
T ::= DATE ("2020-01-02".."2020-01-01") --! Invalid range constraint(s)
T ::= DATE ("2020-01-01"<.."2020-01-01") --! Invalid range constraint(s)
T ::= TIME ("2020-01-01".."2020-001") --! Invalid range constraint(s)
T ::= DURATION ("P1Y".."P2M") --! Invalid range constraint(s)
v DATE ("2020-01-01"<.."2020-12-31") ::= "2020-01-01" --! Value out of range constraint(s)
v TIME ("10:00+01:00".."11:00+01:00") ::= "11:30+00:30" -- 11:00 in UTC --! Value out of range constraint(s)
v OID-IRI ::= "ISO/a" --! Invalid OID-IRI value
v OID-IRI ::= "/ISO/" --! Invalid OID-IRI value
v OID-IRI ::= "/ISO/01" --! Invalid OID-IRI value
v OID-IRI ::= "/ISO/xn--a" --! Invalid OID-IRI value
v OID-IRI ::= "/ISO/-a" --! Invalid OID-IRI value
v OID-IRI ::= "/ISO/a b" --! Invalid OID-IRI value
v RELATIVE-OID-IRI ::= "/a" --! Invalid RELATIVE-OID-IRI value
)",
               {edition});
}

} // namespace
} // namespace orvo::test
