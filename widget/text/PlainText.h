// The characters of a page as plain text: lines of a paragraph joined, hyphens that only
// end a line undone, a line break where the text has one.
//
// Lines of a block are one paragraph as far as its width broke them: a line that has room
// for the first word of the next one ends by itself, as do the rows of a table. Text set
// without spaces is joined without one. Characters that are signs of control are left out.
// Threads: pure functions.
#pragma once

#include <QString>

#include "widget/text/TextRange.h"

namespace velko::vkit {

// No line break behind the last line.
QString PlainTextOf(const velko::pdf::PageText& text, CharRange range);

// Appends the text of a page further on.
void AppendPage(QString& strText, const QString& strPage);

}
