#include "platform/qt/QtPresenters_p.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QPushButton>
#include <algorithm>
#include <cmath>

#include "platform/qt/QtElementTree.h"
#include "platform/qt/QtEventFilter_p.h"
#include "platform/qt/QtSecretEdit.h"
#include "platform/ui/Popup.h"

namespace Platform::Qt {

namespace Controls = Windows::UI::Xaml::Controls;
using ElementPtr = std::shared_ptr<Windows::UI::Xaml::FrameworkElement>;
using Windows::UI::Xaml::ThemeBrush;

namespace {

// Properties: what a screen reader says it is, and whether it passes it over.
constexpr const char* kRole = "elementRole";
constexpr const char* kPassedOver = "elementPassedOver";
constexpr int kShadeAlpha = 120;
constexpr int kLeastButtonWidth = 88;
constexpr double kTitleSize = 1.15; // times the size of other text

class ElementAccessible : public QAccessibleWidget {
public:
    using QAccessibleWidget::QAccessibleWidget;
    QAccessible::State state() const override {
        QAccessible::State now = QAccessibleWidget::state();
        now.invisible = now.invisible || widget()->property(kPassedOver).toBool();
        return now;
    }
};

QAccessibleInterface* InterfaceOf(const QString& /*strClass*/, QObject* pObject) {
    auto* const pWidget = qobject_cast<QWidget*>(pObject);
    const QVariant role = pWidget != nullptr ? pWidget->property(kRole) : QVariant();
    return role.isValid()
               ? new ElementAccessible(pWidget, static_cast<QAccessible::Role>(role.toInt()))
               : nullptr;
}

void SetRole(QWidget& widget, QAccessible::Role eRole) {
    static const bool s_bInstalled = (QAccessible::installFactory(InterfaceOf), true);
    Q_UNUSED(s_bInstalled);
    widget.setProperty(kRole, static_cast<int>(eRole));
}

// A key that is held down answers once, not the next question too.
bool IsHeldAnswer(const QKeyEvent& event) {
    return event.isAutoRepeat() &&
           (event.key() == ::Qt::Key_Return || event.key() == ::Qt::Key_Enter);
}

// What all presenters with a widget share. The widget outlives the presenter by a turn
// of the event loop: a handler of an event of its own may have closed it.
class WidgetPresenter : public IElementPresenter {
public:
    WidgetPresenter(QtElementTree& tree, ElementPtr pElement, QWidget* pWidget)
        : m_tree(tree), m_pElement(std::move(pElement)), m_pWidget(pWidget) {
        m_pWidget->hide();
    }
    ~WidgetPresenter() override {
        m_pElement->NaturalSize(nullptr);
        delete m_pFilter;
        if (m_pWidget) {
            m_pWidget->hide();
            m_pWidget->deleteLater();
        }
    }

    QWidget* Widget() const override { return m_pWidget; }

    void Show(const QRect& rc, bool bVisible) override {
        if (!m_pWidget) {
            return;
        }
        ShowContents(rc);
        m_pWidget->setGeometry(rc);
        if (m_pWidget->isHidden() == bVisible) {
            m_pWidget->setVisible(bVisible);
            OnVisible(bVisible);
        }
    }

    void TakeKeys() override {
        if (m_pWidget) {
            m_pWidget->setFocus(::Qt::OtherFocusReason);
        }
    }

protected:
    virtual void ShowContents(const QRect& /*rc*/) {}
    virtual void OnVisible(bool /*bVisible*/) {}

    void MeasureBy(std::function<QSizeF(double dbWidthLimit)> fnMeasure) {
        m_pElement->NaturalSize([this, fnMeasure = std::move(fnMeasure)](float fLimit) {
            return m_tree.ToLogical(fnMeasure(m_tree.ToQtWidth(fLimit)));
        });
    }

