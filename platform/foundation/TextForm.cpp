#include "platform/foundation/TextForm.h"

#include <mutex>
#include <utility>

namespace Platform {

namespace {

std::mutex g_lock;
TextNormalizer g_fnNormalize; // guarded by g_lock

}

void SetTextNormalizer(TextNormalizer fnNormalize) {
    const std::lock_guard<std::mutex> lock(g_lock);
    std::swap(g_fnNormalize, fnNormalize);
}

SecretText NormalizedText(const SecretText& text, TextForm eForm) {
    TextNormalizer fnNormalize;
    {
        const std::lock_guard<std::mutex> lock(g_lock);
        fnNormalize = g_fnNormalize;
    }
    return fnNormalize ? fnNormalize(text, eForm) : text;
}

}
