#include "app/viewer/StartPane.h"

#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace velko::viewer {

using vkit::FilePath;

namespace {

constexpr int kMargin = 32;
constexpr std::size_t kMostRecent = 8;

QLabel* MakeLabel(QWidget* pParent) {
    auto* pLabel = new QLabel(pParent);
    pLabel->setAlignment(Qt::AlignHCenter);
    pLabel->setWordWrap(true);
    pLabel->setTextFormat(Qt::RichText);
    return pLabel;
}

}

StartPane::StartPane(QWidget* pParent)
    : QWidget(pParent),
      m_pText(MakeLabel(this)),
      m_pOpen(new QPushButton("Open a document…", this)),
      m_pRecent(MakeLabel(this)) {
    setAutoFillBackground(true);
    m_pText->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pText->setFocusPolicy(Qt::NoFocus);
    m_pOpen->setFocusPolicy(Qt::TabFocus);
    auto* pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    pLayout->setSpacing(kMargin / 2);
    pLayout->addStretch(1);
    pLayout->addWidget(m_pText);
    pLayout->addWidget(m_pOpen, 0, Qt::AlignHCenter);
    pLayout->addWidget(m_pRecent);
    pLayout->addStretch(1);
    connect(m_pOpen, &QPushButton::clicked, this, &StartPane::OpenWanted);
    connect(m_pRecent, &QLabel::linkActivated, this, [this](const QString& strLink) {
        const auto nFile = static_cast<std::size_t>(strLink.toUInt());
        if (nFile < m_recent.size()) {
            const FilePath path = m_recent[nFile]; // opening it may bring another list
            emit FileWanted(path);
        }
    });
}

void StartPane::Show(const QString& strTitle, const QString& strText,
                     const std::vector<FilePath>& recent) {
    m_recent = recent;
    if (m_recent.size() > kMostRecent) {
        m_recent.resize(kMostRecent);
    }
    m_pText->setText(QStringLiteral("<h3>%1</h3><p>%2</p>")
                         .arg(strTitle.toHtmlEscaped(), strText.toHtmlEscaped()));
    QString strList;
    for (std::size_t n = 0; n < m_recent.size(); ++n) {
        strList += QStringLiteral("<p><a href=\"%1\">%2</a></p>")
                       .arg(QString::number(n), m_recent[n].Name().toHtmlEscaped());
    }
    m_pRecent->setText(strList);
    m_pRecent->setVisible(!strList.isEmpty());
    show();
    raise();
}

QString StartPane::Text() const {
    return isHidden() ? QString() : m_pText->text();
}

}