    // Keys and the ways back go to the element first.
    void WatchControl(const std::shared_ptr<Controls::Control>& pControl) {
        m_pWidget->setFocusPolicy(pControl->IsTabStop() ? ::Qt::StrongFocus : ::Qt::NoFocus);
        Watch([this, pControl](QEvent& event) { return HandleEvent(pControl, event); });
    }
    void Watch(QtEventFilter::Handler fnHandle) {
        m_pFilter = new QtEventFilter(*m_pWidget, std::move(fnHandle));
    }

    QtElementTree& m_tree;
    const ElementPtr m_pElement;
    const QPointer<QWidget> m_pWidget;

private:
    bool HandleEvent(const std::shared_ptr<Controls::Control>& pControl, QEvent& event) {
        switch (event.type()) {
            case QEvent::FocusIn:
            case QEvent::FocusOut:
                m_tree.OnFocus(pControl, event);
                return false;
            case QEvent::ShortcutOverride: // the window's shortcuts are not to take it away
                if (static_cast<QKeyEvent&>(event).key() == ::Qt::Key_Escape) {
                    event.accept();
                    return true;
                }
                return false;
            case QEvent::KeyPress: {
                const auto& key = static_cast<QKeyEvent&>(event);
                if (IsHeldAnswer(key) || m_tree.OnKey(pControl, key)) {
                    event.accept();
                    return true;
                }
                return false;
            }
            case QEvent::MouseButtonPress:
                if (static_cast<QMouseEvent&>(event).button() == ::Qt::BackButton) {
                    m_tree.OnBack();
                    return true;
                }
                return false;
            default:
                return false;
        }
    }

    QPointer<QtEventFilter> m_pFilter;
};

// --- areas -----------------------------------------------------------------

// Whatever the pointer does over it ends there.
class Area : public QWidget {
public:
    Area(ThemeBrush eBrush, QWidget& parent) : QWidget(&parent), m_eBrush(eBrush) {}
    std::function<void(QPointF)> OnTapped;
    std::function<void()> OnBack;

protected:
    void paintEvent(QPaintEvent* /*pEvent*/) override {
        QPainter painter(this);
        if (m_eBrush == ThemeBrush::Shade) {
            painter.fillRect(rect(), QColor(0, 0, 0, kShadeAlpha));
            return;
        }
        painter.setPen(palette().color(QPalette::Mid));
        painter.setBrush(palette().window());
        painter.drawRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5));
    }
    void mousePressEvent(QMouseEvent* pEvent) override {
        m_bPressed = pEvent->button() == ::Qt::LeftButton;
        if (pEvent->button() == ::Qt::BackButton && OnBack) {
            OnBack();
        }
    }
    void mouseMoveEvent(QMouseEvent* /*pEvent*/) override {}
    void mouseReleaseEvent(QMouseEvent* pEvent) override {
        if (std::exchange(m_bPressed, false) && rect().contains(pEvent->position().toPoint())) {
            OnTapped(pEvent->position());
        }
    }
    void mouseDoubleClickEvent(QMouseEvent* pEvent) override { mousePressEvent(pEvent); }
    void wheelEvent(QWheelEvent* pEvent) override { pEvent->accept(); }
    void contextMenuEvent(QContextMenuEvent* pEvent) override { pEvent->accept(); }

private:
    const ThemeBrush m_eBrush;
    bool m_bPressed = false;
};

class AreaPresenter final : public WidgetPresenter {
public:
    AreaPresenter(QtElementTree& tree, const ElementPtr& pElement, Area* pArea)
        : WidgetPresenter(tree, pElement, pArea) {
        pArea->OnTapped = [&tree, pElement](QPointF pt) { tree.OnTapped(pElement, pt); };
        pArea->OnBack = [&tree] { tree.OnBack(); };
    }
};

// --- popups ----------------------------------------------------------------

