// The presenters of the elements that are shown as widgets.
//
// Threads: UI thread only.
#pragma once

#include <memory>

#include "platform/qt/IElementPresenter.h"

namespace Platform::Qt {

void RegisterPresenters(QtElementTree& tree);

std::unique_ptr<IElementPresenter> PresentArea(
    QtElementTree& tree, const std::shared_ptr<Windows::UI::Xaml::FrameworkElement>& pElement,
    QWidget& parent);
std::unique_ptr<IElementPresenter> PresentPopup(
    QtElementTree& tree, const std::shared_ptr<Windows::UI::Xaml::FrameworkElement>& pElement,
    QWidget& parent);
std::unique_ptr<IElementPresenter> PresentText(
    QtElementTree& tree, const std::shared_ptr<Windows::UI::Xaml::FrameworkElement>& pElement,
    QWidget& parent);
std::unique_ptr<IElementPresenter> PresentButton(
    QtElementTree& tree, const std::shared_ptr<Windows::UI::Xaml::FrameworkElement>& pElement,
    QWidget& parent);
std::unique_ptr<IElementPresenter> PresentPasswordBox(
    QtElementTree& tree, const std::shared_ptr<Windows::UI::Xaml::FrameworkElement>& pElement,
    QWidget& parent);

}
