// The handle at the right edge of the side panel: dragged, or moved by the arrow keys, it
// asks for another width.
//
// Lifetime: a child of the panel. Threads: UI thread only. Units: Qt's.
#pragma once

#include <QWidget>

namespace velko::viewer {

class SideHandle : public QWidget {
    Q_OBJECT

public:
    static constexpr int kWidth = 7;

    explicit SideHandle(QWidget* pPanel);

signals:
    void WidthWanted(int nWidth); // of the panel; may be out of what is possible

protected:
    void mousePressEvent(QMouseEvent* pEvent) override;
    void mouseMoveEvent(QMouseEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void enterEvent(QEnterEvent* pEvent) override;
    void leaveEvent(QEvent* pEvent) override;

private:
    int m_nGrip = 0; // where the pointer holds it, from the panel's right edge
};

}