// The keys stay within.
class PopupWidget : public QWidget {
public:
    explicit PopupWidget(QWidget& parent) : QWidget(&parent) {
        setAttribute(::Qt::WA_NoMousePropagation); // of fingers too, which the pages would take
        SetRole(*this, QAccessible::Dialog);
    }
    // Where they were before, else what comes first.
    void TakeKeys() {
        QWidget* const pLast = focusWidget();
        if (pLast != nullptr && pLast != this && pLast->isVisible() && pLast->isEnabled()) {
            pLast->setFocus(::Qt::OtherFocusReason); // what is selected in it stays
        } else {
            FocusNext(true, nullptr);
        }
    }

protected:
    bool focusNextPrevChild(bool bNext) override {
        FocusNext(bNext, window()->focusWidget());
        return true;
    }
    void keyPressEvent(QKeyEvent* pEvent) override { pEvent->accept(); }

private:
    void FocusNext(bool bNext, const QWidget* pFrom) {
        QList<QWidget*> stops = findChildren<QWidget*>();
        stops.removeIf([](const QWidget* pWidget) {
            return !pWidget->isVisible() || !pWidget->isEnabled() ||
                   (pWidget->focusPolicy() & ::Qt::TabFocus) == 0;
        });
        if (stops.isEmpty()) {
            return;
        }
        const auto nFrom = std::find(stops.begin(), stops.end(), pFrom) - stops.begin();
        const bool bFound = nFrom < stops.size();
        const qsizetype nFirst = bNext ? 0 : stops.size() - 1;
        const qsizetype nStep = bNext ? 1 : stops.size() - 1;
        if (!bFound) { // what had them has gone: the reader did not ask for it
            stops[nFirst]->setFocus(::Qt::OtherFocusReason);
        } else {
            stops[(nFrom + nStep) % stops.size()]->setFocus(bNext ? ::Qt::TabFocusReason
                                                                  : ::Qt::BacktabFocusReason);
        }
    }
};

class PopupPresenter final : public WidgetPresenter {
public:
    PopupPresenter(QtElementTree& tree, const ElementPtr& pElement, PopupWidget* pWidget)
        : WidgetPresenter(tree, pElement, pWidget), m_pPopupWidget(pWidget) {}
    void TakeKeys() override {
        if (m_pPopupWidget) {
            m_pPopupWidget->TakeKeys();
        }
    }

protected:
    void ShowContents(const QRect& /*rc*/) override {
        const auto& popup = static_cast<const Controls::Primitives::Popup&>(*m_pElement);
        const std::string strName = popup.Child() ? popup.Child()->AutomationName() : "";
        m_pWidget->setAccessibleName(QString::fromStdString(strName));
        m_pWidget->raise();
    }

private:
    const QPointer<PopupWidget> m_pPopupWidget;
};

// --- text ------------------------------------------------------------------

// A body text has one line, cut in its middle where it is too long; others wrap.
class TextPresenter final : public WidgetPresenter {
public:
    TextPresenter(QtElementTree& tree, const std::shared_ptr<Controls::TextBlock>& pText,
                  QLabel* pLabel)
        : WidgetPresenter(tree, pText, pLabel), m_text(*pText), m_pLabel(pLabel) {
        pLabel->setTextFormat(::Qt::PlainText);
        pLabel->setAttribute(::Qt::WA_TransparentForMouseEvents);
        pLabel->setWordWrap(m_text.Role() != Controls::TextRole::Body);
        UseRole();
        MeasureBy([this](double dbLimit) { return SizeWithin(dbLimit); });
    }

protected:
    void ShowContents(const QRect& rc) override {
        const QString strText = Text();
        m_pLabel->setAccessibleName(strText);
        m_pLabel->setText(m_pLabel->wordWrap() ? strText
                                               : m_pLabel->fontMetrics().elidedText(
                                                     strText, ::Qt::ElideMiddle, rc.width()));
    }
    void OnVisible(bool bVisible) override {
        if (bVisible && m_text.Role() == Controls::TextRole::Alert) {
            QAccessibleEvent event(m_pLabel.data(), QAccessible::Alert);
            QAccessible::updateAccessibility(&event);
        }
    }

private:
    QString Text() const { return QString::fromStdString(m_text.Text()); }

