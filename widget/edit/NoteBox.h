// The box in which the text of a note, or of a mark, is written and read.
//
// It stands beside its annotation, over the pages. Whatever closes it, but the button
// that deletes, keeps what was written: a click elsewhere, Escape, Ctrl+Return.
//
// Lifetime: a child of the widget over which it stands.
// Threads: UI thread only. Units: Qt's.
#pragma once

#include <QFrame>
#include <QRect>
#include <QString>
#include <functional>

class QPlainTextEdit;
class QPushButton;

namespace velko::vkit {

class NoteBox : public QFrame {
    Q_OBJECT

public:
    explicit NoteBox(QWidget* pParent);

    // `strTitle` names what is written. Handlers of the signals are told of the text
    // that stands in the box when it closes.
    void Open(const QString& strTitle, const QString& strText, bool bReadOnly);
    // Beside a place of the parent, and within the parent.
    void PlaceBeside(const QRect& rcAnnot);
    void Finish(); // closes it, if it is open
    bool IsOpen() const { return !isHidden(); }

    QString Text() const;
    bool IsChanged() const; // open, with another text than it was opened with

signals:
    void TextChanged();
    void Finished(const QString& strText);
    void DeleteWanted();

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    void Close(); // without a signal
    void GiveUpIfLeft();

    QPlainTextEdit* m_pEdit; // these are children
    QPushButton* m_pDelete;
    QPushButton* m_pDone;
    QString m_strOpened; // with this text
};

}
