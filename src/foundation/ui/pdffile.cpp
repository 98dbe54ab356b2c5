#include "foundation/ui/pdffile.h"

#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"

#include <QDir>
#include <QFileInfo>
#include <QPdfWriter>
#include <QSaveFile>
#include <QStandardPaths>
#include <cerrno>

namespace tq {

QString askPdfFile(const QString& proposedName)
{
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    QString file = prompts().saveFile(QStringLiteral("Guardar PDF"),
                                      QDir(folder).filePath(proposedName),
                                      QStringLiteral("Archivos PDF (*.pdf)"));
    if (!file.isEmpty()
        && QFileInfo(file).suffix().compare(QStringLiteral("pdf"), Qt::CaseInsensitive) != 0)
        file += QStringLiteral(".pdf");
    return file;
}

QString writePdfFile(const QString& file, const std::function<bool(QPagedPaintDevice&)>& paint)
{
    const QFileInfo target(file);
    if (target.isDir())
        return systemProblem(EISDIR);
    if (!target.dir().exists())
        return systemProblem(ENOENT);
    QSaveFile out(file);
    errno = 0;
    if (!out.open(QIODevice::WriteOnly)) {
        const int why = errno;
        logLine(QStringLiteral("PDF \"%1\": %2").arg(file, out.errorString()));
        return systemProblem(why);
    }
    bool painted = false;
    {
        QPdfWriter writer(&out);
        painted = paint(writer);
    }
    if (!painted) {
        out.cancelWriting();
        logLine(QStringLiteral("PDF \"%1\": no se pudieron dibujar las páginas").arg(file));
        return QStringLiteral("no se pudieron dibujar las páginas");
    }
    errno = 0;
    if (!out.commit()) {
        const int why = errno;
        logLine(QStringLiteral("PDF \"%1\": %2").arg(file, out.errorString()));
        return systemProblem(why);
    }
    return {};
}

}  // namespace tq
