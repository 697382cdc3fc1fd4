#include "app/viewer/DarkPalette.h"

#include <QApplication>
#include <QPalette>
#include <utility>

namespace velko::viewer {

namespace {

QPalette DarkPalette() {
    const QColor text(214, 214, 220);
    const QColor faint(112, 112, 122);
    const QColor field(28, 28, 33);
    QPalette palette(QColor(46, 46, 53), QColor(38, 38, 44));
    for (const auto eRole : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                             QPalette::ToolTipText, QPalette::BrightText}) {
        palette.setColor(eRole, text);
        palette.setColor(QPalette::Disabled, eRole, faint);
    }
    palette.setColor(QPalette::Base, field);
    palette.setColor(QPalette::AlternateBase, field);
    palette.setColor(QPalette::ToolTipBase, QColor(58, 58, 68));
    palette.setColor(QPalette::PlaceholderText, faint);
    palette.setColor(QPalette::Highlight, QColor(70, 100, 160));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(140, 170, 230));
    palette.setColor(QPalette::Mid, QColor(58, 58, 66));
    return palette;
}

}

void UseDarkPalette(bool bDark) {
    static bool s_bDark = false;
    if (std::exchange(s_bDark, bDark) != bDark) {
        QApplication::setPalette(bDark ? DarkPalette() : QPalette()); // an empty one: the desktop's
    }
}

}
