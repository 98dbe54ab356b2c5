#include "foundation/ui/sheetpage.h"

#include "foundation/base/apperror.h"
#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/pdffile.h"
#include "foundation/ui/prompt.h"

#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPagedPaintDevice>
#include <QPainter>
#include <QWidget>

namespace tq {

LabHeading readLabHeading(bool withEmail)
{
    LabHeading h;
    Recordset rs;
    rs.open(QStringLiteral("SELECT nombre_lab, eslogan_lab, direccion_lab, telefono_lab, fax_lab, "
                           "correo_lab FROM datos"));
    if (!rs.eof()) {
        h.nombre = rs.text(QStringLiteral("nombre_lab"));
        h.eslogan = rs.text(QStringLiteral("eslogan_lab"));
        h.linea = rs.text(QStringLiteral("direccion_lab")) + QStringLiteral(" telefono: ")
                  + rs.text(QStringLiteral("telefono_lab"));
        const QString fax = rs.text(QStringLiteral("fax_lab"));
        if (!fax.trimmed().isEmpty())
            h.linea += QStringLiteral(" fax: ") + fax;
        if (withEmail)
            h.linea += QStringLiteral(" email: ") + rs.text(QStringLiteral("correo_lab"));
    }
    if (!dataFolder().isEmpty() && QFileInfo::exists(logoPath()))
        h.logo.load(logoPath());
    return h;
}

SheetPage::SheetPage(QWidget* page) : m_page(page) {}

QLabel* SheetPage::label(const char* name) const
{
    return m_page ? m_page->findChild<QLabel*>(QString::fromLatin1(name)) : nullptr;
}

void SheetPage::fillHeading(bool withEmail)
{
    const LabHeading h = readLabHeading(withEmail);
    if (QLabel* l = label("lblNombreLab"))
        l->setText(h.nombre);
    if (QLabel* l = label("lblEslogan"))
        l->setText(h.eslogan);
    if (QLabel* l = label("lblDireccion"))
        l->setText(h.linea);
    if (QLabel* l = label("imgLogo")) {
        if (h.logo.isNull())
            l->clear();
        else
            l->setPixmap(h.logo.scaled(l->size().isEmpty() ? QSize(96, 96) : l->size(),
                                       Qt::KeepAspectRatio, Qt::SmoothTransformation));
    }
}

void SheetPage::setPatient(const QString& nombre, const QString& fecha, const QString& edad)
{
    if (QLabel* l = label("lblPaciente"))
        l->setText(nombre);
    if (QLabel* l = label("lblFecha"))
        l->setText(fecha);
    if (QLabel* l = label("lblEdad"))
        l->setText(edad);
}

void SheetPage::paint(QPagedPaintDevice& device) const
{
    if (!m_page)
        return;
    m_page->ensurePolished();
    if (!m_page->testAttribute(Qt::WA_WState_Created) || m_page->size().isEmpty())
        m_page->adjustSize();
    const QRect paper = device.pageLayout().paintRectPixels(device.logicalDpiX());
    const QSize size = m_page->size();
    if (size.isEmpty() || paper.isEmpty())
        return;
    const double scale = std::min(double(paper.width()) / size.width(),
                                  double(paper.height()) / size.height());
    QPainter painter(&device);
    painter.scale(scale, scale);
    m_page->render(&painter, QPoint(), QRegion(),
                   QWidget::DrawChildren | QWidget::DrawWindowBackground);
}

bool SheetPage::printOnDefaultPrinter() const
{
    const SheetPage self = *this;
    return prompts().printDefault([self](QPagedPaintDevice& d) { self.paint(d); },
                                  m_page ? m_page->window()->windowTitle() : QString());
}

bool SheetPage::printWithDialog() const
{
    const SheetPage self = *this;
    return prompts().print([self](QPagedPaintDevice& d) { self.paint(d); },
                           m_page ? m_page->window()->windowTitle() : QString());
}

QString SheetPage::saveAsPdf(const QString& proposedName) const
{
    const QString file = askPdfFile(proposedName);
    if (file.isEmpty())
        return {};
    const QString why = writePdfFile(file, [this](QPagedPaintDevice& d) {
        paint(d);
        return m_page != nullptr;
    });
    if (!why.isEmpty())
        throw AppError(QStringLiteral("No se pudo guardar la hoja de resultados en el archivo "
                                      "\"%1\": %2.")
                           .arg(QDir::toNativeSeparators(file), why));
    return file;
}

}  // namespace tq
