// The viewer control: a host places it in its tree, gives it a file, a path or
// an engine document, and gets a shown document, events and commands.
//
// Lifetime: `Create` makes it; it can open documents at once, before it has a
// window, a size or its template. Every operation keeps the control alive for
// its own length, so a host may let go of it anywhere, also in an event.
// `Dispose` closes it for good; every operation raises `ObjectDisposedException`
// afterwards, a disposal that comes inside an event of its own included.
// Threads: UI thread only, but for adding and removing handlers. Events come on
// the UI thread, `RenderPageEvent` alone on render workers.
// Units: points, rectangles and the canvas's size are logical, `MoveScreen` and
// the centre of `ZoomAtPoint` device pixels, page space the file's user space.
// Fallbacks: a command without a document or viewer does nothing and answers a
// fixed value, named at each operation as "none: ...". The viewer answers the
// rest, also for indexes that are out of range.
// Errors: failures of the platform, the engine and the host's own handlers are
// raised to the caller, or end the asynchronous operation; the control stays
// usable. Handlers may call any command, close the document, open another, or
// dispose or let go of the control. What a handler asks for while the engine
// measures a page is carried out after the step that asked.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "control/IUIExtensionsEvents.h"
#include "control/LiveObject.h"
#include "control/events/ControlEvent.h"
#include "control/events/DocEventArgs.h"
#include "control/events/PageEventArgs.h"
#include "control/events/SaveProgressEventArgs.h"
#include "document/IDocumentOwner.h"
#include "document/engine/Action.h"
#include "document/engine/ErrorCode.h"
#include "platform/concurrency/Task.h"
#include "platform/foundation/Color.h"
#include "platform/foundation/Geometry.h"
#include "platform/foundation/PropertyValue.h"
#include "platform/storage/StorageFile.h"
#include "platform/ui/Controls.h"
#include "settings/SavedView.h"
#include "viewers/core/IViewerOwner.h"
#include "viewers/core/Records.h"
#include "viewers/reflow/ReflowStyle.h"

namespace Windows::Storage::Pickers {
class FileSavePicker;
}

namespace Windows::UI::Popups {
class MessageDialog;
struct UICommand;
}

namespace Windows::UI::Xaml::Controls {
class SwapChainPanel;
}

namespace velko::pdf {
class IAnnotEditor;
}

