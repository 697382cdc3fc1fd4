// Reading the text of the pages set anew (layout mode 3): the size of its letters, and
// how the view comes back to the pages.
//
// The size is the zoom of that layout. The one that the reader chose last is kept in
// the settings, for documents that have none of their own; the pages' zoom, fit and
// rotation wait until they are shown again.
// Threads: UI thread only. Errors: failures of the control are raised.
#pragma once

#include <cstdint>
#include <optional>

#include "widget/ViewKeeper.h"

namespace velko::vkit {

class PDFViewCtrl;

class ReadingMode {
public:
    // How the pages stood before.
    struct Pages {
        double dbZoom = 0.0; // 0: not known
        std::int32_t nRotate = 0;
    };

    explicit ReadingMode(PDFViewCtrl& control);

    bool IsOn() const;

    // For a document that has not been read in this way before. Device pixels to a
    // unit of the window: letters are no smaller on a dense screen. Not within the
    // limits of the zoom yet.
    double FirstScale(double dbPixelRatio) const;
    // Keeps the size that is in force, when the reader has changed it.
    void NoteScale();

    bool ShowsPictures() const;
    void ShowPictures(bool bShow);

    // Before a change to it, and for the change back.
    void KeepPages();
    const Pages& KeptPages() const { return m_pages; }

    // What the reader sees; where no page has anything to show, what was kept last.
    std::optional<ViewKeeper> Place() const;
    void KeepPlace(const std::optional<ViewKeeper>& place) { m_place = place; }

    // For another document.
    void Forget() {
        m_pages = {};
        m_place.reset();
        m_dbNoted = 0.0;
    }

private:
    PDFViewCtrl& m_control;
    Pages m_pages;
    std::optional<ViewKeeper> m_place;
    double m_dbNoted = 0.0; // the size of letters as last seen; 0: not in this mode
};

}
