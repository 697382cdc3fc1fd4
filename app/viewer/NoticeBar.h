// A line above the pages that tells the reader something, or asks: it waits
// for the answer without keeping anything else from going on.
//
// Threads: UI thread only. A new notice takes the place of the one before, whose
// question then stays without an answer.
#pragma once

#include <QFrame>
#include <functional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace velko::viewer {

class NoticeBar : public QFrame {
    Q_OBJECT

public:
    explicit NoticeBar(QWidget* pParent);

    void Tell(const QString& strText);

    // `fnYes` runs when the reader agrees; nothing does otherwise.
    void Ask(const QString& strText, const QString& strYes, std::function<void()> fnYes);

    // `fnAnswer` gets what the reader enters; the bar stays until it is told
    // something else. `fnCancel` runs when the reader gives up.
    void AskPassword(const QString& strText, std::function<void(const QString&)> fnAnswer,
                     std::function<void()> fnCancel);

    // As the reader does who gives up.
    void Dismiss();
    // Takes the notice back; a question stays without an answer.
    void Withdraw();

    // How high the bar is to be at a width.
    int RoomFor(int nWidth) const;

    QString Text() const; // empty while nothing is told

signals:
    void Changed(); // it tells something else, or nothing more
    void Closed();  // by the reader

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    void Show(const QString& strText, const QString& strYes);
    void Agree();

    QLabel* m_pText;
    QLineEdit* m_pAnswer;
    QPushButton* m_pYes;
    std::function<void()> m_fnYes;
    std::function<void()> m_fnCancel;
};

}
