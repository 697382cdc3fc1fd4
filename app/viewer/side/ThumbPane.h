// The pages of the shown document as small pictures; a click on one goes there.
//
// The page that is shown has a frame; the list is scrolled to it only while the reader
// does not use the list. Pictures are asked for as they come into sight.
// Lifetime: goes before the view and its facts. Threads: UI thread only.
#pragma once

#include <QListView>

#include "widget/thumbs/PageThumbs.h"
#include "widget/thumbs/ThumbModel.h"

namespace velko::viewer {

class ThumbPane : public QListView {
    Q_OBJECT

public:
    ThumbPane(vkit::VelkoPdfView& view, vkit::DocFacts& facts, QWidget* pParent);

    const vkit::PageThumbs& Thumbs() const { return m_thumbs; }

protected:
    void showEvent(QShowEvent* pEvent) override;
    void hideEvent(QHideEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    class Cells; // draws them

    void FollowPage();
    void FollowView();
    void Arrange();
    void Ask();
    std::vector<int> PagesInSight() const; // nearest to the middle first
    bool IsTurned() const;                 // by a quarter
    QSize Room() const;                    // of a picture, in Qt's units
    QSizeF SizeOf(int nPage) const;        // of a page, as the view turns it

    vkit::VelkoPdfView& m_view;
    vkit::PageThumbs m_thumbs;
    vkit::ThumbModel m_model;
    int m_nColumns = 1;
    int m_nRotation = 0;
};

}
