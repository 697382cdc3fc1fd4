// The dialogs of the system above one of Qt's windows.
//
// Threads: UI thread only. Lifetime: a dialog goes with its window; its answer stays
// out then.
#pragma once

#include <QPointer>
#include <QWidget>
#include <memory>

#include "platform/qt/QtDispatcher.h"
#include "platform/ui/Dialogs.h"

namespace Platform::Qt {

class QtDialogs final : public Windows::UI::IDialogs {
public:
    // Above the top-level window that `widget` stands in.
    QtDialogs(QWidget& widget, std::shared_ptr<QtDispatcher> pDispatcher)
        : m_pWidget(&widget), m_pDispatcher(std::move(pDispatcher)) {}

    std::shared_ptr<Windows::UI::IShownDialog> ShowMessage(
        const Windows::UI::MessageRequest& request, MessageAnswer fnAnswer) override;
    std::shared_ptr<Windows::UI::IShownDialog> ShowSavePicker(
        const Windows::UI::SaveRequest& request, PathAnswer fnAnswer) override;

private:
    const QPointer<QWidget> m_pWidget;
    const std::shared_ptr<QtDispatcher> m_pDispatcher;
};

}
