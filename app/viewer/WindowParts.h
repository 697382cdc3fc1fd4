// Where the parts of a window stand: strips above the pages, one under another, a panel
// at their left, and what lies over them.
//
// A part is asked for the room it takes each time; 0 is none, as while it is hidden.
// Lifetime: goes before the window and the parts' owners; a part that has gone takes no
// room. Threads: UI thread only. Units: Qt's, of the window.
#pragma once

#include <QPointer>
#include <QRect>
#include <QWidget>
#include <functional>
#include <vector>

namespace velko::viewer {

class WindowParts {
public:
    // From the top down.
    enum class Strip { Bar, Find, Notice };

    // What a panel takes at a size of the window.
    struct Side {
        int nWidth = 0;
        bool bOver = false; // it lies over the pages, whose room stays
    };

    WindowParts(QWidget& window, QWidget& pages) : m_window(window), m_pages(pages) {}

    // `fnHeight` is given the width that the strip will have. A strip without a widget
    // keeps the room only.
    void SetStrip(Strip eStrip, QWidget* pWidget, std::function<int(int nWidth)> fnHeight);
    void SetSide(QWidget* pWidget, std::function<Side(QSize window)> fnSide);
    // Called after the pages have got their place.
    void AddOver(std::function<void(const QRect& rcPages)> fnPlace);

    // The pages have all of the window; what is over them still lies there.
    void SetPagesOnly(bool bOnly);

    void Place();

private:
    struct Row {
        Strip eStrip;
        bool bWidget;
        QPointer<QWidget> pWidget;
        std::function<int(int)> fnHeight;
    };

    int PlaceStrips(); // where they end
    QRect PlaceSide(const QRect& rcRoom);

    QWidget& m_window;
    QWidget& m_pages;
    std::vector<Row> m_rows; // from the top down
    QPointer<QWidget> m_pSide;
    std::function<Side(QSize)> m_fnSide;
    std::vector<std::function<void(const QRect&)>> m_over;
    bool m_bPagesOnly = false;
};

}
