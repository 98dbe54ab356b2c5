#include "pdftext.h"

#include <QProcess>
#include <QTemporaryFile>
#include <QtDebug>

namespace tq::test {

QString pdfText(const QString& file)
{
    QProcess p;
    p.start(QStringLiteral("pdftotext"), {"-layout", "-enc", "UTF-8", file, "-"});
    if (!p.waitForFinished(30000) || p.exitStatus() != QProcess::NormalExit || p.exitCode() != 0) {
        qWarning() << "pdftotext" << file << p.errorString()
                   << QString::fromLocal8Bit(p.readAllStandardError());
        return {};
    }
    return QString::fromUtf8(p.readAllStandardOutput());
}

QString pdfTextOf(const QByteArray& pdf)
{
    QTemporaryFile f(QStringLiteral("XXXXXX.pdf"));
    if (!f.open() || f.write(pdf) != pdf.size())
        return {};
    f.flush();
    return pdfText(f.fileName());
}

}  // namespace tq::test
