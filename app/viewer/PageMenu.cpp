#include "app/viewer/PageMenu.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QIcon>
#include <QPixmap>
#include <utility>

#include "app/viewer/MenuStyle.h"
#include "widget/LinkTarget.h"
#include "widget/edit/ViewEdits.h"
#include "widget/text/ViewSelection.h"

namespace velko::viewer {

namespace {

constexpr int kSwatch = 16; // Qt's units

// Light enough that letters under them are read.
constexpr std::pair<const char*, QRgb> kMarkColors[] = {{"&Yellow", 0xFFFFE83C},
                                                        {"&Green", 0xFFA8E59A},
                                                        {"&Blue", 0xFF9AD3FF},
                                                        {"&Pink", 0xFFFFB3D1},
                                                        {"&Orange", 0xFFFFC978}};

}

PageMenu::PageMenu(vkit::VelkoPdfView& view, const Commands& commands, const QString& strTarget,
                   QWidget* pParent)
    : QMenu(pParent) {
    AddLink(strTarget);
    AddChosen(view, commands);
    const bool bSelected = AddSelected(view, commands);
    addActions({commands[Command::Back], commands[Command::Forward]});
    addSeparator();
    addActions({commands[Command::PreviousPage], commands[Command::NextPage],
                commands[Command::EnterPage]});
    addSeparator();
    addActions({commands[Command::ZoomIn], commands[Command::ZoomOut],
                commands[Command::ActualSize], commands[Command::FitPage],
                commands[Command::FitWidth]});
    addSeparator();
    addActions({commands[Command::Continuous], commands[Command::SinglePage],
                commands[Command::Reading], commands[Command::RotateRight]});
    addSeparator();
    addAction(commands[Command::Note]);
    if (!bSelected) {
        addActions({commands[Command::Highlight], commands[Command::SelectAll]});
    }
    addSeparator();
    addActions({commands[Command::Night], commands[Command::FullScreen]});
    StyleMenu(*this);
}

bool PageMenu::AddSelected(const vkit::VelkoPdfView& view, const Commands& commands) {
    if (view.Selection().IsEmpty()) {
        return false;
    }
    addActions(
        {commands[Command::Copy], commands[Command::Highlight], commands[Command::SelectAll]});
    addSeparator();
    return true;
}

void PageMenu::AddChosen(vkit::VelkoPdfView& view, const Commands& commands) {
    if (!view.Edits().HasChosen()) {
        return;
    }
    addActions({commands[Command::WriteMark], commands[Command::DeleteMark]});
    if (view.Edits().IsMarkChosen()) {
        AddColors(view);
    }
    addSeparator();
}

void PageMenu::AddColors(vkit::VelkoPdfView& view) {
    QMenu* const pColors = addMenu("&Colour");
    pColors->setEnabled(view.Edits().IsPossible());
    for (const auto& [szName, nColor] : kMarkColors) {
        QPixmap pixmap(kSwatch, kSwatch);
        pixmap.fill(QColor(nColor));
        pColors->addAction(QIcon(pixmap), QString::fromLatin1(szName), &view,
                           [&view, nColor = nColor] { view.Edits().PaintChosen(QColor(nColor)); });
    }
}

void PageMenu::AddLink(const QString& strTarget) {
    const QUrl address(strTarget);
    if (!vkit::IsWebAddress(address)) {
        return;
    }
    addAction("&Open the link…", this, [this, address] { emit BrowseWanted(address); });
    addAction("&Copy the link's address", this, [strTarget] {
        QGuiApplication::clipboard()->setText(QString(strTarget).remove("mailto:"));
    });
    addSeparator();
}

}