    void UseRole() {
        if (m_text.Role() == Controls::TextRole::Title) {
            QFont font = m_pLabel->font();
            font.setBold(true);
            font.setPointSizeF(font.pointSizeF() * kTitleSize);
            m_pLabel->setFont(font);
        } else if (m_text.Role() == Controls::TextRole::Alert) {
            SetRole(*m_pLabel, QAccessible::AlertMessage);
            UseAlertColor();
            Watch([this](const QEvent& event) {
                if (event.type() == QEvent::PaletteChange) {
                    UseAlertColor();
                }
                return false;
            });
        }
    }

    // Of enough contrast on what it stands on.
    void UseAlertColor() {
        const bool bDark = m_pLabel->palette().color(QPalette::Window).lightness() < 128;
        const QColor color = bDark ? QColor(255, 160, 150) : QColor(170, 0, 20);
        if (m_pLabel->palette().color(QPalette::WindowText) != color) {
            QPalette palette;
            palette.setColor(QPalette::WindowText, color);
            m_pLabel->setPalette(palette);
        }
    }

    QSizeF SizeWithin(double dbLimit) const {
        const QFontMetrics metrics = m_pLabel->fontMetrics();
        const int nLimit = std::max(static_cast<int>(dbLimit), 1);
        if (!m_pLabel->wordWrap()) {
            return QSizeF(metrics.horizontalAdvance(Text()) + 2, metrics.height());
        }
        const QRect rc =
            metrics.boundingRect(QRect(0, 0, nLimit, QWIDGETSIZE_MAX), ::Qt::TextWordWrap, Text());
        return QSizeF(rc.width() + 2, rc.height());
    }

    const Controls::TextBlock& m_text;
    const QPointer<QLabel> m_pLabel;
};

// --- buttons ---------------------------------------------------------------

class PushButton : public QPushButton {
public:
    PushButton(bool bDrawn, QWidget& parent) : QPushButton(&parent), m_bDrawn(bDrawn) {
        setAttribute(::Qt::WA_TransparentForMouseEvents, !bDrawn);
        if (!bDrawn) {
            setProperty(kPassedOver, true);
            SetRole(*this, QAccessible::Button);
        }
    }

protected:
    void paintEvent(QPaintEvent* pEvent) override {
        if (!m_bDrawn) {
            return;
        }
        QPushButton::paintEvent(pEvent);
        if (hasFocus()) { // many styles hardly show it
            constexpr double kRadius = 3.0;
            QPainter painter(this);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setPen(QPen(palette().color(QPalette::WindowText), 2.0));
            painter.drawRoundedRect(QRectF(rect()).adjusted(2.0, 2.0, -2.0, -2.0), kRadius,
                                    kRadius);
        }
    }
    void keyPressEvent(QKeyEvent* pEvent) override {
        if (pEvent->key() == ::Qt::Key_Return || pEvent->key() == ::Qt::Key_Enter) {
            click();
        } else {
            QPushButton::keyPressEvent(pEvent);
        }
    }

private:
    const bool m_bDrawn;
};

class ButtonPresenter final : public WidgetPresenter {
public:
    ButtonPresenter(QtElementTree& tree, const std::shared_ptr<Controls::Button>& pButton,
                    PushButton* pWidget)
        : WidgetPresenter(tree, pButton, pWidget), m_button(*pButton), m_pPush(pWidget) {
        m_pPush->setDefault(pButton->IsAccent());
        m_pPush->setAccessibleName(QString::fromStdString(pButton->AutomationName()));
        WatchControl(pButton);
        QObject::connect(m_pPush, &QPushButton::clicked, m_pPush, [&tree, pButton] {
            tree.Failures().Run([&] { pButton->Click.raise(); });
        });
        MeasureBy([this](double) { return NaturalSize(); });
    }

protected:
    void ShowContents(const QRect& /*rc*/) override { UseText(); }

private:
    void UseText() { m_pPush->setText(QString::fromStdString(m_button.Text())); }
    QSizeF NaturalSize() {
        UseText();
        return m_button.IsDrawn() ? QSizeF(m_pPush->sizeHint().expandedTo({kLeastButtonWidth, 0}))
                                  : QSizeF(0.0, 0.0);
    }

