// The panel beside the pages: tabs, each a pane that is made when it is first shown,
// and at its right edge a handle by which its width is changed.
//
//   panel.AddTab({SideTab::Bookmarks, "Bookmarks", Glyph::Bookmark,
//                 [&](QWidget* pParent) { return new BookmarkPane(..., pParent); }});
//
// Threads: UI thread only. Units: Qt's.
#pragma once

#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "app/viewer/Glyphs.h"

class QHBoxLayout;
class QLabel;
class QStackedLayout;

namespace velko::viewer {

class GlyphButton;

// In the order in which they stand; the numbers are kept in the settings.
enum class SideTab { Outline = 0, Pages = 1, Bookmarks = 2, Hits = 3, Attachments = 4 };

class SidePanel : public QWidget {
    Q_OBJECT

public:
    // The pane takes the keys by the focus of its own, or by its focus proxy.
    struct Tab {
        SideTab eTab;
        QString strName;
        Glyph eGlyph;
        std::function<QWidget*(QWidget* pParent)> fnMake;
    };

    explicit SidePanel(QWidget* pParent); // without tabs it is an empty ground

    void AddTab(Tab tab);
    // A tab that has nothing to offer is not there; at first each one is. The one that was
    // asked for last comes back with what it offers.
    void SetThere(SideTab eTab, bool bThere);

    void ShowTab(SideTab eTab); // one that is not there: the first one that is
    std::optional<SideTab> CurrentTab() const { return m_current; }
    QWidget* PaneOf(SideTab eTab) const; // null: not made yet
    void TakeKeys();                     // for the pane that is shown

signals:
    void TabChosen(velko::viewer::SideTab eTab);
    void CloseWanted();
    void PagesWanted();           // the keys are to go back to the pages
    void WidthWanted(int nWidth); // by the handle

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    struct Part {
        Tab tab;
        GlyphButton* pButton = nullptr;
        QWidget* pPane = nullptr;
        bool bThere = true;
    };

    Part* PartOf(SideTab eTab);
    void MakeHead();
    void ShowName();

    QHBoxLayout* m_pHead = nullptr; // these are made with the first tab
    QLabel* m_pName = nullptr;
    QStackedLayout* m_pPanes = nullptr;
    QWidget* m_pHandle = nullptr;
    std::vector<Part> m_parts;       // in the order of the tabs
    std::optional<SideTab> m_wanted; // may not be there now
    std::optional<SideTab> m_current;
};

}
