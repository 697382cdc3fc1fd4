#include "app/viewer/side/SideKeys.h"

#include <QKeyEvent>
#include <utility>

namespace velko::viewer {

namespace {

// A letter, or what deletes: the list's, where it has the keys.
bool IsForList(const QKeyEvent& event) {
    const bool bPlain = (event.modifiers() & ~(Qt::ShiftModifier | Qt::KeypadModifier)) == 0;
    const bool bPrints = !event.text().isEmpty() && event.text().at(0).isPrint();
    return bPlain && (bPrints || event.key() == Qt::Key_Delete);
}

}

SideKeys::SideKeys(QAbstractItemView& list, std::function<void(const QModelIndex&)> fnTake,
                   Takes eTakes)
    : QObject(&list), m_list(list), m_fnTake(std::move(fnTake)) {
    m_list.installEventFilter(this);
    if (eTakes == Takes::ByClick) {
        connect(&m_list, &QAbstractItemView::clicked, this,
                [this](const QModelIndex& index) { m_fnTake(index); });
    }
}

bool SideKeys::eventFilter(QObject* /*pWatched*/, QEvent* pEvent) {
    if (pEvent->type() != QEvent::ShortcutOverride && pEvent->type() != QEvent::KeyPress) {
        return false;
    }
    const auto& key = *static_cast<QKeyEvent*>(pEvent);
    if (pEvent->type() == QEvent::ShortcutOverride) {
        pEvent->setAccepted(IsForList(key));
        return IsForList(key);
    }
    const bool bReturn = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
    const QModelIndex index = m_list.currentIndex();
    if (bReturn && key.modifiers() == Qt::NoModifier && index.isValid()) {
        m_fnTake(index);
        return true;
    }
    return false;
}

}
