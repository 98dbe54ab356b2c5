// The laboratory's settings: FDatos with its logo, the two rate screens and
// the older card-percentage routine.
#include "testsupport.h"

#include "foundation/amb1.h"
#include "foundation/appstate.h"
#include "foundation/datafolder.h"
#include "foundation/settings/cardpercentage.h"

#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

// The columns of datos behind Text1..Text7.
const QStringList kColumns = {"nombre_lab",   "eslogan_lab", "rtn_lab",   "direccion_lab",
                              "telefono_lab", "fax_lab",     "correo_lab"};

QVariant value(const QString& sql) { return amb1().scalar(sql); }
int rows(const QString& table) { return value("select count(*) from " + table).toInt(); }

QLineEdit* edit(QWidget* s, const QString& n) { return control<QLineEdit>(s, n); }
QLineEdit* field(QWidget* s, int i) { return edit(s, QString("Text%1").arg(i + 1)); }
QString buttonText(QWidget* s, const QString& n) { return control<QAbstractButton>(s, n)->text(); }
QRadioButton* option(QWidget* s, int n)
{
    return control<QRadioButton>(s, QString("Option%1").arg(n));
}

// The numbers of the checked options, e.g. "1 4 6".
QString checked(QWidget* s)
{
    QStringList on;
    for (int n = 1; n <= 6; ++n)
        if (option(s, n)->isChecked())
            on << QString::number(n);
    return on.join(' ');
}

// Clicks an option on its round indicator, where a user aims.
void pick(QRadioButton* o)
{
    QTest::mouseClick(o, Qt::LeftButton, {}, QPoint(8, o->height() / 2));
}

void closeScreen(QWidget* s)
{
    QPointer<QWidget> g(s);
    QVERIFY(clickNamed(s, "Command2"));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(g.isNull());
}

QString writeImage(const QString& path, QColor colour, QSize size, const char* format)
{
    QImage img(size, QImage::Format_RGB32);
    img.fill(colour);
    img.save(path, format);
    return path;
}

QByteArray bytesOf(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
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
    void datosSavedAndReadBack();
    void logoGoesToLogoJpg();
    void rateScreens_data();
    void rateScreens();
    void cardRoutine();
};

void TestSettings::datosSavedAndReadBack()
{
    TempStore store;
    ScriptedPrompts p;
    amb1().execute("UPDATE datos SET nombre_lab = ?, ticketera = ?, pidecontrasena = ?, "
                   "terceraedadauto = ?", {"Laboratorio San Jorge", true, false, true});
    QWidget* s = openScreen("FDatos");
    QCOMPARE(s->windowTitle(), QString("CONFIGURACION DE SISTEMA"));
    QCOMPARE(buttonText(s, "boton2"), QString("Modificar"));
    QCOMPARE(checked(s), QString("1 4 6"));
    // Locked at rest: typed keys change nothing, options and "Guardar" are off.
    type(edit(s, "Text1"), "XYZ");
    QCOMPARE(edit(s, "Text1")->text(), QString("Laboratorio San Jorge"));
    QVERIFY(!option(s, 3)->isEnabled() && !control<QWidget>(s, "boton")->isEnabled());
    // No logo in the data folder: the picture stays empty.
    QVERIFY(control<QLabel>(s, "Picture1")->pixmap().isNull());
    closeScreen(s);

    // First every field typed and every switch on, then all empty (nothing is
    // required) and all off; each time read back from the store and a new screen.
    for (const bool on : {true, false}) {
        s = openScreen("FDatos");
        QVERIFY(clickNamed(s, "boton2"));
        QStringList typed;
        for (int i = 0; i < kColumns.size(); ++i) {
            typed << (on ? QString("Valor %1 de O'Brien").arg(i + 1) : QString());
            retype(field(s, i), typed.last());
        }
        for (int n : on ? QList<int>{1, 3, 6} : QList<int>{2, 4, 5})
            pick(option(s, n));
        QVERIFY(clickNamed(s, "boton"));
        QVERIFY(edit(s, "Text1")->isReadOnly());
        closeScreen(s);

        QCOMPARE(rows("datos"), 1);
        for (int i = 0; i < kColumns.size(); ++i)
            QCOMPARE(value("select " + kColumns[i] + " from datos").toString(), typed[i]);
        for (const char* c : {"ticketera", "pidecontrasena", "terceraedadauto"})
            QCOMPARE(value(QString("select ") + c + " from datos").toBool(), on);

        s = openScreen("FDatos");
        for (int i = 0; i < kColumns.size(); ++i)
            QCOMPARE(field(s, i)->text(), typed[i]);
        QCOMPARE(checked(s), QString(on ? "1 3 6" : "2 4 5"));
        closeScreen(s);
    }

    // An empty table: "Nuevo" inserts the row, and a second save on the same
    // screen changes it rather than adding another.
    amb1().execute("DELETE FROM datos");
    s = openScreen("FDatos");
    QCOMPARE(buttonText(s, "boton2"), QString("Nuevo"));
    for (const char* name : {"Laboratorio Nuevo", "Laboratorio Renombrado"}) {
        QVERIFY(clickNamed(s, "boton2"));
        retype(edit(s, "Text1"), name);
        QVERIFY(clickNamed(s, "boton"));
        QCOMPARE(rows("datos"), 1);
    }
    QCOMPARE(buttonText(s, "boton2"), QString("Modificar"));
    QCOMPARE(value("select nombre_lab from datos").toString(), QString("Laboratorio Renombrado"));
    closeScreen(s);
    QVERIFY(p.messages().isEmpty());
}

