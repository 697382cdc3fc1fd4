#include "widget/search/HitModel.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace velko::vkit {

HitModel::HitModel(ViewSearch& search, PageTexts& texts, std::function<QString(int)> fnPageName)
    : m_search(search), m_texts(texts), m_fnPageName(std::move(fnPageName)) {
    connect(&search.Hits(), &DocSearch::Cleared, this, &HitModel::Reset);
    connect(&search.Hits(), &DocSearch::Found, this, &HitModel::Insert);
    connect(&texts, &PageTexts::Read, this, &HitModel::OnRead);
    Reset();
}

void HitModel::Reset() {
    beginResetModel();
    m_rows.clear();
    m_nRows = 0;
    endResetModel();
    for (std::int32_t nPage = 0; nPage < m_search.Hits().PageCount(); ++nPage) {
        InsertPage(nPage);
    }
}

void HitModel::Insert(const QList<int>& pages) {
    std::for_each(pages.begin(), pages.end(), [this](int nPage) { InsertPage(nPage); });
}

void HitModel::InsertPage(int nPage) {
    const DocSearch& hits = m_search.Hits();
    const int nNew = static_cast<int>(hits.On(nPage).size());
    m_rows.resize(static_cast<std::size_t>(hits.PageCount()), 0);
    if (nNew == 0 || m_nRows >= kMostRows) {
        return;
    }
    const int nRow = RowsBefore(nPage);
    beginInsertRows({}, nRow, nRow + nNew - 1);
    m_rows[static_cast<std::size_t>(nPage)] = nNew;
    m_nRows += nNew;
    endInsertRows();
}

int HitModel::RowsBefore(std::int32_t nPage) const {
    return std::accumulate(m_rows.begin(), m_rows.begin() + nPage, 0);
}

int HitModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : m_nRows;
}

HitPlace HitModel::PlaceOf(int nRow) const {
    std::int32_t nPage = 0;
    while (nPage + 1 < static_cast<std::int32_t>(m_rows.size()) &&
           nRow >= m_rows[static_cast<std::size_t>(nPage)]) {
        nRow -= m_rows[static_cast<std::size_t>(nPage++)];
    }
    return {nPage, nRow};
}

int HitModel::RowOf(HitPlace place) const {
    const auto nPage = static_cast<std::size_t>(place.nPage);
    return nPage < m_rows.size() && place.nIndex < m_rows[nPage]
               ? RowsBefore(place.nPage) + place.nIndex
               : -1;
}

// What the search did not keep is read once more.
SearchText::Excerpt HitModel::LineOf(HitPlace place) const {
    const auto hit = m_search.Hits().At(place);
    if (!hit) {
        return {};
    }
    if (const auto pKept = m_search.Hits().TextOf(place.nPage)) {
        return pKept->Around(hit->nFirst, hit->nEnd);
    }
    const auto pText = m_texts.OwnTextOf(place.nPage);
    return pText ? SearchText(*pText).Around(hit->nFirst, hit->nEnd)
                 : SearchText::Excerpt{QStringLiteral("…"), 0, 0};
}

QVariant HitModel::data(const QModelIndex& index, int nRole) const {
    if (!index.isValid() || index.row() >= m_nRows) {
        return {};
    }
    const HitPlace place = PlaceOf(index.row());
    switch (nRole) {
        case Qt::DisplayRole:
            return LineOf(place).strText;
        case FirstRole:
            return LineOf(place).nFirst;
        case LengthRole:
            return LineOf(place).nLength;
        case PageRole:
            return m_fnPageName(place.nPage);
        case Qt::AccessibleTextRole:
            return QStringLiteral("Page %1: %2")
                .arg(m_fnPageName(place.nPage), LineOf(place).strText);
        default:
            return {};
    }
}

void HitModel::OnRead(int nPage) {
    const bool bHas =
        nPage < static_cast<int>(m_rows.size()) && m_rows[static_cast<std::size_t>(nPage)] > 0;
    if (bHas && !m_search.Hits().TextOf(nPage)) {
        const int nFirst = RowsBefore(nPage);
        emit dataChanged(index(nFirst),
                         index(nFirst + m_rows[static_cast<std::size_t>(nPage)] - 1));
    }
}

}
