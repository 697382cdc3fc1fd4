// A page object of the engine: light until it is parsed.
//
// A page keeps its document alive. Threads: any; sizes, box, rotation, matrix,
// `IsParsed` and `GetAnnotCount` never wait for a parse or a render that runs
// on another thread.
#pragma once

#include <cstdint>
#include <memory>

#include "document/engine/Annot.h"
#include "document/engine/Geometry.h"
#include "document/engine/Progressive.h"

namespace velko::pdf {

class PDFPage {
public:
    virtual ~PDFPage() = default;

    // Points, the crop box after the page's own rotation and user unit; the
    // rotation of the file is thus part of the size. Between 1 and 14,400.
    virtual float GetWidth() const = 0;
    virtual float GetHeight() const = 0;

    virtual std::int32_t GetIndex() const = 0;

    // The file's rotation of the page in quarter turns clockwise, 0 to 3.
    virtual std::int32_t GetRotation() const = 0;

    // The page box in page space (crop box within the media box); `nKind` 0.
    virtual common::vxbase::RectF GetBox(std::int32_t nKind) const = 0;

    // False also for a page whose parse was cut short.
    virtual bool IsParsed() const = 0;

    // Interprets the page's content. Without a pause object the work may be
    // done before this returns; the progress then answers at once how it ended.
    // A page whose content is broken parses as far as it goes, and so does one
    // that takes longer than an engine allows (`kCutShort`): what came of it is
    // drawn, and parsed anew when `nReparse` is not 0. Waiting for bytes is not
    // counted. Raises `EngineException` when the page cannot be read
    // (e_ErrFile), the file was changed (e_ErrConflict), has no such page
    // (e_ErrNotFound), or memory is short (e_ErrOutOfMemory); the next call
    // tries again. Never empty.
    virtual std::shared_ptr<common::Progressive> StartParse(std::int32_t nFlags,
                                                            common::IPauseCallback* pPause,
                                                            std::int32_t nReparse) = 0;

    // Page space to device space: the page's box, turned by `nRotate` further
    // quarter turns clockwise, fills the rectangle. All four in pixels.
    virtual common::vxbase::Matrix2D GetDisplayMatrix(std::int32_t nLeft, std::int32_t nTop,
                                                      std::int32_t nWidth, std::int32_t nHeight,
                                                      std::int32_t nRotate) const = 0;

    // Loads the annotation list and gives its length.
    virtual std::int32_t GetAnnotCount() = 0;

    // Empty for an entry of the list that is no annotation. Raises
    // `EngineException` for an index out of range.
    virtual std::shared_ptr<IAnnot> GetAnnot(std::int32_t nIndex) = 0;
};

}
