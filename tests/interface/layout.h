/* The public records as callers have compiled them in: any other size or offset breaks a program
 * that is only relinked. Included from C99 and from C++11. */
#ifndef ZELCHMX_TESTS_LAYOUT_H
#define ZELCHMX_TESTS_LAYOUT_H

#include <stddef.h>

#include "zelchmx.h"

/* C99 has no static assertion: an array of negative size does not compile. */
#define MUST_HOLD(name, condition) typedef char name[(condition) ? 1 : -1]

MUST_HOLD(zel8u_is_a_byte, sizeof(Zel8u) == 1 && (Zel8u)-1 > 0);
MUST_HOLD(zel16u_is_unsigned, sizeof(Zel16u) == 2 && (Zel16u)-1 > 0);
MUST_HOLD(zel16s_is_signed, sizeof(Zel16s) == 2 && (Zel16s)-1 < 0);
MUST_HOLD(zel32u_is_unsigned, sizeof(Zel32u) == 4 && (Zel32u)-1 > 0);
MUST_HOLD(status_is_signed, sizeof(ZelStatus) == 4 && (ZelStatus)-1 < 0);

MUST_HOLD(version_size, sizeof(ZelLibraryVersion) == 48);
MUST_HOLD(version_minor, offsetof(ZelLibraryVersion, minor) == 4);
MUST_HOLD(version_build_number, offsetof(ZelLibraryVersion, buildNumber) == 8);
MUST_HOLD(version_build_serial, offsetof(ZelLibraryVersion, buildSerial) == 12);
MUST_HOLD(version_cpu_code, offsetof(ZelLibraryVersion, cpuCode) == 16);
MUST_HOLD(version_library_name, offsetof(ZelLibraryVersion, libraryName) == 24);
MUST_HOLD(version_text, offsetof(ZelLibraryVersion, versionText) == 32);
MUST_HOLD(version_date, offsetof(ZelLibraryVersion, buildDate) == 40);

MUST_HOLD(find_size, sizeof(ZelRegExpFind) == 16);
MUST_HOLD(find_match, offsetof(ZelRegExpFind, pMatch) == 0);
MUST_HOLD(find_length, offsetof(ZelRegExpFind, lenMatch) == 8);

MUST_HOLD(multi_find_size, sizeof(ZelRegExpMultiFind) == 24);
MUST_HOLD(multi_find_searched, offsetof(ZelRegExpMultiFind, searched) == 0);
MUST_HOLD(multi_find_identifier, offsetof(ZelRegExpMultiFind, identifier) == 4);
MUST_HOLD(multi_find_count, offsetof(ZelRegExpMultiFind, numFind) == 8);
MUST_HOLD(multi_find_status, offsetof(ZelRegExpMultiFind, status) == 12);
MUST_HOLD(multi_find_records, offsetof(ZelRegExpMultiFind, pFind) == 16);

MUST_HOLD(ok, zelStatusOk == 0);
MUST_HOLD(no_id, zelStatusRegExpMultiNoIdError == -2);
MUST_HOLD(id, zelStatusRegExpMultiIdError == -5);
MUST_HOLD(size, zelStatusSizeError == -6);
MUST_HOLD(bad_argument, zelStatusBadArgError == -7);
MUST_HOLD(null_pointer, zelStatusNullPointer == -8);
MUST_HOLD(full, zelStatusRegExpMultiFullError == -9);
MUST_HOLD(length, zelStatusLengthError == -119);
MUST_HOLD(escape, zelStatusRegExpEscapeError == -183);
MUST_HOLD(character_class, zelStatusRegExpCharClassError == -184);
MUST_HOLD(back_reference, zelStatusRegExpBackRefError == -185);
MUST_HOLD(grouping, zelStatusRegExpGroupingError == -186);
MUST_HOLD(quantifier, zelStatusRegExpQuantifierError == -187);
MUST_HOLD(match_limit, zelStatusRegExpMatchLimitError == -188);
MUST_HOLD(context, zelStatusContextMatchError == -189);
MUST_HOLD(options, zelStatusRegExpOptionsError == -190);
MUST_HOLD(split_incomplete, zelStatusSplitIncompleteWarning == 26);
MUST_HOLD(truncated, zelStatusTruncatedWarning == 27);

#endif
