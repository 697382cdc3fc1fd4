// The search of a view: what is found is marked on the pages, one of the hits is the
// reader's, and steps from hit to hit bring it into sight.
//
//   ViewSearch& search = view.Search();
//   search.Find("velocity", {});
//   search.Next();
//
// The zoom and its fit stay. The view's history gets the place where the reader was
// before the first hit out of sight, and no other. When another document is shown, or the
// same one anew, it is searched again: the hit nearest to the one before is the reader's
// then, and nothing moves. What is asked for before there is a document is shown in the first.
//
// Lifetime: goes before the view's control, window and what else it is given.
// Threads: UI thread only. Errors: nothing is raised.
#pragma once

#include <QObject>
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "platform/foundation/Event.h"
#include "widget/ShapeOverlay.h"
#include "widget/search/DocSearch.h"
#include "widget/text/PagePlaces.h"
#include "widget/text/PageTexts.h"

namespace velko::vkit {

class ViewSearch : public QObject {
    Q_OBJECT

public:
    struct Parts {
        std::shared_ptr<PDFViewCtrl> pControl;
        Platform::Qt::QtElementWindow& window;
        PageTexts& texts;
        std::function<void(int nPage)> fnGoto;
        std::function<void(double dbX, double dbY)> fnScroll; // device pixels
        std::function<void()> fnLeave;                        // the place, for the history
    };

    explicit ViewSearch(Parts parts);
    ~ViewSearch() override;

    // Shows the first hit from where the reader is, or from the hit that was shown. The
    // same again does nothing; an empty text is found nowhere.
    void Find(const QString& strText, const SearchOptions& options);
    // From hit to hit, round the document. Asked for before it is known, the step is taken
    // when it is.
    void Next() { Step(false); }
    void Previous() { Step(true); }
    void Show(HitPlace place);
    // The hits go, the place stays. The next search has a place of its own in the history.
    void End();

    const QString& Text() const { return m_strText; }
    const SearchOptions& Options() const { return m_options; }
    const DocSearch& Hits() const { return m_search; }
    DocSearch& Hits() { return m_search; }
    std::optional<HitPlace> Current() const { return m_current; }
    // From 1; 0 for none, and while nobody knows how many come before it.
    std::int64_t CurrentNumber() const;

signals:
    void Changed();                  // the hits, or which one is the reader's
    void WentRound(bool bBackwards); // a step over the end of the document

private:
    using Shapes = std::vector<ShapeOverlay::Shape>;
    struct Marks {
        std::shared_ptr<const velko::pdf::PageText> pText;
        std::vector<std::vector<velko::pdf::TextQuad>> quads; // for each hit
    };

    void Begin(const SearchStart& start);
    void Step(bool bBack);
    void TakeStep();
    void OnFirst(HitPlace place);
    void OnProgressed();
    void OnTextRead(int nPage);
    void OnDocument(bool bShown);
    void MakeCurrent(std::optional<HitPlace> place);
    void ShowCurrent();
    bool Reveal(std::int32_t nPage, const velko::common::vxbase::RectF& rc);
    SearchStart StartFromSight() const;
    const Marks* MarksOn(std::int32_t nPage);
    Shapes ShapesOn(std::int32_t nPage);
    void Redraw();

    const Parts m_parts;
    PagePlaces m_places;
    DocSearch m_search;
    std::unique_ptr<ShapeOverlay> m_pOverlay; // while there is something to mark
    std::map<std::int32_t, Marks> m_marks;    // of pages in sight
    Windows::Foundation::EventRegistrationToken m_openToken;
    Windows::Foundation::EventRegistrationToken m_closeToken;
    QString m_strText;
    SearchOptions m_options;
    std::optional<HitPlace> m_current;
    std::optional<SearchStart> m_before; // the hit of the document that has gone
    std::optional<bool> m_step;          // waits for its hit; whether it goes back
    bool m_bShowFirst = false;
    bool m_bShowWaits = false; // for the text of the page with the hit
    bool m_bHasLeft = false;   // the history knows the place before
};

}
