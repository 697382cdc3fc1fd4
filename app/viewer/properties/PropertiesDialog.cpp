#include "app/viewer/properties/PropertiesDialog.h"

#include <QClipboard>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QScrollBar>
#include <QShortcut>
#include <QTabWidget>
#include <QTableView>
#include <QTextBrowser>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "app/viewer/Commands.h"
#include "app/viewer/WindowKeys.h"
#include "platform/concurrency/Task.h"
#include "widget/VelkoPdfView.h"
#include "widget/facts/PaperSize.h"

namespace velko::viewer {

using velko::pdf::PDFDoc;
using vkit::DocFacts;
using vkit::FontModel;
using vkit::VelkoPdfView;

namespace {

constexpr QSize kSize{520, 560}; // Qt's units

QSizeF SizeOf(PDFDoc& document, int nPage) {
    const auto pPage = document.GetPage(nPage);
    return {pPage->GetWidth(), pPage->GetHeight()};
}

bool HasSeveralSizes(PDFDoc& document) {
    const int nPages = document.GetPageCount();
    for (int nPage = 1; nPage < nPages; ++nPage) {
        if (!vkit::AreOneSize(SizeOf(document, 0), SizeOf(document, nPage))) {
            return true;
        }
    }
    return false;
}

}

void PropertiesDialog::Show(VelkoPdfView& view, DocFacts& facts, const Commands& commands,
                            QWidget* pWindow) {
    if (auto* const pOpen = pWindow->findChild<PropertiesDialog*>()) {
        pOpen->activateWindow();
        return;
    }
    auto* const pDialog = new PropertiesDialog(view, facts, pWindow);
    AddWindowKeys(*pDialog, commands);
    pDialog->resize(kSize.boundedTo(pWindow->size().expandedTo({300, 200})));
    pDialog->show();
    pDialog->m_pText->setFocus();
}

PropertiesDialog::PropertiesDialog(VelkoPdfView& view, DocFacts& facts, QWidget* pWindow)
    : QDialog(pWindow), m_view(view), m_facts(facts), m_pText(new QTextBrowser(this)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Properties of “%1”").arg(view.File().Name()));
    m_pText->setAccessibleName(QStringLiteral("Properties"));
    m_pText->setOpenLinks(false);
    m_pText->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    auto* const pTabs = new QTabWidget(this);
    pTabs->addTab(m_pText, QStringLiteral("&Document"));
    pTabs->addTab(MakeFonts(), QStringLiteral("&Fonts"));
    auto* const pLayout = new QVBoxLayout(this);
    pLayout->addWidget(pTabs);
    MakeButtons(*pLayout);
    connect(&m_facts, &DocFacts::PropertiesRead, this, &PropertiesDialog::Fill);
    connect(&m_facts, &DocFacts::LabelsRead, this, &PropertiesDialog::Fill);
    connect(&m_facts, &DocFacts::Forgotten, this, &PropertiesDialog::OnForgotten);
    connect(&m_view, &VelkoPdfView::StateChanged, this, [this](VelkoPdfView::State eState) {
        if (eState == VelkoPdfView::State::Empty || eState == VelkoPdfView::State::Failed) {
            close();
        }
    });
    connect(&m_view, &VelkoPdfView::PageChanged, this, &PropertiesDialog::Fill);
    ReadFile();
    ReadSizes();
    Fill();
}

QWidget* PropertiesDialog::MakeFonts() {
    auto* const pPane = new QWidget(this);
    m_pFontTable = new QTableView(pPane);
    m_pFontTable->setAccessibleName(QStringLiteral("Fonts"));
    m_pFontTable->setSelectionBehavior(QAbstractItemView::SelectRows);
    m_pFontTable->setTabKeyNavigation(false);
    m_pFontTable->setShowGrid(false);
    m_pFontTable->verticalHeader()->hide();
    m_pFontTable->horizontalHeader()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto* const pCopy = new QShortcut(QKeySequence::Copy, m_pFontTable);
    pCopy->setContext(Qt::WidgetWithChildrenShortcut);
    connect(pCopy, &QShortcut::activated, this, &PropertiesDialog::CopyFonts);
    m_pFontCount = new QLabel(pPane);
    auto* const pLayout = new QVBoxLayout(pPane);
    pLayout->addWidget(m_pFontTable);
    pLayout->addWidget(m_pFontCount);
    ReadFonts();
    return pPane;
}

void PropertiesDialog::MakeButtons(QLayout& layout) {
    auto* const pButtons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    QPushButton* const pCopy = pButtons->addButton("&Copy the path", QDialogButtonBox::ActionRole);
    pCopy->setAutoDefault(false);
    connect(pCopy, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(m_view.File().Text()); });
    connect(pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout.addWidget(pButtons);
}

// --- what has to be read ---------------------------------------------------

// A file that has changed is the same document to the reader; what was known stays in
// sight until the new is read.
void PropertiesDialog::OnForgotten() {
    if (!m_view.IsReloading()) {
        close();
    } else if (m_facts.Document()) {
        ReadFonts();
        ReadFile();
        ReadSizes();
        Fill();
    }
}

void PropertiesDialog::ReadFonts() {
    auto* const pFonts = new FontModel(m_facts.Document(), this);
    connect(pFonts, &FontModel::Grown, this, &PropertiesDialog::CountFonts);
    m_pFontTable->setModel(pFonts);
    m_pFontTable->horizontalHeader()->setSectionResizeMode(FontModel::kName, QHeaderView::Stretch);
    delete std::exchange(m_pFonts, pFonts);
    CountFonts();
}

void PropertiesDialog::ReadFile() {
    const auto fnRead = [strPath = m_view.File().Text()]() -> qint64 {
        const QFileInfo file(strPath);
        return file.exists() ? file.size() : -1;
    };
    concurrency::create_task(fnRead).then(
        [pThis = QPointer<PropertiesDialog>(this)](const concurrency::task<qint64>& reading) {
            if (pThis && reading.is_value()) {
                pThis->m_nBytes = reading.get();
                pThis->Fill();
            }
        });
}

void PropertiesDialog::ReadSizes() {
    const auto pDocument = m_facts.Document();
    if (!pDocument) {
        return;
    }
    concurrency::create_task([pDocument] {
        return HasSeveralSizes(*pDocument);
    }).then([pThis = QPointer<PropertiesDialog>(this)](const concurrency::task<bool>& reading) {
        reading.mark_observed(); // the sizes of a file that cannot be read are one
        if (pThis && reading.is_value()) {
            pThis->m_bSeveralSizes = reading.get();
            pThis->Fill();
        }
    });
}

// --- what is shown ---------------------------------------------------------

// The place in the text, and what is selected in it, stay while nothing changes.
void PropertiesDialog::Fill() {
    const bool bIsAnew = !m_strHtml.isEmpty();
    if (!m_facts.Document() || (bIsAnew && !m_facts.FindProperties())) {
        return;
    }
    const QString strHtml = HtmlOf(Rows());
    if (strHtml != m_strHtml) {
        m_strHtml = strHtml;
        const int nPlace = m_pText->verticalScrollBar()->value();
        m_pText->setHtml(strHtml);
        m_pText->verticalScrollBar()->setValue(nPlace);
    }
}

PropertyRows PropertiesDialog::Rows() const {
    PropertyRows rows;
    const auto fnAdd = [&rows](const PropertyRows& more) {
        rows.insert(rows.end(), more.begin(), more.end());
    };
    if (const auto pProperties = m_facts.FindProperties()) {
        fnAdd(RowsOf(*pProperties, locale()));
    }
    fnAdd(PageRows());
    fnAdd(FileRows());
    return rows;
}

PropertyRows PropertiesDialog::PageRows() const {
    const auto pDocument = m_facts.Document();
    if (!pDocument || m_view.PageCount() == 0) {
        return {};
    }
    const int nPage = std::clamp(m_view.CurrentPage(), 0, pDocument->GetPageCount() - 1);
    const QString strSize = vkit::PaperTextOf(SizeOf(*pDocument, nPage), locale());
    PropertyRows rows{{"Pages", locale().toString(m_view.PageCount())}};
    rows.push_back(m_bSeveralSizes
                       ? PropertyRow{QStringLiteral("Size of page %1").arg(m_facts.LabelOf(nPage)),
                                     QStringLiteral("%1; the document has pages of several sizes")
                                         .arg(strSize)}
                       : PropertyRow{"Page size", strSize});
    rows.push_back({"Encryption", EncryptionText(pDocument->GetEncryptionType())});
    const PropertyRows permissions = PermissionRows(pDocument->GetUserPermissions());
    rows.insert(rows.end(), permissions.begin(), permissions.end());
    return rows;
}

PropertyRows PropertiesDialog::FileRows() const {
    PropertyRows rows{{"File", m_view.File().Name()}, {"Folder", m_view.File().Folder()}};
    if (m_nBytes >= 0) {
        rows.push_back({"File size", QStringLiteral("%1 (%2 bytes)")
                                         .arg(locale().formattedDataSize(m_nBytes),
                                              locale().toString(m_nBytes))});
    }
    return rows;
}

// --- fonts -----------------------------------------------------------------

void PropertiesDialog::CountFonts() {
    const int nFonts = m_pFonts->rowCount({});
    const QString strFonts = nFonts == 0   ? QStringLiteral("No fonts")
                             : nFonts == 1 ? QStringLiteral("1 font")
                                           : QStringLiteral("%1 fonts").arg(nFonts);
    m_pFontCount->setText(m_pFonts->IsComplete() ? strFonts
                                                 : QStringLiteral("%1 on the first %2 of %3 pages…")
                                                       .arg(strFonts)
                                                       .arg(m_pFonts->PagesRead())
                                                       .arg(m_view.PageCount()));
}

void PropertiesDialog::CopyFonts() {
    QStringList lines;
    QModelIndexList rows = m_pFontTable->selectionModel()->selectedRows();
    std::sort(rows.begin(), rows.end());
    for (const QModelIndex& row : rows) {
        QStringList cells;
        for (int nColumn = 0; nColumn < FontModel::kColumns; ++nColumn) {
            cells << row.siblingAtColumn(nColumn).data().toString();
        }
        lines << cells.join('\t');
    }
    QGuiApplication::clipboard()->setText(lines.join('\n'));
}

QString PropertiesDialog::Text() const {
    return m_pText->toPlainText();
}

}