void TestSettings::logoGoesToLogoJpg()
{
    TempStore store;
    ScriptedPrompts p;
    QTemporaryDir pics;
    writeImage(logoPath(), Qt::red, {10, 10}, "JPG");
    QWidget* s = openScreen("FDatos");
    QVERIFY(!control<QLabel>(s, "Picture1")->pixmap().isNull());   // the old logo is shown
    closeScreen(s);

    // Another kind of picture is converted, so logo.jpg really is a JPEG.
    QCOMPARE(saveWithLogo(p, writeImage(pics.filePath("nuevo.png"), Qt::blue, {40, 30}, "PNG")),
             QStringList());
    QCOMPARE(QImageReader::imageFormat(logoPath()), QByteArray("jpeg"));
    const QImage logo(logoPath());
    QCOMPARE(logo.size(), QSize(40, 30));
    QVERIFY(qBlue(logo.pixel(20, 15)) > 200 && qRed(logo.pixel(20, 15)) < 60);

    // A JPEG is copied as it is.
    const QString jpeg = writeImage(pics.filePath("logo lab.jpeg"), Qt::green, {64, 48}, "JPG");
    QCOMPARE(saveWithLogo(p, jpeg), QStringList());
    QCOMPARE(bytesOf(logoPath()), bytesOf(jpeg));

    // From here on the logo stays as it is: no file chosen; a file that is no
    // picture (refused when chosen); a file gone before the save (the data
    // are saved all the same, with a warning).
    const QByteArray old = bytesOf(logoPath());
    QCOMPARE(saveWithLogo(p, QString()), QStringList());
    QFile note(pics.filePath("nota.png"));
    QVERIFY(note.open(QIODevice::WriteOnly) && note.write("esto no es una imagen") > 0);
    note.close();
    const QStringList refused = saveWithLogo(p, note.fileName());
    QCOMPARE(refused.size(), 1);
    QVERIFY(refused[0].contains("no es una imagen"));
    const QString gone = writeImage(pics.filePath("borrado.png"), Qt::blue, {20, 20}, "PNG");
    const QStringList warned = saveWithLogo(p, gone, [&](QWidget* screen) {
        QFile::remove(gone);
        retype(edit(screen, "Text1"), "Laboratorio Central");
    });
    QCOMPARE(warned.size(), 1);
    QVERIFY(warned[0].contains("no se pudo copiar el logo"));
    QCOMPARE(value("select nombre_lab from datos").toString(), QString("Laboratorio Central"));
    QCOMPARE(bytesOf(logoPath()), old);
}

void TestSettings::rateScreens_data()
{
    // The screen, its table (and column), title, caption, and the example of its message.
    QTest::addColumn<QStringList>("rate");
    QTest::newRow("tarjeta") << QStringList{"FInpuestoTarjeta", "IST", "% uso de Tarjeta",
                                            "Impuesto uso de tarjeta:", "0.03"};
    QTest::newRow("3ra edad") << QStringList{"FdescuentoTedad", "DTE", "% descuento 3ra Edad",
                                             "% Descuento:", "0.10"};
}

