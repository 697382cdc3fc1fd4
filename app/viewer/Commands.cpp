#include "app/viewer/Commands.h"

#include <QActionGroup>
#include <algorithm>
#include <vector>

#include "app/viewer/keys/OwnKeys.h"
#include "widget/edit/DocSaver.h"
#include "widget/edit/ViewEdits.h"
#include "widget/text/ViewSelection.h"

namespace velko::viewer {

using vkit::VelkoPdfView;
using Fit = VelkoPdfView::Fit;
using Layout = VelkoPdfView::Layout;
using Tool = vkit::ViewEdits::Tool;

namespace {

enum class Needs { Nothing, Document };

struct Entry {
    Command eCommand;
    const char* szText;
    const char* szKeys; // several with a blank between them
    Needs eNeeds = Needs::Document;
    void (*fnRun)(VelkoPdfView&) = nullptr;           // empty: the window's to carry out
    bool (*fnChecked)(const VelkoPdfView&) = nullptr; // empty: not checkable
    bool (*fnCan)(const VelkoPdfView&) = nullptr;     // empty: whenever its need is met
};

template <Fit eFit>
void SetFit(VelkoPdfView& view) {
    view.SetFit(eFit);
}
template <Fit eFit>
bool HasFit(const VelkoPdfView& view) {
    return view.FitMode() == eFit;
}
template <Layout eLayout>
void SetLayout(VelkoPdfView& view) {
    view.SetLayoutMode(eLayout);
}
template <Layout eLayout>
bool HasLayout(const VelkoPdfView& view) {
    return view.LayoutMode() == eLayout;
}
template <void (VelkoPdfView::*fnMember)()>
void Run(VelkoPdfView& view) {
    (view.*fnMember)();
}
template <int nTurns>
void Rotate(VelkoPdfView& view) {
    view.RotateBy(nTurns);
}

template <Tool eTool>
void TakeTool(VelkoPdfView& view) {
    view.Edits().TakeTool(view.Edits().CurrentTool() == eTool ? Tool::None : eTool);
}
template <Tool eTool>
bool HasTool(const VelkoPdfView& view) {
    return view.Edits().CurrentTool() == eTool;
}

// What is selected, or with the tool what is dragged over.
void Highlight(VelkoPdfView& view) {
    if (view.Selection().IsEmpty()) {
        TakeTool<Tool::Highlight>(view);
    } else {
        view.HighlightSelection();
    }
}

bool CanSave(const VelkoPdfView& view) {
    return view.IsModified() && !view.Saver().IsSaving();
}
bool HasChosen(const VelkoPdfView& view) {
    return view.Edits().HasChosen();
}
bool CanChange(const VelkoPdfView& view) {
    return HasChosen(view) && view.Edits().IsPossible();
}
bool ShowsPages(const VelkoPdfView& view) {
    return !view.IsReading();
}
bool IsAfterStart(const VelkoPdfView& view) {
    return view.CurrentPage() > 0;
}
bool IsBeforeEnd(const VelkoPdfView& view) {
    return view.CurrentPage() + 1 < view.PageCount();
}
bool CanZoomIn(const VelkoPdfView& view) {
    return view.Zoom() < view.MostZoom();
}
bool CanZoomOut(const VelkoPdfView& view) {
    return view.Zoom() > view.LeastZoom();
}

const std::vector<Entry>& Entries() {
    using View = VelkoPdfView;
    static const std::vector<Entry> s_entries{
        {Command::Open, "&Open…", "Ctrl+O", Needs::Nothing},
        {Command::OpenInWindow, "Open in a ne&w window…", "Ctrl+Shift+O", Needs::Nothing},
        {Command::NewWindow, "&New window", "Ctrl+N", Needs::Nothing},
        {Command::Save, "&Save", "Ctrl+S", Needs::Document, nullptr, nullptr, CanSave},
        {Command::SaveAs, "Save &as…", "Ctrl+Shift+S", Needs::Document, nullptr, nullptr,
         [](const View& view) { return !view.Saver().IsSaving(); }},
        {Command::Properties, "P&roperties…", "Alt+Return"},
        {Command::Reload, "Re&load", "Ctrl+F5 Refresh"},
        {Command::Close, "&Close", "Ctrl+W", Needs::Nothing},
        {Command::Quit, "&Quit", "Ctrl+Q", Needs::Nothing},
        {Command::Undo, "&Undo", "Ctrl+Z", Needs::Document, [](View& view) { view.Edits().Undo(); },
         nullptr, [](const View& view) { return view.Edits().CanUndo(); }},
        {Command::Redo, "&Redo", "Ctrl+Shift+Z Ctrl+Y", Needs::Document,
         [](View& view) { view.Edits().Redo(); }, nullptr,
         [](const View& view) { return view.Edits().CanRedo(); }},
        {Command::Copy, "&Copy", "Ctrl+C Ctrl+Ins", Needs::Document,
         [](View& view) { view.Selection().Copy(); }, nullptr,
         [](const View& view) { return !view.Selection().IsEmpty(); }},
        {Command::SelectAll, "Select &all", "Ctrl+A", Needs::Document,
         [](View& view) { view.Selection().SelectAll(); }},
        {Command::Highlight, "&Highlight text", "H", Needs::Document, Highlight,
         HasTool<Tool::Highlight>, ShowsPages},
        {Command::Note, "Put a &note", "M", Needs::Document, TakeTool<Tool::Note>,
         HasTool<Tool::Note>, ShowsPages},
        {Command::WriteMark, "&Text of the mark…", "F2", Needs::Document,
         [](View& view) { view.Edits().WriteChosen(); }, nullptr, HasChosen},
        {Command::DeleteMark, "&Delete the mark", "Del", Needs::Document,
         [](View& view) { view.Edits().DeleteChosen(); }, nullptr, CanChange},
        {Command::Find, "&Find…", "Ctrl+F /"},
        {Command::FindNext, "Find &next", "F3"},
        {Command::FindPrevious, "Find pre&vious", "Shift+F3"},
        {Command::PreviousPage, "&Previous page", "Ctrl+PgUp", Needs::Document,
         Run<&View::GotoPrevPage>, nullptr, IsAfterStart},
        {Command::NextPage, "&Next page", "Ctrl+PgDown", Needs::Document, Run<&View::GotoNextPage>,
         nullptr, IsBeforeEnd},
        {Command::FirstPage, "&First page", "Ctrl+Home", Needs::Document,
         Run<&View::GotoFirstPage>},
        {Command::LastPage, "&Last page", "Ctrl+End", Needs::Document, Run<&View::GotoLastPage>},
        {Command::EnterPage, "&Go to page…", "Ctrl+L Ctrl+G"},
        {Command::Back, "&Back", "Alt+Left", Needs::Document, Run<&View::GoBack>, nullptr,
         [](const View& view) { return view.CanGoBack(); }},
        {Command::Forward, "For&ward", "Alt+Right", Needs::Document, Run<&View::GoForward>, nullptr,
         [](const View& view) { return view.CanGoForward(); }},
        {Command::ZoomIn, "Zoom &in", "Ctrl++ Ctrl+=", Needs::Document, Run<&View::ZoomIn>, nullptr,
         CanZoomIn},
        {Command::ZoomOut, "Zoom &out", "Ctrl+-", Needs::Document, Run<&View::ZoomOut>, nullptr,
         CanZoomOut},
        {Command::ActualSize, "&100 %", "Ctrl+0", Needs::Document, Run<&View::ZoomToActualSize>},
        {Command::FitPage, "Fit &page", "Ctrl+2 F", Needs::Document, SetFit<Fit::Page>,
         HasFit<Fit::Page>, ShowsPages},
        {Command::FitWidth, "Fit &width", "Ctrl+1 W", Needs::Document, SetFit<Fit::Width>,
         HasFit<Fit::Width>, ShowsPages},
        {Command::FitHeight, "Fit &height", "Ctrl+3", Needs::Document, SetFit<Fit::Height>,
         HasFit<Fit::Height>, ShowsPages},
        {Command::RotateRight, "Rotate &right", "R Ctrl+R", Needs::Document, Rotate<1>, nullptr,
         ShowsPages},
        {Command::RotateLeft, "Rotate &left", "Shift+R Ctrl+Shift+R", Needs::Document, Rotate<-1>,
         nullptr, ShowsPages},
        {Command::Continuous, "&Continuous", "C", Needs::Document, SetLayout<Layout::Continuous>,
         HasLayout<Layout::Continuous>},
        {Command::SinglePage, "&One page at a time", "S", Needs::Document,
         SetLayout<Layout::SinglePage>, HasLayout<Layout::SinglePage>},
        {Command::Reading, "&Text for reading", "T Ctrl+T", Needs::Document,
         [](View& view) { view.SetReading(!view.IsReading()); }, HasLayout<Layout::Text>},
        {Command::TextPictures, "P&ictures in the text", "Shift+T", Needs::Document,
         [](View& view) { view.SetTextPictures(!view.TextPictures()); },
         [](const View& view) { return view.TextPictures(); },
         [](const View& view) { return view.IsReading(); }},
        {Command::Night, "&Night mode", "Ctrl+I", Needs::Nothing,
         [](View& view) { view.SetNightMode(!view.NightMode()); },
         [](const View& view) { return view.NightMode(); }},
        {Command::FullScreen, "&Full screen", "F11", Needs::Nothing},
        {Command::Present, "P&resentation", "F5"},
        {Command::Bookmark, "Add or remove a &bookmark", "Ctrl+B"},
        {Command::SidePanel, "&Side panel", "F9"},
        {Command::SwapKeys, "Between the panel and the pages", "F6 Ctrl+F6"},
        {Command::Menu, "Menu", "F10", Needs::Nothing},
        {Command::PageMenu, "Menu of the page", "Shift+F10", Needs::Nothing},
        {Command::Keys, "&Keys", "F1 Ctrl+?", Needs::Nothing},
        {Command::About, "&About Velko Viewer", "", Needs::Nothing},
    };
    return s_entries;
}

QList<QKeySequence> KeysOf(const Entry& entry) {
    QList<QKeySequence> keys;
    for (const QString& strKey : QString::fromLatin1(entry.szKeys).split(' ', Qt::SkipEmptyParts)) {
        keys << QKeySequence(strKey);
    }
    return keys;
}

const Entry& EntryOf(Command eCommand) {
    return *std::find_if(Entries().begin(), Entries().end(),
                         [eCommand](const Entry& entry) { return entry.eCommand == eCommand; });
}

// What is shown as in force by the window's word.
bool IsTheWindows(Command eCommand) {
    return eCommand == Command::FullScreen || eCommand == Command::SidePanel;
}

// What goes on while its key is held; all else happens once for each press, since a key
// that is held a little long would undo it, or do it to the next document.
bool IsStep(Command eCommand) {
    switch (eCommand) {
        case Command::PreviousPage:
        case Command::NextPage:
        case Command::ZoomIn:
        case Command::ZoomOut:
        case Command::FindNext:
        case Command::FindPrevious:
        case Command::Undo:
        case Command::Redo:
        case Command::Back:
        case Command::Forward:
            return true;
        default:
            return false;
    }
}

// Of those of which one holds at most, so that menus show them so.
QActionGroup* GroupOf(QObject* pParent) {
    auto* const pGroup = new QActionGroup(pParent);
    pGroup->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    return pGroup;
}

}

Commands::Commands(VelkoPdfView& view, QWidget* pWindow) : QObject(pWindow), m_view(view) {
    for (const Entry& entry : Entries()) {
        auto* const pAction = new QAction(QString::fromUtf8(entry.szText), this);
        pAction->setCheckable(entry.fnChecked != nullptr || IsTheWindows(entry.eCommand));
        pAction->setAutoRepeat(IsStep(entry.eCommand));
        m_actions[static_cast<std::size_t>(entry.eCommand)] = pAction;
        pWindow->addAction(pAction);
        connect(pAction, &QAction::triggered, this, [this, &entry] {
            if (entry.fnRun != nullptr) {
                emit Done(); // before: what the command says itself stays
                entry.fnRun(m_view);
            } else {
                emit Wanted(entry.eCommand);
            }
            FollowView(); // a click has turned the mark of what may not have changed
        });
    }
    for (const auto& choices :
         {std::vector{Command::FitPage, Command::FitWidth, Command::FitHeight},
          std::vector{Command::Continuous, Command::SinglePage, Command::Reading}}) {
        QActionGroup* const pGroup = GroupOf(this);
        for (const Command eCommand : choices) {
            pGroup->addAction((*this)[eCommand]);
        }
    }
    ReadKeys();
    connect(&m_view, &VelkoPdfView::ViewChanged, this, &Commands::FollowView);
    connect(&m_view, &VelkoPdfView::StateChanged, this, &Commands::FollowView);
    FollowView();
}

void Commands::FollowView() {
    const bool bShown = m_view.PageCount() > 0;
    for (const Entry& entry : Entries()) {
        QAction* const pAction = (*this)[entry.eCommand];
        pAction->setEnabled(entry.eNeeds == Needs::Nothing ||
                            (bShown && (entry.fnCan == nullptr || entry.fnCan(m_view))));
        if (entry.fnChecked != nullptr) {
            pAction->setChecked((bShown || entry.eNeeds == Needs::Nothing) &&
                                entry.fnChecked(m_view));
        }
    }
    NameSteps();
}

void Commands::NameSteps() {
    const auto fnName = [this](Command eCommand, const QString& strText, const QString& strStep) {
        (*this)[eCommand]->setText(strStep.isEmpty() ? strText : strText + ' ' + strStep);
    };
    fnName(Command::Undo, QStringLiteral("&Undo"), m_view.Edits().UndoName());
    fnName(Command::Redo, QStringLiteral("&Redo"), m_view.Edits().RedoName());
}

void Commands::SetSidePanel(bool bShown) {
    (*this)[Command::SidePanel]->setChecked(bShown);
}

void Commands::SetFullScreen(bool bFull) {
    (*this)[Command::FullScreen]->setChecked(bFull);
}

// --- keys ------------------------------------------------------------------

QString Commands::NameOf(Command eCommand) {
    return QString::fromUtf8(EntryOf(eCommand).szText).remove('&').remove("…");
}

Commands::Keys Commands::FirstKeys(Command eCommand) {
    return viewer::KeysOf(EntryOf(eCommand));
}

std::optional<Command> Commands::HolderOf(const QKeySequence& key) const {
    for (const Entry& entry : Entries()) {
        if (KeysOf(entry.eCommand).contains(key)) {
            return entry.eCommand;
        }
    }
    return std::nullopt;
}

void Commands::KeepKeys(Command eCommand, const Keys& keys) {
    if (keys == FirstKeys(eCommand)) {
        OwnKeys::Forget(eCommand);
    } else {
        OwnKeys::Keep(eCommand, keys);
    }
}

void Commands::SetKeys(Command eCommand, const Keys& keys) {
    for (const QKeySequence& key : keys) {
        const auto eHolder = HolderOf(key);
        if (eHolder && *eHolder != eCommand) {
            Keys left = KeysOf(*eHolder);
            left.removeAll(key);
            KeepKeys(*eHolder, left);
        }
    }
    KeepKeys(eCommand, keys);
    ReadKeys();
    emit KeysChanged();
}

void Commands::ResetKeys() {
    OwnKeys::ForgetAll();
    ReadKeys();
    emit KeysChanged();
}

void Commands::ReadKeys() {
    for (const Entry& entry : Entries()) {
        (*this)[entry.eCommand]->setShortcuts(
            OwnKeys::Of(entry.eCommand).value_or(viewer::KeysOf(entry)));
    }
}

}
