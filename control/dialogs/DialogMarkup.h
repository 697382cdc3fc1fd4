// The trees behind the dialogs' style key and page address.
//
// A style of a host's own has a panel with a background as "LayoutRoot", a
// `ContentPresenter` somewhere in it, and a button as "NonVisibilityBtn".
// Threads: UI thread only.
#pragma once

namespace velko::vkit {

inline constexpr const char* kContentHostedDialogStyle = "velko.vkit.ContentHostedDialog";
inline constexpr const char* kPasswordDialogPage = "ms-appx:///velko.vkit/PasswordDialog.xaml";

inline constexpr const char* kDialogLayoutRootPart = "LayoutRoot";
inline constexpr const char* kContentPresenterPart = "ContentPresenter";
inline constexpr const char* kNonVisibilityButtonPart = "NonVisibilityBtn";

// Registers the builders of these trees where a host has not put its own.
void RegisterDialogMarkup();

}
