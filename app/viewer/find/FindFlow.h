// The search of a window: its bar, made when it is first called, and what the view's
// search tells in words.
//
// What was typed is kept for the next time; with the bar the hits go, and the place
// stays.
// Lifetime: a child of the window, goes before the view. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QString>
#include <functional>

#include "app/viewer/Commands.h"
#include "app/viewer/WindowParts.h"
#include "widget/VelkoPdfView.h"

namespace velko::viewer {

class FindBar;

class FindFlow : public QObject {
    Q_OBJECT

public:
    FindFlow(vkit::VelkoPdfView& view, const Commands& commands, WindowParts& parts,
             QWidget* pWindow);

    // The bar comes, with the keys in its field; what is selected is looked for.
    void Open();
    // The same for a text from elsewhere, without the keys.
    void Find(const QString& strText);
    void Step(bool bBack); // opens the bar where it is closed
    bool Close();          // false: it is not open
    bool IsOpen() const;

    FindBar* Bar() const { return m_pBar; } // null until it is first called

    void ShowList(bool bShown); // whether the list of hits is in sight

signals:
    void Made();       // its bar, and with it the view's search
    void ListWanted(); // the list of hits, to come or to go
    void Closed();

private:
    void Call();
    QString Selected() const; // what is looked for by it; else empty
    void MakeBar();
    void Search();
    void TellCount();
    QString CountText() const;

    vkit::VelkoPdfView& m_view;
    const Commands& m_commands;
    WindowParts& m_parts;
    QWidget* const m_pWindow;
    FindBar* m_pBar = nullptr; // the window's child
    QString m_strRound;        // a step has gone over the end of the document
    QString m_strSpoken;       // said last
};

}
