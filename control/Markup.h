// The trees behind the control's style key and page addresses.
//
// Threads: UI thread only.
#pragma once

namespace velko::vkit {

inline constexpr const char* kPDFViewCtrlStyle = "velko.vkit.PDFViewCtrl";
inline constexpr const char* kVelkoViewControlPage = "ms-appx:///velko.vkit/VelkoViewControl.xaml";

// Names of the parts that a style of the control must have.
inline constexpr const char* kLayoutPart = "Layout";
inline constexpr const char* kProgressRingPart = "ViewControlProgressRing";
inline constexpr const char* kViewControlPart = "ViewControl";
inline constexpr const char* kAppBarPart = "mainAppBar";

// Registers the builders of these trees where a host has not put its own.
void RegisterControlMarkup();

}
