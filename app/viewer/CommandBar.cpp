#include "app/viewer/CommandBar.h"

#include <QAction>
#include <QComboBox>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QToolButton>
#include <array>
#include <cmath>

namespace velko::viewer {

using vkit::VelkoPdfView;

namespace {

constexpr double kPercent = 100.0;
constexpr std::array kPercentChoices{50, 75, 100, 125, 150, 200, 300, 400};
const QString kFitWidth = QStringLiteral("Fit width");
const QString kFitPage = QStringLiteral("Fit page");

}

CommandBar::CommandBar(VelkoPdfView& view, QWidget* pParent) : QWidget(pParent), m_view(view) {
    auto* pLayout = new QHBoxLayout(this);
    pLayout->setContentsMargins(8, 4, 8, 4);
    pLayout->setSpacing(4);
    MakeMenu();
    pLayout->addStretch(1);
    MakePageParts();
    pLayout->addSpacing(24);
    MakeZoomParts();
    pLayout->addStretch(1);
    ConnectView();
    FollowState();
}

void CommandBar::paintEvent(QPaintEvent* /*pEvent*/) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(0, height() - 1, width(), height() - 1);
}

QAction* CommandBar::AddAction(const QString& strText, const QList<QKeySequence>& shortcuts) {
    auto* pAction = new QAction(strText, this);
    pAction->setShortcuts(shortcuts);
    m_pMenu->addAction(pAction);
    addAction(pAction); // in force also while the menu is closed
    return pAction;
}

QToolButton* CommandBar::AddButton(const QString& strText, const QString& strTip,
                                   QAction* pAction) {
    auto* pButton = new QToolButton(this);
    pButton->setText(strText);
    pButton->setToolTip(strTip);
    pButton->setAccessibleName(strTip);
    pButton->setAutoRaise(true);
    pButton->setFocusPolicy(Qt::TabFocus);
    layout()->addWidget(pButton);
    if (pAction != nullptr) {
        connect(pButton, &QToolButton::clicked, pAction, &QAction::trigger);
    }
    return pButton;
}

void CommandBar::MakeMenu() {
    m_pMenu = new QMenu(this);
    QAction* pOpen = AddAction("&Open…", {QKeySequence::Open});
    QAction* pClose = AddAction("&Close document", {QKeySequence("Ctrl+W")});
    m_pMenu->addSeparator();
    QAction* pWidth = AddAction("Fit &width", {QKeySequence("Ctrl+1")});
    QAction* pPage = AddAction("Fit &page", {QKeySequence("Ctrl+2")});
    QAction* pFull = AddAction("100 %", {QKeySequence("Ctrl+0")});
    QAction* pTurn = AddAction("&Rotate", {QKeySequence("Ctrl+R")});
    m_pMenu->addSeparator();
    QAction* pQuit = AddAction("&Quit", {QKeySequence("Ctrl+Q")});
    connect(pOpen, &QAction::triggered, this, &CommandBar::OpenWanted);
    connect(pClose, &QAction::triggered, this, &CommandBar::CloseWanted);
    connect(pQuit, &QAction::triggered, this, &CommandBar::QuitWanted);
    connect(pWidth, &QAction::triggered, &m_view, &VelkoPdfView::FitWidth);
    connect(pPage, &QAction::triggered, &m_view, &VelkoPdfView::FitPage);
    connect(pFull, &QAction::triggered, &m_view, [this] { m_view.ZoomTo(1.0); });
    connect(pTurn, &QAction::triggered, &m_view, [this] { m_view.RotateBy(1); });
    m_actionsOnDocument = {pWidth, pPage, pFull, pTurn};

    QToolButton* pMenuButton = AddButton("☰", "Menu", nullptr);
    pMenuButton->setMenu(m_pMenu);
    pMenuButton->setPopupMode(QToolButton::InstantPopup);
    pMenuButton->setStyleSheet("QToolButton::menu-indicator { image: none; }");
    AddButton("Open…", "Open a document (Ctrl+O)", pOpen);
}

