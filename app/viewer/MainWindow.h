// The viewer's window: a bar of commands above the pages, and a message in
// their place when there are none to show.
//
// The bar's room is kept from the beginning, but it is filled after the first
// page is painted, so that nothing stands between the start and the page.
// Threads: UI thread only.
#pragma once

#include <QString>
#include <QWidget>
#include <memory>

#include "widget/VelkoPdfView.h"

class QLabel;

namespace velko::viewer {

class CommandBar;

class MainWindow : public QWidget {
    Q_OBJECT

public:
    MainWindow(std::shared_ptr<vkit::PDFViewCtrl> pControl, QSize size);

    // Shows the document whose open was begun, or without one the welcome.
    void Begin(const QString& strFile, vkit::VelkoPdfView::Opening opening);

    vkit::VelkoPdfView& View() const { return *m_pView; }

    // What stands in place of the pages; empty while pages are shown.
    QString Message() const;
    // What is told above pages that are shown; empty when nothing is.
    QString Notice() const;

    // Fills the bar now.
    void CompleteBar();

protected:
    void closeEvent(QCloseEvent* pEvent) override;
    void dragEnterEvent(QDragEnterEvent* pEvent) override;
    void dropEvent(QDropEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;
    void paintEvent(QPaintEvent* pEvent) override;
    void resizeEvent(QResizeEvent* pEvent) override;

private:
    void ConnectView();
    void AskForFile();
    void ShowMessage(const QString& strTitle, const QString& strText);
    void ShowNotice(const QString& strText);
    void HideMessages();
    void OnState(vkit::VelkoPdfView::State eState);
    void OnOpenFailed(const QString& strPath, const QString& strReason);
    void UpdateTitle();
    void PlaceParts();
    QString FileName() const;

    vkit::VelkoPdfView* const m_pView;
    CommandBar* m_pBar = nullptr; // after the first paint
    QLabel* m_pMessage = nullptr; // made when first needed
    QLabel* m_pNotice = nullptr;
};

}
