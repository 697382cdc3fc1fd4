// A word over the pages that goes by itself: it asks for nothing, and takes no
// room, no keys and no clicks.
//
// Threads: UI thread only.
#pragma once

#include <QLabel>
#include <QTimer>

namespace velko::viewer {

class Hint : public QLabel {
    Q_OBJECT

public:
    explicit Hint(QWidget* pParent);

    // At the middle of the parent's upper part, for some seconds.
    void Say(const QString& strText);
    void Place(); // anew, when the parent's size has changed

private:
    QTimer m_timer;
};

}