    const Controls::Button& m_button;
    const QPointer<PushButton> m_pPush;
};

// --- password boxes --------------------------------------------------------

class PasswordBoxPresenter final : public WidgetPresenter {
public:
    PasswordBoxPresenter(QtElementTree& tree, const std::shared_ptr<Controls::PasswordBox>& pBox,
                         QtSecretEdit* pEdit)
        : WidgetPresenter(tree, pBox, pEdit), m_box(*pBox), m_pEdit(pEdit) {
        pEdit->setPlaceholderText(QString::fromStdString(pBox->PlaceholderText()));
        pEdit->setAccessibleName(QString::fromStdString(pBox->AutomationName()));
        pEdit->SetSecret(m_box.Password());
        WatchControl(pBox);
        pEdit->OnTyped = [pBox](SecretText secret) { pBox->TakeTyped(std::move(secret)); };
        m_token = pBox->PasswordSet.add([pEdit = m_pEdit, box = pBox.get()] {
            if (pEdit) {
                pEdit->SetSecret(box->Password());
            }
        });
        MeasureBy([this](double) { return QSizeF(m_pEdit->sizeHint()); });
    }
    ~PasswordBoxPresenter() override {
        m_box.PasswordSet.remove(m_token);
        if (m_pEdit) {
            m_pEdit->OnTyped = nullptr;
            m_pEdit->SetSecret({});
        }
    }

private:
    Controls::PasswordBox& m_box;
    const QPointer<QtSecretEdit> m_pEdit;
    Windows::Foundation::EventRegistrationToken m_token;
};

}

// --- the map ---------------------------------------------------------------

std::unique_ptr<IElementPresenter> PresentArea(QtElementTree& tree, const ElementPtr& pElement,
                                               QWidget& parent) {
    const auto eBrush = static_cast<const Controls::Panel&>(*pElement).Background();
    return eBrush == ThemeBrush::None
               ? nullptr
               : std::make_unique<AreaPresenter>(tree, pElement, new Area(eBrush, parent));
}

std::unique_ptr<IElementPresenter> PresentPopup(QtElementTree& tree, const ElementPtr& pElement,
                                                QWidget& parent) {
    return std::make_unique<PopupPresenter>(tree, pElement, new PopupWidget(parent));
}

std::unique_ptr<IElementPresenter> PresentText(QtElementTree& tree, const ElementPtr& pElement,
                                               QWidget& parent) {
    return std::make_unique<TextPresenter>(
        tree, std::static_pointer_cast<Controls::TextBlock>(pElement), new QLabel(&parent));
}

std::unique_ptr<IElementPresenter> PresentButton(QtElementTree& tree, const ElementPtr& pElement,
                                                 QWidget& parent) {
    const auto pButton = std::static_pointer_cast<Controls::Button>(pElement);
    return std::make_unique<ButtonPresenter>(tree, pButton,
                                             new PushButton(pButton->IsDrawn(), parent));
}

std::unique_ptr<IElementPresenter> PresentPasswordBox(QtElementTree& tree,
                                                      const ElementPtr& pElement, QWidget& parent) {
    return std::make_unique<PasswordBoxPresenter>(
        tree, std::static_pointer_cast<Controls::PasswordBox>(pElement), new QtSecretEdit(&parent));
}

void RegisterPresenters(QtElementTree& tree) {
    tree.Register(typeid(Controls::Grid), PresentArea);
    tree.Register(typeid(Controls::Primitives::Popup), PresentPopup);
    tree.Register(typeid(Controls::TextBlock), PresentText);
    tree.Register(typeid(Controls::Button), PresentButton);
    tree.Register(typeid(Controls::PasswordBox), PresentPasswordBox);
}

}
