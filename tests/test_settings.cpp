// The laboratory's settings: its data and logo, the rates, the card percentage.
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/data/datafolder.h"
#include "administration/settings/cardpercentage.h"
#include "foundation/ui/errors.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QPointer>
#include <QRadioButton>
#include <cerrno>

using namespace tq;
using namespace tq::test;

namespace {

// The columns of datos behind Text1..Text7.
const QStringList kColumns = {"nombre_lab",   "eslogan_lab", "rtn_lab",   "direccion_lab",
                              "telefono_lab", "fax_lab",     "correo_lab"};

QRadioButton* option(QWidget* s, int n) { return control<QRadioButton>(s, QString("Option%1").arg(n)); }

// The numbers of the checked options, e.g. "1 4 6".
QString checked(QWidget* s)
{
    QStringList on;
    for (int n = 1; n <= 6; ++n)
        if (option(s, n)->isChecked())
            on << QString::number(n);
    return on.join(' ');
}

void closeScreen(QWidget* s)
{
    QPointer<QWidget> g(s);
    QVERIFY(clickNamed(s, "Command2"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(g.isNull());
}

QString writeImage(const QString& path, QColor colour, QSize size)
{
    QImage img(size, QImage::Format_RGB32);
    img.fill(colour);
    img.save(path);   // the kind of picture its suffix says
    return path;
}

// On a fresh FDatos: "Command1" with the dialog answering `file` (cancelled when
// empty), "Modificar", `meanwhile`, then "Guardar". Returns the messages shown.
QStringList saveWithLogo(ScriptedPrompts& p, const QString& file,
                         const std::function<void(QWidget*)>& meanwhile = {})
{
    p.clear();
    if (!file.isEmpty())
        p.files.push_back(file);
    QWidget* s = openScreen("FDatos");
    clickNamed(s, "Command1");
    clickNamed(s, "boton2");
    if (meanwhile)
        meanwhile(s);
    clickNamed(s, "boton");
    const QStringList shown = p.messages();
    closeScreen(s);
    return shown;
}

}  // namespace

class TestSettings : public QObject {
    Q_OBJECT
private slots:
    // The laboratory's data and its logo, saved and read back.
    void datosAndLogo()
    {
        TempStore store;
        ScriptedPrompts p;
        QWidget* s = openScreen("FDatos");
        // Locked at rest: typed keys change nothing.
        const QString name = edit(s, "Text1")->text();
        type(edit(s, "Text1"), "XYZ");
        QCOMPARE(edit(s, "Text1")->text(), name);
        closeScreen(s);

        // From an empty table: every field typed and the switches mixed, saved
        // twice on one screen (still one row); then every field emptied (nothing
        // is required), the switches turned over. Read back from the store and a new screen.
        amb1().execute("DELETE FROM datos");
        for (const bool first : {true, false}) {
            s = openScreen("FDatos");
            QVERIFY(clickNamed(s, "boton2"));
            QStringList typed;
            for (int i = 0; i < kColumns.size(); ++i) {
                typed << (first ? QString("Valor %1 de O'Brien").arg(i + 1) : QString());
                retype(edit(s, QString("Text%1").arg(i + 1)), typed.last());
            }
            const QString options = first ? "1 4 6" : "2 3 5";
            for (const QString& n : options.split(' '))   // clicked on the round indicator
                tick(option(s, n.toInt()));
            QVERIFY(clickNamed(s, "boton"));
            QVERIFY(edit(s, "Text1")->isReadOnly());
            if (first)
                QVERIFY(clickNamed(s, "boton2") && clickNamed(s, "boton"));
            closeScreen(s);

            QCOMPARE(rowsIn("datos"), 1);
            for (int i = 0; i < kColumns.size(); ++i)
                QCOMPARE(value("select " + kColumns[i] + " from datos").toString(), typed[i]);
            QCOMPARE(value("select ticketera from datos").toBool(), first);
            QCOMPARE(value("select pidecontrasena from datos").toBool(), !first);

            s = openScreen("FDatos");
            QCOMPARE(edit(s, "Text7")->text(), typed[6]);
            QCOMPARE(checked(s), options);
            closeScreen(s);
        }
        QVERIFY(p.messages().isEmpty());

        // The logo in place is shown; another kind of picture is converted, so
        // logo.jpg really is a JPEG.
        QTemporaryDir pics;
        writeImage(logoPath(), Qt::red, {10, 10});
        s = openScreen("FDatos");
        QVERIFY(!control<QLabel>(s, "Picture1")->pixmap().isNull());
        closeScreen(s);
        QCOMPARE(saveWithLogo(p, writeImage(pics.filePath("nuevo.png"), Qt::blue, {40, 30})), QStringList());
        QCOMPARE(QImageReader::imageFormat(logoPath()), QByteArray("jpeg"));
        QCOMPARE(QImage(logoPath()).size(), QSize(40, 30));

        // From here on the logo stays as it is: a file that is no picture, the
        // store itself (refused when chosen); a file gone before the save (the
        // data are saved all the same, with a warning).
        const QByteArray old = bytesOf(logoPath());
        QString notAPicture = store.dbPath();
        if (onServer()) {   // no store file here: another file that is no picture
            notAPicture = pics.filePath("notas.txt");
            QFile f(notAPicture);
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write("no es una imagen") > 0);
        }
        const QStringList refused = saveWithLogo(p, notAPicture);
        QVERIFY(refused.size() == 1 && refused[0].contains("no es una imagen"));
        const QString gone = writeImage(pics.filePath("borrado.png"), Qt::blue, {20, 20});
        const QStringList warned = saveWithLogo(p, gone, [&](QWidget* screen) {
            QFile::remove(gone);
            retype(edit(screen, "Text1"), "Laboratorio Central");
        });
        QVERIFY(warned.size() == 1 && warned[0].contains("no se pudo copiar el logo"));
        QCOMPARE(value("select nombre_lab from datos").toString(), QString("Laboratorio Central"));
        QCOMPARE(bytesOf(logoPath()), old);

        // A picture that can't be found, and a data folder that takes no file:
        // told in the user's words, the system's reason in Spanish.
        const QString missing = pics.filePath("no está.png");
        QCOMPARE(saveWithLogo(p, missing),
                 QStringList{QString("No se pudo buscar el logo.\n\nEl archivo \"%1\" no existe.").arg(missing)});
        const QString other = writeImage(pics.filePath("otro.png"), Qt::green, {8, 8});
        const QStringList unwritable =
            saveWithLogo(p, other, [](QWidget*) { setDataFolder(QStringLiteral("/proc")); });
        setDataFolder(store.folder());
        QCOMPARE(unwritable, QStringList{"Los datos del laboratorio se guardaron, pero no se pudo copiar "
                                         "el logo: no se pudo escribir \"/proc/logo.jpg\": "
                                         + systemProblem(ENOENT) + "."});
    }

    // The two rate screens, then the older card-percentage routine.
    void rates()
    {
        TempStore store;
        ScriptedPrompts p;
        // The screen, its table (and column), and the example of its message.
        for (const QStringList& rate : {QStringList{"FInpuestoTarjeta", "IST", "0.03"},
                                        QStringList{"FdescuentoTedad", "DTE", "0.10"}}) {
            const QString &screen = rate[0], &table = rate[1];
            const QString stored = "select " + table + " from " + table;
            // From an empty table: "Nuevo", then a save.
            amb1().execute("DELETE FROM " + table);
            QWidget* s = openScreen(screen);
            QVERIFY(clickNamed(s, "boton2"));
            retype(edit(s, "Text1"), ".25");
            QVERIFY(clickNamed(s, "boton"));
            QCOMPARE(value(stored).toDouble(), 0.25);

            // Letters are refused with the field left open, and nothing is written.
            QVERIFY(clickNamed(s, "boton2"));
            for (const char* bad : {"abc", ""}) {
                p.clear();
                retype(edit(s, "Text1"), bad);
                QVERIFY(clickNamed(s, "boton"));
                QCOMPARE(p.messages(), QStringList{"El valor debe ser numérico, por ejemplo " + rate[2]});
                QVERIFY(!edit(s, "Text1")->isReadOnly());
                QCOMPARE(value(stored).toDouble(), 0.25);
            }
            // A second save changes the one row, as typed (not scaled); a new screen reads it.
            retype(edit(s, "Text1"), "0.03");
            QVERIFY(clickNamed(s, "boton"));
            closeScreen(s);
            QCOMPARE(rowsIn(table), 1);
            QCOMPARE(value(stored).toDouble(), 0.03);
            s = openScreen(screen);
            QCOMPARE(edit(s, "Text1")->text(), QString("0.03"));
            closeScreen(s);
        }

        // No at the card routine's warning: nothing asked, nothing changed.
        const auto stored = [] { return value("select tarjeta from tarjeta").toInt(); };
        p.clear();
        p.answers = {Answer::No};
        QVERIFY(!cambiarPorcentajeTarjeta());
        QVERIFY(p.prompts.size() == 1 && stored() == 0);

        // Yes, then letters, then a number: asked again, 17 stored in the one row.
        p.clear();
        p.inputs = {QString("abc"), QString("17")};
        QVERIFY(cambiarPorcentajeTarjeta());
        QVERIFY(stored() == 17 && rowsIn("tarjeta") == 1);
        QCOMPARE(state().cardPercentage, std::int16_t(17));

        // A cancelled input box, or a number too big for the percentage: no change.
        p.clear();
        p.inputs = {std::nullopt, QString("40000")};
        QVERIFY(!cambiarPorcentajeTarjeta());
        QVERIFY(!cambiarPorcentajeTarjeta());
        QCOMPARE(p.prompts.last().icon, Icon::Critical);
        QVERIFY(stored() == 17 && state().cardPercentage == 17);
    }
};

QTEST_MAIN(TestSettings)
#include "test_settings.moc"
