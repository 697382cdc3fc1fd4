// What stands in place of the pages when there are none: a word about why, a
// button to open a document, and those read lately. It scrolls where it has not
// the room.
//
// Threads: UI thread only.
#pragma once

#include <QScrollArea>

#include "widget/FilePath.h"

class QLabel;
class QPushButton;

namespace velko::viewer {

class RecentList;

class StartPane : public QScrollArea {
    Q_OBJECT

public:
    explicit StartPane(QWidget* pParent);

    // Plain text, lines parted by "\n"; a long one may be selected.
    void Show(const QString& strTitle, const QString& strText);

    void FillList(); // anew

    // The list's first file gets the keys, without one the button; nothing while hidden.
    void TakeKeys();

    QString Text() const; // title and text, as they are marked up

protected:
    void resizeEvent(QResizeEvent* pEvent) override;

signals:
    void OpenWanted();
    void FileWanted(const velko::vkit::FilePath& path);

private:
    void ShowKeys(); // scrolls to the part that has them
    QLabel* m_pText; // these are children
    QPushButton* m_pOpen;
    RecentList* m_pRecent;
};

}
