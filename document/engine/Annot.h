// The generic annotation of a page.
#pragma once

#include <cstdint>

namespace velko::pdf {

// Threads: any. The kinds are numbered 1 to 27 in the order of the file
// format's subtypes: 1 Text (note), 2 Link, 3 FreeText, 4 Line, 5 Square,
// 6 Circle, 7 Polygon, 8 PolyLine, 9 Highlight, 10 Underline, 11 Squiggly,
// 12 StrikeOut, 13 Stamp, 14 Caret, 15 Ink, 16 PSInk, 17 FileAttachment,
// 18 Sound, 19 Movie, 20 Widget, 21 Screen, 22 PrinterMark, 23 TrapNet,
// 24 Watermark, 25 3D, 26 Popup, 27 Redact; 0 for any other.
class IAnnot {
public:
    virtual ~IAnnot() = default;
    virtual std::int32_t GetType() const = 0;
};

}
