#include "component/PlaceSnippet.h"

#include <cmath>

namespace velko::vkit {

using Windows::Foundation::PropertyValue;
using Windows::Foundation::Collections::PropertySet;

namespace {

constexpr std::size_t kLongest = 1'000; // bytes

template <class T>
T ValueOf(const PropertySet& values, const std::string& strKey) {
    return values.HasKey(strKey) && values.Lookup(strKey).Is<T>() ? values.Lookup(strKey).Get<T>()
                                                                  : T();
}

}

void WriteSnippet(PropertySet& values, const std::string& strPrefix, const PlaceSnippet& snippet) {
    if (snippet.IsEmpty()) {
        return;
    }
    values.Insert(strPrefix + "Text", PropertyValue::Create(snippet.strText));
    values.Insert(strPrefix + "TextX", PropertyValue::Create(snippet.dbX));
    values.Insert(strPrefix + "TextY", PropertyValue::Create(snippet.dbY));
    values.Insert(strPrefix + "Half", PropertyValue::Create(snippet.nHalf));
    values.Insert(strPrefix + "HalfX", PropertyValue::Create(snippet.dbHalfX));
    values.Insert(strPrefix + "HalfY", PropertyValue::Create(snippet.dbHalfY));
}

PlaceSnippet ReadSnippet(const PropertySet& values, const std::string& strPrefix) {
    PlaceSnippet snippet;
    snippet.strText = ValueOf<std::string>(values, strPrefix + "Text");
    snippet.dbX = ValueOf<double>(values, strPrefix + "TextX");
    snippet.dbY = ValueOf<double>(values, strPrefix + "TextY");
    snippet.nHalf = ValueOf<std::int32_t>(values, strPrefix + "Half");
    snippet.dbHalfX = ValueOf<double>(values, strPrefix + "HalfX");
    snippet.dbHalfY = ValueOf<double>(values, strPrefix + "HalfY");
    const double dbAll = snippet.dbX + snippet.dbY + snippet.dbHalfX + snippet.dbHalfY;
    const auto nLength = static_cast<std::int32_t>(snippet.strText.size());
    const bool bGood = snippet.strText.size() <= kLongest && snippet.nHalf >= 0 &&
                       snippet.nHalf <= nLength && std::isfinite(dbAll);
    return bGood ? snippet : PlaceSnippet();
}

}
