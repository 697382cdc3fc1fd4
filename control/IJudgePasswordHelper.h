// Who judges a password and acts on the reader's answer; what a password
// dialog talks to.
//
// Threads: UI thread only. `JudgePassword` waits for the engine's answer.
#pragma once

#include <string>

namespace velko::vkit {

class IJudgePasswordHelper {
public:
    virtual ~IJudgePasswordHelper() = default;

    // True when the document opens with this password. May be called any
    // number of times.
    virtual bool JudgePassword(const std::string& strPassword) = 0;

    // Name of the document's file; empty when it has none.
    virtual std::string GetFileName() = 0;

    // The reader's last word, one of the two and once: a password was accepted,
    // or the reader gave up.
    virtual void OnPasswordOK() = 0;
    virtual void OnPasswordCancel() = 0;
};

}
