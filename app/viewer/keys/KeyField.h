// Takes the next key that is pressed, with what is held down beside it.
//
// Threads: UI thread only.
#pragma once

#include <QKeySequence>
#include <QLineEdit>

namespace velko::viewer {

class KeyField : public QLineEdit {
    Q_OBJECT

public:
    explicit KeyField(QWidget* pParent);

signals:
    void Taken(const QKeySequence& key);
    void GivenUp(); // by Escape, or for another part of the window

protected:
    bool event(QEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;
};

}
