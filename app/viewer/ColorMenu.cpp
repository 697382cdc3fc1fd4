#include "app/viewer/ColorMenu.h"

#include <QColorDialog>
#include <utility>

namespace velko::viewer {

using velko::common::ScanColors;
using vkit::PageColors;
using vkit::VelkoPdfView;

namespace {

const PageColors kSepia{QColor(246, 236, 214), QColor(66, 51, 36)};
const PageColors kGrey{QColor(204, 204, 204), QColor(24, 24, 24)};

}

ColorMenu::ColorMenu(VelkoPdfView& view, QAction* pNight, QWidget* pParent)
    : QMenu("Page &colours", pParent), m_view(view), m_pPresets(new QActionGroup(this)) {
    m_pPresets->setExclusionPolicy(QActionGroup::ExclusionPolicy::ExclusiveOptional);
    AddPreset("&White", vkit::DayPageColors());
    AddPreset("&Sepia", kSepia);
    AddPreset("&Grey", kGrey);
    addAction(m_pPresets->addAction(pNight));
    AddPreset("&Dim, for a dark room", vkit::DimPageColors());
    addSeparator();
    AddOwn("Own &page colour…", &PageColors::background);
    AddOwn("Own &text colour…", &PageColors::foreground);
    AddScans();
    connect(this, &QMenu::aboutToShow, this, &ColorMenu::FollowView);
}

void ColorMenu::AddPreset(const QString& strName, const PageColors& colors) {
    QAction* const pAction = addAction(strName);
    pAction->setCheckable(true);
    pAction->setData(QVariantList{colors.background, colors.foreground});
    m_pPresets->addAction(pAction);
    connect(pAction, &QAction::triggered, this, [this, colors] { m_view.SetColors(colors); });
}

void ColorMenu::AddOwn(const QString& strName, QColor PageColors::*pColor) {
    QAction* const pAction = addAction(strName);
    connect(pAction, &QAction::triggered, this,
            [this, strName, pColor] { AskFor(QString(strName).remove('&').remove("…"), pColor); });
}

void ColorMenu::AddScans() {
    QMenu* const pMenu = addMenu("S&canned pages");
    m_pScans = new QActionGroup(pMenu);
    for (const auto& [eColors, szText] :
         {std::pair{ScanColors::Turned, "&In these colours"},
          std::pair{ScanColors::Dimmed, "&Dimmed"}, std::pair{ScanColors::Left, "&As they are"}}) {
        QAction* const pAction = m_pScans->addAction(pMenu->addAction(szText));
        pAction->setCheckable(true);
        pAction->setData(static_cast<int>(eColors));
        connect(pAction, &QAction::triggered, this,
                [this, eColors = eColors] { m_view.SetScanColors(eColors); });
    }
}

// The pages show each colour that is tried; giving up brings the old one back.
void ColorMenu::AskFor(const QString& strTitle, QColor PageColors::*pColor) {
    const PageColors before = m_view.Colors();
    auto* const pDialog = new QColorDialog(before.*pColor, parentWidget());
    pDialog->setAttribute(Qt::WA_DeleteOnClose);
    pDialog->setWindowTitle(strTitle);
    const auto fnTry = [this, before, pColor](const QColor& color) {
        PageColors colors = before;
        colors.*pColor = color;
        m_view.SetColors(colors);
    };
    connect(pDialog, &QColorDialog::currentColorChanged, this, fnTry);
    connect(pDialog, &QDialog::rejected, this, [this, before] { m_view.SetColors(before); });
    pDialog->show(); // the pages beside it can be scrolled meanwhile
}

void ColorMenu::FollowView() {
    const PageColors now = m_view.Colors();
    for (QAction* const pAction : m_pScans->actions()) {
        pAction->setChecked(pAction->data().toInt() == static_cast<int>(m_view.ScanColors()));
    }
    for (QAction* const pAction : actions()) {
        const QVariantList colors = pAction->data().toList();
        if (!colors.isEmpty()) {
            pAction->setChecked(colors[0].value<QColor>() == now.background &&
                                colors[1].value<QColor>() == now.foreground);
        }
    }
}

}
