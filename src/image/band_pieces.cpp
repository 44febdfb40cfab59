#include "image/band_pieces.h"

#include "engine/page_record.h"
#include "scan/page_recorders.h"

namespace kryn {

namespace {

ResultCode recordPieces(void* context, int32_t x0, int32_t x1, int32_t y0, int32_t y1) {
    const auto* pieces = static_cast<const BandPieceRecorder*>(context);
    return forEachBandPiece(pieces->page->bandHeight, y0, y1, pieces->maxRows,
                            [&](const BandPiece& rows) -> ResultCode {
                                for (int32_t x = x0; x <= x1; x += pieces->maxWidth) {
                                    const int32_t last = std::min(x1, x + pieces->maxWidth - 1);
                                    const ResultCode r = pieces->piece(pieces->ctx, rows, x, last);
                                    if (failed(r)) {
                                        return r;
                                    }
                                }
                                return KRYN_OK;
                            });
}

ResultCode recordPieceSpan(void* context, int32_t x0, int32_t x1, int32_t y) {
    return recordPieces(context, x0, x1, y, y);
}

} // namespace

void installBandPieceRecorders(BandPieceRecorder* pieces, SpanRecorder* recorder) {
    installPageRecorders(pieces->page, recorder);
    recorder->span = recordPieceSpan;
    recorder->rect = recordPieces;
    recorder->bandRowSpans = nullptr;
    recorder->ctx = pieces;
}

} // namespace kryn
