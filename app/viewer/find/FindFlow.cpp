#include "app/viewer/find/FindFlow.h"

#include <QApplication>
#include <QLocale>
#include <utility>

#include "app/viewer/find/FindBar.h"
#include "widget/search/ViewSearch.h"
#include "widget/text/PageTexts.h"
#include "widget/text/PlainText.h"
#include "widget/text/ViewSelection.h"

namespace velko::viewer {

using vkit::VelkoPdfView;
using vkit::ViewSearch;

FindFlow::FindFlow(VelkoPdfView& view, const Commands& commands, WindowParts& parts,
                   QWidget* pWindow)
    : QObject(pWindow), m_view(view), m_commands(commands), m_parts(parts), m_pWindow(pWindow) {}

bool FindFlow::IsOpen() const {
    return m_pBar != nullptr && !m_pBar->isHidden();
}

void FindFlow::MakeBar() {
    m_pBar =
        new FindBar(m_commands[Command::FindNext], m_commands[Command::FindPrevious], m_pWindow);
    m_pBar->hide();
    m_parts.SetStrip(WindowParts::Strip::Find, m_pBar,
                     [this](int /*nWidth*/) { return IsOpen() ? FindBar::kHeight : 0; });
    connect(m_pBar, &FindBar::Changed, this, &FindFlow::Search);
    connect(m_pBar, &FindBar::StepWanted, this, &FindFlow::Step);
    connect(m_pBar, &FindBar::ScreensWanted, &m_view, &VelkoPdfView::ScrollByScreen);
    connect(m_pBar, &FindBar::CloseWanted, this, &FindFlow::Close);
    connect(m_pBar, &FindBar::ListWanted, this, &FindFlow::ListWanted);
    ViewSearch& search = m_view.Search();
    connect(&search, &ViewSearch::Changed, this, &FindFlow::TellCount);
    connect(&search, &ViewSearch::WentRound, this, [this](bool bBack) {
        m_strRound = bBack ? QStringLiteral("from the end") : QStringLiteral("from the start");
        TellCount();
    });
    emit Made();
}

void FindFlow::ShowList(bool bShown) {
    if (m_pBar != nullptr) {
        m_pBar->SetListShown(bShown);
    }
}

// The coming of the bar moves no page.
void FindFlow::Call() {
    if (m_pBar == nullptr) {
        MakeBar();
    }
    if (!IsOpen()) {
        m_pBar->show();
        m_view.ResizeAtTheZoom([this] { m_parts.Place(); });
        m_pBar->raise();
    }
}

// A few words of a page; nobody looks for whole paragraphs.
QString FindFlow::Selected() const {
    constexpr std::int32_t kMostChars = 200;
    const vkit::TextSpan span = m_view.Selection().Span();
    const std::int32_t nChars = span.last.nChar - span.first.nChar;
    const bool bFew = span.first.nPage == span.last.nPage && nChars > 0 && nChars <= kMostChars;
    const auto pText = bFew ? m_view.Texts().OwnTextOf(span.first.nPage) : nullptr;
    return pText && span.last.nChar <= static_cast<std::int32_t>(pText->chars.size())
               ? vkit::PlainTextOf(*pText, {span.first.nChar, span.last.nChar}).simplified()
               : QString();
}

void FindFlow::Open() {
    const QString strSelected = Selected();
    Call();
    if (!strSelected.isEmpty()) {
        m_pBar->SetText(strSelected);
    }
    m_pBar->TakeKeys();
    Search();
}

void FindFlow::Find(const QString& strText) {
    Call();
    m_pBar->SetText(strText);
    Search();
}

void FindFlow::Step(bool bBack) {
    if (m_pBar == nullptr || m_pBar->Text().isEmpty()) {
        Open();
    } else if (!IsOpen()) {
        Find(m_pBar->Text());
    } else {
        m_strRound.clear();
        bBack ? m_view.Search().Previous() : m_view.Search().Next();
    }
}

bool FindFlow::Close() {
    if (!IsOpen()) {
        return false;
    }
    const bool bHadKeys = m_pBar->isAncestorOf(QApplication::focusWidget());
    m_pBar->hide();
    m_parts.Place();
    m_view.Search().End();
    if (bHadKeys) {
        m_view.setFocus();
    }
    emit Closed();
    return true;
}

void FindFlow::Search() {
    if (IsOpen()) {
        m_strRound.clear();
        m_view.Search().Find(m_pBar->Text(), m_pBar->Options());
        TellCount();
    }
}

// --- in words ----------------------------------------------------------------

// That something is not there is told only when all has been searched.
QString FindFlow::CountText() const {
    const ViewSearch& search = m_view.Search();
    const vkit::DocSearch& hits = search.Hits();
    if (search.Text().isEmpty() || hits.PageCount() == 0) {
        return {};
    }
    if (hits.Count() == 0) {
        return hits.IsSearching() ? QStringLiteral("Searching…")
               : hits.HasText()   ? QStringLiteral("Not found")
                                  : QStringLiteral("This document has no text");
    }
    const QLocale locale;
    const QString strMore = hits.IsSearching() ? QStringLiteral("…")
                            : hits.IsFull()    ? QStringLiteral("+")
                                               : QString();
    const QString strCount = locale.toString(hits.Count()) + strMore;
    const std::int64_t nCurrent = search.CurrentNumber();
    return nCurrent > 0 ? QStringLiteral("%1 of %2").arg(locale.toString(nCurrent), strCount)
                        : strCount;
}

void FindFlow::TellCount() {
    if (!IsOpen()) {
        return;
    }
    const vkit::DocSearch& hits = m_view.Search().Hits();
    QString strText = CountText();
    if (!m_strRound.isEmpty() && hits.Count() > 0) {
        strText += QStringLiteral(", ") + m_strRound;
    }
    const bool bMissing = !strText.isEmpty() && hits.Count() == 0 && !hits.IsSearching();
    const bool bSpoken = !hits.IsSearching() && std::exchange(m_strSpoken, strText) != strText;
    m_pBar->Tell(strText, bMissing, bSpoken ? strText : QString());
}

}
