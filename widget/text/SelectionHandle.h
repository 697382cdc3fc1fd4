// The grip at an end of what is selected, for a finger: it hangs below its place.
//
// Lifetime: a child of the window over whose pages it stands. Threads: UI thread only.
// Units: Qt's, of the window.
#pragma once

#include <QWidget>
#include <functional>

namespace velko::vkit {

class SelectionHandle : public QWidget {
    Q_OBJECT

public:
    struct Hands {
        std::function<void(QPointF pt)> fnTaken;
        std::function<void(QPointF pt)> fnMoved;
        std::function<void()> fnLetGo;
    };

    SelectionHandle(QWidget* pWindow, const QString& strName, Hands hands);

    void PutUnder(QPointF ptTip); // and shows it
    QPointF Tip() const { return m_ptTip; }

protected:
    bool event(QEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    bool OnTouch(QEvent& event);
    bool OnMouse(QEvent& event);
    void End();

    const Hands m_hands;
    QPointF m_ptTip;
    bool m_bHeld = false;
};

}
