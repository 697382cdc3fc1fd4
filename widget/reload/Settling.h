// When a file that changes has come to rest, judged from looks at its version.
//
// Writers replace a file in one step, or write it over seconds, or remove it first; of
// none is known that it is done. So a version counts once two looks found it, with a while
// between them: a short one where the writer has closed or renamed the file, and never
// longer than `kLongest` in all, as somebody may change it for ever.
//
// Threads: a value. Units: times since any start, which only goes on.
#pragma once

#include <chrono>
#include <optional>

#include "platform/storage/FileVersion.h"

namespace velko::vkit {

class Settling {
public:
    using Version = Windows::Storage::FileVersion;
    using Time = std::chrono::milliseconds;

    static constexpr Time kAfterWriter{20};
    static constexpr Time kQuiet{150};
    static constexpr Time kLongest{2'000};
    static constexpr Time kGone{1'000};     // without a file
    static constexpr Time kPatience{2'000}; // with a version that looks unfinished

    enum class What {
        Known,   // as it is shown
        Refused, // as it was when it was refused
        Wait,    // look again after `wait`
        Settled,
        Final, // settled, and what looked unfinished has stayed so
        Gone
    };
    struct Next {
        What eWhat = What::Known;
        Time wait{0};
    };

    // The version that is shown; whatever else was known is forgotten.
    void Show(const Version& version);
    // What is not to be told again.
    void Refuse(const Version& version);
    // A version that was told as settled looks unfinished.
    void Doubt(const Version& version, Time now);

    // Something was done to the file.
    void Touch(Time now, bool bWriterDone);
    // What a look has found; empty when there is no file, or none that can be read.
    Next Note(const std::optional<Version>& found, Time now);

private:
    Next NoteMissing(Time now);
    static Next After(Time left, What eThen);

    std::optional<Version> m_shown;
    std::optional<Version> m_refused;
    std::optional<Version> m_doubted;
    std::optional<Version> m_last; // found
    Time m_doubtedAt{0};
    Time m_stillSince{0};
    Time m_touched{0};
    bool m_bWriterDone = false;
    std::optional<Time> m_changingSince;
    std::optional<Time> m_missingSince;
};

}
