#pragma once

#include <QString>

// Names of files built from the data: a party code, an account, an invoice
// number. Codes are typed by operators and brought in by imports, so a code
// such as "../../tmp/x" or "CL/13" must never choose where a file goes. Every
// file ORVE names from data (invoice documents, accounting transfer files,
// messages left in the outbox) goes through these two functions:
//
//     const QString name = store::fileNamePart(code) + QStringLiteral("_FN_") + ...;
//     const QString path = store::fileInFolder(folder, name);  // Refusal if it would leave
namespace orve::store {

// The letters, digits, "-" and "_" of a code, in order; everything else
// (separators, dots, blanks, drive colons, wildcards) is dropped. May be empty.
QString fileNamePart(const QString& code);

// `folder` joined with `fileName`, checked to name a file directly inside that
// folder. Throws Refusal, with a French message naming both, when the name is
// empty, "." or "..", or holds a separator or a drive.
QString fileInFolder(const QString& folder, const QString& fileName);

}  // namespace orve::store
