#include "app/viewer/Announce.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace velko::viewer {

namespace {

constexpr const char* kAlert = "alert"; // a property of such parts

// Screen readers speak what comes up as an alert without having the keys.
QAccessibleInterface* InterfaceOf(const QString& /*strClass*/, QObject* pObject) {
    auto* const pWidget = qobject_cast<QWidget*>(pObject);
    return pWidget != nullptr && pWidget->property(kAlert).toBool()
               ? new QAccessibleWidget(pWidget, QAccessible::AlertMessage)
               : nullptr;
}

}

void MakeAlert(QWidget& part) {
    static const bool s_bInstalled = (QAccessible::installFactory(InterfaceOf), true);
    Q_UNUSED(s_bInstalled);
    part.setProperty(kAlert, true);
}

void Announce(QWidget& part, const QString& strText) {
    part.setAccessibleName(strText);
    if (!part.isVisible()) {
        return; // its coming up is told by Qt
    }
    for (const auto eEvent : {QAccessible::ObjectShow, QAccessible::Alert}) {
        QAccessibleEvent event(&part, eEvent);
        QAccessible::updateAccessibility(&event);
    }
}

}
