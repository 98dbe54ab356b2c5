#pragma once
// PDF files written by the program itself (a report, a result sheet): the
// file chosen through a save dialog, then written whole or not at all.
#include <QString>
#include <functional>

class QPagedPaintDevice;

namespace tq {

// Asks where to write a PDF, proposing `proposedName` in the user's documents
// folder; ".pdf" is added when the name has no such ending. Empty when the
// user cancelled.
QString askPdfFile(const QString& proposedName);

// Writes `file` with the pages `paint` draws (false from `paint`: nothing
// could be drawn). Empty when written; else why not, in Spanish, and the file
// is left as it was.
QString writePdfFile(const QString& file, const std::function<bool(QPagedPaintDevice&)>& paint);

}  // namespace tq
