#include "widget/ReadingMode.h"

#include "control/PDFViewCtrl.h"
#include "settings/AppConfig.h"
#include "viewers/core/Modes.h"

namespace velko::vkit {

namespace {

constexpr double kFirstScale = 2.5; // a text of ten points in letters of 25 pixels

// Some ninety letters of a text of ten points: more are hard to follow.
constexpr double kWidestLine = 420.0;

}

ReadingMode::ReadingMode(PDFViewCtrl& control) : m_control(control) {
    m_control.TextStyle({.bUsesPageColors = true, .dbWidestLine = kWidestLine});
}

bool ReadingMode::IsOn() const {
    return m_control.GetPageLayoutMode() == LayoutMode::kReflow;
}

double ReadingMode::FirstScale(double dbPixelRatio) const {
    const double dbChosen = AppConfig::ReflowTextScale();
    return dbChosen > 0.0 ? dbChosen : kFirstScale * dbPixelRatio;
}

void ReadingMode::NoteScale() {
    const double dbBefore = m_dbNoted;
    m_dbNoted = IsOn() ? m_control.GetScale() : 0.0;
    if (dbBefore > 0.0 && m_dbNoted > 0.0 && m_dbNoted != dbBefore) {
        AppConfig::ReflowTextScale(m_dbNoted);
    }
}

bool ReadingMode::ShowsPictures() const {
    return m_control.TextStyle().bShowPicture;
}

void ReadingMode::ShowPictures(bool bShow) {
    ReflowStyle style = m_control.TextStyle();
    style.bShowPicture = bShow;
    m_control.TextStyle(style);
}

std::optional<ViewKeeper> ReadingMode::Place() const {
    const auto seen = ViewKeeper::Remember(m_control);
    return seen ? seen : m_place;
}

void ReadingMode::KeepPages() {
    m_pages = {m_control.GetScale(), m_control.GetRotate()};
}

}
