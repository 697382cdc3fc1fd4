// A line to type a secret into: shows dots, and clears the memory that its text
// stood in.
//
// The text is kept in one place of memory for as long as it is not longer than
// usual, so that typing leaves no shorter copies behind. What the clipboard or an input
// method holds is theirs.
// Threads: UI thread only.
#pragma once

#include <QLineEdit>
#include <functional>

#include "platform/foundation/SecretText.h"

namespace Platform::Qt {

class QtSecretEdit : public QLineEdit {
public:
    explicit QtSecretEdit(QWidget* pParent);
    ~QtSecretEdit() override;

    // Puts the text in the place of what was typed, which is cleared.
    void SetSecret(const SecretText& secret);
    std::function<void(SecretText)> OnTyped;

protected:
    void changeEvent(QEvent* pEvent) override;

private:
    void WipeText();
    void MakeRoom();
    void Tell();
    void UseHintColor();

    bool m_bSetting = false;
};

}
