// One of the files opened lately, as a row to press: a small picture of its first page, or
// a blank sheet, its name, and below that its folder. The whole path is its tip; a button at its
// end takes it out of the list. A file that is not there is faint and says so.
//
// Threads: UI thread only.
#pragma once

#include <QAbstractButton>
#include <QImage>

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
    void SetPicture(const QImage& image);
    const QImage& Picture() const { return m_picture; }
    // With a smaller picture, no higher than the text is.
    void SetLow(bool bLow);

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
    QSize PictureRoom() const;
    QRectF PicturePlace() const;
    void PaintPicture(QPainter& painter) const;
    void PaintText(QPainter& painter) const;

    const vkit::FilePath m_path;
    QWidget* m_pRemove; // a child
    bool m_bGone = false;
    bool m_bLow = false;
    QImage m_picture; // null: there is none
};

}
