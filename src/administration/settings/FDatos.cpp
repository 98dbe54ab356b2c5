#include "administration/settings/FDatos.h"

#include "ui_FDatos.h"

#include "foundation/data/amb1.h"
#include "foundation/data/datafolder.h"
#include "foundation/ui/errors.h"
#include "foundation/ui/prompt.h"
#include "foundation/ui/registry.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>
#include <QPixmap>
#include <QSaveFile>
#include <QStandardPaths>
#include <cerrno>

using namespace tq;

namespace {

// A file call that failed just now: what was being done, in the user's words;
// the system's own (English) words go to the log.
QString refused(const char* doing, const QString& path, const QFileDevice& file)
{
    const int why = errno;
    logLine(QStringLiteral("Logo: %1 \"%2\": %3")
                .arg(QString::fromUtf8(doing), path, file.errorString()));
    return QStringLiteral("%1 \"%2\": %3.").arg(QString::fromUtf8(doing), path, systemProblem(why));
}

// Puts the chosen picture in the data folder as logo.jpg, over any older
// one; report headings and result sheets read it from there. Returns an empty
// text when done, otherwise why it failed. The old logo stays untouched on
// failure: the new file is written aside and only then takes its place.
QString storeLogo(const QString& source, const QString& target)
{
    const QFileInfo from(source);
    if (!from.isFile())
        return QStringLiteral("el archivo \"%1\" no existe.").arg(source);
    const QFileInfo to(target);
    if (to.exists() && from.canonicalFilePath() == to.canonicalFilePath())
        return {};   // the chosen file is already the logo

    QSaveFile out(target);
    const QByteArray format = QImageReader::imageFormat(source);
    const bool canWriteJpeg = QImageWriter::supportedImageFormats().contains("jpg");
    if (format == "jpeg" || !canWriteJpeg) {
        // A JPEG goes as it is; without a JPEG writer so does anything else.
        QFile in(source);
        if (!in.open(QIODevice::ReadOnly))
            return refused("no se pudo leer", source, in);
        const QByteArray bytes = in.readAll();
        if (!out.open(QIODevice::WriteOnly) || out.write(bytes) != bytes.size())
            return refused("no se pudo escribir", target, out);
    } else {
        // Other pictures are converted, so that logo.jpg really is a JPEG.
        const QImage image(source);
        if (image.isNull())
            return QStringLiteral("\"%1\" no es una imagen que se pueda leer.").arg(source);
        // JPEG has no transparency: a transparent logo goes on white paper.
        QImage flat(image.size(), QImage::Format_RGB32);
        flat.fill(Qt::white);
        {
            QPainter p(&flat);
            p.drawImage(0, 0, image);
        }
        if (!out.open(QIODevice::WriteOnly) || !flat.save(&out, "JPG", 95))
            return refused("no se pudo escribir", target, out);
    }
    if (!out.commit())
        return refused("no se pudo reemplazar", target, out);
    return {};
}

}  // namespace

FDatos::FDatos(QWidget* parent) : QWidget(parent, Qt::Window), ui(std::make_unique<Ui::FDatos>())
{
    ui->setupUi(this);
    setObjectName(QStringLiteral("FDatos"));
    setAttribute(Qt::WA_DeleteOnClose);

    onClick(ui->boton2, QStringLiteral("preparar los datos del laboratorio para cambiarlos"), [this] {
        lock(false);
        ui->Text1->setFocus();
    });
    onClick(ui->Command1, QStringLiteral("buscar el logo"), [this] { chooseLogo(); });
    onClick(ui->boton, QStringLiteral("guardar los datos del laboratorio"), [this] { save(); });
    onClick(ui->Command2, QStringLiteral("cerrar la pantalla"), [this] { close(); });

    guarded(QStringLiteral("leer los datos del laboratorio"), [this] { load(); });
}

FDatos::~FDatos() = default;

