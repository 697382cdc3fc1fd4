// The forms of Unicode in which one text may be written.
//
// A toolkit that knows the tables of Unicode sets `SetTextNormalizer`; until then
// every text is in every form.
// Threads: any; the normalizer is called on any.
#pragma once

#include <functional>

#include "platform/foundation/SecretText.h"

namespace Platform {

enum class TextForm { Composed, Decomposed, CompatibleComposed };

using TextNormalizer = std::function<SecretText(const SecretText& text, TextForm eForm)>;

void SetTextNormalizer(TextNormalizer fnNormalize); // empty: none
SecretText NormalizedText(const SecretText& text, TextForm eForm);

}
