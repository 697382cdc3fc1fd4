#include "app/viewer/CommandBar.h"

#include <QAction>
#include <QComboBox>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <array>
#include <cmath>

#include "app/viewer/GlyphButton.h"

namespace velko::viewer {

using vkit::VelkoPdfView;

namespace {

constexpr double kPercent = 100.0;
constexpr std::array kPercentChoices{50, 75, 100, 125, 150, 200, 300, 400};
const QString kFitPage = QStringLiteral("Fit page");
const QString kFitWidth = QStringLiteral("Fit width");
const QString kFitHeight = QStringLiteral("Fit height");

// From what stays to what goes first.
enum Rank { kStays, kPageButtons, kZoomField, kZoomButtons, kFits, kViews, kRotation };

}

CommandBar::CommandBar(VelkoPdfView& view, const Commands& commands, QWidget* pParent)
    : QWidget(pParent),
      m_view(view),
      m_commands(commands),
      m_pLayout(new QHBoxLayout(this)),
      m_pMenu(new MainMenu(view, commands, this)) {
    m_pLayout->setContentsMargins(6, 4, 6, 5);
    m_pLayout->setSpacing(2);
    m_pMenuButton = new GlyphButton(Glyph::Menu, commands[Command::Menu], this);
    Add(m_pMenuButton, kStays);
    AddButton(Glyph::Open, Command::Open, kViews);
    m_pLayout->addStretch(1);
    MakePageParts();
    m_pLayout->addSpacing(14);
    MakeZoomParts();
    m_pLayout->addStretch(1);
    MakeViewParts();
    connect(&m_view, &VelkoPdfView::ViewChanged, this, &CommandBar::FollowView);
    connect(&m_view, &VelkoPdfView::StateChanged, this, &CommandBar::FollowView);
    FollowView();
    ShowWhatFits();
}

void CommandBar::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

// --- parts -----------------------------------------------------------------

void CommandBar::Add(QWidget* pWidget, int nRank) {
    m_pLayout->addWidget(pWidget);
    m_parts.push_back({pWidget, nRank});
}

void CommandBar::AddButton(Glyph eGlyph, Command eCommand, int nRank) {
    Add(new GlyphButton(eGlyph, m_commands[eCommand], this), nRank);
}

void CommandBar::MakePageParts() {
    constexpr int kPageFieldWidth = 52;
    AddButton(Glyph::Previous, Command::PreviousPage, kPageButtons);
    m_pPage = new QLineEdit(this);
    m_pPage->setFixedWidth(kPageFieldWidth);
    m_pPage->setAlignment(Qt::AlignRight);
    m_pPage->setAccessibleName("Page");
    m_pPage->setToolTip("Page number, or the name of a place (Ctrl+L)");
    m_pPage->installEventFilter(this);
    Add(m_pPage, kStays);
    m_pCount = new QLabel(this);
    Add(m_pCount, kStays);
    AddButton(Glyph::Next, Command::NextPage, kPageButtons);
    connect(m_pPage, &QLineEdit::returnPressed, this, &CommandBar::TakePage);
}

void CommandBar::MakeZoomParts() {
    constexpr int kZoomFieldWidth = 104;
    AddButton(Glyph::ZoomOut, Command::ZoomOut, kZoomButtons);
    m_pZoom = new QComboBox(this);
    m_pZoom->setEditable(true);
    m_pZoom->setInsertPolicy(QComboBox::NoInsert);
    m_pZoom->setCompleter(nullptr);
    m_pZoom->setFixedWidth(kZoomFieldWidth);
    m_pZoom->setAccessibleName("Zoom");
    m_pZoom->addItems({kFitPage, kFitWidth, kFitHeight});
    m_pZoom->insertSeparator(m_pZoom->count());
    for (const int nPercent : kPercentChoices) {
        m_pZoom->addItem(QStringLiteral("%1 %").arg(nPercent));
    }
    m_pZoom->setMaxVisibleItems(m_pZoom->count());
    m_pZoom->lineEdit()->installEventFilter(this);
    Add(m_pZoom, kZoomField);
    AddButton(Glyph::ZoomIn, Command::ZoomIn, kZoomButtons);
    connect(m_pZoom, &QComboBox::textActivated, this, &CommandBar::TakeZoom);
    connect(m_pZoom->lineEdit(), &QLineEdit::returnPressed, this,
            [this] { TakeZoom(m_pZoom->currentText()); });
}

void CommandBar::MakeViewParts() {
    AddButton(Glyph::FitPage, Command::FitPage, kFits);
    AddButton(Glyph::FitWidth, Command::FitWidth, kFits);
    m_pLayout->addSpacing(10);
    AddButton(Glyph::Continuous, Command::Continuous, kViews);
    AddButton(Glyph::SinglePage, Command::SinglePage, kViews);
    AddButton(Glyph::Rotate, Command::RotateRight, kRotation);
    AddButton(Glyph::Night, Command::Night, kViews);
    AddButton(Glyph::FullScreen, Command::FullScreen, kRotation);
}

// --- room ------------------------------------------------------------------

int CommandBar::WidthUpTo(int nRank) const {
    constexpr int kGaps = 40; // between the groups and at the ends
    int nWidth = kGaps;
    for (const Part& part : m_parts) {
        if (part.nRank <= nRank) {
            nWidth += part.pWidget->sizeHint().width() + m_pLayout->spacing();
        }
    }
    return nWidth;
}

void CommandBar::ShowWhatFits() {
    int nRank = kRotation;
    while (nRank > kStays && WidthUpTo(nRank) > width()) {
        --nRank;
    }
    for (const Part& part : m_parts) {
        part.pWidget->setVisible(part.nRank <= nRank);
    }
}

void CommandBar::resizeEvent(QResizeEvent* /*pEvent*/) {
    ShowWhatFits();
}

// --- fields ----------------------------------------------------------------

// What the reader types is left alone.
void CommandBar::FollowView() {
    const bool bShown = m_view.PageCount() > 0;
    m_pPage->setEnabled(bShown);
    m_pZoom->setEnabled(bShown);
    m_pCount->setText(bShown ? QStringLiteral("of %1").arg(m_view.PageCount()) : QString());
    if (!m_pPage->hasFocus() || !m_pPage->isModified()) {
        m_pPage->setText(bShown ? QString::number(m_view.CurrentPage() + 1) : QString());
    }
    if (!m_pZoom->hasFocus() || !m_pZoom->lineEdit()->isModified()) {
        m_pZoom->setEditText(
            bShown ? QStringLiteral("%1 %").arg(std::lround(m_view.Zoom() * kPercent)) : QString());
    }
}

void CommandBar::TakePage() {
    const QString strText = m_pPage->text().trimmed();
    bool bNumber = false;
    const int nPage = strText.toInt(&bNumber);
    m_pPage->setModified(false);
    m_view.setFocus();
    if (bNumber) {
        m_view.JumpToPage(nPage - 1);
    } else if (!strText.isEmpty()) {
        m_view.JumpToName(strText);
    }
    FollowView(); // also when the page asked for was the page shown
}

void CommandBar::TakeZoom(const QString& strText) {
    bool bNumber = false;
    const double dbPercent = QString(strText).remove('%').trimmed().toDouble(&bNumber);
    m_pZoom->lineEdit()->setModified(false);
    m_view.setFocus();
    if (strText == kFitWidth) {
        m_view.SetFit(VelkoPdfView::Fit::Width);
    } else if (strText == kFitPage) {
        m_view.SetFit(VelkoPdfView::Fit::Page);
    } else if (strText == kFitHeight) {
        m_view.SetFit(VelkoPdfView::Fit::Height);
    } else if (bNumber && dbPercent > 0.0) {
        m_view.ZoomTo(dbPercent / kPercent);
    }
    FollowView();
}

bool CommandBar::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pEvent->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(pEvent)->key() == Qt::Key_Escape) {
        qobject_cast<QLineEdit*>(pWatched)->setModified(false);
        m_view.setFocus();
        FollowView();
        return true;
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

void CommandBar::OpenMenu() {
    m_pMenu->popup(m_pMenuButton->mapToGlobal(QPoint(0, m_pMenuButton->height() + 2)));
}

void CommandBar::EnterPage() {
    m_pPage->setFocus(Qt::ShortcutFocusReason);
    m_pPage->selectAll();
}

QString CommandBar::PageText() const {
    return m_pPage->text();
}

QString CommandBar::CountText() const {
    return m_pCount->text();
}

}