void TestSettings::rateScreens()
{
    QFETCH(QStringList, rate);
    const QString &screen = rate[0], &table = rate[1];
    TempStore store;
    ScriptedPrompts p;
    const QString stored = "select " + table + " from " + table;
    amb1().execute("UPDATE " + table + " SET " + table + " = ?", {0.05});
    QWidget* s = openScreen(screen);
    QCOMPARE(s->windowTitle(), rate[2]);
    QCOMPARE(control<QLabel>(s, "lblText1")->text(), rate[3]);
    QCOMPARE(control<QLabel>(s, "lblText1")->buddy(), edit(s, "Text1"));
    QCOMPARE(buttonText(s, "boton2"), QString("Modificar"));
    QVERIFY(edit(s, "Text1")->isReadOnly());
    QVERIFY(!clickNamed(s, "boton"));

    // Letters are refused with the field left open, and nothing is written.
    QVERIFY(clickNamed(s, "boton2"));
    for (const char* bad : {"abc", "3%", ""}) {
        p.clear();
        retype(edit(s, "Text1"), bad);
        QVERIFY(clickNamed(s, "boton"));
        QCOMPARE(p.messages(), QStringList{"El valor debe ser numerico, por ejemplo " + rate[4]});
        QVERIFY(!edit(s, "Text1")->isReadOnly());
        QCOMPARE(value(stored).toDouble(), 0.05);
    }
    // Stored as typed (not scaled), and read back by a new screen.
    retype(edit(s, "Text1"), "0.03");
    QVERIFY(clickNamed(s, "boton"));
    QVERIFY(edit(s, "Text1")->isReadOnly());
    closeScreen(s);
    QCOMPARE(value(stored).toDouble(), 0.03);
    s = openScreen(screen);
    QCOMPARE(edit(s, "Text1")->text(), QString("0.03"));
    closeScreen(s);

    // An empty table: "Nuevo", and two saves on the same screen leave one row.
    amb1().execute("DELETE FROM " + table);
    s = openScreen(screen);
    QCOMPARE(buttonText(s, "boton2"), QString("Nuevo"));
    for (const char* v : {"0.1", ".25"}) {
        QVERIFY(clickNamed(s, "boton2"));
        retype(edit(s, "Text1"), v);
        QVERIFY(clickNamed(s, "boton"));
    }
    QCOMPARE(rows(table), 1);
    QCOMPARE(value(stored).toDouble(), 0.25);
    closeScreen(s);
}

void TestSettings::cardRoutine()
{
    TempStore store;
    ScriptedPrompts p;
    const QString warning =
        "Esta a punto de realizar una modificacion critica del sistema, este cambio es "
        "irreversible\n  Con este cambio se modificara el porcentaje a cobrar en sus ventas con "
        "tarjeta\n                  Continue solo si esta seguro de la modificacion a realizar";
    const QString ask = "Ingrese el porcentaje que desea aplicar en sus ventas con tarjeta\n"
                        "Por ejemplo:\nSi aplicara el 17% de descuento, ingrese el numero 17 en "
                        "la casilla inferior";

    // No: nothing asked, nothing changed.
    p.answers = {Answer::No};
    QVERIFY(!cambiarPorcentajeTarjeta());
    QCOMPARE(p.prompts.size(), 1);
    QCOMPARE(p.prompts[0].text, warning);
    QCOMPARE(p.prompts[0].buttons, Buttons::YesNo);
    QCOMPARE(value("select tarjeta from tarjeta").toInt(), 0);

    // Yes, then letters, then a number: asked twice, 17 stored.
    p.clear();
    p.answers = {Answer::Yes};
    p.inputs = {QString("abc"), QString("17")};
    QVERIFY(cambiarPorcentajeTarjeta());
    QCOMPARE(p.prompts.size(), 3);
    QCOMPARE(p.prompts[1].kind, Prompt::Input);
    QCOMPARE(p.prompts[2].text, ask);
    QCOMPARE(value("select tarjeta from tarjeta").toInt(), 17);
    QCOMPARE(rows("tarjeta"), 1);
    QCOMPARE(state().cardPercentage, std::int16_t(17));

    // A cancelled input box, or a number too big for the percentage: no change.
    p.clear();
    p.inputs = {std::nullopt, QString("40000")};
    QVERIFY(!cambiarPorcentajeTarjeta());
    QVERIFY(!cambiarPorcentajeTarjeta());
    QCOMPARE(p.messages().size(), 3);
    QCOMPARE(p.prompts.last().icon, Icon::Critical);
    QCOMPARE(value("select tarjeta from tarjeta").toInt(), 17);
    QCOMPARE(state().cardPercentage, std::int16_t(17));
}

QTEST_MAIN(TestSettings)
#include "test_settings.moc"
