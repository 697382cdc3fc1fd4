#include "platform/ui/Markup.h"

#include <map>
#include <utility>

namespace Windows::UI::Xaml::Markup {

namespace {

std::map<std::string, Builder>& Builders() {
    static std::map<std::string, Builder> s_builders;
    return s_builders;
}

}

void RegisterMarkup(const std::string& strKey, Builder fnBuilder) {
    Builders()[strKey] = std::move(fnBuilder);
}

bool HasMarkup(const std::string& strKey) {
    return Builders().count(strKey) != 0;
}

void UnregisterMarkup(const std::string& strKey) {
    Builders().erase(strKey);
}

std::shared_ptr<FrameworkElement> LoadMarkup(const std::string& strKey) {
    const auto it = Builders().find(strKey);
    if (it == Builders().end()) {
        throw Platform::FileNotFoundException("no markup under " + strKey);
    }
    const Builder fnBuilder = it->second; // may register markup itself
    return fnBuilder();
}

}
