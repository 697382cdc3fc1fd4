// What a reader changes of the shown document: marks over its text and notes on its
// pages, undone and done again.
//
// Where the engine changes nothing, or the document forbids it, or the text of the pages
// is shown set anew, there are no tools; `WhyNot` says it.
//
// Lifetime: goes before the view's control, window and what else it is given.
// Threads: UI thread only. Units: places in the window in Qt's units.
// Errors: nothing is raised; `Failed` tells in words for the reader.
#pragma once

#include <QColor>
#include <QObject>
#include <QPointF>
#include <QString>
#include <map>
#include <memory>
#include <optional>

#include "platform/foundation/Event.h"
#include "widget/ShapeOverlay.h"
#include "widget/edit/DocEdits.h"
#include "widget/edit/EditTools.h"
#include "widget/edit/PageAnnots.h"
#include "widget/text/PageTexts.h"

namespace velko::vkit {

class NoteBox;
class PageLinks;

class ViewEdits : public QObject {
    Q_OBJECT

public:
    using Tool = EditTools::Tool;

    struct Parts {
        std::shared_ptr<PDFViewCtrl> pControl;
        Platform::Qt::QtElementWindow& window;
        PointerShape& shape;
        PageLinks& links; // which go before marks under them
        PageTexts& texts;
        std::function<void(double dbX, double dbY)> fnScroll;
    };

    // A note is written in a child of `pView`.
    ViewEdits(Parts parts, QWidget* pView);
    ~ViewEdits() override;

    // --- tools ---
    bool IsPossible() const { return WhyNot().isEmpty(); }
    QString WhyNot() const; // empty: it is possible
    Tool CurrentTool() const { return m_pTools->Current(); }
    void TakeTool(Tool eTool); // None where no tool is possible, which `Refused` tells
    QColor MarkColor() const { return m_markColor; }
    // As the tool does, of places that are known.
    void Highlight(const std::map<std::int32_t, MarkDrag::Quads>& pages);

    // --- what is chosen, by a tap or here ---
    bool ChooseAt(QPointF ptWindow); // false: nothing there; what was chosen is left
    bool HasChosen() const { return m_chosen.has_value(); }
    bool IsMarkChosen() const; // one that has a colour to choose
    void DeleteChosen();
    void WriteChosen(); // its text, in the box
    void PaintChosen(const QColor& color);

    // --- history ---
    bool CanUndo() const { return IsPossible() && m_pEdits->History().ToUndo() != nullptr; }
    bool CanRedo() const { return IsPossible() && m_pEdits->History().ToRedo() != nullptr; }
    QString UndoName() const; // such as "highlight"
    QString RedoName() const;
    void Undo();
    void Redo();
    bool IsModified() const; // what is being written included

    // What is being written becomes a part of the document.
    void FinishWriting();
    DocEdits& Edits() const { return *m_pEdits; }

    // The pages have moved, or others are shown.
    void Update();

signals:
    void Changed(); // the tool, what is chosen, or the history
    void Refused(const QString& strReason);
    void Failed(const std::exception_ptr& pError);

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    struct Chosen {
        std::int32_t nPage = 0;
        PageAnnots::Annot annot;
    };
    // A note that is not there yet.
    struct Draft {
        std::int32_t nPage = 0;
        velko::common::vxbase::RectF rc;
    };
    // What the pages do not show yet.
    struct Coming {
        std::map<std::int32_t, MarkDrag::Quads> pages;
        QColor color;
        std::size_t nPagesLeft = 0; // whose edits are under way
    };

    void Mark(const MarkDrag::Marks& marks);
    void PutNote(const PagePoint& point);
    void OnTapped(Windows::Foundation::Point ptCanvas);
    void OnPageEdited(int nPage);
    void OnAnnotsRead(int nPage);
    void OnWritten(const QString& strText);
    void Choose(std::optional<Chosen> chosen);
    void Change(velko::pdf::AnnotRecord after, const std::string& strName);
    void OpenBox(const QString& strTitle, const QString& strText);
    void PlaceBox();
    void ReadAhead();
    void ShowTip(QPointF ptWindow, QPoint ptGlobal);
    bool IsLinkAt(const PagePoint& point) const;
    std::vector<ShapeOverlay::Shape> ShapesOn(std::int32_t nPage) const;

    const std::shared_ptr<PDFViewCtrl> m_pControl;
    Platform::Qt::QtElementWindow& m_window;
    PageLinks& m_links;
    PagePlaces m_places;
    PageTexts& m_texts;
    PageAnnots m_annots;
    std::unique_ptr<DocEdits> m_pEdits;
    std::unique_ptr<EditTools> m_pTools;
    std::unique_ptr<ShapeOverlay> m_pOverlay;
    NoteBox* m_pBox = nullptr; // the view's child, when first needed
    QWidget* const m_pView;
    Windows::Foundation::EventRegistrationToken m_tapToken;
    std::optional<Chosen> m_chosen;
    std::optional<Draft> m_draft;
    std::vector<Coming> m_coming;
    std::optional<QPointF> m_tapped; // where annotations are read
    QColor m_markColor;
};

}
