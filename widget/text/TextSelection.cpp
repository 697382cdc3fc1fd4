#include "widget/text/TextSelection.h"

#include <algorithm>
#include <utility>

namespace velko::vkit {

TextSpan TextSelection::Span() const {
    const auto [first, last] = std::minmax(m_places.anchor, m_places.head);
    return {first, last};
}

CharRange TextSelection::On(std::int32_t nPage, std::int32_t nChars) const {
    return IsEmpty() ? CharRange() : RangeOn(nPage, nChars, m_places.anchor, m_places.head);
}

void TextSelection::Begin(const TextSpan& unit, TextUnit eUnit) {
    m_base = unit;
    m_eUnit = eUnit;
    Show({unit.first, unit.last});
}

void TextSelection::ExtendTo(const TextSpan& unit) {
    if (unit.first < m_base.first) {
        Show({m_base.last, unit.first});
    } else {
        Show({m_base.first, std::max(m_base.last, unit.last)});
    }
}

void TextSelection::Set(const Places& places) {
    m_base = {places.anchor, places.anchor};
    m_eUnit = TextUnit::Char;
    Show(places);
}

void TextSelection::Show(const Places& places) {
    if (std::exchange(m_places, places) != places) {
        emit Changed();
    }
}

}
