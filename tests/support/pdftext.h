#pragma once
// A PDF's text as read on paper (pdftotext -layout, pages split by a form feed).
#include <QByteArray>
#include <QString>

namespace tq::test {

QString pdfText(const QString& file);   // empty when unreadable (the reason logged)
QString pdfTextOf(const QByteArray& pdf);   // the same for a print job held in memory

}  // namespace tq::test
