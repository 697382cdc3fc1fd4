// The files opened lately, in rows, with ways to take one or all of them out. That
// all are to go is asked for in place.
//
// Threads: UI thread only.
#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

#include "widget/FilePath.h"

class QLabel;
class QPushButton;
class QVBoxLayout;

namespace velko::viewer {

class RecentRow;

class RecentList : public QWidget {
    Q_OBJECT

public:
    explicit RecentList(QWidget* pParent);

    void Fill(); // from the settings; hidden when there are none
    // The first row gets the keys; false without rows.
    bool TakeKeys();
    const std::vector<RecentRow*>& Rows() const { return m_rows; }
    // Rows that take less height, for where it is scarce.
    void SetLow(bool bLow);
    QPushButton* ClearButton() const { return m_pClear; } // asks first

protected:
    void paintEvent(QPaintEvent* pEvent) override;

signals:
    void Wanted(const velko::vkit::FilePath& path);
    void KeysMoved(); // within the list, other than by Tab or the pointer

private:
    void AddRow(const vkit::FilePath& path);
    void AskForPictures();
    void Remove(RecentRow* pRow);
    void Step(const RecentRow* pRow, int nRows);
    void GiveKeys(QWidget& part);
    void Ask(bool bAsk);

    QVBoxLayout* m_pRowLayout;
    std::vector<RecentRow*> m_rows;
    QLabel* m_pQuestion;
    QPushButton* m_pClear;
    QPushButton* m_pKeep;
    bool m_bAsking = false;
    bool m_bLow = false;
    bool m_bPicturesDue = false;
    int m_nFilling = 0;
};

}
