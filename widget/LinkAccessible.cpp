#include "widget/LinkAccessible.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>

#include "platform/qt/QtElementWindow.h"
#include "widget/LinkFocus.h"

namespace velko::vkit {

using Platform::Qt::QtElementWindow;

namespace {

LinkFocus* FocusOf(QObject* pWindow) {
    return pWindow->findChild<LinkFocus*>(QString(), Qt::FindDirectChildrenOnly);
}

// The link that has the focus at the time of asking.
class LinkInterface final : public QAccessibleInterface {
public:
    explicit LinkInterface(QWidget& window) : m_pWindow(&window), m_pFocus(FocusOf(&window)) {}

    bool isValid() const override { return m_pWindow && m_pFocus && m_pFocus->Focused(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override {
        return m_pWindow ? m_pWindow->window()->windowHandle() : nullptr;
    }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(m_pWindow);
    }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::Link; }
    void setText(QAccessible::Text, const QString&) override {}

    QString text(QAccessible::Text eText) const override {
        return isValid() && eText == QAccessible::Name ? m_pFocus->Text() : QString();
    }

    QRect rect() const override {
        const QRect rc = isValid() ? m_pFocus->Place() : QRect();
        return rc.isNull() ? rc : QRect(m_pWindow->mapToGlobal(rc.topLeft()), rc.size());
    }

    QAccessible::State state() const override {
        QAccessible::State state;
        state.focusable = true;
        state.linked = true;
        state.focused = isValid();
        state.invalid = !isValid();
        return state;
    }

private:
    QPointer<QWidget> m_pWindow;
    QPointer<LinkFocus> m_pFocus;
};

// The window with the pages, and in it the link, as its last child.
class PagesInterface final : public QAccessibleWidget {
public:
    explicit PagesInterface(QWidget& window)
        : QAccessibleWidget(&window, QAccessible::Document),
          m_nLink(QAccessible::registerAccessibleInterface(new LinkInterface(window))) {}
    ~PagesInterface() override { QAccessible::deleteAccessibleInterface(m_nLink); }

    // Another link is another child: an aid that knows this one reads it no more.
    void RenewLink() {
        const QAccessible::Id nOld = m_nLink;
        m_nLink = QAccessible::registerAccessibleInterface(
            new LinkInterface(*static_cast<QWidget*>(object())));
        QAccessible::deleteAccessibleInterface(nOld);
    }

    QAccessibleInterface* Link() const { return QAccessible::accessibleInterface(m_nLink); }

    int childCount() const override { return Own() + (Link()->isValid() ? 1 : 0); }

    QAccessibleInterface* child(int nIndex) const override {
        return nIndex == Own() ? Link() : QAccessibleWidget::child(nIndex);
    }

    int indexOfChild(const QAccessibleInterface* pChild) const override {
        return pChild == Link() ? Own() : QAccessibleWidget::indexOfChild(pChild);
    }

    QAccessibleInterface* focusChild() const override {
        return Link()->isValid() ? Link() : QAccessibleWidget::focusChild();
    }

private:
    int Own() const { return QAccessibleWidget::childCount(); }

    QAccessible::Id m_nLink;
};

QAccessibleInterface* MakePages(const QString&, QObject* pObject) {
    auto* const pWindow = dynamic_cast<QtElementWindow*>(pObject);
    return pWindow != nullptr && FocusOf(pWindow) != nullptr ? new PagesInterface(*pWindow)
                                                             : nullptr;
}

}

// What was made for the window while it had no links knows of none.
void LinkAccessible::Install(QtElementWindow& window) {
    static const bool bFirst = [] {
        QAccessible::installFactory(&MakePages);
        return true;
    }();
    static_cast<void>(bFirst);
    QAccessibleInterface* const pMade = QAccessible::queryAccessibleInterface(&window);
    if (dynamic_cast<PagesInterface*>(pMade) == nullptr) {
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(pMade));
    }
}

void LinkAccessible::Tell(const LinkFocus& focus, QtElementWindow& window) {
    if (!window.hasFocus()) {
        return;
    }
    auto* const pPages =
        dynamic_cast<PagesInterface*>(QAccessible::queryAccessibleInterface(&window));
    if (pPages == nullptr) {
        return;
    }
    pPages->RenewLink();
    QAccessibleEvent event(focus.Focused() != nullptr ? pPages->Link() : pPages,
                           QAccessible::Focus);
    QAccessible::updateAccessibility(&event);
}

}
