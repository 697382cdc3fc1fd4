// One of the files opened lately, as a row to press: its name, and below it its
// folder. The whole path is its tip; a button at its end takes it out of the list.
// A file that is not there is faint and says so.
//
// Threads: UI thread only.
#pragma once

#include <QAbstractButton>

#include "widget/FilePath.h"

namespace velko::viewer {

class RecentRow : public QAbstractButton {
    Q_OBJECT

public:
    RecentRow(const vkit::FilePath& path, QWidget* pParent);

    const vkit::FilePath& File() const { return m_path; }
    QWidget* RemoveButton() const { return m_pRemove; }
    void MarkGone();
    bool IsGone() const { return m_bGone; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void Removed();          // by the reader
    void Stepped(int nRows); // by the reader: the keys are to go to a neighbour

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    const vkit::FilePath m_path;
    QWidget* m_pRemove; // a child
    bool m_bGone = false;
};

}
