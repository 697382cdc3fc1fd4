// Texts out of a document, made harmless for the eyes of a reader.
//
// Threads: any.
#pragma once

#include <QString>

namespace velko::vkit {

// As it reads, in one line: what prints nothing, or turns the direction of the letters
// behind it, is shown as "�", so that no address or name looks like another one.
QString ShownText(const QString& strText);

}
