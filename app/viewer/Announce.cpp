#include "app/viewer/Announce.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QWidget>

namespace velko::viewer {

namespace {

constexpr const char* kAlert = "alert"; // on parts that have announced something

// Screen readers speak what comes up as an alert without having the keys.
QAccessibleInterface* MakeAlert(const QString& /*strClass*/, QObject* pObject) {
    auto* const pWidget = qobject_cast<QWidget*>(pObject);
    return pWidget != nullptr && pWidget->property(kAlert).toBool()
               ? new QAccessibleWidget(pWidget, QAccessible::AlertMessage)
               : nullptr;
}

}

void Announce(QWidget& part, const QString& strText) {
    static const bool s_bInstalled = (QAccessible::installFactory(MakeAlert), true);
    Q_UNUSED(s_bInstalled);
    part.setProperty(kAlert, true);
    part.setAccessibleName(strText);
    if (!QAccessible::isActive()) {
        return;
    }
    // A part that stays shown with another text is an alert of its own.
    for (const auto eEvent : {QAccessible::ObjectShow, QAccessible::Alert}) {
        QAccessibleEvent event(&part, eEvent);
        QAccessible::updateAccessibility(&event);
    }
}

}
