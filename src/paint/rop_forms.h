// Short bitwise formulas for the 256 truth tables of three operands, found
// at compile time. A truth table is a code as the raster operations number
// them (bit 4p + 2s + d), so P, S and D themselves are 0xF0, 0xCC and 0xAA,
// and AND, OR, XOR and NOT of formulas are the same operations on their
// tables. The search builds every table from the operands and the two
// constants with as few operations as a formula tree allows; evalForm then
// expands a table's formula into straight-line code on whole words, so each
// bit of the words is computed in parallel with no decoding per bit.
#pragma once

#include "paint/rop_codes.h"

#include <cstdint>

namespace kryn::rop_forms {

enum class FormOp : uint8_t { None, Leaf, Not, And, Or, Xor };

inline constexpr uint8_t NO_COST = 0xFF;

// How one truth table is computed: a leaf (an operand or a constant), or an
// operation on the formulas of the tables `left` and `right`.
struct FormNode {
    FormOp op = FormOp::None;
    uint8_t left = 0;
    uint8_t right = 0;
    uint8_t cost = NO_COST; // operations in the formula
};

struct FormTable {
    FormNode node[256];
};

// Level by level: every formula of n operations applies one operation to
// formulas of fewer operations whose counts add up to n - 1, so the first
// formula found for a table is one of the shortest.
constexpr FormTable findForms() {
    FormTable t{};
    const uint8_t leaves[] = {0x00, 0xFF, ROP_PATTERN, ROP_SOURCE, ROP_DESTINATION};
    int found = 0;
    for (uint8_t leaf : leaves) {
        t.node[leaf] = {FormOp::Leaf, 0, 0, 0};
        ++found;
    }
    for (int cost = 1; found < 256 && cost < NO_COST; ++cost) {
        const auto offer = [&](uint32_t table, FormOp op, uint32_t left, uint32_t right) {
            FormNode& n = t.node[table & 0xFF];
            if (n.op == FormOp::None) {
                n = {op, static_cast<uint8_t>(left), static_cast<uint8_t>(right),
                     static_cast<uint8_t>(cost)};
                ++found;
            }
        };
        for (uint32_t a = 0; a < 256; ++a) {
            if (t.node[a].cost == cost - 1) {
                offer(~a, FormOp::Not, a, 0);
            }
        }
        for (uint32_t a = 0; a < 256; ++a) {
            for (uint32_t b = a; b < 256; ++b) {
                if (t.node[a].cost + t.node[b].cost != cost - 1) {
                    continue;
                }
                offer(a & b, FormOp::And, a, b);
                offer(a | b, FormOp::Or, a, b);
                offer(a ^ b, FormOp::Xor, a, b);
            }
        }
    }
    return t;
}

inline constexpr FormTable FORMS = findForms();

constexpr int longestForm() {
    int longest = 0;
    for (const FormNode& n : FORMS.node) {
        longest = n.cost > longest ? n.cost : longest;
    }
    return longest;
}

// Every table has a formula, and none needs more than five operations.
static_assert(longestForm() <= 5);

// The formula of a truth table applied to whole words: bit k of the result
// is the table's value for bit k of p, s and d.
template <uint8_t TABLE>
[[gnu::always_inline]] inline uint32_t evalForm(uint32_t s, uint32_t p, uint32_t d) {
    constexpr FormNode n = FORMS.node[TABLE];
    if constexpr (n.op == FormOp::Leaf) {
        if constexpr (TABLE == ROP_PATTERN) {
            return p;
        } else if constexpr (TABLE == ROP_SOURCE) {
            return s;
        } else if constexpr (TABLE == ROP_DESTINATION) {
            return d;
        } else if constexpr (TABLE == 0x00) {
            return 0;
        } else {
            return ~uint32_t{0};
        }
    } else if constexpr (n.op == FormOp::Not) {
        return ~evalForm<n.left>(s, p, d);
    } else if constexpr (n.op == FormOp::And) {
        return evalForm<n.left>(s, p, d) & evalForm<n.right>(s, p, d);
    } else if constexpr (n.op == FormOp::Or) {
        return evalForm<n.left>(s, p, d) | evalForm<n.right>(s, p, d);
    } else {
        static_assert(n.op == FormOp::Xor);
        return evalForm<n.left>(s, p, d) ^ evalForm<n.right>(s, p, d);
    }
}

} // namespace kryn::rop_forms
