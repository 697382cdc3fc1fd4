// Markup by name: what builds the tree behind an address or a style key.
//
// The tree of a page ("ms-appx:///...") or of a control's default style is
// built by a function that the component registers under that text.
// Threads: UI thread only.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/ui/Element.h"

namespace Windows::UI::Xaml::Markup {

using Builder = std::function<std::shared_ptr<FrameworkElement>()>;

// A later registration of a key replaces the earlier one.
void RegisterMarkup(const std::string& strKey, Builder fnBuilder);
bool HasMarkup(const std::string& strKey);
void UnregisterMarkup(const std::string& strKey);

// Builds the tree; raises `FileNotFoundException` for an unknown key.
std::shared_ptr<FrameworkElement> LoadMarkup(const std::string& strKey);

}
