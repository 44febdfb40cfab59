#include "geometry/orientation_clip.h"

namespace kryn {

// Clip regions do not exist yet: there is no base region to build and no
// clip to reset. The clip module gives this its body.
ResultCode establishOrientationClip(Engine*) {
    return KRYN_OK;
}

} // namespace kryn
