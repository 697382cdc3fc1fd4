// Commands that act as the reader's hands: the window, the wheel, fingers, the
// mouse and keys.
#include <array>
#include <string>
#include <vector>

#include <QApplication>
#include <QKeyEvent>
#include <QMetaEnum>
#include <QWheelEvent>

#include "platform/qt/QtElementWindow.h"
#include "platform/ui/SwapChainPanel.h"
#include "tools/replay/Commands.h"
#include "tools/replay/RawPointers.h"
#include "tools/replay/Session.h"

namespace velko::replay {

namespace {

namespace Input = Windows::UI::Xaml::Input;
using Windows::Foundation::Point;

void Send(Session& session, QEvent& event) {
    session.ThroughWindow([&] { QCoreApplication::sendEvent(&session.Window(), &event); });
}

std::int32_t Steps(const CommandFields& fields) {
    constexpr std::int32_t kDefault = 10;
    const std::int32_t nSteps = fields.IntOr("steps", kDefault);
    if (nSteps < 1) {
        throw FormatError("field \"steps\" must be at least 1");
    }
    return nSteps;
}

// --- window and wheel ---

void RunResize(Session& session, const CommandFields& fields, JsonObject&) {
    const std::int32_t nWidth = fields.Int("w");
    const std::int32_t nHeight = fields.Int("h");
    const float fScaleX = fields.FloatOr("sx", session.Panel().CompositionScaleX());
    const float fScaleY = fields.FloatOr("sy", session.Panel().CompositionScaleY());
    if (nWidth < 0 || nHeight < 0 || fScaleX <= 0.0F || fScaleY <= 0.0F) {
        throw FormatError("a size must not be negative and a composition scale must be above 0");
    }
    session.Resize(nWidth, nHeight, fScaleX, fScaleY);
}

void RunWheel(Session& session, const CommandFields& fields, JsonObject&) {
    const Point pt{fields.Float("x"), fields.Float("y")};
    const std::int32_t nDelta = fields.Int("delta");
    const bool bControl = fields.BoolOr("ctrl", false);
    const QPoint angle = fields.BoolOr("horizontal", false) ? QPoint(nDelta, 0) : QPoint(0, nDelta);
    const QPointF at = session.InWindow(pt);
    QWheelEvent event(at, session.Window().mapToGlobal(at), QPoint(), angle, ::Qt::NoButton,
                      bControl ? ::Qt::ControlModifier : ::Qt::NoModifier, ::Qt::NoScrollPhase,
                      false);
    event.setTimestamp(static_cast<quint64>(session.InputTime().count()));
    Send(session, event);
}

// --- manipulations, as the recogniser would report them ---

struct ManipulationFields {
    explicit ManipulationFields(const CommandFields& fields)
        : ptAt{fields.Float("x"), fields.Float("y")},
          fScale(fields.FloatOr("scale", 1.0F)),
          fCumulative(fields.FloatOr("cumulative", 1.0F)),
          bInertial(fields.BoolOr("inertial", false)) {}

