// What is selected, brought back over a document that is shown anew: where the text around
// both of its ends is still the same.
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

    void Take();      // before the document goes
    void BringBack(); // it is shown anew

private:
    struct Kept {
        ViewSelection::Places places;
        std::u32string strAnchor; // the text around each end
        std::u32string strHead;
    };

    std::optional<std::u32string> TextAround(TextPlace place);
    void Try();

    ViewSelection& m_selection;
    PageTexts& m_texts;
    std::optional<Kept> m_kept;
    bool m_bWaits = false; // for the text of the document that is shown anew
};

}