namespace velko::vkit {

class IJudgePasswordHelper;
class IPDFViewer;
class InsertDocumentPasswdwordDlgUIOprateion;
class PDFViewCanvas;
class PDFViewerManager;
class RenderPageEventArgs;
class VLK_Document;
struct VLK_DocOpenRecord;
struct VLK_DocOpenResult;
class VelkoViewControl;

class PDFViewCtrl final : public Windows::UI::Xaml::Controls::ContentControl,
                          private IDocumentOwner,
                          private IViewerOwner,
                          private LiveObject {
public:
    using Color = Windows::UI::Color;
    using ErrorCode = velko::common::ErrorCode;
    using Grid = Windows::UI::Xaml::Controls::Grid;
    using PDFDoc = velko::pdf::PDFDoc;
    using Point = Windows::Foundation::Point;
    using PropertySet = Windows::Foundation::Collections::PropertySet;
    using Rect = Windows::Foundation::Rect;
    using Size = Windows::Foundation::Size;
    using StorageFile = Windows::Storage::StorageFile;

    // On the UI thread. Opens the settings, unless in design mode.
    static std::shared_ptr<PDFViewCtrl> Create();
    ~PDFViewCtrl() override;

    // Closes the document and lets go of viewer and canvas.
    void Dispose();

    // --- the host's input sink, the template's root, the canvas's scale ---
    std::shared_ptr<IUIExtensionsEvents> ExtensionsManager();
    void ExtensionsManager(std::shared_ptr<IUIExtensionsEvents> pManager);
    std::shared_ptr<Grid> Layout();
    float CompositionScaleX(); // none: 1
    float CompositionScaleY(); // none: 1

    // --- opening ---

    // Ends with the error code of the open. e_ErrPassword means that a password
    // is asked for: success then shows in `OpenDocEvent` alone. A file of 2 GiB
    // or more is e_ErrUnsupported, no file e_ErrUnknown. The document that was
    // open stays until the result is there. A platform failure ends the task
    // as that failure; the ring then stays shown and the old document open. A
    // control that is disposed meanwhile ends it with `ObjectDisposedException`.
    concurrency::task<ErrorCode> OpenPdfDocument(std::shared_ptr<StorageFile> pFile,
                                                 std::string strPassword);
    concurrency::task<ErrorCode> OpenPdfDocument(std::string strPath, std::string strPassword);

    std::shared_ptr<StorageFile> GetDocumentFile(); // none: empty

    // Who judges the password of the document that waits for one; empty when none does.
    std::shared_ptr<IJudgePasswordHelper> PasswordJudge();
    // Whether the control asks for it itself, by a dialog over its pages; true at first. A host
    // that asks in its own way answers the judge. Closing the document, opening another
    // and taking the control off its window give the answer "given up".
    bool IsPasswordDialogEnabled();
    void IsPasswordDialogEnabled(bool bEnabled);

    // --- pages ---
    void GotoPage(std::int32_t nPageIndex);
    // Brings a point of page space into the middle of the part of the canvas that
    // the window shows, unless it lies there: the canvas as it stands in the
    // window, cut off at the window's left and top edge (not at the others). An
    // index out of range does nothing; a canvas left of or above the window
    // altogether is an invalid argument.
    void GotoExactlyPage(std::int32_t nPageIndex, Point ptPage);
    // Follows the destination of an action; nothing without one.
    void GotoDestination(const std::shared_ptr<velko::pdf::IAction>& pAction);
    bool GotoFirstPage();               // true: moved; none: false
    bool GotoLastPage();                // true: moved; none: false
    bool GotoPrevPage();                // true: was at the start, nothing moved; no document: false
    bool GotoNextPage();                // true: was at the end, nothing moved; no document: false
    std::int32_t GetCurrentPageIndex(); // none: 0
    std::int32_t GetPageIndexAtPoint(Point pt);  // no manager: -1, no viewer: 0
    std::vector<std::int32_t> GetVisiblePages(); // none: an empty list

    // --- zoom and layout ---
    // Modes of zoom and layout: viewers/core/Modes.h.
    std::int32_t GetZoomMode();
    void SetZoomMode(std::int32_t nMode);
    double GetFitScale(std::int32_t nZoomMode) override; // none, or a page without a size: 1
    std::int32_t GetPageLayoutMode();
    // Keeps the page; scale and offsets start anew. A mode without a viewer leaves
    // all as it is; a document whose saved mode is such a one opens in the mode in
    // force, the first in the continuous one.
    void SetPageLayoutMode(std::int32_t nMode);

    // --- the document ---
    std::shared_ptr<PDFDoc> GetPDFDoc(); // none: empty
    // Shows a document of the engine that the host holds; nothing for the one shown.
    // `OpenDocEvent` comes before its viewer is made.
    void SetPDFDoc(const std::shared_ptr<PDFDoc>& pPdfDoc);
    void CloseDocument();
    // Remembered with the document, for the host; no file is deleted.
    bool GetDeleteFileOnClose(); // none: false
    void SetDeleteFileOnClose(bool bDelete);
    // What renders draw from the next one on. Bit 1: the page's contents, bit 2:
    // its annotations; both at first. `RedrawScreen` brings it to the screen.
    std::uint32_t GetRenderFlags(); // none: 0
    void SetRenderFlags(std::uint32_t nFlags);
    // Annotations of the kind, as `IAnnot::GetType` tells it, are left out from the
    // next render on.
    void AddHiddenAnnotType(std::int32_t nType);
    std::int32_t GetPageCount(); // none: 0

    float GetScale();            // no document: 0, no viewer: 1
    void SetScale(float fScale); // limited; what is no number is an invalid argument
    float GetMinScale();         // no document: 0, no viewer: 1
    float GetMaxScale();         // no document: 0, no viewer: 3
    void MoveScreen(double dbOffsetY, double dbOffsetX);
    void ZoomAtPoint(Point ptCentre, double dbScale, bool bIsInertial, bool isScrollComplete);
    // The end of a drag that came this far, start minus end: a single page comes
    // to rest, or turns. Other layouts are at rest already.
    void AlignPageAfterScroll(double dbOffsetY, double dbOffsetX);
    // Turns the pages to so many quarter turns clockwise from their own way up,
    // modulo 4 and without its sign.
    void RotateViewer(std::int32_t nQuarterTurns);
    std::int32_t GetRotate(); // quarter turns, 0 to 3; none: 0
    Size GetCanvasSize();     // none: 0 x 0

    // --- what lies on the screen ---
    // Whether the open document has its viewer; not yet inside `OpenDocEvent` for
    // one that was given by `SetPDFDoc` or waited for its password.
    bool HasViewer();
    // Where a page lies on the canvas, in device pixels; empty also for a page
    // that is not laid out.
    std::optional<Render_PageScreenOffsetInfo> GetPageScreenRect(std::int32_t nPageIndex);
    bool HasInk(); // something of a page's contents shows, be it blurred; none: false
    bool HasInk(std::int32_t nPageIndex); // the same of one page; not laid out: false
    bool IsSharp();                       // all in sight is rendered for its place; none: false

    // --- events; each record's header says when and on which thread ---
    ControlEvent<RenderCanvasEventArgs> RenderCanvasEvent;
    ControlEvent<RenderPageEventArgs> RenderPageEvent;
    ControlEvent<DocEventArgs> OpenDocEvent;
    ControlEvent<DocEventArgs> CloseDocEvent;
    ControlEvent<PageLoadedEventArgs> PageLoadedEvent;
    ControlEvent<PageUnloadedEventArgs> PageUnloadedEvent;
    ControlEvent<PageVisibleEventArgs> PageVisibleEvent;
    ControlEvent<PageInvisibleEventArgs> PageInvisibleEvent;
    ControlEvent<PageChangedEventArgs> PageChangedEvent;
    ControlEvent<PageLayoutModeChangedEventArgs> PageLayoutModeChangedEvent;

    // --- pages that cannot be shown ---

    // Why the page is not shown, or not all of it; none: empty. What fails is
    // not tried again by itself: `RedrawScreen` and `UpdatePageAfterAnnotEdit`
    // do, as does whatever brings the page on the screen anew. A host says it on
    // the page's place, inside `RenderCanvasEvent`.
    std::optional<PageFailure> PageFailureOf(std::int32_t nPageIndex);

    // That answer has changed, for the worse or the better. A host repaints
    // (`UpdateViewer`) to show what it says there.
    ControlEvent<PageFailureEventArgs> PageFailureEvent;

    // Only remembered, and told as the old mode; an open takes the document's saved mode.
    void SetDefaultLayoutMode(std::int32_t nMode);

    // --- reflowed text ---
    // How it is shown, now and in viewers made later; before the template: nothing.
    // Page by page `ReflowCanvasEvent` lets a host draw over it, as
    // `RenderCanvasEvent` over pages as they are.
    ReflowStyle TextStyle();
    void TextStyle(const ReflowStyle& style);
    ControlEvent<RenderCanvasEventArgs> ReflowCanvasEvent;

    // --- changing and saving the document ---

    // Runs `fnEdit` on the pool, between two blocks of the document's renders, then
    // shows the page anew; edits run in the order of the calls. Fails with what it
    // raises, as cancelled when the document is closed first, and with e_ErrUnsupported
    // when the engine changes nothing. No document: ends at once.
    concurrency::task<void> EditPage(std::int32_t nPageIndex,
                                     std::function<void(velko::pdf::IAnnotEditor&)> fnEdit);

    // Writes the document into its file; true: saved. False without a document, for one
    // without a file, and when the settings say that nothing is saved (`IsAutoSave`; the
    // progress ring stays shown then). For a read-only file the reader is asked where
    // else it shall go: the answer is false whatever comes of it, and giving up the
    // choice of the file fails with `NullReferenceException`; the document stays with
    // its file. Fails with `FileChangedException` when another program has changed
    // the file, which then stays as it is. Closing the document cancels a save that has
    // not come to the replacing of the file, and takes the question away.
    // There is one save of a document at a time: another one, `SaveDocumentAs` included,
    // raises `SaveInProgressException`.
    concurrency::task<bool> SaveDocument();

    // Writes the document into this file, which becomes its file; false: no document, or
    // the engine said that it failed.
    concurrency::task<bool> SaveDocumentAs(std::shared_ptr<StorageFile> pFile);

    // Looks at what is to replace the document's file, on a pool thread, before it does;
    // what it raises ends the save. For saves that begin later. Empty: nobody looks.
    using SaveCheck = std::function<void(const std::shared_ptr<StorageFile>&)>;
    void SetSaveCheck(SaveCheck fnCheck);

    // After a `FileChangedException`: the next save replaces the file as it is now.
    concurrency::task<void> AcceptChangedFile(); // none: ends at once

    ControlEvent<SaveProgressEventArgs> SaveProgressEvent;

    // --- colours ---
    Color PageBgColor();      // none: black
    Color PageFgColor();      // none: black
    bool NightMode();         // true for the night colours exactly
    void NightMode(bool bOn); // nothing in reflow
    void SetPageColors(Color background, Color foreground);
    // Around the pages, from the next frame on. Before the template: nothing.
    void SetSurround(Color color);

    // --- painting ---
    void RedrawScreen();
    void UpdatePageAfterAnnotEdit(std::int32_t nPageIndex);
    void UpdateViewer();
    void CancelRender();

    // Off: the control answers no gesture and no wheel, and the panel leaves
    // manipulation to the system. A gesture that is open is completed first. The
    // property alone does not tell the panel.
    void SetIsCanScrollPageViewEnabled(bool bEnabled);
    bool IsCanScrollPageViewEnabled();
    void IsCanScrollPageViewEnabled(bool bEnabled);

    // --- conversions ---
    // Six numbers a, b, c, d, e, f; none: the identity. `nExtra` has no meaning.
    std::array<double, 6> GetDisplayMatrix(std::int32_t nPageIndex, std::int32_t nExtra = 0);
    // none: page 0 and the point
    std::shared_ptr<PDFPagePoint> DevicePointToPagePoint(Point pt);
    Point PagePointToDevicePoint(std::int32_t nPageIndex, Point pt); // none: (0, 0)
    // none: a rectangle of zeros
    Rect DeviceRectToPageRect(std::int32_t nPageIndex, const Rect& rc);
    Rect PageRectToDeviceRect(std::int32_t nPageIndex, const Rect& rc);
    Rect GetPageRectAtPoint(Point pt, std::int32_t nPageIndex);

    // Writes the view of the open document into `values`, for the host to keep.
    // Raises `NullReferenceException` without a document.
    void SaveViewState(PropertySet& values);

private:
    friend class ControlParts;
    friend class InsertDocumentPasswdwordDlgUIOprateion;
    friend class PDFViewerManager;

    // --- IViewerOwner ---
    void RaiseRenderCanvas(const std::shared_ptr<RenderCanvasEventArgs>& pArgs) override;
    void RaiseReflowCanvas(const std::shared_ptr<RenderCanvasEventArgs>& pArgs) override;
    void RaisePageLoaded(std::int32_t nPageIndex) override;
    void RunOperation(const std::function<void()>& fnOperation) override;

    // --- IDocumentOwner ---
    void RaisePageLoaded(const std::shared_ptr<PDFDoc>& pPdfDoc, std::int32_t nPageIndex) override;
    void RaisePageUnloaded(const std::shared_ptr<PDFDoc>& pPdfDoc,
                           std::int32_t nPageIndex) override;
    void RaisePageFailure(std::int32_t nPageIndex) override;
    void RaiseSaveProgress(float fDone) override;
    void RaiseRenderPage(const std::shared_ptr<RenderPageEventArgs>& pArgs) override;

    PDFViewCtrl();
    void OnApplyTemplate() override;
    void OnLoaded();
    void OnUnloaded();

    // What every operation holds for its length; raises when disposed.
    std::shared_ptr<PDFViewCtrl> Enter();
    std::shared_ptr<PDFViewCtrl> Self();
    std::shared_ptr<IViewerOwner> AsViewerOwner();
    template <class F>
    void ForEachEvent(F fnVisit);
    void LetHandlersGo();
    template <class Record>
    void RaiseToConnected(ControlEvent<Record>& event, const std::shared_ptr<Record>& pRecord);

    // A command's guard and its body: `fnAnswer` gets the open document, the
    // viewer, the viewer of the open document, or the manager; without it the
    // answer is `none`.
    template <class R, class F>
    R WithDocument(R none, F fnAnswer);
    template <class F>
    void WithDocument(F fnAct);
    template <class R, class F>
    R WithViewer(R none, F fnAnswer);
    template <class F>
    void WithViewer(F fnAct);
    template <class F>
    void WithShown(F fnAct);
    template <class F>
    void WithManager(F fnAct);

    // Opening and closing.
    using FileTask = concurrency::task<std::shared_ptr<StorageFile>>;
    using OpenTask = concurrency::task<std::shared_ptr<VLK_DocOpenResult>>;
    concurrency::task<ErrorCode> FinishOpenFromPath(FileTask file, OpenTask opening);
    concurrency::task<ErrorCode> FinishOpen(OpenTask opening);
    ErrorCode OnOpenDocResult(const VLK_DocOpenResult& result);
    // A document that comes to a control which is disposed by then goes with it.
    void RefuseWhenDisposed(const std::shared_ptr<VLK_Document>& pDocument);
    void AttachDocument(const std::shared_ptr<VLK_Document>& pDocument);
    // False when the document was replaced while its first layout was made.
    bool ShowOpenedDocument();
    void TellAndShow(); // the attached document: the event first, then the viewer
    void ShowPasswordDialog(const std::shared_ptr<VLK_DocOpenRecord>& pRecord);
    void OpenPasswordDialog(); // once there is a window to open it in
    void GiveUpPassword();
    void CloseDocument(bool bClearViewer);
    void CloseOpenDocument();
    void ForgetPasswordOperation(const InsertDocumentPasswdwordDlgUIOprateion& operation);
    void ClearViewer();
    void RaiseOpenDoc(const std::shared_ptr<VLK_Document>& pDocument, ErrorCode nErrorCode,
                      std::int32_t nCanceled);
    std::shared_ptr<PDFViewerState> LoadViewState();
    void ShowProgressRing();
    void HideProgressRing();

    // Saving and editing. `pSave` is held until the save has ended.
    using CommandTask = concurrency::task<std::shared_ptr<const Windows::UI::Popups::UICommand>>;
    concurrency::task<bool> SaveInPlace(std::shared_ptr<VLK_Document> pDocument,
                                        std::shared_ptr<void> pSave);
    static concurrency::task<bool> PromptSaveAs(std::weak_ptr<PDFViewCtrl> wkControl,
                                                std::shared_ptr<VLK_Document> pDocument,
                                                std::shared_ptr<void> pSave, CommandTask asking);
    CommandTask AskSaveAs();
    static FileTask PickSaveFile(const std::weak_ptr<PDFViewCtrl>& wkControl,
                                 const VLK_Document& document);
    void GiveUpSavePrompt();
    concurrency::task<bool> FinishSaveAs(std::shared_ptr<VLK_Document> pDocument,
                                         std::shared_ptr<void> pSave,
                                         std::shared_ptr<StorageFile> pFile);
    concurrency::task<void> FinishEdit(std::shared_ptr<VLK_Document> pDocument,
                                       std::int32_t nPageIndex, concurrency::task<void> editing);

    // Commands.
    std::shared_ptr<IPDFViewer> Viewer() const;         // empty without manager or viewer
    std::shared_ptr<VLK_Document> OpenDocument() const; // empty also while it is being closed
    std::shared_ptr<Windows::UI::Xaml::Controls::SwapChainPanel> CanvasPanel() const;
    Rect GetVisibleCanvasRect();
    bool IsJumpNeeded(std::int32_t nPageIndex);
    void LayOutAt(double dbScale);                            // the current page anew
    static void CheckFinite(double dbFirst, double dbSecond); // raises invalid argument
    std::shared_ptr<PDFViewCanvas> Canvas() const;

    // Forwarding of input to the host's sink.
    void CompleteGestureWhenOff();
    void ApplyManipulationMode();
    void ConnectPanel();
    void ConnectManipulation();
    void ConnectPointer();
    template <class Args>
    void Forward(Windows::Foundation::Event<Args&>& event,
                 void (IUIExtensionsEvents::*fnOperation)(const IUIExtensionsEvents::Sender&,
                                                          Args&));
    void ForwardCompositionScale();
    void ForwardSize();

    std::shared_ptr<IUIExtensionsEvents> m_pExtensionsManager;
    std::shared_ptr<PDFViewerManager> m_pPageViewMgr;
    std::shared_ptr<VelkoViewControl> m_pViewControl;
    std::shared_ptr<VLK_Document> m_pDocument;
    std::int32_t m_nLayoutMode = 1;
    std::int32_t m_nZoomMode = 0;
    std::shared_ptr<Grid> m_pLayout;
    std::shared_ptr<Windows::UI::Xaml::FrameworkElement> m_pAppBar;
    std::shared_ptr<Windows::UI::Xaml::FrameworkElement> m_pProgressRing;
    std::shared_ptr<PDFViewerState> m_pViewerState;

    // The ring's state, also while there is no template to show it.
    bool m_bProgressRingShown = false;
    bool m_bIsCanScrollPageViewEnabled = true;
    bool m_bIsPasswordDialogEnabled = true;
    // The document whose closing events run; it is not closed twice.
    std::shared_ptr<VLK_Document> m_pClosingDocument;
    std::shared_ptr<InsertDocumentPasswdwordDlgUIOprateion> m_pPasswordOperation;
    SaveCheck m_fnSaveCheck;
    std::unique_ptr<Windows::UI::Popups::MessageDialog> m_pSaveQuestion;
    std::unique_ptr<Windows::Storage::Pickers::FileSavePicker> m_pSavePicker;
    std::atomic<bool> m_bDisposed{false}; // render workers raise events
};

}
