// How reflowed text is shown, beside its scale. Threads: values.
#pragma once

namespace velko::vkit {

struct ReflowStyle {
    bool bShowPicture = true;     // pictures stay in the text
    bool bUsesPageColors = false; // the reader's colours; else black on white
    double dbWidestLine = 0.0;    // device pixels at scale 1.0, with which it grows; 0: any
    friend bool operator==(const ReflowStyle&, const ReflowStyle&) = default;
};

}
