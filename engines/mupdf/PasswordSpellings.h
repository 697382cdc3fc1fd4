// The ways in which a password may have been written into a file.
//
// The same letters have several codes: accents of their own or not.
// Threads: any.
#pragma once

#include <string>
#include <vector>

#include "platform/foundation/SecretText.h"

namespace velko::engines::mupdf {

// UTF-8, each once, the likeliest first. One alone for a
// password of ASCII letters. `bUnicode`: of a file whose passwords are Unicode.
std::vector<Platform::SecretText> PasswordSpellings(const std::string& strPassword, bool bUnicode);

}
