// Calls the bar over the pages of a window that fills the screen: when the pointer
// comes to the top edge, and when a command needs it. It goes when the pointer leaves
// it while it has not the keys, and when the keys go back to the pages.
//
// Lifetime: goes before the pages. Threads: UI thread only.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace velko::viewer {

class TopEdge : public QObject {
    Q_OBJECT

public:
    // `pages` is what the pointer moves over; `nBarHeight` in Qt's units.
    TopEdge(QWidget& pages, int nBarHeight, QObject* pParent);

    void SetBar(QWidget* pBar) { m_pBar = pBar; }
    // On while the window fills the screen.
    void SetWatching(bool bWatching);

    void Call();
    bool IsCalled() const { return m_bCalled; }

signals:
    void Changed(); // the bar is called, or may go

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    void Set(bool bCalled);
    void OnFocus(const QWidget* pOld, const QWidget* pNow);
    bool IsOfBar(const QWidget* pWidget) const;

    const int m_nBarHeight;
    QPointer<QWidget> m_pBar;
    bool m_bWatching = false;
    bool m_bCalled = false;
};

}
