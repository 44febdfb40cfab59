#include "geometry/orientation_clip.h"

#include "scan/page_clip.h"

namespace kryn {

ResultCode establishOrientationClip(Engine* e) {
    return rebuildPageClip(e);
}

} // namespace kryn
