// Changing a document's annotations, for hosts.
//
// A host asks for it with a dynamic cast on the engine's document. An edit is in
// force when its call returns: pages and annotations that are held see it, and a page
// counts and draws anew. It is made for good by `PDFDoc::StartSaveAs` only; another `Load`
// begins without edits.
//
// Threads: any, but where it is not said otherwise not the UI thread: calls wait for
// the engine and for the file. A render that is under way may show the page before or
// after an edit, or between two; whoever minds edits between renders.
// Units: page space, points. Texts are UTF-8, times seconds since 1970 UTC.
// Errors: `EngineException`: e_ErrNotLoaded before `Load`, e_ErrParam for a page or an
// annotation that the document does not have and for a record that makes none,
// e_ErrUnsupported for a kind that cannot be made, and the codes of
// `PDFPage::StartParse` for what cannot be read. What raised has changed nothing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "document/engine/Geometry.h"

namespace velko::pdf {

// Names an annotation of a document for as long as the document lives, removed ones
// included. Never 0.
using AnnotId = std::int64_t;

// The corners of a piece of text, in the way in which it is read.
struct TextQuad {
    common::vxbase::PointF ptTopLeft;
    common::vxbase::PointF ptTopRight;
    common::vxbase::PointF ptBottomLeft;
    common::vxbase::PointF ptBottomRight;
};

// What there is to say of an annotation. Of what its kind has no use for, nothing is
// read, and the value here is what listing gives.
struct AnnotRecord {
    std::int32_t nType = 0;       // as `IAnnot::GetType`
    common::vxbase::RectF rcArea; // of marks, ink and lines: found out; of a Note the corner
                                  // counts that is its top left one on the page as it lies
    std::vector<TextQuad> quads;  // Highlight to StrikeOut
    std::vector<std::vector<common::vxbase::PointF>> strokes; // Ink
    common::vxbase::PointF ptStart;                           // Line
    common::vxbase::PointF ptEnd;
    std::optional<std::uint32_t> nColor;     // 0xRRGGBB; of FreeText the letters'
    std::optional<std::uint32_t> nFillColor; // Square and Circle
    float fOpacity = 1.0F;                   // 0 to 1
    float fLineWidth = 1.0F;                 // Ink, Line, Square, Circle
    float fFontSize = 12.0F;                 // FreeText
    std::string strContents;
    std::string strAuthor;
    std::int64_t nCreated = 0; // 0: not told
    std::int64_t nModified = 0;
};

struct ListedAnnot {
    AnnotId nId = 0;
    AnnotRecord record;
};

class IAnnotEditor {
public:
    virtual ~IAnnotEditor() = default;

    // In the order in which the page draws them, without entries that are none.
    virtual std::vector<ListedAnnot> ListAnnots(std::int32_t nPageIndex) = 0;

    // Note, FreeText, Line, Square, Circle, Highlight, Underline, Squiggly, StrikeOut
    // and Ink can be made. It comes on top of the others.
    virtual AnnotId AddAnnot(std::int32_t nPageIndex, const AnnotRecord& record) = 0;

    // Puts the record in the place of what the annotation says; the type stays. What the
    // record says as listing does, and what it does not say, stays as the file has it; so
    // the record that was listed at first brings all of the annotation back.
    virtual void ChangeAnnot(std::int32_t nPageIndex, AnnotId nId, const AnnotRecord& record) = 0;

    // Takes it out of the page, of whatever kind it is, and puts it back where it was.
    virtual void RemoveAnnot(std::int32_t nPageIndex, AnnotId nId) = 0;
    virtual void RestoreAnnot(std::int32_t nPageIndex, AnnotId nId) = 0;

    // Grows with every edit, 0 for none. Waits for nothing, so the UI thread may ask.
    virtual std::uint64_t Revision() const = 0;
};

}
