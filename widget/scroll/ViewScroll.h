// The scroll bars of a view: one down the document, and one across a page that is wider
// than the view. While a handle is held, the number of its page stands beside it.
//
// The place is counted in pages, so a document of any length is dragged through without
// asking for pages that are passed: they are gone to at most once in a frame.
// Lifetime: made for a view and goes with it; its widgets are children of the view.
// Threads: UI thread only.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <memory>
#include <optional>

#include "widget/scroll/ScrollBar.h"

class QLabel;

namespace velko::vkit {

class PDFViewCtrl;
class VelkoPdfView;
class ViewSearch;

class ViewScroll : public QObject {
    Q_OBJECT

public:
    // `fnPageName` says what a page is called; empty: by its number.
    explicit ViewScroll(VelkoPdfView& view, std::function<QString(int nPage)> fnPageName = {});
    ~ViewScroll() override;

    // From now on its hits are marked on the bar.
    void MarkHits(ViewSearch& search);
    // Off where nothing is to lie over the pages.
    void SetAllowed(bool bAllowed);

    const ScrollBar& Down() const { return *m_pDown; }
    const ScrollBar& Across() const { return *m_pAcross; }
    QString Bubble() const; // the page beside the handle; empty while it is not held

    // Brings so many pages from the document's start to the view's top.
    void ScrollTo(double dbStart);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    class Frames;

    void Follow();
    void Place();
    void OnPointer(QPointF pt);
    void Drag(double dbStart);
    void DragAcross(double dbStart);
    void SetHeld(bool bHeld);
    void ShowBubble();
    void CollectMarks();

    VelkoPdfView& m_view;
    const std::shared_ptr<PDFViewCtrl> m_pControl; // which the view lets go of before this goes
    const std::function<QString(int)> m_fnPageName;
    std::unique_ptr<ScrollBar> m_pDown;
    std::unique_ptr<ScrollBar> m_pAcross;
    std::unique_ptr<Frames> m_pFrames;
    QLabel* m_pBubble = nullptr; // the view's child, when first needed
    ViewSearch* m_pSearch = nullptr;
    std::optional<ScrollRange> m_down;
    std::optional<ScrollRange> m_across;
    std::optional<double> m_target; // to be gone to with the next frame
    QTimer m_frame;
    QTimer m_marks;
    bool m_bOverLink = false;
    bool m_bAllowed = true;
};

}
