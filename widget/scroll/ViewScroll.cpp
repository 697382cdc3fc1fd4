#include "widget/scroll/ViewScroll.h"

#include <QLabel>
#include <QMouseEvent>
#include <algorithm>
#include <cmath>
#include <utility>

#include "platform/qt/QtElementWindow.h"
#include "widget/PageOverlay.h"
#include "widget/VelkoPdfView.h"
#include "widget/search/ViewSearch.h"

namespace velko::vkit {

namespace {

constexpr int kFrameMs = 16;
constexpr int kMarksMs = 120; // hits come many times in a second

}

// Each frame tells where the pages stand.
class ViewScroll::Frames : public PageOverlay {
public:
    Frames(PDFViewCtrl& control, std::function<void()> fnFollow)
        : PageOverlay(
              control, [] { return 1.0; }, Over::PagesAndText),
          m_fnFollow(std::move(fnFollow)) {}

protected:
    void Draw(const RenderCanvasEventArgs& /*args*/) override { m_fnFollow(); }

private:
    const std::function<void()> m_fnFollow;
};

ViewScroll::ViewScroll(VelkoPdfView& view, std::function<QString(int)> fnPageName)
    : QObject(&view),
      m_view(view),
      m_pControl(view.Control()),
      m_fnPageName(std::move(fnPageName)) {
    ScrollBar::Hands down{[this](double dbStart) { Drag(dbStart); },
                          [this](double dbStart) { ScrollTo(dbStart); },
                          [this](int nScreens) { m_view.ScrollByScreen(nScreens); },
                          [this](bool bHeld) { SetHeld(bHeld); }};
    ScrollBar::Hands across{
        [this](double dbStart) { DragAcross(dbStart); },
        [this](double dbStart) { DragAcross(dbStart); },
        [this](int nScreens) {
            m_view.ScrollBy(nScreens * m_view.Window().width() * m_view.devicePixelRatioF(), 0.0);
        },
        [](bool /*bHeld*/) {}};
    m_pDown = std::make_unique<ScrollBar>(Qt::Vertical, m_view, std::move(down));
    m_pAcross = std::make_unique<ScrollBar>(Qt::Horizontal, m_view, std::move(across));
    m_pFrames = std::make_unique<Frames>(*m_pControl, [this] { Follow(); });
    m_view.Window().installEventFilter(this);
    m_view.installEventFilter(this);
    connect(&m_view, &VelkoPdfView::StateChanged, this, &ViewScroll::Follow);
    connect(&m_view, &VelkoPdfView::ViewChanged, this, &ViewScroll::Follow);
    connect(&m_view, &VelkoPdfView::LinkHovered, this,
            [this](const QString& strTarget) { m_bOverLink = !strTarget.isEmpty(); });
    m_frame.setSingleShot(true);
    m_frame.setInterval(kFrameMs);
    m_frame.callOnTimeout(this, [this] {
        if (const auto target = std::exchange(m_target, std::nullopt)) {
            Drag(*target);
        }
    });
    m_marks.setSingleShot(true);
    m_marks.setInterval(kMarksMs);
    m_marks.callOnTimeout(this, &ViewScroll::CollectMarks);
    Follow();
}

ViewScroll::~ViewScroll() = default;

void ViewScroll::SetAllowed(bool bAllowed) {
    m_bAllowed = bAllowed;
    Follow();
}

// --- where the pages stand -----------------------------------------------------

void ViewScroll::Follow() {
    PDFViewCtrl& control = *m_view.Control();
    const bool bShown = m_bAllowed && m_view.ViewState() != VelkoPdfView::State::Empty;
    m_down = bShown ? RangeDown(control) : std::nullopt;
    m_across = bShown && !m_view.IsReading() ? RangeAcross(control) : std::nullopt;
    Place();
}

// In the layout of single pages a page that fits leaves others to scroll to all the same.
void ViewScroll::Place() {
    const bool bDark = m_view.Colors().IsDark();
    // Light pages may have a dark surround.
    const QColor color = bDark ? QColor(175, 175, 175) : QColor(115, 115, 115);
    const QRect rc = m_view.rect();
    const int nWidth = ScrollBar::kWidth;
    const bool bAcross = m_across && !m_across->Fits();
    m_pDown->SetColor(color);
    m_pAcross->SetColor(color);
    m_pDown->Show(QRect(rc.width() - nWidth, 0, nWidth, rc.height() - (bAcross ? nWidth : 0)),
                  m_down);
    m_pAcross->Show(QRect(0, rc.height() - nWidth, rc.width() - nWidth, nWidth), m_across);
    if (m_pBubble != nullptr && m_pDown->IsHeld()) {
        ShowBubble();
    }
}

bool ViewScroll::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pWatched == &m_view) {
        if (pEvent->type() == QEvent::Resize) {
            Place();
        }
    } else if (pEvent->type() == QEvent::MouseMove) {
        const auto& mouse = *static_cast<QMouseEvent*>(pEvent);
        if (mouse.buttons() == Qt::NoButton) {
            OnPointer(mouse.position());
        }
    }
    return false;
}

// What lies under a link stays the link's.
void ViewScroll::OnPointer(QPointF pt) {
    const QSize size = m_view.Window().size();
    m_pDown->SetNear(!m_bOverLink && pt.x() >= size.width() - ScrollBar::kWidth);
    m_pAcross->SetNear(!m_bOverLink && pt.y() >= size.height() - ScrollBar::kWidth);
}

