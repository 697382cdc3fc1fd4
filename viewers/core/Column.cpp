#include "viewers/core/Column.h"

#include <algorithm>
#include <cmath>

namespace velko::vkit {

double Column::LongestStep() const {
    return std::max(1.0, m_dbScreen - m_dbGap);
}

double Column::LimitMove(const LaidOutPage& first, const LaidOutPage& last, double dbMove) {
    if (dbMove < 0.0) {
        return LimitUp(first, dbMove);
    }
    return dbMove > 0.0 ? LimitDown(last, dbMove) : dbMove;
}

double Column::LimitUp(const LaidOutPage& first, double dbMove) {
    const double dbTop = first.screenRect.dbOffsetY;
    const bool bReachesTop = dbTop > 0.0 || std::abs(dbMove) >= std::abs(dbTop);
    return bReachesTop && RoomAbove(first.nPageIndex) != Room::Some ? dbTop : dbMove;
}

double Column::LimitDown(const LaidOutPage& last, double dbMove) {
    const double dbHeight = m_pages.ColumnLength() < 2 ? m_dbCanvas : m_dbScreen;
    const double dbOverhang = BottomOf(last) - dbHeight;
    const bool bReachesEnd = dbOverhang < dbMove && RoomBelow(last.nPageIndex) != Room::Some;
    return bReachesEnd ? std::max(0.0, dbOverhang) : dbMove;
}

double Column::GapAbove(const LaidOutPage& first) {
    const double dbTop = first.screenRect.dbOffsetY;
    return dbTop > 0.0 && RoomAbove(first.nPageIndex) != Room::Some ? dbTop : 0.0;
}

double Column::GapBelow(const LaidOutPage& first, const LaidOutPage& last) {
    double dbGap = m_dbScreen - BottomOf(last);
    if (dbGap <= 0.0 || RoomBelow(last.nPageIndex) != Room::None) {
        return 0.0;
    }
    if (RoomAbove(first.nPageIndex) != Room::Some) {
        dbGap = std::min(dbGap, -first.screenRect.dbOffsetY);
    }
    return std::max(0.0, dbGap);
}

bool Column::HoldsScreen(const LaidOutPage& item) const {
    return item.screenRect.dbOffsetY < m_dbCanvas && BottomOf(item) + m_dbGap > 0.0;
}

std::int32_t Column::CurrentPage(const LaidOutPage& first) const {
    const std::int32_t nLast = std::max(0, m_pages.ColumnLength() - 1);
    const Render_ScreenOffsetInfo& rc = first.screenRect;
    if (rc.dbOffsetY >= 0.0) {
        return std::min(first.nPageIndex, nLast);
    }
    const double dbHidden = std::abs(rc.dbOffsetY);
    const std::int32_t nHalf = rc.nHeight / 2;
    const bool bMostlyShown =
        rc.nHeight < m_dbCanvas ? dbHidden < nHalf : m_dbCanvas * 0.5 < rc.nHeight - dbHidden;
    return std::min(bMostlyShown ? first.nPageIndex : first.nPageIndex + 1, nLast);
}

// --- over pages that are not laid out ---

Column::Room Column::RoomAbove(std::int32_t nPageIndex) {
    while (--nPageIndex >= 0) {
        if (!m_pages.IsMeasured(nPageIndex)) {
            return Room::Unknown;
        }
        if (m_pages.TakesRoom(nPageIndex)) {
            return Room::Some;
        }
    }
    return Room::None;
}

Column::Room Column::RoomBelow(std::int32_t nPageIndex) {
    while (++nPageIndex < m_pages.ColumnLength()) {
        if (!m_pages.IsMeasured(nPageIndex)) {
            return Room::Unknown;
        }
        if (m_pages.TakesRoom(nPageIndex)) {
            return Room::Some;
        }
    }
    return Room::None;
}

bool Column::FillScreenFrom(std::int32_t nPageIndex) {
    double dbLeft = m_dbScreen;
    for (; nPageIndex < m_pages.ColumnLength(); ++nPageIndex) {
        if (!m_pages.IsMeasured(nPageIndex)) {
            return true; // for all that is known
        }
        if (m_pages.TakesRoom(nPageIndex)) {
            dbLeft = dbLeft - m_pages.HeightInColumn(nPageIndex) - m_dbGap;
        }
        if (dbLeft <= 0.0) {
            return true;
        }
    }
    return false;
}

double Column::TailOverflow(std::int32_t& nPageIndex) {
    if (FillScreenFrom(nPageIndex)) {
        return 0.0;
    }
    double dbLeft = m_dbScreen;
    bool bIsLast = true;
    std::int32_t nStart = nPageIndex;
    for (std::int32_t nPage = m_pages.ColumnLength() - 1; nPage >= 0 && dbLeft > 0.0; --nPage) {
        if (!m_pages.IsMeasured(nPage)) {
            break;
        }
        nStart = nPage;
        if (m_pages.TakesRoom(nPage)) {
            dbLeft -= m_pages.HeightInColumn(nPage) + (bIsLast ? 0.0 : m_dbGap);
            bIsLast = false;
        }
    }
    if (!bIsLast) { // else there is no last screen, and the page stays the one wanted
        nPageIndex = nStart;
    }
    return std::min(dbLeft, 0.0);
}

}
