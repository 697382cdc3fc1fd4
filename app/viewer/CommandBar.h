// The row of commands at the window's top: menu, opening, pages, zoom, view.
//
// When the window is too narrow for all of them, the ones that matter least
// go first; the menu has them all.
// Threads: UI thread only.
#pragma once

#include <QWidget>
#include <vector>

#include "app/viewer/Commands.h"
#include "app/viewer/Glyphs.h"
#include "app/viewer/MainMenu.h"
#include "widget/VelkoPdfView.h"
#include "widget/facts/DocFacts.h"

class QHBoxLayout;
class QLabel;

namespace velko::viewer {

class GlyphButton;
class ValueField;

class CommandBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeight = 40; // Qt's units

    CommandBar(vkit::VelkoPdfView& view, vkit::DocFacts& facts, const Commands& commands,
               QWidget* pParent);

    MainMenu& Menu() const { return *m_pMenu; }
    void OpenMenu();
    void EnterPage(); // the page field waits for a number or a label

    // The page field's text and the count beside it, for tests.
    QString PageText() const;
    QString CountText() const;

signals:
    void Done();                            // what a field asked for
    void Refused(const QString& strReason); // what a field asked for cannot be

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    // Parts of equal rank come and go together; rank 0 always stays.
    struct Part {
        QWidget* pWidget;
        int nRank;
    };

    void Add(QWidget* pWidget, int nRank);
    void AddButton(Glyph eGlyph, Command eCommand, int nRank);
    void MakePageParts();
    void MakeZoomParts();
    void MakeViewParts();
    void FollowView();
    void ShowPage();
    void ShowWhatFits();
    int WidthUpTo(int nRank) const;
    void TakePage(const QString& strText);
    void TakeZoom(const QString& strText);
    void ToPages();
    void OpenChoices();
    QMenu* MakeChoices();

    vkit::VelkoPdfView& m_view;
    vkit::DocFacts& m_facts;
    const Commands& m_commands;
    QHBoxLayout* m_pLayout;
    MainMenu* m_pMenu;                    // a child
    GlyphButton* m_pMenuButton = nullptr; // these too
    ValueField* m_pPage = nullptr;
    QLabel* m_pCount = nullptr;
    ValueField* m_pZoom = nullptr;
    GlyphButton* m_pChoices = nullptr;
    QMenu* m_pChoicesMenu = nullptr; // when first needed
    std::vector<Part> m_parts;
};

}
