#include "widget/PageColors.h"

#include "settings/AppConfig.h"

namespace velko::vkit {

namespace {

constexpr int kDarkest = 30;    // around a black page
constexpr double kShare = 0.35; // of the page's own colour

int Mixed(int nPage) {
    return static_cast<int>(kDarkest + nPage * kShare);
}

}

bool PageColors::IsDark() const {
    return background.lightness() < foreground.lightness();
}

QColor PageColors::Around(bool bDark) const {
    constexpr QColor kUsual(224, 224, 224);
    constexpr QColor kDark(38, 38, 40);
    if (IsDark()) {
        return {Mixed(background.red()), Mixed(background.green()), Mixed(background.blue())};
    }
    return bDark ? kDark : kUsual;
}

PageColors DayPageColors() {
    return {Qt::white, Qt::black};
}

PageColors NightPageColors() {
    return {QColor(32, 33, 36), QColor(218, 220, 224)};
}

PageColors DimPageColors() {
    return {QColor(0, 0, 27), QColor(93, 91, 113)};
}

PageColors StoredPageColors() {
    return {ToQColor(AppConfig::PageBackgroundColor()), ToQColor(AppConfig::PageForegroundColor())};
}

QColor ToQColor(Windows::UI::Color color) {
    return QColor::fromRgb(color.ToArgb());
}

Windows::UI::Color ToColor(const QColor& color) {
    return Windows::UI::Color::FromArgb(color.rgba());
}

}
