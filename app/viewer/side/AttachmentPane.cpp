#include "app/viewer/side/AttachmentPane.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QListView>
#include <QVBoxLayout>

#include "app/viewer/Announce.h"
#include "app/viewer/FocusRing.h"
#include "app/viewer/side/SideKeys.h"
#include "widget/VelkoPdfView.h"

namespace velko::viewer {

using vkit::AttachmentSaver;
using vkit::DocFacts;
using vkit::FilePath;

AttachmentPane::AttachmentPane(vkit::VelkoPdfView& view, DocFacts& facts, QWidget* pParent)
    : QWidget(pParent),
      m_view(view),
      m_facts(facts),
      m_pList(new QListView(this)),
      m_pSave(new TextButton(QStringLiteral("Save &as…"), this)),
      m_pOutcome(new QLabel(this)) {
    constexpr int kMargin = 8;
    auto* const pColumn = new QVBoxLayout(this);
    pColumn->setContentsMargins(0, 0, 0, kMargin);
    pColumn->addWidget(m_pList, 1);
    pColumn->addWidget(m_pOutcome);
    pColumn->addWidget(m_pSave, 0, Qt::AlignHCenter);
    m_pList->setModel(&m_model);
    m_pList->setFrameShape(QFrame::NoFrame);
    m_pList->setTextElideMode(Qt::ElideRight);
    m_pList->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_pList->setAccessibleName(QStringLiteral("Attachments"));
    m_pOutcome->setTextFormat(Qt::PlainText);
    m_pOutcome->setWordWrap(true);
    m_pOutcome->setMargin(kMargin);
    MakeAlert(*m_pOutcome);
    m_pOutcome->hide();
    setFocusProxy(m_pList);
    new SideKeys(
        *m_pList, [this](const QModelIndex& /*index*/) { AskForPlace(); },
        SideKeys::Takes::ByReturn);
    connect(m_pSave, &QPushButton::clicked, this, &AttachmentPane::AskForPlace);
    connect(m_pList->selectionModel(), &QItemSelectionModel::currentChanged, this,
            &AttachmentPane::Follow);
    connect(&m_saver, &AttachmentSaver::Changed, this, &AttachmentPane::Follow);
    connect(&m_saver, &AttachmentSaver::Saved, this, [this](const QString& strFile) {
        Say(QStringLiteral("“%1” was saved.").arg(strFile));
    });
    connect(&m_saver, &AttachmentSaver::Failed, this,
            [this](const QString& strFile, const QString& strReason) {
                Say(QStringLiteral("“%1” was not saved. %2").arg(strFile, strReason));
            });
    connect(&m_facts, &DocFacts::FilesRead, this, &AttachmentPane::Fill);
    connect(&m_facts, &DocFacts::Forgotten, this, &AttachmentPane::Fill);
    Fill();
}

void AttachmentPane::Fill() {
    const auto pFiles = m_facts.FindFiles();
    m_model.Show(pFiles ? pFiles : std::make_shared<const DocFacts::Files>());
    m_pList->setCurrentIndex(m_model.index(0));
    Say({});
    Follow();
}

void AttachmentPane::Follow() {
    m_pSave->setText(m_saver.IsSaving() ? QStringLiteral("Saving…") : QStringLiteral("Save &as…"));
    m_pSave->setEnabled(!m_saver.IsSaving() && m_pList->currentIndex().isValid());
}

// The place is asked for by what the document was then: another one may be shown when the
// reader has answered.
void AttachmentPane::AskForPlace() {
    const QModelIndex index = m_pList->currentIndex();
    const auto pDocument = m_facts.Document();
    if (!m_pSave->isEnabled() || !index.isValid() || !pDocument) {
        return;
    }
    auto* const pDialog = new QFileDialog(window(), QStringLiteral("Save the attached file"),
                                          m_view.File().Folder(), QStringLiteral("All files (*)"));
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setAcceptMode(QFileDialog::AcceptSave);
    pDialog->selectFile(m_model.NameOf(index.row()));
    connect(pDialog, &QFileDialog::fileSelected, this,
            [this, pDocument, nFile = index.row()](const QString& strFile) {
                SaveTo(strFile, pDocument, nFile);
            });
    pDialog->open();
}

// Over the file that is read nothing else is written, whatever the reader has agreed to.
void AttachmentPane::SaveTo(const QString& strFile,
                            const std::shared_ptr<velko::pdf::PDFDoc>& pDocument, int nFile) {
    Say({});
    if (QFileInfo(strFile) == QFileInfo(m_view.File().Text())) {
        Say(QStringLiteral("This is the file of the open document: choose another name."));
    } else {
        m_saver.Save(pDocument, nFile, FilePath(strFile));
    }
}

void AttachmentPane::Say(const QString& strText) {
    m_pOutcome->setText(strText);
    m_pOutcome->setVisible(!strText.isEmpty());
    if (!strText.isEmpty()) {
        Announce(*m_pOutcome, strText);
    }
}

}
