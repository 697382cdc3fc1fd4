#include "app/viewer/RecentList.h"

#include <QLabel>
#include <QTimer>
#include <QVBoxLayout>
#include <algorithm>
#include <map>
#include <utility>

#include "app/viewer/Announce.h"
#include "app/viewer/FocusRing.h"
#include "app/viewer/RecentFiles.h"
#include "app/viewer/RecentPictures.h"
#include "app/viewer/RecentRow.h"

namespace velko::viewer {

using vkit::FilePath;

namespace {

constexpr std::size_t kMostRows = 8;

}

RecentList::RecentList(QWidget* pParent)
    : QWidget(pParent),
      m_pRowLayout(new QVBoxLayout),
      m_pQuestion(new QLabel("Forget all recent files, and your places in them?", this)),
      m_pClear(new TextButton(this)),
      m_pKeep(new TextButton("Keep", this)) {
    MakeAlert(*m_pQuestion);
    m_pQuestion->setWordWrap(true);
    m_pRowLayout->setSpacing(2);
    auto* const pQuestion = new QHBoxLayout;
    pQuestion->addStretch(1);
    pQuestion->addWidget(m_pQuestion, 4);
    pQuestion->addWidget(m_pClear);
    pQuestion->addWidget(m_pKeep);
    pQuestion->addStretch(1);
    auto* const pLayout = new QVBoxLayout(this);
    pLayout->setContentsMargins(0, 0, 0, 0);
    pLayout->addLayout(m_pRowLayout);
    pLayout->addLayout(pQuestion);
    connect(m_pKeep, &QPushButton::clicked, this, [this] {
        m_pClear->setFocus(Qt::TabFocusReason);
        Ask(false);
    });
    connect(m_pClear, &QPushButton::clicked, this, [this] {
        if (m_bAsking) {
            RecentFiles::ForgetAll();
            Fill();
        } else {
            Ask(true);
        }
    });
}

void RecentList::Fill() {
    std::map<std::string, QImage> pictures; // shown until they are read anew
    for (RecentRow* const pRow : std::exchange(m_rows, {})) {
        pictures[pRow->File().Bytes()] = pRow->Picture();
        pRow->hide();
        pRow->deleteLater(); // it may be the one that asked for this
    }
    const std::vector<FilePath> files = RecentFiles::Latest(kMostRows);
    for (const FilePath& path : files) {
        AddRow(path);
        m_rows.back()->SetPicture(pictures[path.Bytes()]);
    }
    if (!m_rows.empty()) {
        setTabOrder(m_rows.back()->RemoveButton(), m_pClear);
        setTabOrder(m_pClear, m_pKeep);
    }
    Ask(false);
    setVisible(!m_rows.empty());
    RecentFiles::AskWhichAreThere(
        files, this, [this, nFilling = ++m_nFilling](const std::vector<bool>& there) {
            for (std::size_t n = 0; nFilling == m_nFilling && n < there.size(); ++n) {
                if (!there[n]) {
                    m_rows[n]->MarkGone();
                }
            }
        });
    m_bPicturesDue = true;
}

// The pictures are read once the rows can be seen.
void RecentList::paintEvent(QPaintEvent* /*pEvent*/) {
    if (std::exchange(m_bPicturesDue, false)) {
        QTimer::singleShot(0, this, &RecentList::AskForPictures);
    }
}

void RecentList::AskForPictures() {
    std::vector<FilePath> files;
    for (const RecentRow* const pRow : m_rows) {
        files.push_back(pRow->File());
    }
    RecentPictures::Read(files, this,
                         [this, nFilling = m_nFilling](std::size_t n, const QImage& image) {
                             if (nFilling == m_nFilling) {
                                 m_rows[n]->SetPicture(image);
                             }
                         });
}

void RecentList::AddRow(const FilePath& path) {
    auto* const pRow = new RecentRow(path, this);
    pRow->SetLow(m_bLow);
    m_rows.push_back(pRow);
    m_pRowLayout->addWidget(pRow);
    connect(pRow, &RecentRow::Removed, this, [this, pRow] { Remove(pRow); });
    connect(pRow, &RecentRow::Stepped, this, [this, pRow](int nRows) { Step(pRow, nRows); });
    connect(pRow, &QAbstractButton::clicked, this, [this, path] { emit Wanted(path); });
}

void RecentList::SetLow(bool bLow) {
    if (std::exchange(m_bLow, bLow) != bLow) {
        for (RecentRow* const pRow : m_rows) {
            pRow->SetLow(bLow);
        }
    }
}

void RecentList::Step(const RecentRow* pRow, int nRows) {
    const auto nRow = std::find(m_rows.begin(), m_rows.end(), pRow) - m_rows.begin() + nRows;
    if (nRow >= 0 && nRow < std::ssize(m_rows)) {
        GiveKeys(*m_rows[static_cast<std::size_t>(nRow)]);
    }
}

void RecentList::GiveKeys(QWidget& part) {
    part.setFocus(Qt::TabFocusReason);
    emit KeysMoved();
}

// The keys go to the row that comes in its place.
void RecentList::Remove(RecentRow* pRow) {
    const auto nRow = std::find(m_rows.begin(), m_rows.end(), pRow) - m_rows.begin();
    RecentFiles::Forget({pRow->File()});
    Fill();
    if (!m_rows.empty()) {
        GiveKeys(*m_rows[std::min<std::size_t>(nRow, m_rows.size() - 1)]);
    }
}

void RecentList::Ask(bool bAsk) {
    m_bAsking = bAsk;
    Announce(*m_pQuestion, m_pQuestion->text());
    m_pQuestion->setVisible(bAsk);
    m_pKeep->setVisible(bAsk);
    m_pClear->setText(bAsk ? "Clear" : "Clear this list…");
    if (bAsk) {
        GiveKeys(*m_pKeep);
    }
}

bool RecentList::TakeKeys() {
    if (!m_rows.empty()) {
        m_rows.front()->setFocus(Qt::TabFocusReason);
    }
    return !m_rows.empty();
}

}
