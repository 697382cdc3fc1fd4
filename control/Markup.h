// The trees behind the control's style key and page addresses.
//
// A style of a host's own is a tree whose root is any element. Somewhere in it
// stands a `VelkoViewControl` under the name of its part: it is the only part that
// must be there, and brings canvas, manager and gestures. A `Grid` as layout and
// any two elements as ring and bar may be left out; the ring's visibility is then
// nowhere shown. A part of another kind makes `ApplyTemplate` raise
// `InvalidCastException`. Elements beside the view control lie over the pages.
// Threads: UI thread only.
#pragma once

namespace velko::vkit {

inline constexpr const char* kPDFViewCtrlStyle = "velko.vkit.PDFViewCtrl";
inline constexpr const char* kVelkoViewControlPage = "ms-appx:///velko.vkit/VelkoViewControl.xaml";

// Names of the parts of a style of the control.
inline constexpr const char* kLayoutPart = "Layout";
inline constexpr const char* kProgressRingPart = "ViewControlProgressRing";
inline constexpr const char* kViewControlPart = "ViewControl";
inline constexpr const char* kAppBarPart = "mainAppBar";

// Registers the builders of these trees where a host has not put its own; the
// control's `Create` calls it.
void RegisterControlMarkup();

}
