// Takes the words that stand at the reader's place, so that the place is found again when
// the document has changed.
//
// A page's text is read on the task pool once the reader has rested there and all of it
// shows; of one page it is kept. Where it is known already nothing is read.
// Threads: UI thread only; `SnippetOf` is a pure function. Errors: none; of a page that
// cannot be read there are no words.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <functional>
#include <memory>
#include <vector>

#include "component/PlaceSnippet.h"
#include "platform/concurrency/Task.h"
#include "widget/text/PageTexts.h"

namespace velko::vkit {

// What a reader sees of a page, and where it is in the page's own text: the same where
// the page itself is shown.
struct SeenText {
    PageTexts::TextPtr pShown;
    PageTexts::TextPtr pOwn;
};

// The first words of which a letter shows within a box of page space, some 80 letters.
// Where there are too few to know a place by, they are empty.
PlaceSnippet SnippetOf(const SeenText& text, const velko::common::vxbase::RectF& rcSeen);

// Of a page in sight as it stands now. Begun on the UI thread, where it ends too.
concurrency::task<PlaceSnippet> ReadSnippetIn(PDFViewCtrl& control, std::int32_t nPage);

class SnippetTaker : public QObject {
public:
    SnippetTaker(PDFViewCtrl& control, PageTexts& texts);

    // What is shown has changed, perhaps: no more than the start of a timer.
    void Changed() { m_rest.start(); }
    void Forget(); // another document comes

    // On a page in sight; empty while its text is not known.
    PlaceSnippet Now(std::int32_t nPage) const;
    // Calls back, perhaps at once, when the current page's text is known or cannot be.
    void WhenKnown(std::function<void()> fnThen);

private:
    struct Kept {
        std::weak_ptr<velko::pdf::PDFDoc> wkDocument;
        std::int32_t nPage = -1;
        bool bSet = false;
        SeenText text;
    };

    static concurrency::task<void> Read(QPointer<SnippetTaker> pSelf);
    bool IsOf(const Kept& kept, std::int32_t nPage) const;
    SeenText TextNow(std::int32_t nPage) const;

    PDFViewCtrl& m_control;
    PageTexts& m_texts;
    QTimer m_rest;
    Kept m_kept;
    bool m_bReading = false;
    int m_nDocument = 0;
    std::vector<std::function<void()>> m_waiting;
};

}
