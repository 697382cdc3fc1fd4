// A field that shows a value and takes another one from the reader.
//
// The first click, like Tab, selects all of it. Return takes what was typed;
// Escape and leaving the field give back the value that is shown.
// Threads: UI thread only.
#pragma once

#include <QLineEdit>

namespace velko::viewer {

class ValueField : public QLineEdit {
    Q_OBJECT

public:
    ValueField(const QString& strName, int nWidth, QWidget* pParent);

    // What stands in the field while the reader types nothing.
    void Show(const QString& strValue);

signals:
    void Taken(const QString& strText); // never empty
    void Left();                        // by Escape, or by Return with nothing typed

protected:
    void focusInEvent(QFocusEvent* pEvent) override;
    void focusOutEvent(QFocusEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void mouseReleaseEvent(QMouseEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;

private:
    void Take();

    QString m_strValue;
    bool m_bClickSelects = false;
};

}
