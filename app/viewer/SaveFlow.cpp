#include "app/viewer/SaveFlow.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QProgressBar>
#include <QPushButton>
#include <algorithm>
#include <cmath>
#include <utility>

#include "widget/edit/DocSaver.h"
#include "widget/edit/ViewEdits.h"
#include "widget/reload/DocReloader.h"

namespace velko::viewer {

using vkit::DocSaver;
using vkit::FilePath;
using vkit::SaveFailure;
using vkit::SaveTrouble;

namespace {

constexpr int kBarMs = 200; // a save that takes longer shows how far it is
constexpr int kBarWidth = 260;
constexpr int kBarHeight = 24;

bool AreSameFile(const FilePath& one, const FilePath& other) {
    const QString strOne = QFileInfo(one.Text()).canonicalFilePath();
    return !strOne.isEmpty() && strOne == QFileInfo(other.Text()).canonicalFilePath();
}

}

SaveFlow::SaveFlow(vkit::VelkoPdfView& view, QWidget* pWindow)
    : QObject(pWindow), m_view(view), m_pWindow(pWindow) {
    m_barTimer.setSingleShot(true);
    m_barTimer.setInterval(kBarMs);
    m_barTimer.callOnTimeout(this, [this] {
        if (m_pBar == nullptr) {
            m_pBar = new QProgressBar(m_pWindow);
            m_pBar->setFormat(QStringLiteral("Saving… %p %"));
            m_pBar->setAccessibleName(QStringLiteral("Saving"));
        }
        OnProgress(m_dbShare);
        Place();
        m_pBar->show();
        m_pBar->raise();
    });
    ConnectSaver();
}

void SaveFlow::ConnectSaver() {
    DocSaver& saver = m_view.Saver();
    connect(&saver, &DocSaver::Started, this, [this] {
        m_dbShare = 0.0;
        m_barTimer.start();
    });
    connect(&saver, &DocSaver::Progress, this, &SaveFlow::OnProgress);
    connect(&saver, &DocSaver::Saved, this, [this] {
        emit Saved();
        if (std::exchange(m_bOtherNames, false) && m_strOtherNamesTold != m_view.File().Bytes()) {
            m_strOtherNamesTold = m_view.File().Bytes();
            emit Told(QStringLiteral("“%1” was saved. The file has other names too, under which it "
                                     "stays as it was before.")
                          .arg(Name()));
        }
    });
    connect(&saver, &DocSaver::Failed, this, &SaveFlow::OnFailed);
    connect(&saver, &DocSaver::Ended, this, &SaveFlow::OnEnded);
}

QString SaveFlow::Name() const {
    return m_view.File().Name();
}

bool SaveFlow::IsBusy() const {
    return m_view.Saver().IsSaving() || m_pQuestion;
}

// --- the save --------------------------------------------------------------

void SaveFlow::Save() {
    if (!IsBusy()) {
        m_bOtherNames = m_view.Saver().HasOtherNames();
        m_view.Saver().Save();
    }
}

void SaveFlow::SaveAs() {
    if (!IsBusy()) {
        AskForName(QStringLiteral("Save as"));
    }
}

void SaveFlow::AskForName(const QString& strTitle) {
    auto* const pDialog = new QFileDialog(m_pWindow, strTitle, m_view.File().Folder(),
                                          "PDF documents (*.pdf *.PDF);;All files (*)");
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setAcceptMode(QFileDialog::AcceptSave);
    pDialog->setDefaultSuffix("pdf");
    pDialog->selectFile(Name());
    m_pQuestion = pDialog;
    connect(pDialog, &QFileDialog::finished, this, [this, pDialog](int nResult) {
        m_pQuestion.clear();
        if (nResult == QDialog::Accepted && !pDialog->selectedFiles().isEmpty()) {
            SaveTo(FilePath(pDialog->selectedFiles().front()));
        } else {
            m_fnGo = nullptr;
        }
    });
    pDialog->open();
}

// Onto itself is an ordinary save: what another program made of the file stays.
void SaveFlow::SaveTo(const FilePath& path) {
    m_bOtherNames = false;
    if (AreSameFile(path, m_view.File())) {
        Save();
    } else {
        m_view.Saver().SaveAs(path);
    }
}

void SaveFlow::OnProgress(double dbShare) {
    m_dbShare = dbShare;
    if (m_pBar != nullptr) {
        m_pBar->setValue(static_cast<int>(std::lround(dbShare * 100.0)));
    }
}

void SaveFlow::OnEnded() {
    m_barTimer.stop();
    if (m_pBar != nullptr) {
        m_pBar->hide();
    }
    if (m_fnGo && !m_pQuestion) {
        Leave();
    }
}

void SaveFlow::Place() {
    if (m_pBar != nullptr) {
        const int nWidth = std::min(kBarWidth, m_pWindow->width());
        m_pBar->setGeometry((m_pWindow->width() - nWidth) / 2,
                            m_pWindow->height() - kBarHeight - kBarHeight / 2, nWidth, kBarHeight);
    }
}

void SaveFlow::OnFailed(const SaveFailure& failure) {
    switch (failure.eTrouble) {
        case SaveTrouble::ReadOnly:
            emit Told(QStringLiteral("“%1” may not be written to: choose another file or folder.")
                          .arg(Name()));
            AskForName(QStringLiteral("Save as, since this file may not be written to"));
            break;
        case SaveTrouble::Changed:
            AskAboutChanges();
            break;
        case SaveTrouble::Other:
            m_fnGo = nullptr;
            emit Told(QStringLiteral("“%1” was not saved. %2").arg(Name(), failure.strReason));
            break;
    }
}

// --- questions -------------------------------------------------------------

QMessageBox* SaveFlow::MakeQuestion(const QString& strText, const QString& strMore) {
    auto* const pBox = new QMessageBox(QMessageBox::Warning, QStringLiteral("Velko Viewer"),
                                       strText, QMessageBox::NoButton, m_pWindow);
    pBox->setInformativeText(strMore);
    pBox->setAttribute(Qt::WA_DeleteOnClose);
    pBox->setWindowModality(Qt::WindowModal);
    m_pQuestion = pBox;
    return pBox;
}

void SaveFlow::AskAboutChanges() {
    QMessageBox* const pBox = MakeQuestion(
        QStringLiteral("“%1” was changed by another program or window.").arg(Name()),
        QStringLiteral("Overwriting it loses what was written there, reloading it what was changed "
                       "here. Saving to another file keeps both."));
    QPushButton* const pOther = pBox->addButton("Save &as…", QMessageBox::AcceptRole);
    QPushButton* const pOver = pBox->addButton("&Overwrite", QMessageBox::DestructiveRole);
    QPushButton* const pTheirs = pBox->addButton("&Reload", QMessageBox::ResetRole);
    pTheirs->setVisible(m_view.Reloader() != nullptr);
    pBox->setEscapeButton(pBox->addButton(QMessageBox::Cancel));
    pBox->setDefaultButton(pOther);
    connect(pBox, &QMessageBox::finished, this, [this, pBox, pOther, pOver, pTheirs] {
        m_pQuestion.clear();
        if (pBox->clickedButton() == pOther) {
            AskForName(QStringLiteral("Save as"));
        } else if (pBox->clickedButton() == pOver) {
            m_view.Saver().SaveOverChanges();
        } else if (pBox->clickedButton() == pTheirs) {
            m_fnGo = nullptr;
            Reload();
        } else {
            m_fnGo = nullptr;
        }
    });
    pBox->open();
}

void SaveFlow::Reload() {
    if (m_view.Reloader() != nullptr) {
        m_view.Reloader()->ReloadNow();
    }
}

void SaveFlow::BeforeLeaving(std::function<void()> fnGo) {
    m_view.Edits().FinishWriting();
    m_fnGo = std::move(fnGo);
    if (m_pQuestion) {
        m_pQuestion->activateWindow();
    } else if (!m_view.Saver().IsSaving()) {
        Leave();
    }
}

void SaveFlow::Leave() {
    if (m_view.IsModified()) {
        AskBeforeLeaving();
    } else if (const auto fnGo = std::exchange(m_fnGo, nullptr)) {
        fnGo();
    }
}

void SaveFlow::AskBeforeLeaving() {
    QMessageBox* const pBox =
        MakeQuestion(QStringLiteral("Save the changes to “%1”?").arg(Name()),
                     QStringLiteral("Notes and marks that are not saved are lost."));
    QPushButton* const pSave = pBox->addButton(QMessageBox::Save);
    QPushButton* const pDiscard = pBox->addButton("&Discard", QMessageBox::DestructiveRole);
    pBox->setEscapeButton(pBox->addButton(QMessageBox::Cancel));
    pBox->setDefaultButton(pSave);
    connect(pBox, &QMessageBox::finished, this, [this, pBox, pSave, pDiscard] {
        m_pQuestion.clear();
        if (pBox->clickedButton() == pSave) {
            Save();
        } else if (const auto fnGo = std::exchange(m_fnGo, nullptr);
                   fnGo && pBox->clickedButton() == pDiscard) {
            fnGo();
        }
    });
    pBox->open();
}

}
