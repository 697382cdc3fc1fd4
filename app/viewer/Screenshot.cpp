#include "app/viewer/Screenshot.h"

#include <QCoreApplication>
#include <QPixmap>
#include <QTimer>
#include <cstdio>
#include <utility>

#include "platform/qt/QtElementWindow.h"

namespace velko::viewer {

using vkit::VelkoPdfView;

namespace {
constexpr int kLongestWaitMs = 60'000;
}

Screenshot::Screenshot(MainWindow& window, const CommandLine& options, QObject* pParent)
    : QObject(pParent),
      m_window(window),
      m_strFile(options.strScreenshot),
      m_nPage(options.nPage.value_or(1) - 1) {
    VelkoPdfView& view = m_window.View();
    view.Control()->IsPasswordDialogEnabled(false); // nobody sits there to be asked
    connect(&view, &VelkoPdfView::Opened, this, &Screenshot::OnOpened);
    connect(&view, &VelkoPdfView::Painted, this, &Screenshot::OnPainted, Qt::QueuedConnection);
    connect(&view, &VelkoPdfView::OpenFailed, this,
            [this](const QString& strPath, auto strReason) { End(1, strPath + ": " + strReason); });
    connect(&view, &VelkoPdfView::Failed, this,
            [this](const QString& strReason) { End(1, strReason); });
    QTimer::singleShot(kLongestWaitMs, this, [this] { End(1, "The pages never became sharp."); });
    if (options.files.empty()) {
        QTimer::singleShot(0, this, &Screenshot::Write);
    }
}

void Screenshot::OnOpened() {
    m_window.View().GotoPage(m_nPage);
    m_bPageShown = true;
    m_window.View().Window().update(); // a paint follows also when nothing moved
}

void Screenshot::OnPainted() {
    if (m_bPageShown && m_window.View().IsSharp()) {
        Write();
    }
}

void Screenshot::Write() {
    m_window.CompleteBar();
    if (m_window.grab().save(m_strFile, "PNG")) {
        End(0, {});
    } else {
        End(1, m_strFile + ": The picture could not be written.");
    }
}

void Screenshot::End(int nStatus, const QString& strText) {
    if (std::exchange(m_bEnded, true)) {
        return;
    }
    if (!strText.isEmpty()) {
        std::fprintf(stderr, "velko-viewer: %s\n", qUtf8Printable(strText));
    }
    // Through the queue: the loop that is to end may not have begun.
    QMetaObject::invokeMethod(
        qApp, [nStatus] { QCoreApplication::exit(nStatus); }, Qt::QueuedConnection);
}

}
