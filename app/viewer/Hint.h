// A word over the pages that goes by itself, sooner when the reader goes on: it asks
// for nothing, and takes no room, no keys and no clicks. It is small and stands at
// the top edge, where a page has its margin.
//
// Threads: UI thread only.
#pragma once

#include <QStringList>
#include <QTimer>
#include <QVariantAnimation>
#include <QWidget>

namespace velko::viewer {

class Hint : public QWidget {
public:
    explicit Hint(QWidget* pParent); // to the parent's top edge

    // As many of the sentences as have room in a line, at least the first.
    void Say(const QStringList& sentences);
    // After the parent's change of size.
    void Place();
    // The reader has gone on.
    void FadeOut();

protected:
    void paintEvent(QPaintEvent* pEvent) override;

private:
    QString TextWithin(int nWidth) const;

    QStringList m_sentences;
    QString m_strText;
    QTimer m_timer;
    QVariantAnimation m_fading; // the share that is left of its colours
};

}
