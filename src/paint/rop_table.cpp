#include "paint/rop_table.h"

#include "paint/colour_value.h"
#include "paint/rop_codes.h"
#include "paint/rop_forms.h"

#include <cstddef>
#include <utility>

namespace kryn {
namespace {

using rop_forms::evalForm;

template <uint8_t CODE>
uint8_t rop8(uint32_t s, uint32_t p, uint32_t d) {
    return static_cast<uint8_t>(evalForm<CODE>(s, p, d));
}

template <uint8_t CODE>
uint32_t rop24(uint32_t s, uint32_t p, uint32_t d, uint32_t t) {
    const uint32_t colour = evalForm<CODE>(s, p, d) & COLOUR_CHANNELS;
    constexpr RopTagRule rule = ropTagRule(CODE);
    if constexpr (rule == RopTagRule::Paint) {
        return colour | (t & TAG_BITS);
    } else if constexpr (rule == RopTagRule::KeepAlways) {
        return colour | (d & TAG_BITS);
    } else {
        bool keep;
        if constexpr (rule == RopTagRule::KeepWhenSourceZero) {
            keep = (s & COLOUR_CHANNELS) == 0;
        } else if constexpr (rule == RopTagRule::KeepWhenSourceOnes) {
            keep = (s & COLOUR_CHANNELS) == COLOUR_CHANNELS;
        } else if constexpr (rule == RopTagRule::KeepWhenPatternZero) {
            keep = (p & COLOUR_CHANNELS) == 0;
        } else {
            static_assert(rule == RopTagRule::KeepWhenPatternOnes);
            keep = (p & COLOUR_CHANNELS) == COLOUR_CHANNELS;
        }
        return colour | ((keep ? d : t) & TAG_BITS);
    }
}

template <size_t INDEX>
constexpr RopRoutine routineAt() {
    if constexpr (INDEX < 256) {
        return RopRoutine{.fn8 = &rop8<static_cast<uint8_t>(INDEX)>};
    } else {
        return RopRoutine{.fn24 = &rop24<static_cast<uint8_t>(INDEX - 256)>};
    }
}

template <size_t... INDEX>
constexpr RopTable makeRopTable(std::index_sequence<INDEX...>) {
    return RopTable{{routineAt<INDEX>()...}};
}

// With one operand fixed at every bit, the code's function is D alone (D
// itself or its inverse) whatever the remaining operand.
constexpr bool givesDAloneWith(uint8_t code, bool fixPattern, bool value) {
    bool atD0 = false;
    for (int other = 0; other < 2; ++other) {
        const bool p = fixPattern ? value : other != 0;
        const bool s = fixPattern ? other != 0 : value;
        if (other == 0) {
            atD0 = ropBit(code, p, s, false);
        }
        if (ropBit(code, p, s, false) != atD0 || ropBit(code, p, s, true) == atD0) {
            return false;
        }
    }
    return true;
}

// A conditional tag rule keeps D's tag only where its condition leaves the
// colour a function of D alone.
constexpr bool everyTagConditionGivesDAlone() {
    for (uint32_t c = 0; c < 256; ++c) {
        const auto code = static_cast<uint8_t>(c);
        bool ok = true;
        switch (ropTagRule(code)) {
        case RopTagRule::KeepWhenSourceZero:
            ok = givesDAloneWith(code, false, false);
            break;
        case RopTagRule::KeepWhenSourceOnes:
            ok = givesDAloneWith(code, false, true);
            break;
        case RopTagRule::KeepWhenPatternZero:
            ok = givesDAloneWith(code, true, false);
            break;
        case RopTagRule::KeepWhenPatternOnes:
            ok = givesDAloneWith(code, true, true);
            break;
        default:
            break;
        }
        if (!ok) {
            return false;
        }
    }
    return true;
}
static_assert(everyTagConditionGivesDAlone());

} // namespace

constinit const RopTable ROP_TABLE = makeRopTable(std::make_index_sequence<512>{});

} // namespace kryn
