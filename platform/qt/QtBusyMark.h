// A small turning arc that tells that something is under way.
//
// It appears only when the work lasts, so that a quick one shows nothing, and
// never takes input. Threads: UI thread only.
#pragma once

#include <QBasicTimer>
#include <QWidget>

namespace Platform::Qt {

class QtBusyMark final : public QWidget {
public:
    explicit QtBusyMark(QWidget* pParent);
    void SetBusy(bool bBusy);

protected:
    void paintEvent(QPaintEvent* pEvent) override;
    void timerEvent(QTimerEvent* pEvent) override;

private:
    int m_nStep = 0;
    QBasicTimer m_timer;
};

}
