// A guess, made without looking at the text, how common an element is in texts of all kinds: prose,
// source code, records, binary data. It only steers which element a search looks for first.
#pragma once

#include "string/kernels/isa.h"
#include "zelchmx.h"

namespace zel::ZEL_ISA {

struct CommonnessTable {
    Zel8u of[256];
};

/// The bytes of the list from the most common one down; every other byte is taken to be rare.
constexpr CommonnessTable makeCommonnessTable() {
    constexpr char kCommonFirst[] =
        " etaoinsrhldcumfpgwybvk\n.,0123456789_-\"'()/;:=x\r\tTSAICMPBEDRLNFjqz*<>{}[]HWGOUJKVYXQZ";
    CommonnessTable table{};
    int rank = 255;
    for (const char c : kCommonFirst) {
        if (c != 0) table.of[static_cast<Zel8u>(c)] = static_cast<Zel8u>(rank--);
    }
    table.of[0] = 255;
    table.of[0xFF] = 200;
    return table;
}

inline constexpr CommonnessTable kCommonness = makeCommonnessTable();

/// Units beyond the bytes count as rare.
constexpr int commonness(unsigned element) {
    return element < 256 ? kCommonness.of[element] : 0;
}

}  // namespace zel::ZEL_ISA
