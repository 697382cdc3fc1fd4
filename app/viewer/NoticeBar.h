// A line above the pages that tells the reader something, or asks: it waits
// for the answer without keeping anything else from going on. What it says is
// read out by a screen reader.
//
// A new notice takes the place of the one before, whose question then stays without
// an answer. It goes when the reader closes it and, by its kind:
//   Tell, Ask    with the next command that succeeds, or another document
//   TellWhile    when it does not hold any more; others stand before it meanwhile
// Threads: UI thread only.
#pragma once

#include <QElapsedTimer>
#include <QFrame>
#include <QTimer>
#include <functional>

class QLabel;
class QPushButton;

namespace velko::viewer {

class NoticeBar : public QFrame {
    Q_OBJECT

public:
    explicit NoticeBar(QWidget* pParent);

    void Tell(const QString& strText);

    // What the reader may do about what is told.
    struct Offer {
        QString strYes;
        std::function<void()> fnYes;
    };

    // `fnHolds` is asked from time to time. Unlike a question an offer takes no keys.
    void TellWhile(const QString& strText, std::function<bool()> fnHolds, Offer offer = {});
    void CheckStanding(); // at once

    // `fnYes` runs when the reader agrees; nothing does otherwise.
    void Ask(const QString& strText, const QString& strYes, std::function<void()> fnYes);

    // As the reader does who gives up.
    void Dismiss();

    // A command has succeeded.
    void OnDone();
    // Another page is shown. The coming of a notice moves the pages itself.
    void OnPageChanged();
    // Another document, or none, is on its way or shown.
    void OnDocument();

    // How high the bar is to be at a width.
    int RoomFor(int nWidth) const;

    QString Text() const; // empty while nothing is told

signals:
    void Changed();  // it tells something else, or nothing more
    void KeysFree(); // it had the keys and is gone

protected:
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    enum class Kind { Told, Standing };

    void ShowStanding();
    void Show(Kind eKind, const QString& strText, const QString& strYes);
    void Withdraw(); // a question stays without an answer
    bool IsPassing() const { return !isHidden() && m_eKind == Kind::Told; }
    void Agree();

    QLabel* m_pText;
    QPushButton* m_pYes;
    Kind m_eKind = Kind::Told;
    QElapsedTimer m_since; // this notice came
    std::function<void()> m_fnYes;
    QString m_strStanding;
    Offer m_standingOffer;
    std::function<bool()> m_fnHolds; // empty: nothing stands
    QTimer m_watch;
};

}
