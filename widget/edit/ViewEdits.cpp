#include "widget/edit/ViewEdits.h"

#include <QDateTime>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "control/PDFViewCtrl.h"
#include "document/engine/PDFDoc.h"
#include "platform/qt/QtElementWindow.h"
#include "viewers/core/Modes.h"
#include "widget/PageLinks.h"
#include "widget/edit/NoteBox.h"

namespace velko::vkit {

using velko::common::vxbase::RectF;
using velko::pdf::AnnotRecord;
using velko::pdf::IAnnotEditor;
using velko::pdf::TextQuad;

namespace {

constexpr std::uint32_t kMayAnnotate = 1U << 5U; // of `PDFDoc::GetUserPermissions`
constexpr QColor kFirstMarkColor(255, 232, 60);
constexpr std::uint32_t kNoteColor = 0xFFD54A;
constexpr float kNoteSide = 20.0F; // points
constexpr int kComingAlpha = 110;  // of 255, of a mark that is not on the page yet
constexpr int kLongestTip = 600;   // characters

std::uint32_t ToRgb(const QColor& color) {
    return color.rgb() & 0xFFFFFFU;
}

AnnotRecord MakeRecord(std::int32_t nType) {
    AnnotRecord record;
    record.nType = nType;
    record.nCreated = record.nModified = QDateTime::currentSecsSinceEpoch();
    return record;
}

QString NameOf(const AnnotRecord& record) {
    return record.nType == AnnotType::kNote        ? QStringLiteral("note")
           : record.nType == AnnotType::kHighlight ? QStringLiteral("highlight")
                                                   : QStringLiteral("mark");
}

EditStep MakeStep(const QString& strName, AnnotEdit edit) {
    EditStep step;
    step.strName = strName.toStdString();
    step.edits.push_back(std::move(edit));
    return step;
}

std::vector<TextQuad> PlacesOf(const AnnotRecord& record) {
    return record.quads.empty() ? std::vector{ShapeOverlay::QuadOf(record.rcArea)} : record.quads;
}

}

ViewEdits::ViewEdits(Parts parts, QWidget* pView)
    : m_pControl(std::move(parts.pControl)),
      m_window(parts.window),
      m_links(parts.links),
      m_places(*m_pControl, m_window),
      m_texts(parts.texts),
      m_annots(*m_pControl),
      m_pView(pView),
      m_markColor(kFirstMarkColor) {
    m_pEdits = std::make_unique<DocEdits>([pControl = m_pControl](int nPage, DocEdits::Edit fn) {
        return pControl->EditPage(nPage, std::move(fn));
    });
    connect(m_pEdits.get(), &DocEdits::Changed, this, &ViewEdits::Changed);
    connect(m_pEdits.get(), &DocEdits::PageEdited, this, &ViewEdits::OnPageEdited);
    connect(m_pEdits.get(), &DocEdits::Failed, this, [this](const std::exception_ptr& pError) {
        m_coming.clear();
        m_pControl->UpdateViewer();
        emit Failed(pError);
    });
    connect(&m_annots, &PageAnnots::Read, this, &ViewEdits::OnAnnotsRead);
    m_window.installEventFilter(this);
    EditTools::Hands hands;
    hands.fnMark = [this](const MarkDrag::Marks& marks) { Mark(marks); };
    hands.fnPutNote = [this](const PagePoint& point) { PutNote(point); };
    hands.fnNoText = [this] {
        emit Refused(QStringLiteral(
            "There is no text to mark here. A note can be put on any place of a page."));
    };
    hands.fnRedraw = [this] { m_pControl->UpdateViewer(); };
    hands.fnScroll = std::move(parts.fnScroll);
    hands.fnToolChanged = [this] { emit Changed(); };
    m_pTools =
        std::make_unique<EditTools>(m_window, m_places, m_texts, parts.shape, std::move(hands));
    m_pOverlay = std::make_unique<ShapeOverlay>(
        *m_pControl, [this] { return m_window.devicePixelRatioF(); },
        [this](std::int32_t nPage) { return ShapesOn(nPage); });
    m_tapToken = m_window.Panel()->Tapped.add([this](auto& args) { OnTapped(args.Position); });
}

ViewEdits::~ViewEdits() {
    m_window.Panel()->Tapped.remove(m_tapToken);
}

// --- tools -----------------------------------------------------------------

QString ViewEdits::WhyNot() const {
    const auto pDocument = m_pControl->GetPDFDoc();
    if (!pDocument || !m_pControl->HasViewer()) {
        return QStringLiteral("There is no document to mark.");
    }
    if (m_pControl->GetPageLayoutMode() == LayoutMode::kReflow) {
        return QStringLiteral("Pages can be marked, text set for reading cannot: press T first.");
    }
    if (!std::dynamic_pointer_cast<IAnnotEditor>(pDocument)) {
        return QStringLiteral("Documents of this kind cannot be changed here.");
    }
    if ((pDocument->GetUserPermissions() & kMayAnnotate) == 0) {
        return QStringLiteral(
            "Whoever made this document does not allow notes and marks in it: open it with the "
            "owner's password to make some.");
    }
    return {};
}

void ViewEdits::TakeTool(Tool eTool) {
    const QString strWhyNot = eTool == Tool::None ? QString() : WhyNot();
    if (!strWhyNot.isEmpty()) {
        emit Refused(strWhyNot);
        return;
    }
    FinishWriting();
    Choose(std::nullopt);
    m_pTools->Take(eTool);
}

void ViewEdits::Highlight(const std::map<std::int32_t, MarkDrag::Quads>& pages) {
    if (const QString strWhyNot = WhyNot(); !strWhyNot.isEmpty()) {
        emit Refused(strWhyNot);
    } else if (!pages.empty()) {
        FinishWriting();
        Mark({pages, true, true});
    }
}

void ViewEdits::Mark(const MarkDrag::Marks& marks) {
    EditStep step;
    step.strName = "highlight";
    for (const auto& [nPage, quads] : marks.pages) {
        AnnotRecord record = MakeRecord(AnnotType::kHighlight);
        record.quads = quads;
        record.nColor = ToRgb(m_markColor);
        step.edits.push_back({AnnotEdit::Kind::Add, nPage, 0, {}, std::move(record)});
    }
    m_coming.push_back({marks.pages, m_markColor, marks.pages.size()});
    m_pEdits->Do(std::move(step));
}

// The tool is put away: of notes there is one at a time.
void ViewEdits::PutNote(const PagePoint& point) {
    m_pTools->Take(Tool::None);
    FinishWriting();
    m_draft = Draft{point.nPage, m_places.SquareAt(point, kNoteSide)};
    OpenBox(QStringLiteral("New note"), {});
}

// --- what is chosen --------------------------------------------------------

bool ViewEdits::IsLinkAt(const PagePoint& point) const {
    const auto pLinks = m_links.Find(point.nPage);
    return pLinks && std::any_of(pLinks->begin(), pLinks->end(), [&](const PageLinks::Link& link) {
               return PageAnnots::IsWithin(link.rcArea, point.pt);
           });
}

void ViewEdits::OnTapped(Windows::Foundation::Point ptCanvas) {
    const double dbRatio = m_window.devicePixelRatioF();
    const QPointF pt(ptCanvas.X * m_pControl->CompositionScaleX() / dbRatio,
                     ptCanvas.Y * m_pControl->CompositionScaleY() / dbRatio);
    const auto point = m_places.At(pt);
    FinishWriting();
    if (!point || CurrentTool() != Tool::None || IsLinkAt(*point)) {
        Choose(std::nullopt);
        return;
    }
    m_tapped = m_annots.Find(point->nPage) ? std::nullopt : std::optional(pt);
    if (ChooseAt(pt) && m_chosen->annot.record.nType == AnnotType::kNote) {
        WriteChosen();
    }
}

bool ViewEdits::ChooseAt(QPointF ptWindow) {
    const auto point = m_places.At(ptWindow);
    const auto annot = point ? m_annots.At(*point) : std::nullopt;
    Choose(annot ? std::optional(Chosen{point->nPage, *annot}) : std::nullopt);
    return m_chosen.has_value();
}

void ViewEdits::Choose(std::optional<Chosen> chosen) {
    const bool bSame =
        m_chosen && chosen ? m_chosen->annot.nId == chosen->annot.nId : !m_chosen && !chosen;
    m_chosen = std::move(chosen);
    if (!bSame) {
        m_pControl->UpdateViewer();
        emit Changed();
    }
}

bool ViewEdits::IsMarkChosen() const {
    return m_chosen && m_chosen->annot.record.nType == AnnotType::kHighlight;
}

void ViewEdits::DeleteChosen() {
    if (!m_chosen || !IsPossible()) {
        return;
    }
    const auto [nPage, annot] = *m_chosen;
    Choose(std::nullopt);
    m_pEdits->Do(MakeStep(QStringLiteral("deleting of the %1").arg(NameOf(annot.record)),
                          {AnnotEdit::Kind::Remove, nPage, annot.nId, annot.record, {}}));
}

void ViewEdits::Change(AnnotRecord after, const std::string& strName) {
    const auto [nPage, annot] = *m_chosen;
    after.nModified = QDateTime::currentSecsSinceEpoch();
    m_pEdits->Do(MakeStep(QString::fromStdString(strName),
                          {AnnotEdit::Kind::Change, nPage, annot.nId, annot.record, after}));
    m_chosen->annot.record = std::move(after);
}

// The colour is that of the marks that come next, too.
void ViewEdits::PaintChosen(const QColor& color) {
    m_markColor = color;
    if (IsMarkChosen() && IsPossible() && m_chosen->annot.record.nColor != ToRgb(color)) {
        AnnotRecord after = m_chosen->annot.record;
        after.nColor = ToRgb(color);
        Change(std::move(after), "colour");
    }
}

// --- writing ---------------------------------------------------------------

void ViewEdits::WriteChosen() {
    if (m_chosen) {
        const AnnotRecord& record = m_chosen->annot.record;
        OpenBox(QStringLiteral("Text of the %1").arg(NameOf(record)),
                QString::fromStdString(record.strContents));
    }
}

void ViewEdits::OpenBox(const QString& strTitle, const QString& strText) {
    if (m_pBox == nullptr) {
        m_pBox = new NoteBox(m_pView);
        connect(m_pBox, &NoteBox::TextChanged, this, &ViewEdits::Changed);
        connect(m_pBox, &NoteBox::Finished, this, &ViewEdits::OnWritten);
        connect(m_pBox, &NoteBox::DeleteWanted, this, [this] {
            m_pControl->UpdateViewer();
            emit Changed();
            if (!std::exchange(m_draft, std::nullopt)) {
                DeleteChosen();
            }
        });
    }
    PlaceBox();
    m_pBox->Open(strTitle, strText, !IsPossible());
    m_pControl->UpdateViewer();
}

void ViewEdits::PlaceBox() {
    const RectF rc = m_draft ? m_draft->rc : m_chosen ? m_chosen->annot.record.rcArea : RectF();
    const std::int32_t nPage = m_draft ? m_draft->nPage : m_chosen ? m_chosen->nPage : -1;
    if (const auto place = m_places.InWindow(nPage, rc)) {
        m_pBox->PlaceBeside(
            place->toAlignedRect().translated(m_window.mapTo(m_pView, QPoint(0, 0))));
    }
}

void ViewEdits::FinishWriting() {
    if (m_pBox != nullptr) {
        m_pBox->Finish();
    }
}

// A note in which nothing was written is none.
void ViewEdits::OnWritten(const QString& strText) {
    m_pControl->UpdateViewer();
    emit Changed();
    if (const auto draft = std::exchange(m_draft, std::nullopt)) {
        if (!strText.trimmed().isEmpty()) {
            AnnotRecord record = MakeRecord(AnnotType::kNote);
            record.rcArea = draft->rc;
            record.nColor = kNoteColor;
            record.strContents = strText.toStdString();
            m_coming.push_back(
                {{{draft->nPage, {ShapeOverlay::QuadOf(draft->rc)}}}, QColor(kNoteColor), 1});
            m_pEdits->Do(MakeStep(QStringLiteral("note"),
                                  {AnnotEdit::Kind::Add, draft->nPage, 0, {}, std::move(record)}));
        }
        return;
    }
    if (m_chosen && IsPossible() &&
        strText != QString::fromStdString(m_chosen->annot.record.strContents)) {
        AnnotRecord after = m_chosen->annot.record;
        after.strContents = strText.toStdString();
        Change(std::move(after), "text");
    }
}

// --- history ---------------------------------------------------------------

QString ViewEdits::UndoName() const {
    const EditStep* const pStep = m_pEdits->History().ToUndo();
    return pStep != nullptr ? QString::fromStdString(pStep->strName) : QString();
}

QString ViewEdits::RedoName() const {
    const EditStep* const pStep = m_pEdits->History().ToRedo();
    return pStep != nullptr ? QString::fromStdString(pStep->strName) : QString();
}

bool ViewEdits::IsModified() const {
    return m_pEdits->History().IsModified() || m_pEdits->IsBusy() ||
           (m_pBox != nullptr && m_pBox->IsChanged());
}

void ViewEdits::Undo() {
    FinishWriting();
    Choose(std::nullopt);
    if (IsPossible()) {
        m_pEdits->Undo();
    }
}

void ViewEdits::Redo() {
    FinishWriting();
    Choose(std::nullopt);
    if (IsPossible()) {
        m_pEdits->Redo();
    }
}

// --- what the page shows ---------------------------------------------------

void ViewEdits::OnPageEdited(int nPage) {
    m_annots.Renew(nPage);
    for (Coming& coming : m_coming) {
        coming.nPagesLeft -= coming.pages.count(nPage) != 0 && coming.nPagesLeft > 0 ? 1 : 0;
    }
}

// What is chosen is told as the file has it.
void ViewEdits::OnAnnotsRead(int nPage) {
    if (const auto tapped = std::exchange(m_tapped, std::nullopt)) {
        if (ChooseAt(*tapped) && m_chosen->annot.record.nType == AnnotType::kNote) {
            WriteChosen();
        }
    } else if (m_chosen && m_chosen->nPage == nPage && !m_pEdits->IsBusy()) {
        const auto annot = m_annots.Named(nPage, m_chosen->annot.nId);
        Choose(annot ? std::optional(Chosen{nPage, *annot}) : std::nullopt);
    }
}

void ViewEdits::Update() {
    if (!m_annots.IsSameDocument()) {
        m_chosen.reset();
        m_draft.reset();
        m_tapped.reset();
        m_coming.clear();
        if (m_pBox != nullptr && m_pBox->IsOpen()) {
            m_pBox->hide(); // what it belongs to has gone
        }
        m_pEdits->Forget();
    }
    if (CurrentTool() != Tool::None && !IsPossible()) {
        m_pTools->Take(Tool::None);
    }
    m_pTools->Update();
    ReadAhead();
    const auto nBefore = m_coming.size();
    if (m_pControl->IsSharp()) {
        std::erase_if(m_coming, [](const Coming& coming) { return coming.nPagesLeft == 0; });
    }
    if (m_coming.size() != nBefore) {
        m_pControl->UpdateViewer();
    }
    if (m_pBox != nullptr && m_pBox->IsOpen()) {
        PlaceBox();
    }
}

// What a pointer may ask for, once the pages have all that they show: reading it waits
// for the engine, as drawing does.
void ViewEdits::ReadAhead() {
    const bool bSharp = m_pControl->IsSharp();
    for (const std::int32_t nPage : m_pControl->GetVisiblePages()) {
        if (bSharp) {
            m_annots.Find(nPage);
        }
        if (CurrentTool() == Tool::Highlight) {
            m_texts.TextOf(nPage);
        }
    }
}

std::vector<ShapeOverlay::Shape> ViewEdits::ShapesOn(std::int32_t nPage) const {
    std::vector<ShapeOverlay::Shape> shapes;
    const auto fnAdd = [&](const auto& pages, QColor color) {
        if (const auto it = pages.find(nPage); it != pages.end()) {
            color.setAlpha(kComingAlpha);
            shapes.push_back({it->second, color, false});
        }
    };
    for (const Coming& coming : m_coming) {
        fnAdd(coming.pages, coming.color);
    }
    fnAdd(m_pTools->Marks().pages, m_markColor);
    if (m_draft && m_draft->nPage == nPage) {
        shapes.push_back({{ShapeOverlay::QuadOf(m_draft->rc)}, QColor(kNoteColor), false});
        shapes.push_back({{ShapeOverlay::QuadOf(m_draft->rc)}, Qt::black, true});
    }
    if (m_chosen && m_chosen->nPage == nPage) {
        shapes.push_back({PlacesOf(m_chosen->annot.record), QColor(0, 90, 200), true});
    }
    return shapes;
}

// --- input -----------------------------------------------------------------

bool ViewEdits::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    if (pEvent->type() == QEvent::ToolTip) {
        const auto& help = *static_cast<QHelpEvent*>(pEvent);
        ShowTip(help.pos(), help.globalPos());
        return true;
    }
    if (pEvent->type() != QEvent::KeyPress || !m_chosen) {
        return false;
    }
    const auto& key = *static_cast<QKeyEvent*>(pEvent);
    switch (key.key()) {
        case Qt::Key_Delete:
            DeleteChosen();
            return true;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_F2:
            WriteChosen();
            return true;
        case Qt::Key_Escape:
            Choose(std::nullopt);
            return true;
        default:
            return false;
    }
}

void ViewEdits::ShowTip(QPointF ptWindow, QPoint ptGlobal) {
    const auto point = m_places.At(ptWindow);
    const auto annot = point ? m_annots.At(*point) : std::nullopt;
    const QString strText = annot ? QString::fromStdString(annot->record.strContents) : QString();
    if (strText.isEmpty() || (m_pBox != nullptr && m_pBox->IsOpen())) {
        QToolTip::hideText();
        return;
    }
    const QString strShort =
        strText.size() > kLongestTip ? strText.left(kLongestTip) + QStringLiteral("…") : strText;
    QToolTip::showText(ptGlobal,
                       QStringLiteral("<div>%1</div>")
                           .arg(strShort.toHtmlEscaped().replace('\n', QStringLiteral("<br>"))),
                       &m_window);
}

}
