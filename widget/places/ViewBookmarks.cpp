#include "widget/places/ViewBookmarks.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <utility>

#include "widget/places/PlaceName.h"
#include "widget/places/ShownIdentity.h"
#include "widget/places/SnippetSearch.h"
#include "widget/places/SnippetTaker.h"

namespace velko::vkit {

namespace {

constexpr double kNear = 48.0; // device pixels

std::vector<ViewBookmarks*>& All() {
    static std::vector<ViewBookmarks*> s_all;
    return s_all;
}

bool IsGone(const std::string& strPath) {
    std::error_code ignored;
    return !std::filesystem::exists(strPath, ignored);
}

Bookmark PlaceOf(PDFViewCtrl& control) {
    Bookmark here;
    here.nPage = control.GetCurrentPageIndex();
    const auto place = control.GetPageScreenRect(here.nPage);
    if (place) {
        const Windows::Foundation::Point ptTop{
            static_cast<float>(std::max(0.0, place->dbOffsetX) / control.CompositionScaleX()),
            static_cast<float>(std::max(0.0, place->dbOffsetY) / control.CompositionScaleY())};
        if (const auto pPoint = control.DevicePointToPagePoint(ptTop);
            pPoint && pPoint->nPageIndex == here.nPage) {
            here.dbX = pPoint->pt.X;
            here.dbY = pPoint->pt.Y;
        }
    }
    return here;
}

double ScreenY(PDFViewCtrl& control, const Bookmark& bookmark) {
    return control
               .PagePointToDevicePoint(bookmark.nPage, {static_cast<float>(bookmark.dbX),
                                                        static_cast<float>(bookmark.dbY)})
               .Y *
           control.CompositionScaleY();
}

// Page space goes upwards, a document down.
bool IsBefore(const Bookmark& one, const Bookmark& other) {
    return one.nPage != other.nPage ? one.nPage < other.nPage : one.dbY > other.dbY;
}

}

ViewBookmarks::ViewBookmarks(VelkoPdfView& view) : QObject(&view), m_view(view) {
    All().push_back(this);
    connect(&m_view, &VelkoPdfView::Opened, this, &ViewBookmarks::Forget);
    connect(&m_view, &VelkoPdfView::StateChanged, this, [this](VelkoPdfView::State eState) {
        if (eState != VelkoPdfView::State::Shown) {
            Forget();
        }
    });
}

ViewBookmarks::~ViewBookmarks() {
    if (m_pAbort) {
        m_pAbort->store(true, std::memory_order_release);
    }
    std::erase(All(), this);
}

// --- reading ---------------------------------------------------------------

void ViewBookmarks::Forget() {
    ++m_nReading;
    if (const auto pAbort = std::exchange(m_pAbort, nullptr)) {
        pAbort->store(true, std::memory_order_release);
    }
    m_bAsked = false;
    m_bRead = false;
    m_kept = {};
    m_waiting.clear();
    emit Changed();
}

const std::vector<Bookmark>& ViewBookmarks::List() {
    WhenRead({});
    return m_kept.bookmarks;
}

void ViewBookmarks::WhenRead(std::function<void()> fnDo) {
    if (m_bRead) {
        if (fnDo) {
            fnDo();
        }
        return;
    }
    if (m_view.ViewState() != VelkoPdfView::State::Shown) {
        return;
    }
    if (fnDo) {
        m_waiting.push_back(std::move(fnDo));
    }
    if (!std::exchange(m_bAsked, true)) {
        Read(this, ++m_nReading);
    }
}

concurrency::task<void> ViewBookmarks::Read(QPointer<ViewBookmarks> pSelf, int nReading) {
    const auto identifying = ReadIdentityOf(*pSelf->m_view.Control());
    const DocIdentity identity = co_await identifying;
    const auto finding =
        concurrency::create_task([identity] { return FindBookmarks(identity, IsGone); });
    KeptBookmarks kept = co_await finding;
    if (!pSelf || pSelf->m_nReading != nReading) {
        co_return;
    }
    pSelf->m_bRead = true;
    pSelf->m_kept = std::move(kept);
    for (const auto& fnDo : std::exchange(pSelf->m_waiting, {})) {
        fnDo();
    }
    if (pSelf->m_kept.bOtherVersion && !pSelf->m_kept.bookmarks.empty()) {
        LookForAll(pSelf);
    }
    emit pSelf->Changed();
}

concurrency::task<void> ViewBookmarks::LookForAll(QPointer<ViewBookmarks> pSelf) {
    const int nReading = pSelf->m_nReading;
    const std::vector<Bookmark> before = pSelf->m_kept.bookmarks;
    std::vector<SoughtPlace> sought;
    for (const Bookmark& bookmark : before) {
        sought.push_back({bookmark.nPage, bookmark.snippet});
    }
    pSelf->m_pAbort = std::make_shared<std::atomic<bool>>(false);
    const auto pFinder =
        std::make_shared<SnippetFinder>(pSelf->m_view.Control()->GetPDFDoc(), std::move(sought),
                                        pSelf->m_pAbort, SnippetFinder::Limits{});
    const auto running = RunToEnd(pFinder);
    co_await running;
    if (pSelf && pSelf->m_nReading == nReading) {
        pSelf->TakeFound(before, pFinder->Found());
    }
}

// As they are by now: the reader may have changed some meanwhile. What is not found stays on
// its page.
void ViewBookmarks::TakeFound(const std::vector<Bookmark>& before,
                              const std::vector<std::optional<FoundPlace>>& found) {
    auto& list = m_kept.bookmarks;
    for (std::size_t n = 0; n < before.size(); ++n) {
        const auto it = std::find(list.begin(), list.end(), before[n]);
        if (found[n] && it != list.end()) {
            const double dbX = found[n]->ptNow.X - found[n]->ptThen.X;
            const double dbY = found[n]->ptNow.Y - found[n]->ptThen.Y;
            it->nPage = found[n]->nPage;
            it->dbX += dbX;
            it->dbY += dbY;
            it->snippet.dbX += dbX;
            it->snippet.dbY += dbY;
            it->snippet.dbHalfX += dbX;
            it->snippet.dbHalfY += dbY;
        }
    }
    std::stable_sort(list.begin(), list.end(), IsBefore);
    m_kept.bOtherVersion = false;
    Keep();
}

// --- changing --------------------------------------------------------------

void ViewBookmarks::Toggle() {
    WhenRead([this] { ToggleHere(); });
}

void ViewBookmarks::ToggleHere() {
    const Bookmark here = PlaceOf(*m_view.Control());
    if (const int nNear = FindNear(here); nNear >= 0) {
        Remove(nNear);
        emit Told(QStringLiteral("The bookmark here was taken away."));
        return;
    }
    if (m_kept.bookmarks.size() >= kMostBookmarks) {
        emit Told(QStringLiteral("There are %1 bookmarks in this document already: take some away "
                                 "first.")
                      .arg(kMostBookmarks));
        return;
    }
    Name(this, here);
}

// Of those on the page the one that stands at the window's top by now.
int ViewBookmarks::FindNear(const Bookmark& here) const {
    PDFViewCtrl& control = *m_view.Control();
    const double dbHere = ScreenY(control, here);
    for (std::size_t n = 0; n < m_kept.bookmarks.size(); ++n) {
        const Bookmark& bookmark = m_kept.bookmarks[n];
        if (bookmark.nPage == here.nPage && std::abs(ScreenY(control, bookmark) - dbHere) < kNear) {
            return static_cast<int>(n);
        }
    }
    return -1;
}

concurrency::task<void> ViewBookmarks::Name(QPointer<ViewBookmarks> pSelf, Bookmark bookmark) {
    const int nReading = pSelf->m_nReading;
    const auto naming =
        NameOfPlace(pSelf->m_view, bookmark.nPage,
                    {static_cast<float>(bookmark.dbX), static_cast<float>(bookmark.dbY)});
    const auto taking = ReadSnippetIn(*pSelf->m_view.Control(), bookmark.nPage);
    const std::string strName = co_await naming;
    const PlaceSnippet snippet = co_await taking;
    if (!pSelf || pSelf->m_nReading != nReading || pSelf->FindNear(bookmark) >= 0) {
        co_return;
    }
    bookmark.strName = strName;
    bookmark.snippet = snippet;
    auto& list = pSelf->m_kept.bookmarks;
    list.insert(std::upper_bound(list.begin(), list.end(), bookmark, IsBefore), bookmark);
    pSelf->Keep();
    emit pSelf->Told(QStringLiteral("Bookmark “%1” was put here. Ctrl+B takes it away again.")
                         .arg(QString::fromStdString(strName)));
}

void ViewBookmarks::Rename(int nBookmark, const QString& strName) {
    const std::string strNew = strName.simplified().toStdString();
    if (!strNew.empty() && nBookmark >= 0 &&
        nBookmark < static_cast<int>(m_kept.bookmarks.size())) {
        m_kept.bookmarks[static_cast<std::size_t>(nBookmark)].strName = strNew;
        Keep();
    }
}

void ViewBookmarks::Remove(int nBookmark) {
    if (nBookmark >= 0 && nBookmark < static_cast<int>(m_kept.bookmarks.size())) {
        m_kept.bookmarks.erase(m_kept.bookmarks.begin() + nBookmark);
        Keep();
    }
}

void ViewBookmarks::Goto(int nBookmark) {
    if (nBookmark < 0 || nBookmark >= static_cast<int>(m_kept.bookmarks.size())) {
        return;
    }
    const Bookmark bookmark = m_kept.bookmarks[static_cast<std::size_t>(nBookmark)];
    m_view.JumpToPage(bookmark.nPage);
    if (bookmark.nPage < m_view.PageCount()) {
        m_view.ScrollBy(0.0, ScreenY(*m_view.Control(), bookmark));
    }
}

// Kept and shared with the other views of the document.
void ViewBookmarks::Keep() {
    m_kept.strKey = StoreBookmarks(m_kept);
    const KeptBookmarks kept = m_kept;
    for (ViewBookmarks* const pOther : std::vector(All())) {
        pOther->TakeFrom(kept);
    }
}

void ViewBookmarks::TakeFrom(const KeptBookmarks& kept) {
    if (m_bRead && m_kept.document.strPath == kept.document.strPath) {
        m_kept.strKey = kept.strKey;
        m_kept.bookmarks = kept.bookmarks;
        emit Changed();
    }
}

}
