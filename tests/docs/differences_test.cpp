// Runs every line of the table "Where this differs from Perl" in docs/pattern-language.md: the
// column "Here" must say what the library does. differences.pl does the same for the column "Perl".
#include <gtest/gtest.h>

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "zelchmx.h"

namespace {

std::string trim(const std::string& text) {
    const std::size_t begin = text.find_first_not_of(' ');
    return begin == std::string::npos ? ""
                                      : text.substr(begin, text.find_last_not_of(' ') - begin + 1);
}

// The cells of a row; a bar within a cell is written with a backslash.
std::vector<std::string> cellsOf(const std::string& row) {
    std::vector<std::string> cells(1);
    for (std::size_t i = 1; i < row.size(); ++i) {
        if (row.compare(i, 2, "\\|") == 0)
            cells.back() += row[++i];
        else if (row[i] == '|')
            cells.emplace_back();
        else
            cells.back() += row[i];
    }
    cells.pop_back();
    for (std::string& cell : cells) cell = trim(cell);
    return cells;
}

std::string withoutTicks(const std::string& cell) {
    return cell.size() >= 2 && cell.front() == '`' ? cell.substr(1, cell.size() - 2) : cell;
}

// A subject with \n and \xHH, a code point below 0x100, spelled out.
std::string unescape(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "\\n") == 0) {
            result += '\n';
            ++i;
        } else if (text.compare(i, 2, "\\x") == 0) {
            const int code = std::stoi(text.substr(i + 2, 2), nullptr, 16);
            if (code >= 0x80) result += static_cast<char>(0xC0 | (code >> 6));
            result += static_cast<char>(code < 0x80 ? code : 0x80 | (code & 0x3F));
            i += 3;
        } else {
            result += text[i];
        }
    }
    return result;
}

// What the table would say of this search.
std::string outcome(const std::string& pattern, const std::string& options,
                    const std::string& subject) {
    ZelRegExpState* state = nullptr;
    int offset = 0;
    const ZelStatus status = zelsRegExpInitAlloc(pattern.c_str(), options.c_str(), &state, &offset);
    if (status != zelStatusOk)
        return "error " + std::to_string(status) + " at " + std::to_string(offset);
    ZelRegExpFind found[16];
    const bool all = options.find('g') != std::string::npos;
    int count = all ? 16 : 1;
    EXPECT_EQ(zelsRegExpFind_8u(reinterpret_cast<const Zel8u*>(subject.c_str()),
                                static_cast<int>(subject.size()), state, found, &count),
              zelStatusOk);
    zelsRegExpFree(state);
    std::string result;
    for (int i = 0; i < count; ++i) {
        const std::string text(reinterpret_cast<const char*>(found[i].pMatch),
                               static_cast<std::size_t>(found[i].lenMatch));
        if (i > 0) result += ' ';
        result.append("`").append(text.empty() ? "\"\"" : text).append("`");
    }
    return count == 0 ? "no match" : result;
}

TEST(PatternLanguageGuide, TableOfDifferencesSaysWhatTheLibraryDoes) {
    std::ifstream guide(GUIDE);
    std::string line;
    while (std::getline(guide, line) && line != "## Where this differs from Perl") continue;
    int rows = 0;
    while (std::getline(guide, line)) {
        if (line.rfind("| ", 0) != 0) continue;
        const std::vector<std::string> cells = cellsOf(line);
        ASSERT_EQ(cells.size(), 6u) << line;
        if (cells[0] == "What") continue;
        ++rows;
        EXPECT_EQ(outcome(withoutTicks(cells[1]), cells[2], unescape(withoutTicks(cells[3]))),
                  unescape(cells[5]))
            << line;
        EXPECT_NE(cells[4], cells[5]) << "no difference: " << line;
    }
    EXPECT_GT(rows, 30);
}

}  // namespace
