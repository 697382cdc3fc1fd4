// The strip in which a reader searches: what for, how many there are, from hit to hit,
// and how exactly.
//
// When the window is too narrow for all of it, what matters least goes first; the small
// menu has all choices.
// Threads: UI thread only.
#pragma once

#include <QWidget>
#include <vector>

#include "app/viewer/Glyphs.h"
#include "widget/search/Folding.h"

class QAction;
class QHBoxLayout;
class QLabel;

namespace velko::viewer {

class FindField;
class GlyphButton;

class FindBar : public QWidget {
    Q_OBJECT

public:
    static constexpr int kHeight = 40; // Qt's units

    // The steps have the names and keys of these.
    FindBar(QAction* pNext, QAction* pPrevious, QWidget* pParent);

    QString Text() const;
    void SetText(const QString& strText); // as if it were typed
    vkit::SearchOptions Options() const;
    void TakeKeys(); // for the field, all of it selected

    // How many there are, or why none; `bMissing`: what is typed is not there. A screen
    // reader says `strSpoken` when it is not empty.
    void Tell(const QString& strText, bool bMissing, const QString& strSpoken);
    QString Told() const;

    void SetListShown(bool bShown);

signals:
    void Changed(); // the text or the options
    void StepWanted(bool bBack);
    void ScreensWanted(int nScreens);
    void ListWanted();
    void CloseWanted();

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    // Parts of equal rank come and go together; rank 0 always stays.
    struct Part {
        QWidget* pWidget;
        int nRank;
    };

    QAction* AddChoice(const QString& strText);
    void Add(QWidget* pWidget, int nRank, int nStretch = 0);
    void MakeChoices();
    void ShowWhatFits();
    int WidthUpTo(int nRank) const;

    QHBoxLayout* m_pLayout;
    FindField* m_pField; // these are children
    QLabel* m_pCount;
    QAction* m_pCase = nullptr;
    QAction* m_pWords = nullptr;
    QAction* m_pAccents = nullptr;
    QAction* m_pList = nullptr;
    std::vector<Part> m_parts;
};

}
