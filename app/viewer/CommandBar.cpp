#include "app/viewer/CommandBar.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <array>
#include <cmath>
#include <optional>

#include "app/viewer/GlyphButton.h"
#include "app/viewer/MenuStyle.h"
#include "app/viewer/ValueField.h"
#include "widget/OpenFailure.h"

namespace velko::viewer {

using vkit::VelkoPdfView;

namespace {

constexpr double kPercent = 100.0;
constexpr std::array kPercentChoices{50, 75, 100, 125, 150, 200, 300, 400};

QString PercentText(long nPercent) {
    return QStringLiteral("%1 %").arg(nPercent);
}

// With a decimal point or comma, with or without the sign.
std::optional<double> PercentOf(QString strText) {
    bool bNumber = false;
    const double dbPercent = strText.remove('%').replace(',', '.').trimmed().toDouble(&bNumber);
    return bNumber && dbPercent > 0.0 ? std::optional(dbPercent) : std::nullopt;
}

// From what stays to what goes first.
enum Rank { kStays, kPageButtons, kZoomField, kZoomButtons, kTools, kFits, kViews, kRotation };

}

CommandBar::CommandBar(VelkoPdfView& view, vkit::DocFacts& facts, const Commands& commands,
                       QWidget* pParent)
    : QWidget(pParent),
      m_view(view),
      m_facts(facts),
      m_commands(commands),
      m_pLayout(new QHBoxLayout(this)),
      m_pMenu(new MainMenu(view, commands, this)) {
    m_pLayout->setContentsMargins(6, 4, 6, 5);
    m_pLayout->setSpacing(2);
    m_pMenuButton = new GlyphButton(Glyph::Menu, commands[Command::Menu], this);
    Add(m_pMenuButton, kStays);
    AddButton(Glyph::SidePanel, Command::SidePanel, kTools);
    AddButton(Glyph::Open, Command::Open, kViews);
    m_pLayout->addStretch(1);
    MakePageParts();
    m_pLayout->addSpacing(14);
    MakeZoomParts();
    m_pLayout->addStretch(1);
    MakeViewParts();
    connect(&m_view, &VelkoPdfView::ViewChanged, this, &CommandBar::FollowView);
    connect(&m_view, &VelkoPdfView::StateChanged, this, &CommandBar::FollowView);
    connect(&m_facts, &vkit::DocFacts::LabelsRead, this, &CommandBar::FollowView);
    connect(&m_facts, &vkit::DocFacts::Forgotten, this, &CommandBar::FollowView);
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
    m_pPage = new ValueField("Page", kPageFieldWidth, this);
    m_pPage->setToolTip("Page number or label, or the name of a place (Ctrl+L)");
    Add(m_pPage, kStays);
    m_pCount = new QLabel(this);
    Add(m_pCount, kStays);
    AddButton(Glyph::Next, Command::NextPage, kPageButtons);
    connect(m_pPage, &ValueField::Taken, this, &CommandBar::TakePage);
    connect(m_pPage, &ValueField::Left, this, &CommandBar::ToPages);
}

void CommandBar::MakeZoomParts() {
    constexpr int kZoomFieldWidth = 70;
    constexpr int kChoicesWidth = 22;
    AddButton(Glyph::ZoomOut, Command::ZoomOut, kZoomButtons);
    m_pZoom = new ValueField("Zoom", kZoomFieldWidth, this);
    m_pZoom->setToolTip("Zoom in percent; the arrow down key has a choice");
    m_pZoom->installEventFilter(this);
    Add(m_pZoom, kZoomField);
    m_pChoices = new GlyphButton(Glyph::Down, nullptr, this);
    m_pChoices->SetWidth(kChoicesWidth);
    m_pChoices->setAccessibleName("Zoom choices");
    m_pChoices->setToolTip("Zoom choices");
    Add(m_pChoices, kZoomField);
    AddButton(Glyph::ZoomIn, Command::ZoomIn, kZoomButtons);
    connect(m_pZoom, &ValueField::Taken, this, &CommandBar::TakeZoom);
    connect(m_pZoom, &ValueField::Left, this, &CommandBar::ToPages);
    connect(m_pChoices, &QToolButton::clicked, this, &CommandBar::OpenChoices);
}

QMenu* CommandBar::MakeChoices() {
    auto* const pMenu = new QMenu(this);
    pMenu->addActions({m_commands[Command::FitPage], m_commands[Command::FitWidth],
                       m_commands[Command::FitHeight]});
    pMenu->addSeparator();
    for (const int nPercent : kPercentChoices) {
        QAction* const pAction = pMenu->addAction(PercentText(nPercent));
        connect(pAction, &QAction::triggered, this, [this, nPercent] {
            m_view.ZoomTo(nPercent / kPercent);
            ToPages();
            emit Done();
        });
    }
    StyleMenu(*pMenu);
    return pMenu;
}

void CommandBar::MakeViewParts() {
    AddButton(Glyph::Find, Command::Find, kZoomButtons);
    AddButton(Glyph::Highlight, Command::Highlight, kTools);
    AddButton(Glyph::Note, Command::Note, kTools);
    m_pLayout->addSpacing(10);
    AddButton(Glyph::FitPage, Command::FitPage, kFits);
    AddButton(Glyph::FitWidth, Command::FitWidth, kFits);
    m_pLayout->addSpacing(10);
    AddButton(Glyph::Continuous, Command::Continuous, kViews);
    AddButton(Glyph::SinglePage, Command::SinglePage, kViews);
    AddButton(Glyph::Text, Command::Reading, kViews);
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

void CommandBar::FollowView() {
    const bool bShown = m_view.PageCount() > 0;
    m_pPage->setEnabled(bShown);
    m_pZoom->setEnabled(bShown);
    m_pChoices->setEnabled(bShown);
    m_pZoom->Show(bShown ? PercentText(std::lround(m_view.Zoom() * kPercent)) : QString());
    ShowPage();
}

// By its label where the document has labels of its own, and beside it by its number.
void CommandBar::ShowPage() {
    if (m_view.PageCount() == 0) {
        m_pPage->Show({});
        m_pCount->clear();
        return;
    }
    const bool bLabels = m_facts.Labels().SayMoreThanNumbers();
    const QString strNumber = QString::number(m_view.CurrentPage() + 1);
    m_pPage->Show(bLabels ? m_facts.LabelOf(m_view.CurrentPage()) : strNumber);
    const QString strText =
        bLabels ? QStringLiteral("(%1 of %2)").arg(strNumber).arg(m_view.PageCount())
                : QStringLiteral("of %1").arg(m_view.PageCount());
    if (strText != m_pCount->text()) {
        m_pCount->setText(strText);
        m_pPage->setAccessibleDescription(strText);
        ShowWhatFits();
    }
}

void CommandBar::ToPages() {
    m_view.setFocus();
}

// What a page is called goes before its number, and both before a place's name. A
// number that is refused can be typed anew at once.
void CommandBar::TakePage(const QString& strText) {
    const auto labelled = m_facts.Labels().Find(strText.toStdString(), m_view.PageCount());
    bool bNumber = labelled.has_value();
    const qlonglong nPage = labelled ? *labelled + 1 : strText.toLongLong(&bNumber);
    if (bNumber && (nPage < 1 || nPage > m_view.PageCount())) {
        emit Refused(vkit::NoSuchPage(strText, m_view.PageCount()));
        return;
    }
    ToPages();
    emit Done(); // before a name is looked for, which may be refused
    if (bNumber) {
        m_view.JumpToPage(static_cast<int>(nPage) - 1);
    } else {
        m_view.JumpToName(strText);
    }
}

void CommandBar::TakeZoom(const QString& strText) {
    const auto dbPercent = PercentOf(strText);
    if (!dbPercent) {
        emit Refused(
            QStringLiteral("“%1” is no zoom. Type a percentage, such as 120.").arg(strText));
        return;
    }
    m_view.ZoomTo(*dbPercent / kPercent);
    ToPages();
    emit Done();
}

bool CommandBar::eventFilter(QObject* pWatched, QEvent* pEvent) {
    if (pEvent->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(pEvent)->key() == Qt::Key_Down) {
        OpenChoices();
        return true;
    }
    return QWidget::eventFilter(pWatched, pEvent);
}

// From whatever of the bar has the keys.
void CommandBar::keyPressEvent(QKeyEvent* pEvent) {
    if (pEvent->key() == Qt::Key_Escape) {
        ToPages();
    } else {
        QWidget::keyPressEvent(pEvent);
    }
}

void CommandBar::OpenChoices() {
    if (m_pChoicesMenu == nullptr) {
        m_pChoicesMenu = MakeChoices();
    }
    m_pChoicesMenu->popup(m_pZoom->mapToGlobal(QPoint(0, m_pZoom->height() + 2)));
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