    const Point ptAt;
    const float fScale;
    const float fCumulative;
    const bool bInertial;
};

bool RaiseStarted(Session& session, const ManipulationFields& given) {
    Input::ManipulationStartedRoutedEventArgs args;
    args.Position = given.ptAt;
    session.Panel().ManipulationStarted.raise(args);
    return args.Handled;
}

bool RaiseDelta(Session& session, const ManipulationFields& given) {
    Input::ManipulationDeltaRoutedEventArgs args;
    args.Position = given.ptAt;
    args.Delta.Scale = given.fScale;
    args.Cumulative.Scale = given.fCumulative;
    args.IsInertial = given.bInertial;
    session.Panel().ManipulationDelta.raise(args);
    return args.Handled;
}

bool RaiseCompleted(Session& session, const ManipulationFields& given) {
    Input::ManipulationCompletedRoutedEventArgs args;
    args.Position = given.ptAt;
    args.Cumulative.Scale = given.fCumulative;
    args.IsInertial = given.bInertial;
    session.Panel().ManipulationCompleted.raise(args);
    return args.Handled;
}

void RunManip(Session& session, const CommandFields& fields, JsonObject& result) {
    const std::string strPhase = fields.Text("phase");
    const ManipulationFields given(fields);
    if (strPhase == "started") {
        result.Add("handled", RaiseStarted(session, given));
    } else if (strPhase == "delta") {
        result.Add("handled", RaiseDelta(session, given));
    } else if (strPhase == "completed") {
        result.Add("handled", RaiseCompleted(session, given));
    } else {
        throw FormatError("unknown phase \"" + strPhase + "\"");
    }
}

// --- raw pointers ---

void RunDrag(Session& session, const CommandFields& fields, JsonObject&) {
    const Point ptFrom{fields.Float("x0"), fields.Float("y0")};
    const Point ptTo{fields.Float("x1"), fields.Float("y1")};
    const std::int32_t nSteps = Steps(fields);
    const std::string strDevice = fields.TextOr("device", "touch");
    const auto eLift =
        fields.BoolOr("fling", false) ? RawPointers::Lift::AtSpeed : RawPointers::Lift::AtRest;
    RawPointers pointers(session);
    if (strDevice == "mouse") {
        pointers.DragMouse(ptFrom, ptTo, nSteps, eLift);
    } else if (strDevice == "touch") {
        pointers.MoveFingers({ptFrom}, {ptTo}, nSteps, eLift);
    } else {
        throw FormatError("unknown device \"" + strDevice + "\"");
    }
}

// Two fingers beside each other around a centre.
std::vector<Point> Fingers(Point ptCentre, float fDistance) {
    const float fHalf = fDistance / 2.0F;
    return {{ptCentre.X - fHalf, ptCentre.Y}, {ptCentre.X + fHalf, ptCentre.Y}};
}

void RunPinch(Session& session, const CommandFields& fields, JsonObject&) {
    const Point ptCentre{fields.Float("x"), fields.Float("y")};
    const float fFrom = fields.Float("from");
    const float fTo = fields.Float("to");
    const std::int32_t nSteps = Steps(fields);
    RawPointers(session).MoveFingers(Fingers(ptCentre, fFrom), Fingers(ptCentre, fTo), nSteps,
                                     RawPointers::Lift::AtRest);
}

// --- keys ---

int KeyByName(const std::string& strName) {
    const QMetaEnum keys = QMetaEnum::fromType<::Qt::Key>();
    bool bKnown = false;
    const int nKey = keys.keyToValue(("Key_" + strName).c_str(), &bKnown);
    if (!bKnown) {
        throw FormatError("unknown key \"" + strName + "\"");
    }
    return nKey;
}

::Qt::KeyboardModifiers Modifiers(const CommandFields& fields) {
    ::Qt::KeyboardModifiers modifiers;
    modifiers.setFlag(::Qt::ControlModifier, fields.BoolOr("ctrl", false));
    modifiers.setFlag(::Qt::ShiftModifier, fields.BoolOr("shift", false));
    modifiers.setFlag(::Qt::AltModifier, fields.BoolOr("alt", false));
    return modifiers;
}

void RunKey(Session& session, const CommandFields& fields, JsonObject& result) {
    const int nKey = KeyByName(fields.Text("key"));
    const ::Qt::KeyboardModifiers modifiers = Modifiers(fields);
    const QString strText = QString::fromStdString(fields.TextOr("text", ""));
    QKeyEvent press(QEvent::KeyPress, nKey, modifiers, strText);
    QKeyEvent release(QEvent::KeyRelease, nKey, modifiers, strText);
    session.ThroughWindow([&] {
        QWidget* const pFocused = QApplication::focusWidget();
        QWidget* const pTarget = pFocused != nullptr ? pFocused : &session.Window();
        press.ignore(); // accepted only by who handles it
        QCoreApplication::sendEvent(pTarget, &press);
        QCoreApplication::sendEvent(pTarget, &release);
    });
    result.Add("handled", press.isAccepted());
}

// --- what a machine does ---

void RunBack(Session& session, const CommandFields&, JsonObject& result) {
    result.Add("handled", session.Window().View().RequestBack());
}

// The on-screen keyboard covers this of the window; without a height it goes.
void RunKeyboard(Session& session, const CommandFields& fields, JsonObject&) {
    const Windows::Foundation::Rect rc(fields.FloatOr("x", 0.0F), fields.FloatOr("y", 0.0F),
                                       fields.FloatOr("w", 0.0F), fields.FloatOr("h", 0.0F));
    session.Window().View().InputPane().Occlude(rc);
}

}

std::span<const CommandEntry> InputCommands() {
    static constexpr std::array<CommandEntry, 8> kCommands{{
        {"resize", RunResize},
        {"wheel", RunWheel},
        {"manip", RunManip},
        {"drag", RunDrag},
        {"pinch", RunPinch},
        {"key", RunKey},
        {"back", RunBack},
        {"keyboard", RunKeyboard},
    }};
    return kCommands;
}

}
