#include "app/viewer/WindowParts.h"

#include <algorithm>
#include <utility>

namespace velko::viewer {

void WindowParts::SetStrip(Strip eStrip, QWidget* pWidget, std::function<int(int)> fnHeight) {
    std::erase_if(m_rows, [eStrip](const Row& row) { return row.eStrip == eStrip; });
    const auto after = std::find_if(m_rows.begin(), m_rows.end(),
                                    [eStrip](const Row& row) { return row.eStrip > eStrip; });
    m_rows.insert(after, {eStrip, pWidget != nullptr, pWidget, std::move(fnHeight)});
}

void WindowParts::SetSide(QWidget* pWidget, std::function<Side(QSize)> fnSide) {
    m_pSide = pWidget;
    m_fnSide = std::move(fnSide);
}

void WindowParts::AddOver(std::function<void(const QRect&)> fnPlace) {
    m_over.push_back(std::move(fnPlace));
}

int WindowParts::PlaceStrips() {
    int nTop = 0;
    for (const Row& row : m_rows) {
        if (row.bWidget && !row.pWidget) {
            continue;
        }
        const int nHeight = m_bPagesOnly ? 0 : row.fnHeight(m_window.width());
        if (row.pWidget) {
            row.pWidget->setGeometry(0, nTop, m_window.width(), nHeight);
        }
        nTop += nHeight;
    }
    return nTop;
}

QRect WindowParts::PlaceSide(const QRect& rcRoom) {
    const Side side = m_pSide && !m_bPagesOnly ? m_fnSide(m_window.size()) : Side();
    if (side.nWidth <= 0) {
        if (m_pSide && m_bPagesOnly) {
            m_pSide->move(-m_pSide->width(), 0);
        }
        return rcRoom;
    }
    m_pSide->setGeometry(rcRoom.x(), rcRoom.y(), side.nWidth, rcRoom.height());
    return side.bOver ? rcRoom : rcRoom.adjusted(side.nWidth, 0, 0, 0);
}

void WindowParts::SetPagesOnly(bool bOnly) {
    m_bPagesOnly = bOnly;
    Place();
}

void WindowParts::Place() {
    const int nTop = PlaceStrips();
    m_pages.setGeometry(PlaceSide({0, nTop, m_window.width(), m_window.height() - nTop}));
    for (const auto& fnPlace : m_over) {
        fnPlace(m_pages.geometry());
    }
}

}
