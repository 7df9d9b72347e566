// May a pattern be searched in a whole block of lines at once?
//
// zelgrep promises that every line is a text of its own. For a pattern none of whose parts can
// match a newline, searching a block of many lines finds exactly the lines that searching each of
// them finds, at a fraction of the price: the engine runs over lines without a match at full speed.
// This file decides, from the pattern's text alone and always erring on the side of "no", whether
// that holds.
#pragma once

#include <string>
#include <string_view>

namespace zelgrep {

struct BlockPlan {
    bool possible = false;   // a block in which nothing is found holds no line that matches
    bool confirm = false;    // ... but a line found may not match by itself: search it again
    bool asciiOnly = false;  // ... and this holds only for blocks of ASCII text
    bool many = false;       // the matches that one search finds lie in all lines that match
    std::string pattern;     // what to search blocks with: the pattern without capturing
};

/// `options` are the option letters (of i m s x) that the pattern is compiled with.
BlockPlan planFor(std::string_view pattern, std::string_view options);

}  // namespace zelgrep
