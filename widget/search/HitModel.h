// The hits of a search as a list: for each the line that it stands in, and the name of
// its page.
//
// A line is read when it is first shown. Of very many hits those of the pages that were
// searched first are listed.
// Lifetime: goes before the view's search and texts. Threads: UI thread only.
#pragma once

#include <QAbstractListModel>
#include <functional>
#include <vector>

#include "widget/search/ViewSearch.h"

namespace velko::vkit {

class HitModel : public QAbstractListModel {
    Q_OBJECT

public:
    static constexpr int kMostRows = 20'000; // and what else is on the page with the last one

    enum Role {
        PageRole = Qt::UserRole, // its name
        FirstRole,               // where in the line the hit is
        LengthRole
    };

    // `fnPageName` says what a page is called.
    HitModel(ViewSearch& search, PageTexts& texts, std::function<QString(int nPage)> fnPageName);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int nRole) const override;

    HitPlace PlaceOf(int nRow) const;
    int RowOf(HitPlace place) const; // -1: it is not listed
    bool IsWhole() const { return m_nRows == m_search.Hits().Count(); }

private:
    void Reset();
    void Insert(const QList<int>& pages);
    void InsertPage(int nPage);
    void OnRead(int nPage);
    int RowsBefore(std::int32_t nPage) const;
    SearchText::Excerpt LineOf(HitPlace place) const;

    ViewSearch& m_search;
    PageTexts& m_texts;
    const std::function<QString(int)> m_fnPageName;
    std::vector<int> m_rows; // of each page
    int m_nRows = 0;
};

}
