// What a view offers of its text: selecting it by mouse, pen, finger and keyboard, and
// copying what is selected.
//
// A selection belongs to the shown document, and ends with it; `Places` and `Restore` bring
// it back over a document of the same text. Copying needs the document's leave; selecting
// does not.
//
// Lifetime: goes before the view's control, window and what else it is given. Made before
// what is to have the pointer first.
// Threads: UI thread only. Errors: nothing is raised; `Refused` tells the reader.
#pragma once

#include <QColor>
#include <QObject>
#include <QRectF>
#include <QString>
#include <functional>
#include <map>
#include <memory>
#include <vector>

#include "platform/foundation/Event.h"
#include "widget/ShapeOverlay.h"
#include "widget/text/PagePlaces.h"
#include "widget/text/SelectionKeys.h"
#include "widget/text/SelectionPointer.h"
#include "widget/text/SelectionTouch.h"
#include "widget/text/TextCopier.h"
#include "widget/text/TextSelection.h"

namespace velko::vkit {

class ViewSelection : public QObject {
    Q_OBJECT

public:
    using Places = TextSelection::Places;
    using Quads = std::vector<velko::pdf::TextQuad>;
    using Marks = std::map<std::int32_t, Quads>;

    struct Parts {
        std::shared_ptr<PDFViewCtrl> pControl;
        Platform::Qt::QtElementWindow& window;
        PointerShape& shape;
        PageTexts& texts;
        std::function<void(double dbX, double dbY)> fnScroll; // device pixels
        std::function<void(int nPage)> fnGotoPage;
    };

    explicit ViewSelection(Parts parts);
    ~ViewSelection() override;

    bool IsEmpty() const { return m_selection.IsEmpty(); }
    TextSpan Span() const { return m_selection.Span(); }
    void SelectAll();
    void Clear();

    Places Now() const { return m_selection.Now(); }
    void Restore(const Places& places);

    // What of it is in sight, in the window; null when nothing is.
    QRectF InSight() const;
    // Gives its places by page once their texts are there, unless something else is
    // selected by then. Of too many pages it is refused.
    void TakeMarks(std::function<void(const Marks&)> fnTake);

    // --- copying ---
    QString WhyNotCopy() const; // empty: it is allowed
    void Copy();                // to the clipboard; nothing selected: nothing
    void CancelCopy() { m_copier.Cancel(); }
    bool IsCopying() const { return m_copier.IsRunning(); }

    // The pages have moved, or others are shown.
    void Update();

signals:
    void Changed();
    void EmptyChanged(); // whether anything is selected
    void Touched();      // a finger has selected it, and let go
    void Copied();
    void CopyingChanged(); // whether it is under way
    void Refused(const QString& strReason);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    struct Shown {
        std::shared_ptr<const velko::pdf::PageText> pText;
        CharRange range;
        Quads quads;
    };

    QPointF InWindow(Windows::Foundation::Point ptCanvas) const;
    void FollowDocument();
    void OnChanged();
    void OnGathered(const QString& strText, int nUnreadPages);
    void OfferForPaste();
    void GiveMarks();
    bool OnKey(const QKeyEvent& event);
    bool OnEscape();
    const Quads& QuadsOn(std::int32_t nPage);
    std::vector<ShapeOverlay::Shape> ShapesOn(std::int32_t nPage);

    const std::shared_ptr<PDFViewCtrl> m_pControl;
    Platform::Qt::QtElementWindow& m_window;
    PageTexts& m_texts;
    PagePlaces m_places;
    TextSelection m_selection;
    std::weak_ptr<velko::pdf::PDFDoc> m_wkDocument; // of which it is
    SelectionPointer m_pointer;
    SelectionTouch m_touch;
    SelectionKeys m_keys;
    TextCopier m_copier;
    std::unique_ptr<ShapeOverlay> m_pOverlay;
    std::map<std::int32_t, Shown> m_shown;           // of pages in sight
    std::function<void(const Marks&)> m_fnTakeMarks; // waits for texts
    bool m_bWasEmpty = true;
    Windows::Foundation::EventRegistrationToken m_tapToken;
};

}
