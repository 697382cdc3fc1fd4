#include "platform/qt/QtDialogs.h"

#include <QDir>
#include <QFileDialog>
#include <QMessageBox>
#include <QPushButton>
#include <QStandardPaths>
#include <utility>

namespace Platform::Qt {

using Windows::UI::IShownDialog;
using Windows::UI::MessageRequest;
using Windows::UI::SaveRequest;

namespace {

class ShownDialog final : public IShownDialog {
public:
    explicit ShownDialog(QDialog* pDialog) : m_pDialog(pDialog) {}
    ~ShownDialog() override {
        if (m_pDialog) {
            m_pDialog->disconnect();
            m_pDialog->hide();
            m_pDialog->deleteLater(); // this may be its own signal
        }
    }
    ShownDialog(const ShownDialog&) = delete;
    ShownDialog& operator=(const ShownDialog&) = delete;

private:
    const QPointer<QDialog> m_pDialog; // its window may take it along
};

// Answers from the queue, where what a program throws has a place to go.
template <class F, class Result>
void Post(const std::shared_ptr<QtDispatcher>& pDispatcher, const F& fnAnswer, Result result) {
    pDispatcher->RunAsync(concurrency::priority::normal,
                          [fnAnswer, result = std::move(result)] { fnAnswer(result); });
}

QString PathIn(const QString& strFolder, const std::string& strName) {
    return QDir(strFolder).filePath(QString::fromStdString(strName));
}

QStringList NameFilters(const SaveRequest& request) {
    QStringList filters;
    for (const auto& type : request.types) {
        QStringList patterns;
        for (const std::string& strExtension : type.extensions) {
            patterns << "*" + QString::fromStdString(strExtension);
        }
        filters << QString::fromStdString(type.strName) + " (" + patterns.join(' ') + ")";
    }
    return filters;
}

}

std::shared_ptr<IShownDialog> QtDialogs::ShowMessage(const MessageRequest& request,
                                                     MessageAnswer fnAnswer) {
    auto* const pBox = new QMessageBox(m_pWidget ? m_pWidget->window() : nullptr);
    pBox->setIcon(QMessageBox::Question);
    pBox->setWindowTitle(QString::fromStdString(request.strTitle));
    pBox->setTextFormat(::Qt::PlainText);
    pBox->setText(QString::fromStdString(request.strContent));
    for (std::size_t n = 0; n < request.labels.size(); ++n) {
        auto* const pButton =
            pBox->addButton(QString::fromStdString(request.labels[n]),
                            n == 0 ? QMessageBox::AcceptRole : QMessageBox::RejectRole);
        QObject::connect(pButton, &QAbstractButton::clicked, pBox,
                         [n, fnAnswer, pDispatcher = m_pDispatcher] {
                             Post(pDispatcher, fnAnswer, std::optional(n));
                         });
        if (n == request.nDefault) {
            pBox->setDefaultButton(pButton);
        }
    }
    QObject::connect(pBox, &QDialog::rejected, pBox, [pBox, fnAnswer, pDispatcher = m_pDispatcher] {
        if (pBox->clickedButton() == nullptr) { // closed without a button
            Post(pDispatcher, fnAnswer, std::optional<std::size_t>());
        }
    });
    pBox->open();
    return std::make_shared<ShownDialog>(pBox);
}

std::shared_ptr<IShownDialog> QtDialogs::ShowSavePicker(const SaveRequest& request,
                                                        PathAnswer fnAnswer) {
    auto* const pPicker = new QFileDialog(m_pWidget ? m_pWidget->window() : nullptr);
    pPicker->setAcceptMode(QFileDialog::AcceptSave);
    pPicker->setFileMode(QFileDialog::AnyFile);
    pPicker->setNameFilters(NameFilters(request));
    if (!request.types.empty() && !request.types.front().extensions.empty()) {
        pPicker->setDefaultSuffix(
            QString::fromStdString(request.types.front().extensions.front()).remove(0, 1));
    }
    pPicker->selectFile(PathIn(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation),
                               request.strName));
    QObject::connect(pPicker, &QDialog::finished, pPicker,
                     [pPicker, fnAnswer, pDispatcher = m_pDispatcher](int nResult) {
                         const QStringList files = pPicker->selectedFiles();
                         const bool bPicked = nResult == QDialog::Accepted && !files.isEmpty();
                         Post(pDispatcher, fnAnswer,
                              bPicked ? std::optional(files.front().toStdString()) : std::nullopt);
                     });
    pPicker->open();
    return std::make_shared<ShownDialog>(pPicker);
}

}
