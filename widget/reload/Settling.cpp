#include "widget/reload/Settling.h"

#include <algorithm>

namespace velko::vkit {

void Settling::Show(const Version& version) {
    *this = Settling();
    m_shown = version;
}

void Settling::Refuse(const Version& version) {
    m_refused = version;
    m_changingSince.reset();
}

void Settling::Doubt(const Version& version, Time now) {
    if (m_doubted != version) {
        m_doubted = version;
        m_doubtedAt = now;
    }
}

void Settling::Touch(Time now, bool bWriterDone) {
    m_touched = now;
    m_bWriterDone = bWriterDone;
}

Settling::Next Settling::After(Time left, What eThen) {
    return left > Time(0) ? Next{What::Wait, left} : Next{eThen, Time(0)};
}

Settling::Next Settling::NoteMissing(Time now) {
    m_last.reset();
    m_changingSince.reset();
    if (!m_missingSince) {
        m_missingSince = now;
    }
    m_refused.reset(); // what comes back is looked at anew
    m_doubted.reset();
    return After(kGone - (now - *m_missingSince), What::Gone);
}

Settling::Next Settling::Note(const std::optional<Version>& found, Time now) {
    if (!found) {
        return NoteMissing(now);
    }
    m_missingSince.reset();
    if (m_last != found) {
        m_last = found;
        m_stillSince = now;
    }
    if (found == m_shown || found == m_refused) {
        m_changingSince.reset();
    }
    if (found == m_shown) {
        m_refused.reset();
        return {What::Known, Time(0)};
    }
    if (found == m_refused) {
        return {What::Refused, Time(0)};
    }
    if (found == m_doubted) {
        return After(kPatience - (now - m_doubtedAt), What::Final);
    }
    if (!m_changingSince) {
        m_changingSince = now;
    }
    const Time left =
        (m_bWriterDone ? kAfterWriter : kQuiet) - (now - std::max(m_stillSince, m_touched));
    const Next next = After(std::min(left, kLongest - (now - *m_changingSince)), What::Settled);
    if (next.eWhat == What::Settled) {
        m_changingSince.reset();
    }
    return next;
}

}
