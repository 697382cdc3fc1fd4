// What is selected, brought back over a document that is shown anew: where the text around
// both of its ends is still the same, on the same pages or on as many further as the
// reader's place has moved.
//
// Lifetime: goes before the selection and the texts. Threads: UI thread only.
#pragma once

#include <QObject>
#include <optional>
#include <string>

#include "widget/text/PageTexts.h"
#include "widget/text/ViewSelection.h"

namespace velko::vkit {

class KeptSelection : public QObject {
public:
    KeptSelection(ViewSelection& selection, PageTexts& texts);

    void Take(); // before the document goes
    // It is shown anew; by so many pages what the reader sees has moved.
    void BringBack(std::int32_t nPagesMoved);

private:
    struct Kept {
        ViewSelection::Places places;
        std::u32string strAnchor; // the text around each end
        std::u32string strHead;
    };

    std::optional<std::u32string> TextAround(TextPlace place);
    void Try();
    std::optional<bool> TryMoved(std::int32_t nPages);

    ViewSelection& m_selection;
    PageTexts& m_texts;
    std::optional<Kept> m_kept;
    std::int32_t m_nPagesMoved = 0;
    bool m_bWaits = false; // for the text of the document that is shown anew
};

}
