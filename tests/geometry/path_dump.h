// Test helper: a path's subpaths and segments as plain values, so that two
// paths (before and after a failed call) compare with ==.
#pragma once

#include "engine/graphics_state.h"
#include "support/engine_fixture.h"

#include <cstring>
#include <vector>

namespace kryn::test {

struct SegmentDump {
    int32_t type;
    float body[8];
    bool operator==(const SegmentDump& o) const {
        return type == o.type && std::memcmp(body, o.body, sizeof body) == 0;
    }
};

struct SubpathDump {
    float start[2];
    int16_t closed;
    std::vector<SegmentDump> segments;
    bool operator==(const SubpathDump& o) const {
        return start[0] == o.start[0] && start[1] == o.start[1] && closed == o.closed &&
               segments == o.segments;
    }
};

struct PathDump {
    std::vector<SubpathDump> subpaths;
    bool hasCurrent;
    float current[2];
    bool operator==(const PathDump& o) const {
        return subpaths == o.subpaths && hasCurrent == o.hasCurrent &&
               (!hasCurrent || (current[0] == o.current[0] && current[1] == o.current[1]));
    }
};

inline PathDump dumpPath(const Path& path) {
    PathDump d{};
    for (const Subpath* s = path.paintFirst; s != nullptr; s = s->next) {
        SubpathDump sd{{s->start[0], s->start[1]}, s->closed, {}};
        for (const PathSegment* g = s->paintFirstSegment; g != nullptr; g = g->next) {
            SegmentDump gd{};
            gd.type = g->type;
            std::memcpy(gd.body, &g->poly, sizeof(PowerCubic));
            sd.segments.push_back(gd);
        }
        d.subpaths.push_back(sd);
    }
    d.hasCurrent = path.last != nullptr;
    d.current[0] = path.currentPoint[0];
    d.current[1] = path.currentPoint[1];
    return d;
}

inline GraphicsState& topOf(Engine* e) {
    return *e->pageSlot->gstateTop;
}

} // namespace kryn::test
