#pragma once
// The text of a PDF file as a reader sees it on paper: pdftotext -layout,
// one page after another separated by a form feed.
#include <QByteArray>
#include <QString>

namespace tq::test {

// Empty when the file can't be read (the reason goes to the test's log).
QString pdfText(const QString& file);
// The same for PDF bytes held in memory (a print job on paper).
QString pdfTextOf(const QByteArray& pdf);

}  // namespace tq::test
