// The document as a presentation: one page at a time on black, on the whole screen, with
// nothing else in sight. The pointer hides while it rests, and the screen stays on.
//
// Keys and clicks go from page to page; B shows black until the next of them, W white. Links are
// followed. What the reader had before comes back with its end, at the page shown last. Lifetime:
// goes before the view and the window. Threads: UI thread only.
#pragma once

#include <QKeySequence>
#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>

#include "widget/VelkoPdfView.h"

class QKeyEvent;
class QMouseEvent;
class QWheelEvent;

namespace velko::viewer {

class StayAwake;
class WindowParts;

class Presentation : public QObject {
    Q_OBJECT

public:
    // `fnIsCommand` tells keys that go on being the window's; no others do.
    Presentation(vkit::VelkoPdfView& view, WindowParts& parts, QWidget* pWindow,
                 std::function<bool(const QKeySequence&)> fnIsCommand);
    ~Presentation() override;

    bool IsOn() const { return m_before.has_value(); }
    void Begin(); // needs a document that is shown
    void End();

signals:
    void Changed();

protected:
    bool eventFilter(QObject* pWatched, QEvent* pEvent) override;

private:
    // What comes back with the end.
    struct Before {
        vkit::VelkoPdfView::Layout eLayout;
        vkit::VelkoPdfView::Fit eFit;
        double dbZoom;
        bool bFullScreen;
    };

    void ShowBefore(const Before& before);
    bool OnKey(const QKeyEvent& event);
    void OnStepKey(const QKeyEvent& event);
    bool OnMouse(const QMouseEvent& event);
    bool OnWheel(const QWheelEvent& event);
    void Step(int nPages);
    void Cover(const QColor& color); // once more, or with no colour: the page comes back
    void ShowPointer();

    vkit::VelkoPdfView& m_view;
    WindowParts& m_parts;
    QWidget* const m_pWindow;
    const std::function<bool(const QKeySequence&)> m_fnIsCommand;
    std::optional<Before> m_before; // empty: none is under way
    std::unique_ptr<StayAwake> m_pAwake;
    QTimer m_pointerTimer;
    QPointer<QWidget> m_pCover; // over the page
    bool m_bOverLink = false;
    int m_nWheel = 0;   // of a notch, in the wheel's units
    QString m_strTyped; // the number of a page
};

}
