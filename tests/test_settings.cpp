// The laboratory's settings: FDatos with its logo, the two rate screens and
// the older card-percentage routine.
#include "testsupport.h"

#include "foundation/data/amb1.h"
#include "foundation/base/appstate.h"
#include "foundation/data/datafolder.h"
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
    QWidget* s = openScreen("FDatos");
    QCOMPARE(s->windowTitle(), QString("CONFIGURACION DE SISTEMA"));
    QCOMPARE(buttonText(s, "boton2"), QString("Modificar"));
    // Locked at rest: typed keys change nothing, options and "Guardar" are off.
    const QString name = edit(s, "Text1")->text();
    type(edit(s, "Text1"), "XYZ");
    QCOMPARE(edit(s, "Text1")->text(), name);
    QVERIFY(!option(s, 3)->isEnabled() && !control<QWidget>(s, "boton")->isEnabled());
    // No logo in the data folder: the picture stays empty.
    QVERIFY(control<QLabel>(s, "Picture1")->pixmap().isNull());
    closeScreen(s);

    // From an empty table, "Nuevo": every field typed and the switches mixed,
    // saved twice on one screen (still one row); then every field emptied
    // (nothing is required) and the switches turned over. Each time read back
    // from the store and by a new screen.
    amb1().execute("DELETE FROM datos");
    for (const bool first : {true, false}) {
        s = openScreen("FDatos");
        QCOMPARE(buttonText(s, "boton2"), QString(first ? "Nuevo" : "Modificar"));
        QVERIFY(clickNamed(s, "boton2"));
        QStringList typed;
        for (int i = 0; i < kColumns.size(); ++i) {
            typed << (first ? QString("Valor %1 de O'Brien").arg(i + 1) : QString());
            retype(edit(s, QString("Text%1").arg(i + 1)), typed.last());
        }
        const QString options = first ? "1 4 6" : "2 3 5";
        for (const QString& n : options.split(' ')) {   // clicked on the round indicator
            QRadioButton* o = option(s, n.toInt());
            QTest::mouseClick(o, Qt::LeftButton, {}, QPoint(8, o->height() / 2));
        }
        QVERIFY(clickNamed(s, "boton"));
        QVERIFY(edit(s, "Text1")->isReadOnly());
        QCOMPARE(buttonText(s, "boton2"), QString("Modificar"));
        if (first)
            QVERIFY(clickNamed(s, "boton2") && clickNamed(s, "boton"));
        closeScreen(s);

        QCOMPARE(rows("datos"), 1);
        for (int i = 0; i < kColumns.size(); ++i)
            QCOMPARE(value("select " + kColumns[i] + " from datos").toString(), typed[i]);
        QCOMPARE(value("select ticketera from datos").toBool(), first);
        QCOMPARE(value("select pidecontrasena from datos").toBool(), !first);
        QCOMPARE(value("select terceraedadauto from datos").toBool(), first);

        s = openScreen("FDatos");
        for (int i = 0; i < kColumns.size(); ++i)
            QCOMPARE(edit(s, QString("Text%1").arg(i + 1))->text(), typed[i]);
        QCOMPARE(checked(s), options);
        closeScreen(s);
    }
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
    QCOMPARE(QImage(logoPath()).size(), QSize(40, 30));

    // A JPEG is copied as it is.
    const QString jpeg = writeImage(pics.filePath("logo lab.jpeg"), Qt::green, {64, 48}, "JPG");
    QCOMPARE(saveWithLogo(p, jpeg), QStringList());
    QCOMPARE(bytesOf(logoPath()), bytesOf(jpeg));

    // From here on the logo stays as it is: no file chosen; a file that is no
    // picture, the store itself (refused when chosen); a file gone before the
    // save (the data are saved all the same, with a warning).
    const QByteArray old = bytesOf(logoPath());
    QCOMPARE(saveWithLogo(p, QString()), QStringList());
    const QStringList refused = saveWithLogo(p, store.dbPath());
    QVERIFY(refused.size() == 1 && refused[0].contains("no es una imagen"));
    const QString gone = writeImage(pics.filePath("borrado.png"), Qt::blue, {20, 20}, "PNG");
    const QStringList warned = saveWithLogo(p, gone, [&](QWidget* screen) {
        QFile::remove(gone);
        retype(edit(screen, "Text1"), "Laboratorio Central");
    });
    QVERIFY(warned.size() == 1 && warned[0].contains("no se pudo copiar el logo"));
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
    // From an empty table: "Nuevo", locked until it is pressed.
    amb1().execute("DELETE FROM " + table);
    QWidget* s = openScreen(screen);
    QCOMPARE(s->windowTitle(), rate[2]);
    QCOMPARE(control<QLabel>(s, "lblText1")->text(), rate[3]);
    QCOMPARE(control<QLabel>(s, "lblText1")->buddy(), edit(s, "Text1"));
    QCOMPARE(buttonText(s, "boton2"), QString("Nuevo"));
    QVERIFY(edit(s, "Text1")->isReadOnly());
    QVERIFY(!clickNamed(s, "boton"));
    QVERIFY(clickNamed(s, "boton2"));
    retype(edit(s, "Text1"), ".25");
    QVERIFY(clickNamed(s, "boton"));
    QVERIFY(edit(s, "Text1")->isReadOnly());
    QCOMPARE(buttonText(s, "boton2"), QString("Modificar"));

    // Letters are refused with the field left open, and nothing is written.
    QVERIFY(clickNamed(s, "boton2"));
    for (const char* bad : {"abc", "3%", ""}) {
        p.clear();
        retype(edit(s, "Text1"), bad);
        QVERIFY(clickNamed(s, "boton"));
        QCOMPARE(p.messages(), QStringList{"El valor debe ser numérico, por ejemplo " + rate[4]});
        QVERIFY(!edit(s, "Text1")->isReadOnly());
        QCOMPARE(value(stored).toDouble(), 0.25);
    }
    // A second save changes the one row, stored as typed (not scaled), and a
    // new screen reads it back.
    retype(edit(s, "Text1"), "0.03");
    QVERIFY(clickNamed(s, "boton"));
    closeScreen(s);
    QCOMPARE(rows(table), 1);
    QCOMPARE(value(stored).toDouble(), 0.03);
    s = openScreen(screen);
    QCOMPARE(edit(s, "Text1")->text(), QString("0.03"));
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
