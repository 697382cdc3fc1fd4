// Actions and the destinations that they lead to.
#pragma once

#include <cstdint>
#include <memory>

namespace velko::pdf {

class PDFDoc;

// Where a go-to action leads. Numbers are in page space, as the file has them.
//
// Zoom modes: 1 explicit position and zoom, 2 fit page, 3 fit width, 4 fit
// height, 5 fit rectangle, 6 fit bounding box, 7 its width, 8 its height.
// Mode 1 carries its zoom (0 when absent) as the right value. Modes 3, 4, 7
// and 8 carry their single operand as left and as top. A top that is missing
// is given as the page's top and does not count as absent.
//
// All of it was found out when the action was made: no operation waits for the
// engine or fails, so the UI thread may ask. Threads: any; immutable.
class IDestination {
public:
    virtual ~IDestination() = default;
    // The page in `document`, from which the action came; -1 when it leads to
    // none. Not checked against the page count.
    virtual std::int32_t GetPageIndex(const PDFDoc& document) const = 0;
    virtual std::int32_t GetZoomMode() const = 0;
    virtual float GetLeft() const = 0;
    virtual float GetTop() const = 0;
    virtual float GetRight() const = 0;
    virtual float GetBottom() const = 0;
    virtual bool IsLeftAbsent() const = 0;
    virtual bool IsTopAbsent() const = 0;
};

// Threads: any; immutable.
class IAction {
public:
    virtual ~IAction() = default;
    virtual std::shared_ptr<IDestination> GetDestination() const = 0; // may be empty
};

}