// --- scrolling -------------------------------------------------------------------

void ViewScroll::Drag(double dbStart) {
    if (m_frame.isActive()) {
        m_target = dbStart;
    } else {
        ScrollTo(dbStart);
        m_frame.start();
    }
    if (m_pDown->IsHeld()) {
        ShowBubble();
    }
}

void ViewScroll::ScrollTo(double dbStart) {
    constexpr double kAtEnd = 1e-4; // pages
    PDFViewCtrl& control = *m_view.Control();
    const int nLast = m_view.Control()->GetPageCount() - 1;
    if (!m_down || nLast < 0) {
        return;
    }
    const bool bEnd = dbStart >= m_down->LastStart() - kAtEnd;
    const int nPage = bEnd ? nLast : std::clamp(static_cast<int>(dbStart), 0, nLast);
    if (!control.GetPageScreenRect(nPage)) {
        m_view.GotoPage(nPage);
    }
    if (const auto place = control.GetPageScreenRect(nPage)) {
        const double dbScreen = control.GetCanvasSize().Height * control.CompositionScaleY();
        const double dbY = bEnd ? place->dbOffsetY + place->nHeight - dbScreen
                                : place->dbOffsetY + (dbStart - nPage) * place->nHeight;
        if (std::abs(dbY) >= 0.5) {
            m_view.ScrollBy(0.0, dbY);
        }
    }
}

void ViewScroll::DragAcross(double dbStart) {
    PDFViewCtrl& control = *m_view.Control();
    if (const auto place = control.GetPageScreenRect(control.GetCurrentPageIndex())) {
        m_view.ScrollBy(place->dbOffsetX + dbStart * place->nWidth, 0.0);
    }
}

// --- the page's number -------------------------------------------------------------

void ViewScroll::SetHeld(bool bHeld) {
    if (bHeld) {
        if (m_pBubble == nullptr) {
            m_pBubble = new QLabel(&m_view);
            m_pBubble->setAttribute(Qt::WA_TransparentForMouseEvents);
            m_pBubble->setTextFormat(Qt::PlainText);
            m_pBubble->setAutoFillBackground(true);
            m_pBubble->setBackgroundRole(QPalette::ToolTipBase);
            m_pBubble->setForegroundRole(QPalette::ToolTipText);
            m_pBubble->setFrameStyle(QFrame::Box | QFrame::Plain);
            m_pBubble->setContentsMargins(8, 4, 8, 4);
        }
        ShowBubble();
    } else if (m_pBubble != nullptr) {
        m_pBubble->hide();
    }
}

void ViewScroll::ShowBubble() {
    constexpr int kGap = 10;
    const int nPage = m_view.Control()->GetCurrentPageIndex();
    const QString strName = m_fnPageName ? m_fnPageName(nPage) : QString::number(nPage + 1);
    m_pBubble->setText(QStringLiteral("Page %1").arg(strName));
    m_pBubble->adjustSize();
    const QRect rc = m_pDown->HandleRect();
    const int nTop = rc.center().y() - m_pBubble->height() / 2;
    m_pBubble->move(rc.left() - kGap - m_pBubble->width(),
                    std::clamp(nTop, 2, std::max(2, m_view.height() - m_pBubble->height() - 2)));
    m_pBubble->show();
    m_pBubble->raise();
}

QString ViewScroll::Bubble() const {
    return m_pBubble != nullptr && !m_pBubble->isHidden() ? m_pBubble->text() : QString();
}

// --- hits ------------------------------------------------------------------------

void ViewScroll::MarkHits(ViewSearch& search) {
    m_pSearch = &search;
    connect(m_pSearch, &ViewSearch::Changed, this, [this] {
        if (!m_marks.isActive()) {
            m_marks.start();
        }
    });
    connect(m_pSearch, &QObject::destroyed, this, [this] { m_pSearch = nullptr; });
    CollectMarks();
}

// Where on its page a hit stands is taken from how much of the page's text comes before it.
void ViewScroll::CollectMarks() {
    constexpr int kMostPlaced = 400; // pages; of more of them a pixel shows several
    std::vector<double> marks;
    std::optional<double> strong;
    if (m_pSearch != nullptr) {
        const DocSearch& hits = m_pSearch->Hits();
        const auto fnPlace = [&](std::int32_t nPage, CharRange hit) {
            const auto pText = hits.TextOf(nPage);
            const double dbChars =
                pText && !pText->Lines().empty() ? std::max(1, pText->Lines().back().nEnd) : 1.0;
            return nPage + std::min(1.0, hit.nFirst / dbChars);
        };
        for (std::int32_t nPage = 0; nPage < hits.PageCount(); ++nPage) {
            const DocSearch::Hits& found = hits.On(nPage);
            if (!found.empty() && hits.PageCount() > kMostPlaced) {
                marks.push_back(nPage + 0.5);
            } else {
                std::transform(found.begin(), found.end(), std::back_inserter(marks),
                               [&](CharRange hit) { return fnPlace(nPage, hit); });
            }
        }
        const auto current = m_pSearch->Current();
        const auto hit = current ? hits.At(*current) : std::nullopt;
        strong = hit ? std::optional(fnPlace(current->nPage, *hit)) : std::nullopt;
    }
    m_pDown->SetMarks(std::move(marks), strong);
}

}
