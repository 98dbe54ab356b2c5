// The laboratory's settings: FDatos with its logo, the two rate screens and
// the older card-percentage routine.
#include "testsupport.h"

#include "foundation/amb1.h"
#include "foundation/appstate.h"
#include "foundation/datafolder.h"
#include "foundation/settings/cardpercentage.h"

#include <QDir>
#include <QFile>
#include <QGroupBox>
#include <QImage>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>

using namespace tq;
using namespace tq::test;

namespace {

const QStringList kFields = {"Text1", "Text2", "Text3", "Text4", "Text5", "Text6", "Text7"};
const QStringList kColumns = {"nombre_lab",   "eslogan_lab", "rtn_lab",   "direccion_lab",
                              "telefono_lab", "fax_lab",     "correo_lab"};

QVariant value(const QString& sql) { return amb1().scalar(sql); }
int rows(const QString& table) { return value("select count(*) from " + table).toInt(); }

QLineEdit* edit(QWidget* s, const QString& n) { return control<QLineEdit>(s, n); }
QRadioButton* option(QWidget* s, int n) { return control<QRadioButton>(s, QString("Option%1").arg(n)); }

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

// Clicks an option on its round indicator, where a user aims.
void pick(QRadioButton* o)
{
    QTest::mouseClick(o, Qt::LeftButton, {}, QPoint(8, o->height() / 2));
    QVERIFY(o->isChecked());
}

QByteArray bytesOf(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

}  // namespace

class TestSettings : public QObject {
    Q_OBJECT
private slots:
    void datosLoadsLockedRow();
    void datosModifyAndReadBack();
    void datosEmptyTableInsertsOneRow();
    void datosEmptyFieldsAccepted();
    void logoConvertedOverOlder();
    void logoJpegCopiedAsIs();
    void logoEmptyPathKeepsOld();
    void logoVanishedFileWarnsButSaves();
    void logoChooserRefusesNonImage();
    void rateSaveAndReadBack_data();
    void rateSaveAndReadBack();
    void rateRefusesLetters_data();
    void rateRefusesLetters();
    void cardRoutine();
};

void TestSettings::datosLoadsLockedRow()
{
    TempStore store;
    ScriptedPrompts p;
    amb1().execute("UPDATE datos SET nombre_lab = ?, correo_lab = ?, ticketera = ?, "
                   "pidecontrasena = ?, terceraedadauto = ?",
                   {"Laboratorio San Jorge", "lab@sanjorge.hn", true, false, true});
    QWidget* s = openScreen("FDatos");
    QVERIFY(s);
    QCOMPARE(s->objectName(), QString("FDatos"));
    QCOMPARE(s->windowTitle(), QString("CONFIGURACION DE SISTEMA"));
    QCOMPARE(control<QPushButton>(s, "boton2")->text(), QString("Modificar"));
    QVERIFY(control<QPushButton>(s, "boton2")->isEnabled());
    QVERIFY(!control<QPushButton>(s, "boton")->isEnabled());
    QCOMPARE(edit(s, "Text1")->text(), QString("Laboratorio San Jorge"));
    QCOMPARE(edit(s, "Text7")->text(), QString("lab@sanjorge.hn"));
    QVERIFY(option(s, 1)->isChecked() && option(s, 4)->isChecked() && option(s, 6)->isChecked());
    for (int n = 1; n <= 6; ++n)
        QVERIFY(!option(s, n)->isEnabled());
    // Locked: keys typed at rest change nothing.
    type(edit(s, "Text1"), "XYZ");
    QCOMPARE(edit(s, "Text1")->text(), QString("Laboratorio San Jorge"));
    // No logo in the data folder: the picture stays empty.
    QVERIFY(control<QLabel>(s, "Picture1")->pixmap().isNull());
    QVERIFY(p.prompts.isEmpty());
    closeScreen(s);
}

void TestSettings::datosModifyAndReadBack()
{
    TempStore store;
    ScriptedPrompts p;
    // Two rounds flip every switch both ways.
    for (int round = 0; round < 2; ++round) {
        QWidget* s = openScreen("FDatos");
        QVERIFY(clickNamed(s, "boton2"));
        QVERIFY(!control<QPushButton>(s, "boton2")->isEnabled());
        QVERIFY(option(s, 1)->isEnabled());
        QStringList typed;
        for (int i = 0; i < kFields.size(); ++i) {
            typed << QString("Valor %1 de O'Brien %2").arg(i + 1).arg(round);
            retype(edit(s, kFields[i]), typed.last());
        }
        const bool on = round == 0;
        pick(option(s, on ? 1 : 2));
        pick(option(s, on ? 3 : 4));
        pick(option(s, on ? 6 : 5));
        QVERIFY(clickNamed(s, "boton"));
        QVERIFY(edit(s, "Text1")->isReadOnly());
        QVERIFY(control<QPushButton>(s, "boton2")->isEnabled());
        QVERIFY(!control<QPushButton>(s, "boton")->isEnabled());
        closeScreen(s);

        QCOMPARE(rows("datos"), 1);
        for (int i = 0; i < kColumns.size(); ++i)
            QCOMPARE(value("select " + kColumns[i] + " from datos").toString(), typed[i]);
        QCOMPARE(value("select ticketera from datos").toBool(), on);
        QCOMPARE(value("select pidecontrasena from datos").toBool(), on);
        QCOMPARE(value("select terceraedadauto from datos").toBool(), on);

        s = openScreen("FDatos");
        for (int i = 0; i < kFields.size(); ++i)
            QCOMPARE(edit(s, kFields[i])->text(), typed[i]);
        QCOMPARE(option(s, 1)->isChecked(), on);
        QCOMPARE(option(s, 3)->isChecked(), on);
        QCOMPARE(option(s, 6)->isChecked(), on);
        QCOMPARE(option(s, 5)->isChecked(), !on);
        closeScreen(s);
    }
    QVERIFY(p.messages().isEmpty());
}

void TestSettings::datosEmptyTableInsertsOneRow()
{
    TempStore store;
    ScriptedPrompts p;
    amb1().execute("DELETE FROM datos");
    QWidget* s = openScreen("FDatos");
    QCOMPARE(control<QPushButton>(s, "boton2")->text(), QString("Nuevo"));
    QVERIFY(clickNamed(s, "boton2"));
    type(edit(s, "Text1"), "Laboratorio Nuevo");
    pick(option(s, 3));
    QVERIFY(clickNamed(s, "boton"));
    QCOMPARE(rows("datos"), 1);
    // Saving again on the same screen changes that row, never adds a second.
    QCOMPARE(control<QPushButton>(s, "boton2")->text(), QString("Modificar"));
    QVERIFY(clickNamed(s, "boton2"));
    retype(edit(s, "Text1"), "Laboratorio Renombrado");
    QVERIFY(clickNamed(s, "boton"));
    QCOMPARE(rows("datos"), 1);
    QCOMPARE(value("select nombre_lab from datos").toString(), QString("Laboratorio Renombrado"));
    QCOMPARE(value("select pidecontrasena from datos").toBool(), true);
    QCOMPARE(value("select ticketera from datos").toBool(), false);
    closeScreen(s);
}

void TestSettings::datosEmptyFieldsAccepted()
{
    TempStore store;
    ScriptedPrompts p;
    QWidget* s = openScreen("FDatos");
    QVERIFY(clickNamed(s, "boton2"));
    for (const QString& f : kFields)
        retype(edit(s, f), "");
    QVERIFY(clickNamed(s, "boton"));
    QVERIFY(p.messages().isEmpty());
    QCOMPARE(value("select nombre_lab from datos").toString(), QString());
    QCOMPARE(rows("datos"), 1);
    closeScreen(s);
}

void TestSettings::logoConvertedOverOlder()
{
    TempStore store;
    ScriptedPrompts p;
    QTemporaryDir pics;
    writeImage(logoPath(), Qt::red, {10, 10}, "JPG");
    p.files.push_back(writeImage(pics.filePath("nuevo.png"), Qt::blue, {40, 30}, "PNG"));
    QWidget* s = openScreen("FDatos");
    QVERIFY(!control<QLabel>(s, "Picture1")->pixmap().isNull());   // old logo shown
    QVERIFY(clickNamed(s, "Command1"));
    QCOMPARE(QDir::fromNativeSeparators(control<QLabel>(s, "Label1")->text()),
             pics.filePath("nuevo.png"));
    QVERIFY(clickNamed(s, "boton2"));
    QVERIFY(clickNamed(s, "boton"));
    QVERIFY(p.messages().isEmpty());
    QCOMPARE(QImageReader::imageFormat(logoPath()), QByteArray("jpeg"));
    const QImage logo(logoPath());
    QCOMPARE(logo.size(), QSize(40, 30));
    QVERIFY(qBlue(logo.pixel(20, 15)) > 200 && qRed(logo.pixel(20, 15)) < 60);
    closeScreen(s);
}

void TestSettings::logoJpegCopiedAsIs()
{
    TempStore store;
    ScriptedPrompts p;
    QTemporaryDir pics;
    writeImage(logoPath(), Qt::red, {10, 10}, "JPG");
    p.files.push_back(writeImage(pics.filePath("logo lab.jpeg"), Qt::green, {64, 48}, "JPG"));
    QWidget* s = openScreen("FDatos");
    QVERIFY(clickNamed(s, "Command1"));
    QVERIFY(clickNamed(s, "boton2"));
    QVERIFY(clickNamed(s, "boton"));
    QCOMPARE(bytesOf(logoPath()), bytesOf(pics.filePath("logo lab.jpeg")));
    QVERIFY(p.messages().isEmpty());
    closeScreen(s);
}

void TestSettings::logoEmptyPathKeepsOld()
{
    TempStore store;
    ScriptedPrompts p;
    writeImage(logoPath(), Qt::red, {10, 10}, "JPG");
    const QByteArray old = bytesOf(logoPath());
    QWidget* s = openScreen("FDatos");
    QVERIFY(clickNamed(s, "Command1"));   // dialog cancelled
    QCOMPARE(control<QLabel>(s, "Label1")->text(), QString());
    QVERIFY(clickNamed(s, "boton2"));
    QVERIFY(clickNamed(s, "boton"));
    QCOMPARE(bytesOf(logoPath()), old);
    QVERIFY(p.messages().isEmpty());
    closeScreen(s);
}

void TestSettings::logoVanishedFileWarnsButSaves()
{
    TempStore store;
    ScriptedPrompts p;
    QTemporaryDir pics;
    writeImage(logoPath(), Qt::red, {10, 10}, "JPG");
    const QByteArray old = bytesOf(logoPath());
    p.files.push_back(writeImage(pics.filePath("borrado.png"), Qt::blue, {20, 20}, "PNG"));
    QWidget* s = openScreen("FDatos");
    QVERIFY(clickNamed(s, "Command1"));
    QVERIFY(QFile::remove(pics.filePath("borrado.png")));
    QVERIFY(clickNamed(s, "boton2"));
    retype(edit(s, "Text1"), "Laboratorio Central");
    QVERIFY(clickNamed(s, "boton"));
    QCOMPARE(p.messages().size(), 1);
    QVERIFY(p.lastMessage().contains("no se pudo copiar el logo"));
    QCOMPARE(value("select nombre_lab from datos").toString(), QString("Laboratorio Central"));
    QCOMPARE(bytesOf(logoPath()), old);
    closeScreen(s);
}

void TestSettings::logoChooserRefusesNonImage()
{
    TempStore store;
    ScriptedPrompts p;
    QTemporaryDir pics;
    QFile f(pics.filePath("nota.png"));
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("esto no es una imagen");
    f.close();
    p.files.push_back(f.fileName());
    QWidget* s = openScreen("FDatos");
    QVERIFY(clickNamed(s, "Command1"));
    QCOMPARE(p.messages().size(), 1);
    QVERIFY(p.lastMessage().contains("no es una imagen"));
    QCOMPARE(control<QLabel>(s, "Label1")->text(), QString());
    closeScreen(s);
}

void TestSettings::rateSaveAndReadBack_data()
{
    QTest::addColumn<QString>("screen");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("caption");
    QTest::newRow("tarjeta") << "FInpuestoTarjeta" << "IST" << "% uso de Tarjeta"
                             << "Impuesto uso de tarjeta:";
    QTest::newRow("3ra edad") << "FdescuentoTedad" << "DTE" << "% descuento 3ra Edad"
                              << "% Descuento:";
}

void TestSettings::rateSaveAndReadBack()
{
    QFETCH(QString, screen);
    QFETCH(QString, table);
    QFETCH(QString, title);
    QFETCH(QString, caption);
    TempStore store;
    ScriptedPrompts p;
    QWidget* s = openScreen(screen);
    QVERIFY(s);
    QCOMPARE(s->objectName(), screen);
    QCOMPARE(s->windowTitle(), title);
    QCOMPARE(control<QLabel>(s, "lblText1")->text(), caption);
    QCOMPARE(control<QLabel>(s, "lblText1")->buddy(), edit(s, "Text1"));
    QCOMPARE(control<QPushButton>(s, "boton2")->text(), QString("Modificar"));
    QVERIFY(edit(s, "Text1")->isReadOnly());
    QVERIFY(!clickNamed(s, "boton"));
    QVERIFY(clickNamed(s, "boton2"));
    retype(edit(s, "Text1"), "0.03");
    QVERIFY(clickNamed(s, "boton"));
    QVERIFY(edit(s, "Text1")->isReadOnly());
    closeScreen(s);
    QCOMPARE(rows(table), 1);
    QCOMPARE(value("select " + table + " from " + table).toDouble(), 0.03);   // not scaled

    s = openScreen(screen);
    QCOMPARE(edit(s, "Text1")->text(), QString("0.03"));
    closeScreen(s);

    // An empty table: "Nuevo", and saves on the same screen leave one row.
    amb1().execute("DELETE FROM " + table);
    s = openScreen(screen);
    QCOMPARE(control<QPushButton>(s, "boton2")->text(), QString("Nuevo"));
    QCOMPARE(edit(s, "Text1")->text(), QString());
    for (const char* v : {"0.1", ".25"}) {
        QVERIFY(clickNamed(s, "boton2"));
        retype(edit(s, "Text1"), v);
        QVERIFY(clickNamed(s, "boton"));
    }
    QCOMPARE(rows(table), 1);
    QCOMPARE(value("select " + table + " from " + table).toDouble(), 0.25);
    QVERIFY(p.messages().isEmpty());
    closeScreen(s);
}

void TestSettings::rateRefusesLetters_data()
{
    QTest::addColumn<QString>("screen");
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("message");
    QTest::newRow("tarjeta") << "FInpuestoTarjeta" << "IST"
                             << "El valor debe ser numerico, por ejemplo 0.03";
    QTest::newRow("3ra edad") << "FdescuentoTedad" << "DTE"
                              << "El valor debe ser numerico, por ejemplo 0.10";
}

void TestSettings::rateRefusesLetters()
{
    QFETCH(QString, screen);
    QFETCH(QString, table);
    QFETCH(QString, message);
    TempStore store;
    ScriptedPrompts p;
    amb1().execute("UPDATE " + table + " SET " + table + " = ?", {0.05});
    QWidget* s = openScreen(screen);
    for (const char* bad : {"abc", "3%", ""}) {
        p.clear();
        QVERIFY(clickNamed(s, "boton2") || !edit(s, "Text1")->isReadOnly());
        retype(edit(s, "Text1"), bad);
        QVERIFY(clickNamed(s, "boton"));
        QCOMPARE(p.messages(), QStringList{message});
        // Still open for a correction; nothing written.
        QVERIFY(!edit(s, "Text1")->isReadOnly());
        QCOMPARE(value("select " + table + " from " + table).toDouble(), 0.05);
    }
    QCOMPARE(rows(table), 1);
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
    p.inputs = {std::nullopt};
    QVERIFY(!cambiarPorcentajeTarjeta());
    p.clear();
    p.inputs = {QString("40000")};
    QVERIFY(!cambiarPorcentajeTarjeta());
    QCOMPARE(p.messages().size(), 2);
    QCOMPARE(p.prompts.last().icon, Icon::Critical);
    QCOMPARE(value("select tarjeta from tarjeta").toInt(), 17);
    QCOMPARE(state().cardPercentage, std::int16_t(17));
}

QTEST_MAIN(TestSettings)
#include "test_settings.moc"
