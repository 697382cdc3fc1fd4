// What stands in place of the pages when there are none: a word about why, a
// button to open a document, and those read lately.
//
// Threads: UI thread only.
#pragma once

#include <QWidget>
#include <vector>

#include "widget/FilePath.h"

class QLabel;
class QPushButton;

namespace velko::viewer {

class StartPane : public QWidget {
    Q_OBJECT

public:
    explicit StartPane(QWidget* pParent);

    // Plain text; a long one may be selected. `recent` may be empty.
    void Show(const QString& strTitle, const QString& strText,
              const std::vector<vkit::FilePath>& recent);

    QString Text() const; // title and text, as they are marked up

signals:
    void OpenWanted();
    void FileWanted(const velko::vkit::FilePath& path);

private:
    QLabel* m_pText;
    QPushButton* m_pOpen;
    QLabel* m_pRecent;
    std::vector<vkit::FilePath> m_recent;
};

}
