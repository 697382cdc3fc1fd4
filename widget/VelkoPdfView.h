// A widget that shows a PDF document: the viewer control in an application's
// window.
//
//   QApplication app(argc, argv);
//   velko::vkit::VelkoRuntime runtime;
//   velko::vkit::VelkoPdfView view;
//   view.Open("report.pdf");
//   view.show();
//   return app.exec();
//
// Lifetime: needs a `VelkoRuntime` that outlives it.
// Order of calls: any; commands without a shown document do nothing. An open
// while another is under way is carried out after it; of several only the last.
// Units: pages from 0; zoom 1.0 is 100 %; scrolling in device pixels.
// Threads: UI thread only.
// Errors: nothing is raised. A failed open is told by `OpenFailed`, a failure of
// a command or inside the control by `Failed`, both in words for the reader.
//
// What the reader sees is kept over a change of size: the page point at the top
// left and the zoom stay, in one visible step. After `FitWidth` or `FitPage` the
// zoom follows the size instead.
#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>

#include "control/PDFViewCtrl.h"
#include "widget/ViewKeeper.h"

namespace Platform::Qt {
class QtElementWindow;
}

namespace velko::vkit {

class VelkoPdfView : public QWidget {
    Q_OBJECT

public:
    enum class State {
        Empty,
        Opening, // an earlier document may still be shown meanwhile
        Shown,
        Failed,        // the last open failed and nothing is shown
        PasswordNeeded // the last open needs another password; nothing is shown
    };
    Q_ENUM(State)

    using Opening = concurrency::task<velko::common::ErrorCode>;

    explicit VelkoPdfView(QWidget* pParent = nullptr);

    // Around a control of `CreateControl`.
    explicit VelkoPdfView(std::shared_ptr<PDFViewCtrl> pControl, QWidget* pParent = nullptr);
    ~VelkoPdfView() override;

    // A control with its template, ready to open a document before there is a
    // widget or an application object.
    static std::shared_ptr<PDFViewCtrl> CreateControl();
    static Opening BeginOpen(PDFViewCtrl& control, const QString& strPath,
                             const QString& strPassword = {});

    // Gives the control the view's size while the view is hidden and Qt puts its
    // size event off, so that the first layout need not wait for the display.
    void ArrangeBeforeShow();

    void Open(const QString& strPath, const QString& strPassword = {});
    // Takes up an open that was begun on the control.
    void Follow(const QString& strPath, Opening opening);
    void CloseDocument();

    State ViewState() const { return m_eState; }
    // Of the document that is shown or was asked for last; absolute.
    const QString& Path() const { return m_strPath; }

    int PageCount() const { return m_nPageCount; }
    int CurrentPage() const { return m_nCurrentPage; }
    void GotoPage(int nPage); // the nearest page there is
    void GotoNextPage();
    void GotoPrevPage();
    void GotoFirstPage();
    void GotoLastPage();
    void ScrollBy(double dbX, double dbY); // positive: towards the end of the document
    void ScrollByScreen(int nScreens);

    double Zoom() const { return m_dbZoom; }
    void ZoomTo(double dbZoom); // brought into the limits; the middle of the view stays
    void ZoomIn();
    void ZoomOut();
    void FitWidth();
    void FitPage();
    void RotateBy(int nQuarterTurns);

    // True when every part of a page on the screen shows its final pixels.
    bool IsSharp() const;
    // True when the last paint showed pixels of a page.
    bool HasInk() const;

    const std::shared_ptr<PDFViewCtrl>& Control() const { return m_pControl; }
    Platform::Qt::QtElementWindow& Window() const { return *m_pWindow; }

signals:
    void StateChanged(velko::vkit::VelkoPdfView::State eState);
    void Opened(int nPageCount);
    void OpenFailed(const QString& strPath, const QString& strReason);
    void PageChanged(int nPage);
    void PageCountChanged(int nPageCount);
    void ZoomChanged(double dbZoom);
    void Failed(const QString& strReason);
    void Painted(); // after each paint of the pages

protected:
    void resizeEvent(QResizeEvent* pEvent) override;
    void keyPressEvent(QKeyEvent* pEvent) override;

private:
    struct Request {
        QString strPath;
        QString strPassword;
    };

    void ConnectWindow();
    void Expect(const QString& strPath);
    void Await(Opening opening);
    void OnOpenEnded(const Opening& opening);
    void OnOpenFailed(const std::exception_ptr& pError);
    void EndOpening();
    void OpenNext();
    void OnPasswordAnswered(bool bShown);
    void OnOpenRefused(velko::common::ErrorCode eCode);
    void OnShown();
    void SetState(State eState);
    bool HasDocument() const { return !m_strShownPath.isEmpty(); }
    void Command(const std::function<void()>& fnBody); // only when a document is shown
    void Guard(const std::function<void()>& fnBody);
    void Report(const std::exception_ptr& pError);
    void QueueRefresh();
    void Refresh();
    void OnPainted();
    void BeforeArrange();
    void AfterArrange();
    void ApplyZoom(double dbZoom);
    void ApplyFit();
    bool HandleKey(const QKeyEvent& event);

    const std::shared_ptr<PDFViewCtrl> m_pControl;
    Platform::Qt::QtElementWindow* m_pWindow; // a child
    State m_eState = State::Empty;
    QString m_strPath;      // asked for last
    QString m_strShownPath; // of the document that the control shows; may be empty
    bool m_bOpening = false;
    std::optional<Request> m_next; // asked for while an open was under way
    int m_nPageCount = 0;
    int m_nCurrentPage = 0;
    double m_dbZoom = 0.0;
    int m_nFitMode = 0; // a zoom mode of the control that is kept; 0: none
    bool m_bRefreshQueued = false;
    bool m_bSeen = false;               // the reader has seen a page of this document
    std::optional<ViewKeeper> m_keeper; // during a change of size
};

}
