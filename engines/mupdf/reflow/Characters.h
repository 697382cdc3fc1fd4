// What the analysis and the setting of text know about single characters.
//
// Threads: pure functions.
#pragma once

#include <string>
#include <string_view>

namespace velko::engines::mupdf::reflow {

bool IsSpace(char32_t c);
bool IsLetter(char32_t c);
bool IsDigit(char32_t c);
bool IsLowerCase(char32_t c);
bool IsHyphen(char32_t c);      // one that may end a line within a word
bool IsRightToLeft(char32_t c); // strongly
bool IsLeftToRight(char32_t c); // strongly
bool IsIdeographic(char32_t c); // set without spaces: ideographs, kana, their signs
bool IsMark(char32_t c);        // one that has no width of its own
bool IsAccent(char32_t c);      // a sign that may stand over a letter, or under it
bool IsOperator(char32_t c);    // of a sum and the like, with limits above and below
bool EndsSentence(char32_t c);
bool IsClosingMark(char32_t c); // quotes and brackets that may follow a sentence's end
bool IsBullet(char32_t c);

// Signs that no line may begin or end with.
bool MayNotBegin(char32_t c);
bool MayNotEnd(char32_t c);

// Those that a ligature stands for; empty for another character.
std::string_view LettersOf(char32_t c);

// Appends the character in UTF-8; ligatures as the letters they stand for.
void AppendUtf8(std::string& strText, char32_t c);

}