void CommandBar::MakePageParts() {
    constexpr int kPageFieldWidth = 56;
    QToolButton* pPrev = AddButton("◀", "Previous page", nullptr);
    m_pPage = new QLineEdit(this);
    m_pPage->setFixedWidth(kPageFieldWidth);
    m_pPage->setAlignment(Qt::AlignRight);
    m_pPage->setAccessibleName("Page");
    m_pPage->setValidator(new QIntValidator(1, 9'999'999, m_pPage));
    m_pCount = new QLabel(this);
    layout()->addWidget(m_pPage);
    layout()->addWidget(m_pCount);
    QToolButton* pNext = AddButton("▶", "Next page", nullptr);
    connect(pPrev, &QToolButton::clicked, &m_view, &VelkoPdfView::GotoPrevPage);
    connect(pNext, &QToolButton::clicked, &m_view, &VelkoPdfView::GotoNextPage);
    connect(m_pPage, &QLineEdit::returnPressed, this, &CommandBar::TakePage);
    m_needDocument << pPrev << m_pPage << pNext;
}

void CommandBar::MakeZoomParts() {
    constexpr int kZoomFieldWidth = 110;
    QToolButton* pOut = AddButton("−", "Zoom out", nullptr);
    m_pZoom = new QComboBox(this);
    m_pZoom->setEditable(true);
    m_pZoom->setInsertPolicy(QComboBox::NoInsert);
    m_pZoom->setMinimumWidth(kZoomFieldWidth);
    m_pZoom->setAccessibleName("Zoom");
    m_pZoom->addItems({kFitWidth, kFitPage});
    for (const int nPercent : kPercentChoices) {
        m_pZoom->addItem(QStringLiteral("%1 %").arg(nPercent));
    }
    layout()->addWidget(m_pZoom);
    QToolButton* pIn = AddButton("+", "Zoom in", nullptr);
    connect(pOut, &QToolButton::clicked, &m_view, &VelkoPdfView::ZoomOut);
    connect(pIn, &QToolButton::clicked, &m_view, &VelkoPdfView::ZoomIn);
    connect(m_pZoom, &QComboBox::textActivated, this, &CommandBar::TakeZoom);
    connect(m_pZoom->lineEdit(), &QLineEdit::returnPressed, this,
            [this] { TakeZoom(m_pZoom->currentText()); });
    m_needDocument << pOut << m_pZoom << pIn;
}

void CommandBar::ConnectView() {
    connect(&m_view, &VelkoPdfView::PageChanged, this, &CommandBar::FollowState);
    connect(&m_view, &VelkoPdfView::PageCountChanged, this, &CommandBar::FollowState);
    connect(&m_view, &VelkoPdfView::ZoomChanged, this, &CommandBar::FollowState);
    connect(&m_view, &VelkoPdfView::StateChanged, this, &CommandBar::FollowState);
}

void CommandBar::FollowState() {
    const bool bShown = m_view.ViewState() == VelkoPdfView::State::Shown;
    for (QWidget* pWidget : m_needDocument) {
        pWidget->setEnabled(bShown);
    }
    for (QAction* pAction : m_actionsOnDocument) {
        pAction->setEnabled(bShown);
    }
    m_pPage->setText(bShown ? QString::number(m_view.CurrentPage() + 1) : QString());
    m_pCount->setText(bShown ? QStringLiteral("of %1").arg(m_view.PageCount()) : QString());
    m_pZoom->setEditText(bShown ? QStringLiteral("%1 %").arg(std::lround(m_view.Zoom() * kPercent))
                                : QString());
}

void CommandBar::TakePage() {
    m_view.GotoPage(m_pPage->text().toInt() - 1);
    FollowState(); // also when the page asked for was the page shown
    m_view.setFocus();
}

void CommandBar::TakeZoom(const QString& strText) {
    QString strNumber = strText;
    strNumber.remove('%');
    bool bNumber = false;
    const double dbPercent = strNumber.trimmed().toDouble(&bNumber);
    if (strText == kFitWidth) {
        m_view.FitWidth();
    } else if (strText == kFitPage) {
        m_view.FitPage();
    } else if (bNumber && dbPercent > 0.0) {
        m_view.ZoomTo(dbPercent / kPercent);
    }
    FollowState();
    m_view.setFocus();
}

QString CommandBar::PageText() const {
    return m_pPage->text();
}

QString CommandBar::CountText() const {
    return m_pCount->text();
}

}
