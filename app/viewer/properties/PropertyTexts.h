// A document's properties in words, as rows of names and values for the reader.
//
// Threads: any.
#pragma once

#include <QLocale>
#include <QString>
#include <cstdint>
#include <vector>

#include "document/engine/DocumentFacts.h"

namespace velko::viewer {

struct PropertyRow {
    QString strName;
    QString strValue;
};
using PropertyRows = std::vector<PropertyRow>;

// Those that the document tells; rows of what it does not tell are left out.
PropertyRows RowsOf(const velko::pdf::DocumentProperties& properties, const QLocale& locale);

// By the numbers of `PDFDoc::GetEncryptionType`.
QString EncryptionText(std::int32_t nType);

// What the bits of `PDFDoc::GetUserPermissions` allow and forbid.
PropertyRows PermissionRows(std::uint32_t nPermissions);

// As a table that can be read, selected and copied; values are no markup.
QString HtmlOf(const PropertyRows& rows);

}