void FDatos::load()
{
    // Without a logo file the picture simply stays empty.
    if (QFileInfo::exists(logoPath()))
        showLogo(logoPath());

    Recordset rs;
    rs.open(QStringLiteral("select * from Datos"));
    if (rs.recordCount() == 0) {
        m_mode = 1;
        ui->boton2->setText(QStringLiteral("Nuevo"));
        // What the save writes for a new row, shown as such.
        ui->Option2->setChecked(true);
        ui->Option4->setChecked(true);
        ui->Option5->setChecked(true);
    } else {
        m_mode = 2;
        ui->boton2->setText(QStringLiteral("Modificar"));
        rs.moveFirst();
        ui->Text1->setText(rs.text(QStringLiteral("nombre_lab")));
        ui->Text2->setText(rs.text(QStringLiteral("eslogan_lab")));
        ui->Text3->setText(rs.text(QStringLiteral("rtn_lab")));
        ui->Text4->setText(rs.text(QStringLiteral("direccion_lab")));
        ui->Text5->setText(rs.text(QStringLiteral("telefono_lab")));
        ui->Text6->setText(rs.text(QStringLiteral("fax_lab")));
        ui->Text7->setText(rs.text(QStringLiteral("correo_lab")));
        const bool ticket = rs.field(QStringLiteral("ticketera")).toBool();
        const bool password = rs.field(QStringLiteral("pidecontrasena")).toBool();
        const bool thirdAge = rs.field(QStringLiteral("terceraedadauto")).toBool();
        (ticket ? ui->Option1 : ui->Option2)->setChecked(true);
        (password ? ui->Option3 : ui->Option4)->setChecked(true);
        (thirdAge ? ui->Option6 : ui->Option5)->setChecked(true);
    }
    lock(true);
}

void FDatos::lock(bool locked)
{
    for (QLineEdit* e : {ui->Text1, ui->Text2, ui->Text3, ui->Text4, ui->Text5, ui->Text6,
                         ui->Text7})
        e->setReadOnly(locked);
    ui->Frame1->setEnabled(!locked);
    ui->Frame2->setEnabled(!locked);
    ui->Frame3->setEnabled(!locked);
    ui->boton->setEnabled(!locked);
    ui->boton2->setEnabled(locked);
}

void FDatos::showLogo(const QString& path)
{
    const QPixmap picture(path);
    if (picture.isNull()) {
        ui->Picture1->clear();
        return;
    }
    ui->Picture1->setPixmap(picture.scaled(ui->Picture1->size(), Qt::KeepAspectRatio,
                                           Qt::SmoothTransformation));
}

void FDatos::chooseLogo()
{
    QString folder = QFileInfo(ui->Label1->text()).absolutePath();
    if (ui->Label1->text().isEmpty() || !QFileInfo(folder).isDir())
        folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    if (folder.isEmpty() || !QFileInfo(folder).isDir())
        folder = QDir::homePath();
    const QString chosen = prompts().openFile(QStringLiteral("Buscar Logo"), folder,
                                              QStringLiteral("Imagenes (*.jpg *.jpeg *.png *.bmp)"));
    if (chosen.isEmpty())
        return;
    if (!QFileInfo(chosen).isFile())
        throw AppError(QStringLiteral("El archivo \"%1\" no existe.").arg(chosen));
    if (QPixmap(chosen).isNull())
        throw AppError(
            QStringLiteral("El archivo \"%1\" no es una imagen que se pueda mostrar.").arg(chosen));
    showLogo(chosen);
    ui->Label1->setText(QDir::toNativeSeparators(chosen));
}

void FDatos::save()
{
    // No field is required: an empty laboratory name is saved as it is.
    const QVariantList values{
        ui->Text1->text(),           ui->Text2->text(),           ui->Text3->text(),
        ui->Text4->text(),           ui->Text5->text(),           ui->Text6->text(),
        ui->Text7->text(),           ui->Option1->isChecked(),    ui->Option3->isChecked(),
        ui->Option6->isChecked(),
    };
    if (m_mode == 1) {
        amb1().execute(QStringLiteral(
                           "INSERT INTO datos (nombre_lab, eslogan_lab, rtn_lab, direccion_lab, "
                           "telefono_lab, fax_lab, correo_lab, ticketera, pidecontrasena, "
                           "terceraedadauto) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"),
                       values);
        // The row exists now; saving again changes it rather than adding a second one.
        m_mode = 2;
        ui->boton2->setText(QStringLiteral("Modificar"));
    } else {
        // `datos` holds one row.
        amb1().execute(QStringLiteral("UPDATE datos SET nombre_lab = ?, eslogan_lab = ?, "
                                      "rtn_lab = ?, direccion_lab = ?, telefono_lab = ?, "
                                      "fax_lab = ?, correo_lab = ?, ticketera = ?, "
                                      "pidecontrasena = ?, terceraedadauto = ?"),
                       values);
    }
    lock(true);

    // No logo chosen: the old one stays.
    const QString chosen = QDir::fromNativeSeparators(ui->Label1->text());
    if (chosen.isEmpty())
        return;
    const QString why = storeLogo(chosen, logoPath());
    if (!why.isEmpty()) {
        logLine(QStringLiteral("Logo no copiado: %1").arg(why));
        prompts().message(QStringLiteral("Los datos del laboratorio se guardaron, pero no se "
                                         "pudo copiar el logo: %1")
                              .arg(why),
                          Icon::Exclamation, windowTitle());
    }
}

TQ_REGISTER_SCREEN(FDatos)
