#include "app/viewer/MenuStyle.h"

#include <QApplication>
#include <QMenu>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleOption>

namespace velko::viewer {

namespace {

constexpr int kBoxAlpha = 130;

class MenuStyle : public QProxyStyle {
public:
    int styleHint(StyleHint eHint, const QStyleOption* pOption, const QWidget* pWidget,
                  QStyleHintReturn* pReturn) const override {
        return eHint == SH_Menu_Scrollable
                   ? 1
                   : QProxyStyle::styleHint(eHint, pOption, pWidget, pReturn);
    }

    void drawPrimitive(PrimitiveElement eElement, const QStyleOption* pOption, QPainter* pPainter,
                       const QWidget* pWidget) const override {
        QProxyStyle::drawPrimitive(eElement, pOption, pPainter, pWidget);
        if (eElement == PE_IndicatorCheckBox) {
            QColor color = pOption->palette.color(QPalette::Text);
            color.setAlpha(kBoxAlpha);
            pPainter->setPen(color);
            pPainter->setBrush(Qt::NoBrush);
            pPainter->drawRect(pOption->rect.adjusted(0, 0, -1, -1));
        }
    }
};

}

void StyleMenu(QMenu& menu) {
    static QStyle* const s_pStyle = [] {
        auto* const pStyle = new MenuStyle;
        pStyle->setParent(qApp);
        return pStyle;
    }();
    menu.setStyle(s_pStyle);
    for (QMenu* const pSubmenu : menu.findChildren<QMenu*>()) {
        pSubmenu->setStyle(s_pStyle);
    }
}

}
