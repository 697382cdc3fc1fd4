// The arithmetic of a column: items one under the other with a gap between
// them, of which only those on the screen are known by their place. It limits
// moves against the document's ends, tells how far the ends hang off, and which
// item counts as current. Viewers that lay out a column move and fill their own
// lists by it.
//
// Units: device pixels from the screen's top; a positive move brings the column
// up. Threads: the UI thread only. Errors: what the pages' questions raise.
#pragma once

#include <cmath>
#include <cstdint>

#include "viewers/core/LaidOutPage.h"

namespace velko::vkit {

// What the arithmetic asks about pages, laid out or not.
class IColumnPages {
public:
    virtual ~IColumnPages() = default;

    virtual std::int32_t ColumnLength() const = 0; // pages of the document
    // Whether the others may be asked of the page; may measure it. What lies
    // beyond a page that may not is not known: a move ends before it.
    virtual bool IsMeasured(std::int32_t nPageIndex) = 0;
    // Whether the page has a place in the column; one without takes neither
    // height nor gap. May measure the page.
    virtual bool TakesRoom(std::int32_t nPageIndex) = 0;
    // Its height, not truncated. May measure the page.
    virtual float HeightInColumn(std::int32_t nPageIndex) = 0;
};

class Column {
public:
    // `dbScreen` is what the layout works against, `dbCanvas` the whole canvas:
    // a column of one low page is as high as that page.
    Column(IColumnPages& pages, double dbGap, double dbScreen, double dbCanvas)
        : m_pages(pages), m_dbGap(dbGap), m_dbScreen(dbScreen), m_dbCanvas(dbCanvas) {}

    // --- one move ---
    // The longest that cannot empty the screen.
    double LongestStep() const;
    // Carries out a move of any length in such steps: `fnStep(dbStep, bIsLast)`
    // says whether it got there; where it did not, the rest is left out.
    template <class F>
    void MoveInSteps(double dbMove, F fnStep) const {
        const double dbLongest = LongestStep();
        while (std::abs(dbMove) > dbLongest) {
            const double dbStep = std::copysign(dbLongest, dbMove);
            dbMove = fnStep(dbStep, false) ? dbMove - dbStep : 0.0;
        }
        fnStep(dbMove, true);
    }
    // A move of a column that shows `first` to `last`, limited by the ends of
    // the document. A first page that hangs below the top is brought there by
    // any move upward.
    double LimitMove(const LaidOutPage& first, const LaidOutPage& last, double dbMove);

    // --- where it hangs ---
    // By how much the document's start stands below the screen's top, and its
    // end above the screen's bottom: never more than brings the start to the
    // top. Neither is negative.
    double GapAbove(const LaidOutPage& first);
    double GapBelow(const LaidOutPage& first, const LaidOutPage& last);
    // Whether a page that takes room follows, or is not known not to.
    bool GoesOnBelow(std::int32_t nPageIndex) { return RoomBelow(nPageIndex) != Room::None; }
    // Whether something of the item, or of the gap under it, is on the screen.
    bool HoldsScreen(const LaidOutPage& item) const;

    // --- pages ---
    // The page that counts as the one being read, of a column that starts with
    // `first`; at most the last of the document.
    std::int32_t CurrentPage(const LaidOutPage& first) const;

    // When the pages from `nPageIndex` to the last do not fill the screen: sets
    // it to the page at which the document's last screen starts, and gives how
    // much of that page hangs over the top, as a number of at most 0. Else 0, as
    // where no page takes room.
    double TailOverflow(std::int32_t& nPageIndex);

private:
    // Whether a page that takes room follows in that direction.
    enum class Room { None, Some, Unknown };
    Room RoomAbove(std::int32_t nPageIndex);
    Room RoomBelow(std::int32_t nPageIndex);
    bool FillScreenFrom(std::int32_t nPageIndex);
    double LimitUp(const LaidOutPage& first, double dbMove);
    double LimitDown(const LaidOutPage& last, double dbMove);

    IColumnPages& m_pages;
    const double m_dbGap;
    const double m_dbScreen;
    const double m_dbCanvas;
};

inline double BottomOf(const LaidOutPage& item) {
    return item.screenRect.dbOffsetY + item.screenRect.nHeight;
}

}
